#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <cmath>

#include "Controls.h"
#include "Edges.h"
#include "Files.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "panels/CalibCtrl.h"

class TestCalibCtrl : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_foil;
    QString m_falling;
    std::unique_ptr<Measurement> m_measurement;

    static QString edgeText(const CalibCtrl& panel) {
        return control<QLineEdit>("EdgeEeV", &panel)->text();
    }

    QString scanFile(const char* name, double sign) const {
        putCurve(m_dir.filePath(name), edges::energies(6950.0, 7500.0, 0.5),
                 [=](double e) { return 1.0 + sign * std::atan((e - 7112.0) / 1.5) / M_PI; });
        return m_dir.filePath(name);
    }

  private slots:
    void initTestCase() {
        m_foil = scanFile("foil.dat", 1.0);
        m_falling = scanFile("falling.dat", -1.0);
    }

    void init() { m_measurement = std::make_unique<Measurement>(); }

    void settingsAreTheMeasurements() {
        const CalibCtrl panel(*m_measurement);
        QVERIFY(control<QRadioButton>("StdBGSimple", &panel)->isChecked());
        QCOMPARE(panel.targetBackground(), int(XafsSpectrum::Simple));
        QVERIFY(!panel.standard());
        QCOMPARE(panel.spacing(), 3.1355316);
        QCOMPARE(edgeText(panel), QString());
        control<QComboBox>("SelCrystal", &panel)->setCurrentIndex(4);
        QCOMPARE(panel.spacing(), 1.0887941);
        QCOMPARE(m_measurement->settings().crystal, 4);
        m_measurement->set(&Settings::crystal, 1);
        m_measurement->set(&Settings::targetBackground, XafsSpectrum::Victreen);
        m_measurement->set(&Settings::edgeEnergy, QStringLiteral("7112"));
        QCOMPARE(control<QComboBox>("SelCrystal", &panel)->currentText(), "Si(311)");
        QVERIFY(control<QRadioButton>("TargetBGVictreen", &panel)->isChecked());
        QCOMPARE(edgeText(panel), "7112");
        QTest::keyClicks(control<QLineEdit>("EdgeEeV", &panel), ".5");
        QCOMPARE(m_measurement->settings().edgeEnergy, "7112.5");
    }

    void badE0AndRangesStayOut() {
        const CalibCtrl panel(*m_measurement);
        const auto type = [&](const char* field, const char* text) {
            auto* line = control<QLineEdit>(field, &panel);
            line->setText(text);
            line->setModified(true);
            emit line->editingFinished();
            const Settings& s = m_measurement->settings();
            return s.ranges == BackgroundRanges() && s.e0 == EdgeChoice()
                       ? textOf("Message", &panel)
                       : QString::number(s.ranges.postStart);
        };
        for (const char* bad : {"abc", "", "inf", "-20"}) {
            QVERIFY2(type("PostStart", bad).contains("and 10 to 1000 eV stay in force"), bad);
        }
        QCOMPARE(type("PostStart", "30"), QString("30"));
        QCOMPARE(type("PostStart", "10"), QString());
        QVERIFY(type("E0Energy", "abc").contains("above 0 eV"));
        control<QComboBox>("E0Choice", &panel)->setCurrentIndex(1);
        QCOMPARE(textOf("Message", &panel), QString());
    }

    void aStandardLoads() {
        CalibCtrl panel(*m_measurement);
        QSignalSpy loaded(&panel, &CalibCtrl::newStdFileLoaded);
        panel.loadStd(m_foil);
        QCOMPARE(loaded.count(), 1);
        QCOMPARE(textOf("Shifts", &panel), QString("Standard foil.dat: edge at 7112.04 eV"));
        QVERIFY(panel.standard() && !panel.standard()->isEmpty());
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Simple));
        QVERIFY(std::abs(panel.standard()->midE() - 7112.0) < 0.5);
        QCOMPARE(edgeText(panel), QString::number(panel.standard()->midE()));
        QCOMPARE(panel.standardFileName(), m_foil);
        m_measurement->loadStandard(m_falling);  // as a batch does
        QCOMPARE(panel.standardFileName(), m_falling);
        panel.loadStd(m_falling);  // no rising edge
        QCOMPARE(loaded.count(), 2);
        QCOMPARE(edgeText(panel), "0");
        press("Clear", &panel);
        QVERIFY(panel.standard()->isEmpty() && panel.standardFileName().isEmpty());
        QCOMPARE(edgeText(panel), "0");
    }

    void backgroundOfTheStandard() {
        CalibCtrl panel(*m_measurement);
        press("StdBGVictreen", &panel);  // no standard, nothing to do
        QVERIFY(!panel.standard());
        panel.loadStd(m_foil);
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Victreen));
        panel.setEdgeEV("7000");
        press("StdBGSimple", &panel);
        press("TargetBGVictreen", &panel);
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Simple));
        QCOMPARE(edgeText(panel), "7000");  // only a new file sets it
    }

    void execBecomesStop() {
        CalibCtrl panel(*m_measurement);
        auto* exec = control<QPushButton>("ExecCalib", &panel);
        const QString text = exec->text();
        QVERIFY(!exec->isEnabled());
        const QStringList files =
            writeTinyStack(m_dir.path(), "i1", 6, 4, {7000, 7100, 7200},
                           [](int i, int x, int y) { return 100 + i + x * y; });
        m_measurement->set(&Settings::halfWidth, 0);
        m_measurement->set(&Settings::halfHeight, 0);
        m_measurement->load(StackId::I1, files, true);
        QVERIFY(!exec->isEnabled());
        QTRY_VERIFY(exec->isEnabled());
        QSignalSpy asked(&panel, &CalibCtrl::execCalibration);
        const auto look = [&](const QString& says, bool exec_, bool save, bool load, bool clear) {
            return exec->text() == says && exec->isEnabled() == exec_ &&
                   control<QPushButton>("SaveMap", &panel)->isEnabled() == save &&
                   control<QPushButton>("LoadMap", &panel)->isEnabled() == load &&
                   control<QPushButton>("ClearMap", &panel)->isEnabled() == clear;
        };
        QVERIFY(look(text, true, false, true, false));
        m_measurement->start(Work::Calibrate);
        QVERIFY(look("Stop", true, false, false, false));
        exec->click();
        QCOMPARE(asked.count(), 1);
        QTRY_VERIFY(look(text, true, true, true, true));
        m_measurement->start(Work::Residual);
        QVERIFY(look(text, false, true, false, false));
        QVERIFY(exec->toolTip().contains("analysis of the image"));
        m_measurement->stop();
        QVERIFY(look(text, true, true, true, true));
        QSignalSpy clear(&panel, &CalibCtrl::clearMap);
        press("ClearMap", &panel);
        QCOMPARE(clear.count(), 1);
        m_measurement->clearMap();
        QVERIFY(look(text, true, false, true, false));
        panel.show();
        const QSize size = panel.sizeHint();
        press("SelectStd", &panel);
        panel.say({{}, {"no standard"}, {"Energy shifts"}, {}, false});
        QCOMPARE(panel.sizeHint(), size);  // so that no button jumps
        QCOMPARE(textOf("Message", &panel) + ' ' + textOf("Shifts", &panel),
                 QString("no standard Energy shifts"));
    }

    void mapFilesAreAskedFor() {
        CalibCtrl panel(*m_measurement);
        // Without a map there is none to save; the dialog is asked for its names all the same.
        control<QPushButton>("SaveMap", &panel)->setEnabled(true);
        QSignalSpy load(&panel, &CalibCtrl::loadEMap);
        QSignalSpy save(&panel, &CalibCtrl::saveEMap);
        press("SaveMap", &panel);
        press("LoadMap", &panel);
        auto* saving = control<QFileDialog>("SaveMapDialog", &panel);
        auto* loading = control<QFileDialog>("LoadMapDialog", &panel);
        QVERIFY(saving->isVisible() && !saving->isModal());
        QVERIFY(loading->isVisible() && !loading->isModal());
        QVERIFY(saving->nameFilters().value(0).contains(QLatin1String("(*.emp)")));
        QCOMPARE(saving->nameFilters().size(), 2);
        QCOMPARE(saving->defaultSuffix(), "emp");
        saving->reject();
        loading->reject();
        QCOMPARE(save.count() + load.count(), 0);
        emit loading->fileSelected("/d/map.txt");
        QCOMPARE(load.at(0).at(0).toString(), "/d/map.txt");
        emit saving->fileSelected("/d/a.b.txt");
        QCOMPARE(save.takeLast().at(0).toString(), "/d/a.b.emp");
    }

    void whatAMissingStandardMeansIsSaid() {
        CalibCtrl panel(*m_measurement);
        panel.show();
        const auto* selector = control<QWidget>("StdSelector", &panel);
        QVERIFY(!selector->isVisible());
        press("SelectStd", &panel);
        QVERIFY(selector->isVisible());
        answer({m_falling});  // asked at once
        press("Clear", &panel);
        const auto* exec = control<QPushButton>("ExecCalib", &panel);
        const auto* save = control<QPushButton>("SaveMap", &panel);
        const QString execWithout = exec->toolTip();
        const QString saveWithout = save->toolTip();
        panel.loadStd(m_foil);
        QVERIFY(exec->toolTip() != execWithout);
        QVERIFY(save->toolTip() != saveWithout);
        QCOMPARE(textOf("StdName", &panel), "foil.dat");
        panel.loadStd(m_dir.filePath("none.dat"));
        QCOMPARE(exec->toolTip(), execWithout);
        QCOMPARE(save->toolTip(), saveWithout);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestCalibCtrl)
#include "tst_calibctrl.moc"
