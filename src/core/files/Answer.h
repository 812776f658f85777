#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "base/Worker.h"

// A file may never answer, as one whose server is away. The thread of the windows does not wait for
// such a one by itself: it has the file read by another thread, and can give it up.

/// While one lives, files that its thread asks for by answerOf() are read by another.
class AnswerWait {
  public:
    /// So long nobody is asked: an honest file has answered by then.
    static constexpr std::chrono::milliseconds Soon{200};

    /// Returns true once hasAnswered() does, which takes 20 ms until it says no; false: the file is
    /// given up.
    using Wait =
        std::function<bool(const QString& fileName, const std::function<bool()>& hasAnswered)>;

    explicit AnswerWait(Wait wait);
    ~AnswerWait();
    AnswerWait(const AnswerWait&) = delete;
    AnswerWait& operator=(const AnswerWait&) = delete;

    /// False: given up, and the work goes on for nobody. What it throws comes to the caller. In a
    /// thread without an AnswerWait, while one waits already, and where the system gives no thread,
    /// the work is carried out in place.
    static bool carryOut(const QString& fileName, const std::function<void()>& work);

  private:
    bool await(const QString& fileName, const std::function<void()>& work);

    Wait m_wait;
    AnswerWait* m_before;  // of this thread
    std::unique_ptr<Worker> m_worker = std::make_unique<Worker>();
};

/// What `read` makes of a file; nothing: it has been given up. `read` must hold all that it works
/// on, by value: it may live longer than everything else.
template <typename Read>
auto answerOf(const QString& fileName, Read read) -> std::optional<decltype(read())> {
    const auto answer = std::make_shared<std::optional<decltype(read())>>();
    const bool isThere = AnswerWait::carryOut(
        fileName, [answer, read = std::move(read)]() mutable { *answer = read(); });
    return isThere ? std::move(*answer) : std::nullopt;
}

/// "has not answered, given up": why a file has not been read.
QString givenUpText();
