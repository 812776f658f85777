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
    /// Each pair is a group of its own: choosing one leaves the other two as they are.
    void choicesAreIndependent() {
        SaveDataCfg dialog;
        QVERIFY(dialog.savesAsTiff());
        QCOMPARE(dialog.tiffOptions().scaleMin, 0.0);
        QCOMPARE(dialog.tiffOptions().scaleMax, 1.0);
        QVERIFY(dialog.nameFilters().value(0).contains(QLatin1String("(*.tif)")));
        click(dialog, "SaveAsText");
        QVERIFY(!dialog.savesAsTiff());
        QCOMPARE(dialog.suffix(), QStringLiteral("dat"));
        QVERIFY(dialog.nameFilters().value(0).contains(QLatin1String("(*.dat)")));
        click(dialog, "SSV");
        QVERIFY(dialog.tableOptions().separator == TableOptions::Separator::Blank);
        QVERIFY(dialog.tableOptions().layout == TableOptions::Layout::Points);
        click(dialog, "Vals");
        QVERIFY(dialog.tableOptions().separator == TableOptions::Separator::Blank);
        QVERIFY(dialog.tableOptions().layout == TableOptions::Layout::Rows);
        QVERIFY(!dialog.savesAsTiff() && !dialog.tiffOptions().asAnalyzed);
        click(dialog, "AsAnalyzed");
        QVERIFY(dialog.tableOptions().asAnalyzed && dialog.tiffOptions().asAnalyzed);
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
