#include "batch/BatchDispatcher.h"

#include "batch/BatchInterpreter.h"

namespace {

/// Tells in the dispatcher's thread what the interpreter has to say.
class Telling {
  public:
    Telling(BatchDispatcher* dispatcher, const Inbox& inbox)
        : m_dispatcher(dispatcher), m_inbox(inbox.slit()), m_thread(std::this_thread::get_id()) {}

    template <typename Tell>
    void operator()(const Tell& tell) const {
        if (std::this_thread::get_id() == m_thread) {
            tell(m_dispatcher);
        } else {
            m_inbox.post([tell, dispatcher = m_dispatcher] { tell(dispatcher); });
        }
    }

  private:
    BatchDispatcher* m_dispatcher;
    Inbox::Slit m_inbox;
    std::thread::id m_thread;
};

}  // namespace

BatchDispatcher::BatchDispatcher(QObject* parent) : QObject(parent) {
    qRegisterMetaType<CmdLine>("CmdLine");
    using D = BatchDispatcher;
    const Telling tell(this, m_inbox);
    BatchInterpreter::Listener listener;
    listener.execCmd = [tell](const CmdLine& cmd, bool inRem) {
        tell([cmd, inRem](D* d) { emit d->execCmd(cmd, inRem); });
    };
    listener.log = [tell](const QString& text) { tell([text](D* d) { emit d->log(text); }); };
    listener.started = [tell] { tell([](D* d) { emit d->started(); }); };
    listener.ended = [tell] { tell([](D* d) { emit d->ended(); }); };
    m_interpreter = std::make_shared<BatchInterpreter>(std::move(listener));
}

BatchDispatcher::~BatchDispatcher() = default;

int BatchDispatcher::lineInWork() const {
    return m_interpreter->lineInWork();
}

void BatchDispatcher::leaveLoops() {
    m_interpreter->leaveLoops();
}

void BatchDispatcher::ask(const std::function<void(BatchInterpreter&)>& what) {
    if (!m_inBackground) {
        what(*m_interpreter);
        return;
    }
    const auto asked = [interpreter = m_interpreter, what] { what(*interpreter); };
    if (!m_thread.run(asked)) {
        m_inbox.post(asked);
    }
}

void BatchDispatcher::execNextLine() {
    ask([](BatchInterpreter& interpreter) { interpreter.next(); });
}

void BatchDispatcher::doDispatchCmds(const QStringList& cmdList) {
    ask([cmdList](BatchInterpreter& interpreter) { interpreter.start(cmdList); });
}

void BatchDispatcher::batchStop() {
    ask([](BatchInterpreter& interpreter) { interpreter.stop(); });
}

void BatchDispatcher::finishBatchExec() {
    execNextLine();
}
