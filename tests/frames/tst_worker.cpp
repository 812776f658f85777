#include <condition_variable>
#include <mutex>
#include <vector>

#include "NoThreads.h"
#include "TestMain.h"
#include "base/Inbox.h"
#include "base/Worker.h"
#include "frames/DarkData.h"

namespace {

/// Something that a thread waits at until it is opened.
class Gate {
  public:
    void pass() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_arrived = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_isOpen; });
    }
    void awaitArrival() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_arrived; });
    }
    void open() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isOpen = true;
        m_changed.notify_all();
    }

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_arrived = false;
    bool m_isOpen = false;
};

Gate* held = nullptr;  // the reader is held where it says that a file cannot be opened

void holdReader(QtMsgType, const QMessageLogContext&, const QString& message) {
    if (held != nullptr && message.contains("hold.tif")) {
        held->pass();
    }
}

}  // namespace

class TestWorker : public QObject {
    Q_OBJECT

  private slots:
    void workIsDoneInOrderAndAnswersToo() {
        std::vector<int> done(100);  // a place each: the worker goes on while answers are read
        int next = 0;
        std::vector<int> told;
        Inbox inbox;
        Worker worker;
        const auto ours = std::this_thread::get_id();
        for (int i = 0; i < 100; ++i) {
            QVERIFY(worker.run([&, i] {
                done[std::size_t(i)] = std::this_thread::get_id() == ours ? -1 : next++;
                inbox.post([&, i] { told.push_back(done.at(std::size_t(i))); });
            }));
        }
        QTRY_COMPARE(told.size(), std::size_t(100));
        QVERIFY(worker.end());
        for (int i = 0; i < 100; ++i) {
            QVERIFY(done.at(std::size_t(i)) == i && told.at(std::size_t(i)) == i);
        }
        QVERIFY(!worker.run([] {}));
    }

    void theEndDropsWhatHasNotBegun() {
        Gate gate;
        bool ran = false;
        auto heldByWork = std::make_shared<int>(1);
        Worker worker;
        worker.run([&] { gate.pass(); });
        worker.run([&ran, heldByWork] { ran = true; });
        gate.awaitArrival();
        QVERIFY(!worker.end(std::chrono::milliseconds(1)));
        QCOMPARE(heldByWork.use_count(), 1L);
        QVERIFY(Worker::isAnyLeft());
        gate.open();
        QTRY_VERIFY(!Worker::isAnyLeft());
        QVERIFY(!ran);
    }

    void callsToAnInboxThatIsGoneAreDropped() {
        int told = 0;
        auto inbox = std::make_unique<Inbox>();
        const Inbox::Slit slit = inbox->slit();
        slit.post([&] { ++told; });
        slit.post([&] {
            ++told;
            inbox.reset();
        });
        slit.post([&] { ++told; });
        QTRY_COMPARE(told, 2);
        slit.post([&] { ++told; });
        QCoreApplication::processEvents();
        QCOMPARE(told, 2);
    }

    /// What a reader that does not come back reads into stays for it.
    void aReaderThatIsStuckHoldsUpNobody() {
        Gate gate;
        held = &gate;
        qInstallMessageHandler(holdReader);
        auto dark = std::make_unique<DarkData>();
        dark->replace({"hold.tif", "other.tif"});
        gate.awaitArrival();
        dark.reset();
        QVERIFY(Worker::isAnyLeft());
        gate.open();
        QTRY_VERIFY(!Worker::isAnyLeft());
        qInstallMessageHandler(nullptr);
        held = nullptr;
    }

    void withoutAThreadTheEventLoopDoesTheWork() {
        DarkData dark;
        {
            const NoThreads none;
            Worker worker;
            QVERIFY(!worker.run([] {}));
            dark.replace({"a.tif", "b.tif"});
            QVERIFY(dark.isLoading());
            QTRY_VERIFY(!dark.isLoading());
        }
        QCOMPARE(dark.refused(), 2);
        dark.replace({"c.tif"});
        QTRY_VERIFY(!dark.isLoading());
        QCOMPARE(dark.refusals().first().fileName, QString("c.tif"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestWorker)
#include "tst_worker.moc"
