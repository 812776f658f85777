#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>

#include "Controls.h"
#include "TestMain.h"
#include "panels/SaveDataCfg.h"

using Separator = TableOptions::Separator;
using Layout = TableOptions::Layout;

class TestSaveDataCfg : public QObject {
    Q_OBJECT

  private slots:
    void choicesAreTheMeasurementsSettings() {
        Measurement measurement;
        SaveDataCfg dialog(measurement);
        const Settings& settings = measurement.settings();
        dialog.show();
        QVERIFY(dialog.savesAsTiff());
        QCOMPARE(dialog.suffix(), QStringLiteral("tif"));
        QVERIFY(dialog.nameFilters().value(0).contains(QLatin1String("(*.tif)")));
        press("SaveAsText", &dialog);
        QVERIFY(settings.dataForm == DataForm::Text);
        QCOMPARE(dialog.suffix(), QStringLiteral("dat"));
        QVERIFY(dialog.nameFilters().value(0).contains(QLatin1String("(*.dat)")));
        // Each pair is a group of its own: choosing one leaves the other two as they are.
        press("SSV", &dialog);
        QVERIFY((settings.table == TableOptions{Separator::Blank, Layout::Points, false}));
        press("Vals", &dialog);
        QVERIFY((settings.table == TableOptions{Separator::Blank, Layout::Rows, false}));
        QVERIFY(settings.dataForm == DataForm::Text);
        press("SaveAsFloat", &dialog);
        QVERIFY(settings.dataForm == DataForm::FloatTiff && dialog.savesAsTiff());
        QCOMPARE(dialog.suffix(), QStringLiteral("tif"));
        press("AsAnalyzed", &dialog);
        QVERIFY(settings.table.asAnalyzed && settings.tiff.asAnalyzed);
        press("Masked", &dialog);
        QVERIFY(settings.savesMasked);
        press("CloseButton", &dialog);
        QVERIFY(!dialog.isVisible());

        // And the other way round.
        measurement.set(&Settings::dataForm, DataForm::Tiff);
        measurement.set(&Settings::savesMasked, false);
        measurement.set(&Settings::table, TableOptions{Separator::Comma, Layout::Rows, false});
        measurement.set(&Settings::tiff, TiffOptions{true, -1.5, 1.0, false});
        for (const char* name : {"SaveAsTiff", "CSV", "Vals", "TiffFixScale"}) {
            QVERIFY2(control<QAbstractButton>(name, &dialog)->isChecked(), name);
        }
        QVERIFY(!control<QCheckBox>("AsAnalyzed", &dialog)->isChecked());
        QVERIFY(!control<QCheckBox>("Masked", &dialog)->isChecked());
        QCOMPARE(control<QLineEdit>("TiffScaleMin", &dialog)->text(), QStringLiteral("-1.5"));
        // A text that reads as the value stays as it is.
        QCOMPARE(control<QLineEdit>("TiffScaleMax", &dialog)->text(), QStringLiteral("1.0"));
    }

    void onlyWhatIsUsedIsEnabled() {
        Measurement measurement;
        SaveDataCfg dialog(measurement);
        const auto* minimum = control<QLineEdit>("TiffScaleMin", &dialog);
        const auto* maximum = control<QLineEdit>("TiffScaleMax", &dialog);
        const auto* comma = control<QRadioButton>("CSV", &dialog);
        QVERIFY(!minimum->isEnabled() && !maximum->isEnabled() && !comma->isEnabled());
        press("TiffFixScale", &dialog);
        QVERIFY(minimum->isEnabled() && maximum->isEnabled());
        press("SaveAsText", &dialog);
        QVERIFY(!minimum->isEnabled() && !maximum->isEnabled() && comma->isEnabled());
        QVERIFY(control<QCheckBox>("AsAnalyzed", &dialog)->isEnabled());
        press("SaveAsFloat", &dialog);
        QVERIFY(!minimum->isEnabled() && !comma->isEnabled());
        QVERIFY(minimum->toolTip().contains("Save as Tiff"));
        press("SaveAsTiff", &dialog);
        QVERIFY(minimum->isEnabled() && maximum->isEnabled() && !comma->isEnabled());
    }

    void scaleFieldsTakeDotDecimalsWhateverTheLocale() {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German));
        {
            Measurement measurement;
            SaveDataCfg dialog(measurement);
            dialog.setTiffFixedScale(true);
            auto* field = control<QLineEdit>("TiffScaleMax", &dialog);
            field->clear();
            QTest::keyClicks(field, QStringLiteral("2,x5.75"));
            QCOMPARE(field->text(), QStringLiteral("25.75"));
            QCOMPARE(dialog.tiffOptions().scaleMax, 25.75);
            // Six digits count; the text that is being typed stays until it is finished.
            QTest::keyClicks(field, QStringLiteral("12345"));
            QCOMPARE(field->text(), QStringLiteral("25.7512345"));
            QCOMPARE(measurement.settings().tiff.scaleMax, 25.7512);
            QTest::keyClick(field, Qt::Key_Return);
            QCOMPARE(field->text(), QStringLiteral("25.7512"));
            dialog.setTiffScaleMax(1.23456789);
            QCOMPARE(field->text(), QStringLiteral("1.23457"));
            field->clear();
            QCOMPARE(dialog.tiffOptions().scaleMax, 0.0);
        }
        QLocale::setDefault(before);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestSaveDataCfg)
#include "tst_savedatacfg.moc"
