#include <QAbstractButton>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <thread>

#include "DeadFile.h"
#include "Files.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "base/Inbox.h"
#include "base/LargeMemory.h"
#include "panels/BatchCtrl.h"
#include "window/Body.h"

/// A file that never answers, in the window: how its user gets rid of it.
class TestFileWait : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    static QEvent* press() {
        return new QMouseEvent(QEvent::MouseButtonPress, {}, Qt::LeftButton, Qt::LeftButton, {});
    }

    /// What the user does, in another thread, when the file is awaited.
    static void act(const QString& how, Body* body, QObject* button) {
        QEvent* event = how == "Esc"     ? new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, {})
                        : how == "close" ? static_cast<QEvent*>(new QCloseEvent)
                                         : press();
        QCoreApplication::postEvent(button != nullptr ? button : body, event);
    }

  private slots:
    void initTestCase() {
        QVERIFY(!writeTinyStack(m_dir.path(), "a", 4, 3, {7100.0}, [](int, int, int) {
                     return quint16(100);
                 }).isEmpty());
    }

    void isGivenUp_data() {
        columns<QString, QString, bool, bool>("how", "line", "goesOn", "closes");
        const QString standard = "calib_load_std %1";
        QTest::newRow("Esc") << "Esc" << standard << true << false;
        QTest::newRow("its button") << "GiveUp"
                                    << "calib_load_map %1" << true << false;
        QTest::newRow("the batch's stop") << "Stop" << standard << false << false;
        // Which asks for the file several times.
        QTest::newRow("closing") << "close"
                                 << "open_folder %1" << false << true;
    }

    void isGivenUp() {
        QFETCH(QString, how);
        QFETCH(QString, line);
        QFETCH(bool, goesOn);
        QFETCH(bool, closes);
        const QString name = m_dir.filePath(how + ".dat");  // who has been left may still wait
        put(name, "1 2");
        const DeadFile dead(name);
        if (!dead.isDead()) {
            QSKIP("no leases on this file system");
        }
        Body body;
        body.show();
        QStringList done;
        connect(&body, &Body::commandDone, this, [&](const CmdLine& cmd, const QStringList& texts) {
            done << cmd.text + texts.join(' ');
        });
        const Inbox inbox;
        int doneBefore = -1;
        QObject* const button = body.findChild<QAbstractButton*>(how);
        std::thread user([&, slit = inbox.slit()] {
            while (!dead.isAwaited()) {
                std::this_thread::yield();
            }
            slit.post([&] { doneBefore = done.size(); });
            act(how, &body, button);
        });
        body.batchCtrl()->dispatchLines(
            {"set_band_w 3", line.arg(closes ? m_dir.path() : name), "set_band_w 1"});
        QTRY_VERIFY_WITH_TIMEOUT(done.size() >= 2, 30000);  // the file is back later
        user.join();
        QVERIFY2(done.at(1).contains(name) && done.at(1).contains("has not answered"),
                 qPrintable(done.at(1)));
        QTRY_VERIFY(doneBefore >= (closes ? 1 : 2));  // not in the midst; a load goes on behind it
        QTRY_COMPARE(body.isVisible(), !closes);
        QTRY_COMPARE(body.measurement().settings().halfWidth == 1, goesOn);
    }

    /// As if the window's thread had read it.
    void memoryThatIsRefusedThereIsRefusedHere() {
        Body body;
        put(m_dir.filePath("std.dat"), "7000 1\n7001 1\n7002 2\n7003 3\n7004 3\n7005 3\n");
        refuseMemory(1);
        QVERIFY_EXCEPTION_THROWN(
            static_cast<void>(body.measurement().loadStandard(m_dir.filePath("std.dat"))),
            NotEnoughMemory);
        QVERIFY(hasRefusedMemory());
        refuseMemory(0);
        QVERIFY(!body.measurement().loadStandard(m_dir.filePath("std.dat")).failed());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestFileWait)
#include "tst_filewait.moc"
