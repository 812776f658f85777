#include "TestMain.h"
#include "frames/StackLoader.h"

class TestStackLoader : public QObject {
    Q_OBJECT

  private slots:
    void oneFrameAtATimeInOrder() {
        StackLoader loader;
        QVERIFY(!loader.next());
        loader.enqueue({"a", "b"});
        const auto first = loader.next();
        QVERIFY(first);
        QCOMPARE(first->fileName, QString("a"));
        QVERIFY(!loader.next());
        first->frame->loaded = true;
        QCOMPARE(loader.arrived(first->frame.get()), first->frame);
        QCOMPARE(loader.next()->fileName, QString("b"));
        QCOMPARE(loader.total(), 2);
    }

    void unreadableFramesAreDroppedAndNamed() {
        StackLoader loader;
        loader.enqueue({"bad", "good"});
        QVERIFY(!loader.arrived(loader.next()->frame.get()));
        const auto good = loader.next();
        good->frame->loaded = true;
        QVERIFY(loader.arrived(good->frame.get()));
        const auto refused = loader.takeRefused();
        QVERIFY(refused.size() == 1 && refused.first().fileName == "bad");
        QVERIFY(loader.takeRefused().isEmpty());
    }

    /// A frame on its way when the stack is cleared must neither turn up in the new stack nor hold
    /// it up.
    void clearingDropsTheFrameUnderWay() {
        StackLoader loader;
        loader.enqueue({"old1", "old2"});
        const auto stale = loader.next();
        loader.clear();
        loader.enqueue({"new"});
        QCOMPARE(loader.total(), 1);
        const auto fresh = loader.next();
        QCOMPARE(fresh->fileName, QString("new"));
        stale->frame->loaded = true;
        QVERIFY(!loader.arrived(stale->frame.get()));
        fresh->frame->loaded = true;
        QVERIFY(loader.arrived(fresh->frame.get()));
        QVERIFY(!loader.isLoading());
        QVERIFY(loader.takeRefused().isEmpty());
    }

    /// Frames on their way when the loading is stopped do not come in later, also when more files
    /// are asked for meanwhile.
    void stoppingKeepsWhatHasArrived() {
        StackLoader loader(2);
        loader.enqueue({"a", "b", "c", "d"});
        const auto a = loader.next();
        const auto b = loader.next();
        QVERIFY(a && b && !loader.next());
        a->frame->loaded = true;
        QVERIFY(!loader.arrived(b->frame.get()));  // not its turn
        QVERIFY(loader.arrived(a->frame.get()));
        const auto c = loader.next();
        loader.stop();
        QVERIFY(!loader.isLoading() && !loader.next());
        QCOMPARE(loader.done(), 1);
        QCOMPARE(loader.total(), 1);
        loader.enqueue({"e"});
        QCOMPARE(loader.total(), 1);
        const auto e = loader.next();
        QCOMPARE(e->fileName, QString("e"));
        for (const auto& stale : {b, c}) {
            stale->frame->loaded = true;
            QVERIFY(!loader.arrived(stale->frame.get()));
        }
        e->frame->loaded = true;
        QVERIFY(loader.arrived(e->frame.get()));
        QVERIFY(!loader.isLoading());
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestStackLoader)
#include "tst_stackloader.moc"
