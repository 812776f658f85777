#pragma once

#include <QElapsedTimer>
#include <algorithm>

/// Keeps what is repeated during a long work, such as showing what there is so far, from slowing it
/// down: free for the first moments, at most a twentieth of the time in all after that.
class ShareOfTime {
  public:
    void start() {
        m_used = 0;
        m_since.start();
    }

    /// Does it, unless its share is used up.
    template <typename Action>
    void spend(Action action) {
        const qint64 begun = m_since.nsecsElapsed();
        if (m_used > std::max(Free, begun / 20)) {
            return;
        }
        action();
        m_used += m_since.nsecsElapsed() - begun;
    }

  private:
    static constexpr qint64 Free = 5'000'000;  // ns

    QElapsedTimer m_since;
    qint64 m_used = 0;
};
