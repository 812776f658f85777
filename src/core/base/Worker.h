#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

/// A thread that carries out what it is given, one after the other. It is made with the first piece
/// of work.
///
/// What it is given must hold all that it works on jointly with its owner (std::shared_ptr): a
/// piece of work that does not come back, such as one that reads from a dead disk, is left behind
/// at the end and may live longer than everything else. Results go back through an Inbox.
class Worker {
  public:
    using Work = std::function<void()>;
    /// So long an end waits for the piece of work that is under way; all of them together, when it
    /// does not come back.
    static constexpr std::chrono::milliseconds Patience{2000};

    Worker() = default;
    ~Worker() { end(isAnyLeft() ? std::chrono::milliseconds(0) : Patience); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// False: there is no thread to be had, neither now nor later; the work is not carried out.
    bool run(Work work);
    /// Drops what has not begun and waits for the rest, but not for ever. False: it has not come
    /// back, and its thread is left to itself. Nothing can be run from here on.
    bool end(std::chrono::milliseconds patience = Patience);

    /// Threads that were left to themselves are still at work. Who ends the program then does so by
    /// std::_Exit(): they may use what is destroyed behind main().
    static bool isAnyLeft();

  private:
    struct Shared;
    static void work(const std::shared_ptr<Shared>& shared);
    bool begin();

    std::shared_ptr<Shared> m_shared;
    std::thread m_thread;
    bool m_isOver = false;  // or could not be made
};
