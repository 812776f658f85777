#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <QWidget>

#include "TestMain.h"
#include "app/WindowGeometry.h"

class TestWindowGeometry : public QObject {
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

  private:
    QTemporaryDir m_dir;
};

TARNWICK_TEST_MAIN(QApplication, TestWindowGeometry)
#include "tst_windowgeometry.moc"
