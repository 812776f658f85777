#include "files/Answer.h"

#include <QCoreApplication>
#include <exception>
#include <future>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(InputFile)
};

constexpr std::chrono::milliseconds Look{20};

thread_local AnswerWait* ofThisThread = nullptr;

}  // namespace

AnswerWait::AnswerWait(Wait wait)
    : m_wait(std::move(wait)), m_before(std::exchange(ofThisThread, this)) {}

AnswerWait::~AnswerWait() {
    ofThisThread = m_before;
}

bool AnswerWait::carryOut(const QString& fileName, const std::function<void()>& work) {
    if (AnswerWait* const here = std::exchange(ofThisThread, nullptr)) {
        struct Again {
            AnswerWait* here;
            ~Again() { ofThisThread = here; }
        } const again{here};
        return here->await(fileName, work);
    }
    work();
    return true;
}

bool AnswerWait::await(const QString& fileName, const std::function<void()>& work) {
    const auto promise = std::make_shared<std::promise<void>>();
    std::future<void> answer = promise->get_future();
    const bool hasThread = m_worker->run([work, promise] {
        try {
            work();
            promise->set_value();
        } catch (...) {  // for who asked, as if it had done the work
            promise->set_exception(std::current_exception());
        }
    });
    if (!hasThread) {
        work();
        return true;
    }
    const auto hasAnswered = [&answer] {
        return answer.wait_for(Look) == std::future_status::ready;
    };
    if (answer.wait_for(Soon) != std::future_status::ready && !m_wait(fileName, hasAnswered)) {
        m_worker->end(std::chrono::milliseconds(0));
        m_worker = std::make_unique<Worker>();
        return false;
    }
    answer.get();
    return true;
}

QString givenUpText() {
    return Texts::tr("has not answered, given up");
}
