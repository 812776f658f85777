#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <cmath>
#include <functional>
#include <memory>

#include "BatchRun.h"
#include "Controls.h"
#include "Edges.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "spectra/XafsSpectrum.h"

namespace {

constexpr double Fraction = 0.3;
constexpr double Drift = 3.0;     // eV by which the measurement reads too high
constexpr double OffsetA = -4.0;  // eV by which the file of reference a does
constexpr double OffsetB = 5.0;

}  // namespace

/// One energy from the file name to the fit. The edges of the two species lie 3 eV apart, so that
/// a correction that is left out, or applied twice, turns one into the other.
class TestEnergyCorrection : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Body> m_body;
    std::unique_ptr<BatchRun> m_batch;

    void writeSpectrum(const QString& name, const std::function<double(double)>& mu,
                       double offset = 0.0) {
        putCurve(m_phantom->file(name), edges::energies(6980.0 + offset, 7320.0 + offset, 0.5),
                 [&](double e) { return mu(e - offset); });
    }

    void run(const QStringList& lines) { QVERIFY(m_batch->succeeds(lines)); }

    LCFReference* reference(int i) const { return analyzerWindow()->references().at(i); }

    double fitted() {
        run({"analyzer_exec_LCF"});
        return reference(0)->result(LCFReference::Ratio)->valueAt(1, 2);
    }

    /// The map finds the drift within 0.1 eV, and 3 eV make a whole species.
    bool isRight(double fraction) const { return std::abs(fraction - Fraction) < 0.1 / 3.0; }

    double shiftOfPosition() const {
        m_body->showXafsSpectrum(1, 2);
        return textOf("EShiftOnTbl", m_body.get()).toDouble();
    }

    double firstSavedEnergy(const QString& name) {
        run({"move_position 1 2", "save_spectra " + m_phantom->file(name)});
        return rowsOf(m_phantom->file(name)).value(0).split('\t').first().toDouble();
    }

    QString setReference(int i, double shift) const {
        return QString("analyzer_set_LCF_std %1 1 %2 %3 0")
            .arg(QString::number(i), QString::number(shift),
                 m_phantom->file(i == 0 ? "late-a.dat" : "late-b.dat"));
    }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.width = options.height = 4;
        options.energies = 301;
        options.i0Energies = 2;
        options.fractionOfA = [](int x, int) { return x == 0 ? 1.0 : Fraction; };
        options.energyShift = [](int, int) { return Drift; };
        m_phantom = std::make_unique<Phantom>(options);
        writeSpectrum("late-a.dat", Phantom::muA, OffsetA);
        writeSpectrum("late-b.dat", Phantom::muB, OffsetB);
        // What the calibration compares with is the very mixture of the position.
        writeSpectrum("standard.dat", [](double e) {
            return Fraction * Phantom::muA(e) + (1 - Fraction) * Phantom::muB(e);
        });
    }

    void init() {
        m_body = std::make_unique<Body>();
        m_batch = std::make_unique<BatchRun>(*m_body);
        run(m_phantom->loadAndSetReferences().mid(0, 4));
        run({"calib_load_std " + m_phantom->file("standard.dat"), "select_region 1 0 4 4",
             setReference(0, OffsetA), setReference(1, OffsetB)});
    }
    void cleanup() { m_body.reset(); }

    /// The map takes the drift off where energies are shown, written and fitted, and nowhere else.
    void theDriftIsTakenOffOnce() {
        QCOMPARE(shiftOfPosition(), 0.0);
        QCOMPARE(firstSavedEnergy("before.dat"), 7000.0);
        QVERIFY(std::abs(fitted() - Fraction) > 0.3);

        run({"calib_exec"});
        const double shift = shiftOfPosition();
        QVERIFY(std::abs(shift - Drift) < 0.1);
        QVERIFY(std::abs(firstSavedEnergy("after.dat") - (7000.0 - shift)) < 0.01);
        QVERIFY(isRight(fitted()));

        // The map is made of the energies as measured: a second calibration finds the same.
        run({"calib_exec"});
        QCOMPARE(shiftOfPosition(), shift);
        QVERIFY(isRight(fitted()));
        run({"calib_clear_map"});
        QCOMPARE(shiftOfPosition(), 0.0);
        QVERIFY(std::abs(fitted() - Fraction) > 0.3);
    }

    /// A file holds the drift as angles for its edge energy; what comes back is the same drift.
    void aSavedMapIsTakenOffOnce() {
        const QString map = m_phantom->file("drift.emp");
        run({"calib_exec"});
        const double shift = shiftOfPosition();
        run({"calib_save_map " + map, "calib_clear_map", "calib_load_map " + map,
             "calib_load_map " + map});
        QVERIFY(std::abs(shiftOfPosition() - shift) < 0.01);
        QVERIFY(isRight(fitted()));
    }

    /// As an image a map keeps its bins and, once its shifts are floats, every bit of them.
    void aMapSavedAsAnImageCorrectsAsItself() {
        const auto again = [this](const char* name) {
            const QString map = m_phantom->file(name);
            run({"calib_save_map " + map, "calib_clear_map", "calib_load_map " + map});
            return m_body->measurement().map().image.values().toVector();
        };
        run({"set_band_w 1", "calib_exec"});
        const QVector<double> measured = m_body->measurement().map().image.values().toVector();
        const AnalysisGrid grid = m_body->measurement().map().image.grid();
        const QVector<double> loaded = again("drift.tif");
        for (int i = 0; i < measured.size(); ++i) {
            QCOMPARE(loaded[i], double(float(measured[i])));
        }
        const double right = fitted();
        QVERIFY(isRight(right));
        QCOMPARE(again("again.tif"), loaded);
        const AnalysisGrid now = m_body->measurement().map().image.grid();
        QCOMPARE((QVector<int>{now.halfW, now.halfH, now.x0, now.x1, now.y0, now.y1}),
                 (QVector<int>{grid.halfW, grid.halfH, grid.x0, grid.x1, grid.y0, grid.y1}));
        QCOMPARE(fitted(), right);
        run({"save_record " + m_phantom->file("done.bat")});
        QVERIFY(contentOf(m_phantom->file("done.bat")).contains("\ncalib_load_map again.tif\n"));
    }

    /// However a reference gets its offset, and whatever is done to it afterwards.
    void theReferencesOffsetIsTakenOffOnce() {
        run({"calib_exec"});
        const double right = fitted();
        QVERIFY(isRight(right));

        LCFReference* a = reference(0);
        auto* victreen = a->findChild<QCheckBox*>("IsVictreen");
        victreen->click();
        victreen->click();
        QCOMPARE(fitted(), right);
        a->newFile(m_phantom->file("late-a.dat"));
        QCOMPARE(fitted(), right);
        run({setReference(0, OffsetA)});
        QCOMPARE(fitted(), right);
        // Its own numbers are those of its file.
        const double midE = 7110.0 + OffsetA;
        QVERIFY(std::abs(a->findChild<QLineEdit*>("MidE")->text().toDouble() - midE) < 1.0);

        run({setReference(0, 0.0)});
        QVERIFY(std::abs(fitted() - Fraction) > 0.1);
        auto* field = a->findChild<QLineEdit*>("DeltaE");
        field->setText(QString::number(OffsetA));
        a->editedDeltaE();
        QCOMPARE(fitted(), right);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestEnergyCorrection)
#include "tst_energycorrection.moc"
