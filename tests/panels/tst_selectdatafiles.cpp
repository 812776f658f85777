#include <QComboBox>
#include <QDateTime>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "panels/SelectDataFiles.h"

class TestSelectDataFiles : public QObject {
    Q_OBJECT

  private slots:
    void filesGetTheirEnergies() {
        SelectDataFiles panel;
        auto* list = panel.findChild<QComboBox*>("Selected");
        auto* unit = panel.findChild<QComboBox*>("SelectUnit");
        auto* pattern = panel.findChild<QLineEdit*>("EngPattern");
        QCOMPARE(pattern->text(), QString("[\\d_]+eV"));
        QCOMPARE(panel.newFile("/d/none.tif"), -1.0);
        QCOMPARE(panel.newFile("/d/none.tif"), 0.0);
        QCOMPARE(panel.newFile("/d/Fe-7112_5eV.tif"), 7112.5);
        unit->setCurrentIndex(1);
        QCOMPARE(panel.newFile("/d/none.tif"), 2000.0);
        pattern->setText("[\\d_]+keV");
        QCOMPARE(panel.newFile("/d/Fe-7_5keV.tif"), 7500.0);
        QCOMPARE(panel.findChild<QLabel*>("Count")->text(), QString("5"));
        QCOMPARE(list->itemText(2), QString("/d/Fe-7112_5eV.tif"));
        QCOMPARE(list->itemData(2).toDouble(), 7112.5);
    }

    void theListFollowsItsStack() {
        QTemporaryDir dir;
        const QStringList files = writeTinyStack(dir.path(), "i1", 4, 3, {7000, 7001, 7002.5},
                                                 [](int, int, int) { return 7; });
        Measurement measurement;
        measurement.setNames(StackId::I1, {"[\\d_]+keV", true});
        SelectDataFiles panel;
        SelectDataFiles other;
        panel.follow(measurement, StackId::I1);
        other.follow(measurement, StackId::I0);
        auto* pattern = panel.findChild<QLineEdit*>("EngPattern");
        auto* unit = panel.findChild<QComboBox*>("SelectUnit");
        auto* list = panel.findChild<QComboBox*>("Selected");
        QCOMPARE(pattern->text(), "[\\d_]+keV");
        QCOMPARE(unit->currentText(), "keV");
        unit->setCurrentIndex(0);
        pattern->setText("[\\d_]+eV");
        QVERIFY(measurement.settings().names[1] == NamePattern());
        QVERIFY(measurement.settings().names[0] == NamePattern());

        QSignalSpy shown(&panel, &SelectDataFiles::currentIndexChanged);
        measurement.load(StackId::I1, files, true);
        QTRY_COMPARE(panel.count(), 3);
        QTRY_VERIFY(panel.findChild<QPushButton*>("LoadNewFiles")->isEnabled());
        QCOMPARE(other.count(), 0);
        QCOMPARE(list->itemText(1), files[1]);
        QCOMPARE(list->itemData(2).toDouble(), 7002.5);
        QCOMPARE(panel.currentIndex(), 2);  // the newest
        QCOMPARE(shown.size(), 3);
        panel.prev();
        QCOMPARE(measurement.frameOf(StackId::I1), 1);
        measurement.setFrame(StackId::I1, 0);
        QCOMPARE(panel.currentIndex(), 0);

        SelectDataFiles late;
        late.follow(measurement, StackId::I1);
        QCOMPARE(late.count(), 3);
        QCOMPARE(measurement.frameOf(StackId::I1), 0);  // following changes nothing

        panel.clear();  // asks for it
        QCOMPARE(panel.count(), 3);
        measurement.load(StackId::I1, files.mid(0, 1), true);
        QCOMPARE(panel.count(), 0);
        QTRY_COMPARE(panel.count(), 1);
        QCOMPARE(panel.findChild<QLabel*>("Count")->text(), QString("1"));
    }

    void loadNewFindsWhatHasComeSince() {
        QTemporaryDir dir;
        const QStringList files =
            writeTinyStack(dir.path(), "Fe", 4, 3, {1, 10, 9, 8}, [](int, int, int) { return 7; });
        put(dir.filePath("notes.txt"), "none");
        const QDateTime past = QDateTime::currentDateTime().addSecs(-10);
        for (const QString& name : files) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadWrite));
            // The last lies ahead of the clock, so that the test cannot be late: still written.
            file.setFileTime(past.addSecs(name == files.last() ? 3600 : 0),
                             QFileDevice::FileModificationTime);
        }
        Measurement measurement;
        SelectDataFiles panel;
        panel.follow(measurement, StackId::I1);
        auto* list = panel.findChild<QComboBox*>("Selected");
        auto* button = panel.findChild<QPushButton*>("LoadNewFiles");
        QVERIFY(!button->isEnabled());
        measurement.load(StackId::I1, {files[0]}, true);
        QVERIFY(!button->isEnabled());
        QTRY_VERIFY(button->isEnabled());
        button->click();
        QVERIFY(!button->isEnabled());
        QTRY_COMPARE(panel.count(), 3);
        QCOMPARE(list->itemText(1), files[2]);
        QCOMPARE(list->itemText(2), files[1]);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestSelectDataFiles)
#include "tst_selectdatafiles.moc"
