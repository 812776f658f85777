#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <QWidget>

#include "TestMain.h"
#include "window/CommandLine.h"
#include "window/WindowGeometry.h"

class TestStartup : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    }

    void whatWasSavedComesBack() {
        QWidget saved;
        saved.resize(321, 234);
        saved.move(17, 29);
        saveWindowGeometry(&saved, "some window", false);
        QSettings store("Haldmoor Lab", "Tarnwick");
        QCOMPARE(store.value("some window/size").toSize(), QSize(321, 234));
        QCOMPARE(store.value("some window/pos").toPoint(), QPoint(17, 29));
        QCOMPARE(store.value("some window/visible").toBool(), false);
        QWidget restored;
        bool popUp = true;
        restoreWindowGeometry(&restored, "some window", &popUp);
        QCOMPARE(restored.size(), QSize(321, 234));
        QCOMPARE(restored.pos(), QPoint(17, 29));
        QVERIFY(!restored.isVisible());
        QVERIFY(!popUp);
    }

    void anUnknownWindowGetsTheDefaults() {
        QWidget window;
        bool popUp = false;
        restoreWindowGeometry(&window, "never saved", &popUp);
        QCOMPARE(window.size(), QSize(400, 400));
        QCOMPARE(window.pos(), QPoint(200, 200));
        QVERIFY(window.isVisible());
        QVERIFY(popUp);
    }

    void commandLine_data() {
        columns<QStringList, QString, bool, bool>("arguments", "batchFile", "translate", "execute");
        QTest::newRow("none") << QStringList{} << "" << true << false;
        QTest::newRow("-b file -x") << QStringList{"-b", "r.bat", "-x"} << "r.bat" << true << true;
        QTest::newRow("-x -b file takes argv[2]")
            << QStringList{"-x", "-b", "r.bat"} << "-b" << true << true;
        QTest::newRow("-b alone") << QStringList{"-b"} << "" << true << false;
        QTest::newRow("-e -j") << QStringList{"-e", "-j"} << "" << true << false;
        QTest::newRow("-j -e") << QStringList{"-j", "-e"} << "" << false << false;
        QTest::newRow("file named like an option")
            << QStringList{"-b", "-x", "-e"} << "-x" << false << true;
        QTest::newRow("unknown") << QStringList{"--what", "-B"} << "" << true << false;
    }

    void commandLine() {
        QFETCH(QStringList, arguments);
        QList<QByteArray> bytes{"tarnwick"};
        for (const QString& argument : arguments) {
            bytes << argument.toLocal8Bit();
        }
        QVector<const char*> argv;
        for (const QByteArray& argument : bytes) {
            argv << argument.constData();
        }
        const CommandLine line = readCommandLine(argv.size(), argv.constData());
        QTEST(line.batchFile, "batchFile");
        QTEST(line.translate, "translate");
        QTEST(line.execute, "execute");
    }

  private:
    QTemporaryDir m_dir;
};

TARNWICK_TEST_MAIN(QApplication, TestStartup)
#include "tst_startup.moc"
