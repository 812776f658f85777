#include "tarnwick-batch/Console.h"

#include <QIODevice>
#include <QTime>

#include "base/Globals.h"

namespace {

constexpr int MostCells = 30;
constexpr int LeastCells = 8;

QString timeOfDay() {
    return QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz "));
}

/// At most so wide: first the bar gives way, then the beginning.
QString barText(const QString& what, double fraction, const QString& count, int width) {
    const QString frame = QStringLiteral(" [] ");
    const int cells =
        qBound(LeastCells, width - what.size() - count.size() - frame.size(), MostCells);
    const int filled = toClampedInt(fraction * cells, 0, cells);
    const QString bar = QStringLiteral("%1 [%2%3] %4")
                            .arg(what, QString(filled, QLatin1Char('#')),
                                 QString(cells - filled, QLatin1Char('.')), count);
    const QString cut = QStringLiteral("...");
    return bar.size() <= width ? bar : cut + bar.right(qMax(0, width - cut.size()));
}

}  // namespace

Console::Console(QIODevice* out, QIODevice* err, bool outIsTerminal, bool errIsTerminal)
    : m_out(out), m_err(err), m_outIsTerminal(outIsTerminal), m_errIsTerminal(errIsTerminal) {}

void Console::log(const QString& text) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    eraseBar();
    if (!m_tellsTimes) {
        writeOut(text);
        return;
    }
    endLogLine();
    writeOut(timeOfDay() + text);
}

void Console::logLine(const QString& line) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    eraseBar();
    endLogLine();
    writeOut(line + QLatin1Char('\n'));
}

void Console::tell(const QString& line) {
    logLine(m_tellsTimes ? timeOfDay() + line : line);
}

void Console::endLogLine() {
    if (m_logInLine) {
        writeOut(m_outIsTerminal && !m_cursorInLine ? QString() : QStringLiteral("\n"));
    }
}

void Console::note(const QString& line) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    eraseBar();
    if (m_errIsTerminal) {
        endLogLineOnTerminal();
    } else if (m_sharesLines) {
        endLogLine();
    }
    m_err->write(line.toUtf8() + '\n');
}

void Console::showBar(const QString& what, double fraction, const QString& count) {
    if (!showsBar()) {
        return;
    }
    // The last column would move the cursor into the next line.
    const QString bar = barText(what, fraction, count, (m_columns ? m_columns() : 80) - 1);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (bar == m_bar) {
        return;
    }
    eraseBar();
    endLogLineOnTerminal();
    (m_errIsTerminal ? m_err : m_out)->write(bar.toUtf8());
    m_bar = bar;
}

void Console::clearBar() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    eraseBar();
}

void Console::eraseBar() {
    if (!m_bar.isEmpty()) {
        (m_errIsTerminal ? m_err : m_out)->write("\r\033[K");
        m_bar.clear();
    }
}

// The bar and the remarks may share the terminal with the log, but not its lines.
void Console::endLogLineOnTerminal() {
    if (m_outIsTerminal && m_cursorInLine) {
        m_out->write("\n");
        m_cursorInLine = false;
    }
}

void Console::writeOut(const QString& text) {
    if (text.isEmpty()) {
        return;
    }
    m_out->write(text.toUtf8());
    m_logInLine = !text.endsWith(QLatin1Char('\n'));
    m_cursorInLine = m_logInLine;
}
