#pragma once

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

#include "base/Inbox.h"
#include "maps/Deglitch.h"

/// Works something out from the values of a map in a thread of its own; where there is none to be
/// had, in that of its caller.
class MapJob : public QObject {
    Q_OBJECT

  public:
    using Make = std::function<std::optional<Processed>(const GoOn& goOn)>;

    ~MapJob() override { stop(); }

    /// Begins; finished() follows, unless it is stopped.
    void start(const Make& make);
    /// Ends the thread within a row; nothing is emitted any more.
    void stop();

  signals:
    /// How much has been done, from 0 to 1; so seldom that somebody can show it each time.
    void progressed(double done);
    /// None: memory ran out.
    void finished(const std::optional<Processed>& made);

  private:
    void run(const Make& make, int generation);

    Inbox m_inbox;
    std::thread m_thread;
    std::atomic<bool> m_stopped{false};
    int m_generation = 0;  // of calls that are still on their way
};
