#include "base/TimeLeft.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double MemoryMs = 4000.0;  // how long a speed counts
constexpr qint64 TooSoonMs = 800;
constexpr double TooLittle = 0.02;
}  // namespace

void TimeLeft::note(double done, qint64 milliseconds) {
    if (!m_begun) {
        m_begun = true;
        m_start = m_at = milliseconds;
        m_done = done;
        return;
    }
    const double passed = static_cast<double>(milliseconds - m_at);
    if (passed <= 0.0 || done < m_done) {
        return;
    }
    // The first speeds weigh by their time, as in a mean; later ones push out the older.
    const double weight = passed / std::min(static_cast<double>(milliseconds - m_start), MemoryMs);
    m_speed += std::min(1.0, weight) * ((done - m_done) / passed - m_speed);
    m_done = done;
    m_at = milliseconds;
}

std::optional<double> TimeLeft::seconds() const {
    if (m_at - m_start < TooSoonMs || m_done < TooLittle || m_speed <= 0.0) {
        return {};
    }
    return (1.0 - m_done) / m_speed / 1000.0;
}
