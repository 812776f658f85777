#include "tarnwick-batch/Progress.h"

#include <cmath>
#include <system_error>

#include "base/Numbers.h"
#include "batch/CmdLine.h"
#include "batch/LineItems.h"
#include "tarnwick-batch/Console.h"

namespace {

constexpr int LeastMs = 10;
constexpr int Many = 1 << 30;

QString nameOf(Work work) {
    switch (work) {
        case Work::None:
            return QString();
        case Work::LoadI1:
            return QStringLiteral("I1");
        case Work::LoadI0:
            return QStringLiteral("I0");
        case Work::LoadDark:
            return QStringLiteral("dark frames");
        case Work::LoadFolder:
            return QStringLiteral("folder");
        case Work::Calibrate:
            return QStringLiteral("calibration");
        case Work::Fit:
            return QStringLiteral("fit");
        case Work::Residual:
            return QStringLiteral("residual absorption");
        case Work::Difference:
            return QStringLiteral("difference");
        case Work::Deglitch:
            return QStringLiteral("deglitching");
    }
    return QString();
}

QString leftText(double seconds) {
    const auto rounded = [](double value) {
        return QString::number(toClampedInt(std::ceil(value), 0, Many));
    };
    if (seconds < 90.0) {
        return rounded(seconds) + QStringLiteral(" s left");
    }
    if (seconds < 90.0 * 60.0) {
        return rounded(seconds / 60.0) + QStringLiteral(" min left");
    }
    return QString::number(seconds / 3600.0, 'f', 1) + QStringLiteral(" h left");
}

}  // namespace

Progress::Progress(Console* console, double seconds) : m_console(console) {
    m_clock.start();
    if (seconds > 0.0 && !console->showsBar()) {
        const std::chrono::milliseconds interval(toClampedInt(seconds * 1000.0, LeastMs, Many));
        try {
            m_thread = std::thread([this, interval] { tellEvery(interval); });
        } catch (const std::system_error&) {
            // A batch can do without.
        }
    }
}

Progress::~Progress() {
    if (m_thread.joinable()) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_closes = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }
}

void Progress::begin(const Batch& batch) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_batch = batch;
    m_runs = true;
    m_work = Work::None;
}

void Progress::lineDone() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_work = Work::None;
}

void Progress::end() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_runs = false;
    m_batch.lineInWork = [] { return -1; };  // who tells it goes
}

void Progress::work(Work work, double done, double of) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_runs || !(of > 0.0)) {
        return;
    }
    const double fraction = done / of;
    if (work != m_work || of != m_of || done < m_done) {
        m_left.start();
    }
    m_work = work;
    m_done = done;
    m_of = of;
    m_rows = m_batch.rows ? m_batch.rows() : QPair<int, int>();
    if (std::isfinite(fraction)) {
        m_left.note(fraction, m_clock.elapsed());
    }
    m_console->showBar(head(), fraction, measure());
}

/// Where the batch is, and what it does there.
QString Progress::head() const {
    QStringList places;
    if (!m_batch.place.isEmpty()) {
        places << m_batch.place;
    }
    const int index = m_batch.lineInWork();
    if (index >= 0 && index < m_batch.text.lines.size()) {
        const SilentItems silent;
        int start = m_batch.text.first.at(index);
        places << QStringLiteral("line %1 (%2)")
                      .arg(QString::number(m_batch.text.lineNumber(index)),
                           CmdLine::parse(readLogicalLine(m_batch.text.lines, &start)).command);
    }
    const QString place = places.join(QStringLiteral(", "));
    if (m_work == Work::None) {
        return place;
    }
    return place.isEmpty() ? nameOf(m_work) : place + QStringLiteral(": ") + nameOf(m_work);
}

/// How far the work is.
QString Progress::measure() const {
    QStringList parts;
    if (isLoad(m_work)) {
        parts << QStringLiteral("%1/%2")
                     .arg(toClampedInt(m_done, 0, Many))
                     .arg(toClampedInt(m_of, 0, Many));
    } else {
        parts << QStringLiteral("%1 %").arg(toClampedInt(100.0 * (m_done / m_of), 0, 100));
        if (m_rows.second > 0) {
            parts << QStringLiteral("row %1 of %2").arg(m_rows.first).arg(m_rows.second);
        }
    }
    const std::optional<double> seconds = m_left.seconds();
    if (seconds && m_done < m_of) {
        parts << leftText(*seconds);
    }
    return parts.join(QStringLiteral(", "));
}

void Progress::tellEvery(std::chrono::milliseconds interval) {
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_wake.wait_for(lock, interval, [this] { return m_closes; })) {
        tell();
    }
}

/// With the lock held. Between two lines there is nothing to tell.
void Progress::tell() {
    const QString where = m_runs ? head() : QString();
    if (!where.isEmpty()) {
        QStringList parts{QStringLiteral("progress:"), where};
        if (m_work != Work::None) {
            parts << measure();
        }
        m_console->tell(parts.join(QLatin1Char(' ')));
    }
}
