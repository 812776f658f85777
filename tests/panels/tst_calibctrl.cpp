#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <cmath>

#include "TestMain.h"
#include "TinyStacks.h"
#include "panels/CalibCtrl.h"

class TestCalibCtrl : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_foil;
    QString m_falling;
    std::unique_ptr<Measurement> m_measurement;

    template <class T>
    static T* control(const CalibCtrl& panel, const char* name) {
        T* found = panel.findChild<T*>(QLatin1String(name));
        if (!found) {
            qFatal("no control %s", name);
        }
        return found;
    }

    static QString edgeText(const CalibCtrl& panel) {
        return control<QLineEdit>(panel, "EdgeEeV")->text();
    }

    QString scanFile(const char* name, double sign) const {
        QFile file(m_dir.filePath(QLatin1String(name)));
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("no temporary file");
        }
        for (double energy = 6950.0; energy < 7500.0; energy += 0.5) {
            const double mu = 1.0 + sign * std::atan((energy - 7112.0) / 1.5) / M_PI;
            file.write(QByteArray::number(energy) + ' ' + QByteArray::number(mu) + '\n');
        }
        return file.fileName();
    }

  private slots:
    void initTestCase() {
        m_foil = scanFile("foil.dat", 1.0);
        m_falling = scanFile("falling.dat", -1.0);
    }

    void init() { m_measurement = std::make_unique<Measurement>(); }

    void settingsAreTheMeasurements() {
        const CalibCtrl panel(*m_measurement);
        QVERIFY(control<QRadioButton>(panel, "StdBGSimple")->isChecked());
        QCOMPARE(panel.targetBackground(), int(XafsSpectrum::Simple));
        QVERIFY(!panel.standard());
        QCOMPARE(panel.spacing(), 3.1355316);
        QCOMPARE(edgeText(panel), QString());
        control<QComboBox>(panel, "SelCrystal")->setCurrentIndex(4);
        QCOMPARE(panel.spacing(), 1.0887941);
        QCOMPARE(m_measurement->settings().crystal, 4);
        m_measurement->set(&Settings::crystal, 1);
        m_measurement->set(&Settings::targetBackground, XafsSpectrum::Victreen);
        m_measurement->set(&Settings::edgeEnergy, QStringLiteral("7112"));
        QCOMPARE(control<QComboBox>(panel, "SelCrystal")->currentText(), "Si(311)");
        QVERIFY(control<QRadioButton>(panel, "TargetBGVictreen")->isChecked());
        QCOMPARE(edgeText(panel), "7112");
        QTest::keyClicks(control<QLineEdit>(panel, "EdgeEeV"), ".5");
        QCOMPARE(m_measurement->settings().edgeEnergy, "7112.5");
    }

    void aStandardLoads() {
        CalibCtrl panel(*m_measurement);
        QSignalSpy loaded(&panel, &CalibCtrl::newStdFileLoaded);
        panel.loadStd(m_foil);
        QCOMPARE(loaded.count(), 1);
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
    }

    void anUnreadableStandardLeavesAnEmptyOne() {
        CalibCtrl panel(*m_measurement);
        panel.loadStd(m_foil);
        const QString edge = edgeText(panel);
        QSignalSpy loaded(&panel, &CalibCtrl::newStdFileLoaded);
        panel.loadStd(m_dir.filePath("none.dat"));
        QCOMPARE(loaded.count(), 0);
        QVERIFY(panel.standard() && panel.standard()->isEmpty());
        QCOMPARE(panel.standardFileName(), QString());
        QCOMPARE(edgeText(panel), edge);
    }

    void backgroundOfTheStandard() {
        CalibCtrl panel(*m_measurement);
        auto* victreen = control<QRadioButton>(panel, "StdBGVictreen");
        victreen->click();  // no standard, nothing to do
        QVERIFY(!panel.standard());
        panel.loadStd(m_foil);
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Victreen));
        panel.setEdgeEV("7000");
        control<QRadioButton>(panel, "StdBGSimple")->click();
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Simple));
        QCOMPARE(edgeText(panel), "7000");  // only a new file sets it
        QCOMPARE(panel.targetBackground(), int(XafsSpectrum::Simple));
        control<QRadioButton>(panel, "TargetBGVictreen")->click();
        QCOMPARE(panel.targetBackground(), int(XafsSpectrum::Victreen));
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Simple));
    }

    void execBecomesStop() {
        CalibCtrl panel(*m_measurement);
        auto* exec = control<QPushButton>(panel, "ExecCalib");
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
                   control<QPushButton>(panel, "SaveMap")->isEnabled() == save &&
                   control<QPushButton>(panel, "LoadMap")->isEnabled() == load &&
                   control<QPushButton>(panel, "ClearMap")->isEnabled() == clear;
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
        control<QPushButton>(panel, "ClearMap")->click();
        QCOMPARE(clear.count(), 1);
        m_measurement->clearMap();
        QVERIFY(look(text, true, false, true, false));
    }

    void mapFilesAreAskedFor() {
        CalibCtrl panel(*m_measurement);
        // Without a map there is none to save; the dialog is asked for its names all the same.
        control<QPushButton>(panel, "SaveMap")->setEnabled(true);
        QSignalSpy load(&panel, &CalibCtrl::loadEMap);
        QSignalSpy save(&panel, &CalibCtrl::saveEMap);
        control<QPushButton>(panel, "SaveMap")->click();
        control<QPushButton>(panel, "LoadMap")->click();
        auto* saving = control<QFileDialog>(panel, "SaveMapDialog");
        auto* loading = control<QFileDialog>(panel, "LoadMapDialog");
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
        const QVector<QPair<QString, QString>> names = {
            {"/d/map.emp", "/d/map.emp"},
            {"/d/map.txt", "/d/map.emp"},
            {"/d/a.b.txt", "/d/a.b.emp"},
            {"/d.x/map", "/d.x/map.emp"},
        };
        for (const auto& name : names) {
            emit saving->fileSelected(name.first);
            QCOMPARE(save.takeLast().at(0).toString(), name.second);
        }
    }

    void whatAMissingStandardMeansIsSaid() {
        CalibCtrl panel(*m_measurement);
        panel.show();
        const auto* selector = control<QWidget>(panel, "StdSelector");
        QVERIFY(!selector->isVisible());
        control<QPushButton>(panel, "SelectStd")->click();
        QVERIFY(selector->isVisible());
        const auto* exec = control<QPushButton>(panel, "ExecCalib");
        const auto* save = control<QPushButton>(panel, "SaveMap");
        const QString execWithout = exec->toolTip();
        const QString saveWithout = save->toolTip();
        panel.loadStd(m_foil);
        QVERIFY(exec->toolTip() != execWithout);
        QVERIFY(save->toolTip() != saveWithout);
        QCOMPARE(control<QLabel>(panel, "StdName")->text(), "foil.dat");
        panel.loadStd(m_dir.filePath("none.dat"));
        QCOMPARE(exec->toolTip(), execWithout);
        QCOMPARE(save->toolTip(), saveWithout);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestCalibCtrl)
#include "tst_calibctrl.moc"
