#pragma once

#include <utility>

#include "batch/CmdLine.h"
#include "measurement/Inputs.h"

/// Keeps the promise that paces a batch: every line is answered exactly once, when its work is
/// done, and nothing else answers while a batch runs.
///
/// A load or an analysis that a user started must not answer a line of the batch, and a line of
/// a batch that a new start has overtaken must not be answered at all: either would leave two
/// lines under way for the rest of the batch.
class BatchPacing {
  public:
    /// A batch was asked for; lines that are still on their way belong to the batch before it.
    void batchRequested() {
        m_active = true;
        ++m_startsExpected;
        m_waitingFor = Work::None;
    }
    /// The interpreter has begun with the batch that was asked for.
    void batchStarted() {
        if (m_startsExpected > 0) {
            --m_startsExpected;
        } else {
            m_active = true;
        }
    }
    /// The interpreter has no further line.
    void batchEnded() {
        if (m_startsExpected == 0) {
            m_active = false;
        }
    }

    /// Whether a line that arrives now is to be carried out.
    bool acceptsLines() const { return m_startsExpected == 0; }

    /// The line is answered later, when the work is done.
    void wait(const CmdLine& line, Work work) {
        m_line = line;
        m_waitingFor = work;
    }
    bool isWaitingFor(Work work) const { return work != Work::None && m_waitingFor == work; }

    /// Ends the waiting; the line that has been waited for.
    CmdLine take() {
        m_waitingFor = Work::None;
        return std::exchange(m_line, CmdLine());
    }

    bool isActive() const { return m_active; }

  private:
    bool m_active = false;
    int m_startsExpected = 0;
    Work m_waitingFor = Work::None;
    CmdLine m_line;
};
