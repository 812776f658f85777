#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>

#include "TestMain.h"
#include "panels/SaveDataCfg.h"

using Separator = TableOptions::Separator;
using Layout = TableOptions::Layout;

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
    void choicesAreTheMeasurementsSettings() {
        Measurement measurement;
        SaveDataCfg dialog(measurement);
        const Settings& settings = measurement.settings();
        dialog.show();
        QVERIFY(dialog.savesAsTiff());
        QCOMPARE(dialog.suffix(), QStringLiteral("tif"));
        QVERIFY(dialog.nameFilters().value(0).contains(QLatin1String("(*.tif)")));
        click(dialog, "SaveAsText");
        QVERIFY(!settings.savesTiff);
        QCOMPARE(dialog.suffix(), QStringLiteral("dat"));
        QVERIFY(dialog.nameFilters().value(0).contains(QLatin1String("(*.dat)")));
        // Each pair is a group of its own: choosing one leaves the other two as they are.
        click(dialog, "SSV");
        QVERIFY((settings.table == TableOptions{Separator::Blank, Layout::Points, false}));
        click(dialog, "Vals");
        QVERIFY((settings.table == TableOptions{Separator::Blank, Layout::Rows, false}));
        QVERIFY(!settings.savesTiff);
        click(dialog, "AsAnalyzed");
        QVERIFY(settings.table.asAnalyzed && settings.tiff.asAnalyzed);
        click(dialog, "CloseButton");
        QVERIFY(!dialog.isVisible());

        // And the other way round.
        measurement.set(&Settings::savesTiff, true);
        measurement.set(&Settings::table, TableOptions{Separator::Comma, Layout::Rows, false});
        measurement.set(&Settings::tiff, TiffOptions{true, -1.5, 1.0, false});
        for (const char* name : {"SaveAsTiff", "CSV", "Vals", "TiffFixScale"}) {
            QVERIFY2(control<QAbstractButton>(dialog, name)->isChecked(), name);
        }
        QVERIFY(!control<QCheckBox>(dialog, "AsAnalyzed")->isChecked());
        QCOMPARE(control<QLineEdit>(dialog, "TiffScaleMin")->text(), QStringLiteral("-1.5"));
        // A text that reads as the value stays as it is.
        QCOMPARE(control<QLineEdit>(dialog, "TiffScaleMax")->text(), QStringLiteral("1.0"));
    }

    void onlyWhatIsUsedIsEnabled() {
        Measurement measurement;
        SaveDataCfg dialog(measurement);
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
            Measurement measurement;
            SaveDataCfg dialog(measurement);
            dialog.setTiffFixedScale(true);
            auto* field = control<QLineEdit>(dialog, "TiffScaleMax");
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
