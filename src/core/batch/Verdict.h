#pragma once

#include <QMap>

#include "batch/CmdLine.h"
#include "measurement/Outcome.h"

/// How the lines of a batch have ended; blank lines and remarks do not count.
class Verdict {
  public:
    struct Failure {
        QString command;
        int times = 0;
    };

    /// Counts a line that has been dealt with; false: it does not count.
    bool take(const CmdLine& cmd, const Outcome& outcome, int line);

    qint64 lines() const { return m_done + m_failed; }
    qint64 done() const { return m_done; }
    qint64 warned() const { return m_warned; }  ///< of those done
    qint64 failed() const { return m_failed; }
    const QMap<int, Failure>& failures() const { return m_failures; }  ///< by line number

  private:
    bool counts(const CmdLine& cmd, const Outcome& outcome);

    qint64 m_done = 0;
    qint64 m_warned = 0;
    qint64 m_failed = 0;
    QMap<int, Failure> m_failures;
    bool m_inRemark = false;
};
