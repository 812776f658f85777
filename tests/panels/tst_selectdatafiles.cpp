#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "TestMain.h"
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

    void theDialogSaysWhetherFilesAreAdded() {
        SelectDataFiles panel;
        auto* dialog = panel.findChild<QFileDialog*>();
        QVERIFY(dialog != nullptr);
        QSignalSpy spy(&panel, &SelectDataFiles::filesSelected);
        panel.findChild<QCheckBox*>("AddFiles")->setChecked(true);
        emit dialog->filesSelected({"a", "b"});
        panel.findChild<QCheckBox*>("AddFiles")->setChecked(false);
        emit dialog->filesSelected({"c"});
        QCOMPARE(spy.size(), 2);
        QCOMPARE(spy[0][0].toStringList(), QStringList({"a", "b"}));
        QCOMPARE(spy[0][1].toBool(), true);
        QCOMPARE(spy[1][1].toBool(), false);
    }

    void loadNewFindsWhatHasComeSince() {
        QTemporaryDir dir;
        const QDateTime past = QDateTime::currentDateTime().addSecs(-10);
        for (const char* name :
             {"Fe-1eV.tif", "Fe-10eV.tif", "Fe-9eV.TIF", "notes.txt", "new.tif"}) {
            QFile file(dir.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            if (QString(name) == "new.tif") {
                // Ahead of the clock, so that the test cannot be late: still being written.
                file.setFileTime(past.addSecs(3600), QFileDevice::FileModificationTime);
            } else {
                file.setFileTime(past, QFileDevice::FileModificationTime);
            }
        }
        SelectDataFiles panel;
        auto* button = panel.findChild<QPushButton*>("LoadNewFiles");
        QVERIFY(!button->isEnabled());
        panel.newFile(dir.filePath("Fe-1eV.tif"));
        QVERIFY(button->isEnabled());
        panel.setLoading(true);
        QVERIFY(!button->isEnabled());
        panel.setLoading(false);
        QSignalSpy spy(&panel, &SelectDataFiles::filesSelected);
        button->click();
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy[0][0].toStringList(),
                 QStringList({dir.filePath("Fe-9eV.TIF"), dir.filePath("Fe-10eV.tif")}));
        QCOMPARE(spy[0][1].toBool(), true);

        // Held down it stays down until the next click, or until there is no list any more.
        QTest::mousePress(button, Qt::LeftButton);
        QTest::qWait(1000);
        QTest::mouseRelease(button, Qt::LeftButton);
        QCOMPARE(spy.size(), 2);
        QVERIFY(button->isChecked());
        panel.setLoading(true);
        QVERIFY(button->isEnabled());
        button->click();
        QCOMPARE(spy.size(), 2);
        QVERIFY(!button->isChecked());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestSelectDataFiles)
#include "tst_selectdatafiles.moc"
