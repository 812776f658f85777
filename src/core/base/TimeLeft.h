#pragma once

#include <QtGlobal>
#include <optional>

/// Estimates from the progress of a work how long it still takes: by its speed of late, which a
/// change of pace moves within some seconds, and not before there is something to go by.
class TimeLeft {
  public:
    void start() { *this = TimeLeft(); }
    /// So much has been done, from 0 to 1, that many milliseconds after some common zero.
    void note(double done, qint64 milliseconds);
    /// In seconds.
    std::optional<double> seconds() const;

  private:
    bool m_begun = false;
    double m_done = 0.0;
    qint64 m_start = 0;
    qint64 m_at = 0;
    double m_speed = 0.0;  // 1/ms
};
