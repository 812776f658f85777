#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <cmath>

#include "TestMain.h"
#include "panels/CalibCtrl.h"
#include "spectra/XafsSpectrum.h"

class TestCalibCtrl : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_foil;
    QString m_falling;

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

    void aStandardLoads() {
        CalibCtrl panel;
        QSignalSpy loaded(&panel, &CalibCtrl::newStdFileLoaded);
        panel.loadStd(m_foil);
        QCOMPARE(loaded.count(), 1);
        QVERIFY(panel.standard() && !panel.standard()->isEmpty());
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Simple));
        QVERIFY(std::abs(panel.standard()->midE() - 7112.0) < 0.5);
        QCOMPARE(edgeText(panel), QString::number(panel.standard()->midE()));
        QCOMPARE(panel.standardFileName(), m_foil);
        panel.loadStd(m_falling);  // no rising edge
        QCOMPARE(loaded.count(), 2);
        QCOMPARE(edgeText(panel), "0");
    }

    void edgeEnergies() {
        CalibCtrl panel;
        const QVector<QPair<QString, double>> texts = {
            {"7112.5", 7112.5}, {"Fe K", 0.0}, {"nan", 0.0}, {"inf", 0.0}, {QString(), 0.0}};
        for (const auto& text : texts) {
            panel.setEdgeEV(text.first);
            QCOMPARE(edgeText(panel), text.first);
            QCOMPARE(panel.edgeEnergy(), text.second);
        }
    }

    void anUnreadableStandardLeavesAnEmptyOne() {
        CalibCtrl panel;
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
        CalibCtrl panel;
        QSignalSpy changed(&panel, &CalibCtrl::standardRenormalised);
        auto* victreen = control<QRadioButton>(panel, "StdBGVictreen");
        victreen->click();  // no standard, nothing to do
        QVERIFY(!panel.standard());
        QCOMPARE(changed.count(), 0);
        panel.loadStd(m_foil);
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Victreen));
        panel.setEdgeEV("7000");
        control<QRadioButton>(panel, "StdBGSimple")->click();
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Simple));
        QVERIFY(changed.count() > 0);
        QCOMPARE(edgeText(panel), "7000");  // only a new file sets it
        QVERIFY(!panel.targetIsVictreen());
        QSignalSpy target(&panel, &CalibCtrl::targetBackgroundChanged);
        control<QRadioButton>(panel, "TargetBGVictreen")->click();
        QVERIFY(panel.targetIsVictreen());
        QCOMPARE(target.count(), 1);
        QCOMPARE(panel.standard()->backgroundType(), int(XafsSpectrum::Simple));
    }

    void mapsAreNamedByTheirSuffix() {
        CalibCtrl panel;
        QSignalSpy load(&panel, &CalibCtrl::loadEMap);
        QSignalSpy save(&panel, &CalibCtrl::saveEMap);
        control<QPushButton>(panel, "SaveMap")->click();
        control<QPushButton>(panel, "LoadMap")->click();
        auto* saving = control<QFileDialog>(panel, "SaveMapDialog");
        auto* loading = control<QFileDialog>(panel, "LoadMapDialog");
        QVERIFY(!saving->isModal() && !loading->isModal());
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
};

TARNWICK_TEST_MAIN(QApplication, TestCalibCtrl)
#include "tst_calibctrl.moc"
