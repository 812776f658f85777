#include "tarnwick-batch/Console.h"

#include <QIODevice>
#include <QTime>

#include "base/Globals.h"

namespace {
constexpr int BarCells = 30;
}

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
    writeOut(QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz ")) + text);
}

void Console::logLine(const QString& line) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    eraseBar();
    endLogLine();
    writeOut(line + QLatin1Char('\n'));
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
    if (!m_errIsTerminal && !m_outIsTerminal) {
        return;
    }
    const int filled = toClampedInt(fraction * BarCells, 0, BarCells);
    const QString bar = QStringLiteral("%1 [%2%3] %4")
                            .arg(what, QString(filled, QLatin1Char('#')),
                                 QString(BarCells - filled, QLatin1Char('.')), count);
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
