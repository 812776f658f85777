#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "TestMain.h"
#include "panels/SaveDataCfg.h"

class TestSaveDataCfg : public QObject {
    Q_OBJECT

    template <class T>
    static T* control(const SaveDataCfg& dialog, const char* name) {
        T* found = dialog.findChild<T*>(QLatin1String(name));
        if (!found) {
            qFatal("no control %s", name);
        }
        return found;
    }

    static void click(const SaveDataCfg& dialog, const char* name) {
        control<QAbstractButton>(dialog, name)->click();
    }

  private slots:
    void startsWithWideTiff() {
        const SaveDataCfg dialog;
        QVERIFY(dialog.savesAsTiff());
        const TiffOptions tiff = dialog.tiffOptions();
        QVERIFY(!tiff.fixedScale);
        QCOMPARE(tiff.scaleMin, 0.0);
        QCOMPARE(tiff.scaleMax, 1.0);
        QVERIFY(!tiff.asAnalyzed);
        const TableOptions table = dialog.tableOptions();
        QVERIFY(table.separator == TableOptions::Separator::Comma);
        QVERIFY(table.layout == TableOptions::Layout::Points);
        QVERIFY(!table.asAnalyzed);
        QCOMPARE(dialog.suffix(), QStringLiteral("tif"));
        QVERIFY(dialog.nameFilters().value(0).contains(QLatin1String("(*.tif)")));
    }

    void choicesAreIndependent() {
        SaveDataCfg dialog;
        dialog.show();
        click(dialog, "SaveAsText");
        QVERIFY(!dialog.savesAsTiff());
        QCOMPARE(dialog.suffix(), QStringLiteral("dat"));
        QVERIFY(dialog.nameFilters().value(0).contains(QLatin1String("(*.dat)")));
        // Each pair is a group of its own: choosing one leaves the other two as they are.
        click(dialog, "SSV");
        QVERIFY(dialog.tableOptions().separator == TableOptions::Separator::Blank);
        QVERIFY(dialog.tableOptions().layout == TableOptions::Layout::Points);
        click(dialog, "Vals");
        QVERIFY(dialog.tableOptions().separator == TableOptions::Separator::Blank);
        QVERIFY(dialog.tableOptions().layout == TableOptions::Layout::Rows);
        QVERIFY(!dialog.savesAsTiff());
        click(dialog, "AsAnalyzed");
        QVERIFY(dialog.tableOptions().asAnalyzed);
        QVERIFY(dialog.tiffOptions().asAnalyzed);
        click(dialog, "CloseButton");
        QVERIFY(!dialog.isVisible());
    }

    void onlyWhatIsUsedIsEnabled() {
        SaveDataCfg dialog;
        const auto* minimum = control<QLineEdit>(dialog, "TiffScaleMin");
        const auto* maximum = control<QLineEdit>(dialog, "TiffScaleMax");
        const auto* comma = control<QRadioButton>(dialog, "CSV");
        QVERIFY(!minimum->isEnabled() && !maximum->isEnabled() && !comma->isEnabled());
        click(dialog, "TiffFixScale");
        QVERIFY(minimum->isEnabled() && maximum->isEnabled());
        click(dialog, "SaveAsText");
        QVERIFY(!minimum->isEnabled() && !maximum->isEnabled() && comma->isEnabled());
        QVERIFY(control<QCheckBox>(dialog, "AsAnalyzed")->isEnabled());
        click(dialog, "SaveAsTiff");
        QVERIFY(minimum->isEnabled() && maximum->isEnabled() && !comma->isEnabled());
    }

    void scaleFieldsTakeDotDecimalsWhateverTheLocale() {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German));
        {
            SaveDataCfg dialog;
            dialog.setTiffFixedScale(true);
            auto* field = control<QLineEdit>(dialog, "TiffScaleMax");
            field->clear();
            QTest::keyClicks(field, QStringLiteral("2,x5.75"));
            QCOMPARE(field->text(), QStringLiteral("25.75"));
            QCOMPARE(dialog.tiffOptions().scaleMax, 25.75);
            field->clear();
            QCOMPARE(dialog.tiffOptions().scaleMax, 0.0);
        }
        QLocale::setDefault(before);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestSaveDataCfg)
#include "tst_savedatacfg.moc"
