#include "window/WorkBar.h"

#include <cmath>

#include "base/Numbers.h"
#include "fitting/LinearFit.h"

namespace {

/// Steps that a reader can follow.
QString leftText(double seconds) {
    if (seconds < 90.0) {
        return WorkBar::tr("%1 s left").arg(static_cast<int>(std::ceil(seconds)));
    }
    return WorkBar::tr("%1 min left").arg(static_cast<int>(std::ceil(seconds / 60.0)));
}

}  // namespace

WorkBar::WorkBar(QWidget* parent) : QProgressBar(parent) {
    const QString longest = nameOfWork(Work::Residual, 0) + QStringLiteral(" 100 %, 00 min left");
    setFixedWidth(fontMetrics().horizontalAdvance(longest) + 2 * fontMetrics().height());
    setAlignment(Qt::AlignCenter);
    hide();
}

void WorkBar::showWork(Work work, const QString& name, double percent) {
    const bool runs = percent < 100.0;
    if (work != m_work || !runs) {
        m_work = runs ? work : Work::None;
        m_clock.start();
        m_left.start();
    }
    setVisible(runs);
    if (!runs) {
        return;
    }
    m_left.note(percent / 100.0, m_clock.elapsed());
    const int shown = toClampedInt(percent, 0, 100);
    setFormat(withLeft(tr("%1 %2 %").arg(name).arg(shown)));
    setRange(0, 100);
    setValue(shown);
}

void WorkBar::showFiles(int done, int total) {
    if (total != m_files) {
        m_files = total;  // of another load, or of what is left of two
        m_clock.start();
        m_left.start();
    }
    if (total <= 0) {
        return;
    }
    m_left.note(static_cast<double>(done) / total, m_clock.elapsed());
    setFormat(withLeft(QStringLiteral("%p %")));
    setRange(0, total);
    setValue(done);
}

QString WorkBar::withLeft(const QString& text) const {
    const std::optional<double> seconds = m_left.seconds();
    return seconds ? tr("%1, %2").arg(text, leftText(*seconds)) : text;
}

QString nameOfWork(Work work, int method) {
    switch (work) {
        case Work::Calibrate:
            return WorkBar::tr("Calibration");
        case Work::Fit:
            return method == LinearFit::Mlcf ? WorkBar::tr("MLCF") : WorkBar::tr("LCF");
        case Work::Residual:
            return WorkBar::tr("Residual absorption");
        case Work::Difference:
            return WorkBar::tr("Difference");
        case Work::Deglitch:
            return WorkBar::tr("Deglitching");
        default:
            return {};
    }
}
