#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRectF>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextStream>
#include <cmath>

#include "Edges.h"
#include "TestMain.h"
#include "display/XafsView.h"
#include "maps/Analyzed2DRes.h"
#include "panels/AnalyzeProc.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "window/Analysis2D.h"

namespace {

/// Share of the first of two species at a position.
double shareAt(int x, int y) {
    return 0.1 + 0.05 * x + 0.02 * y;
}

XafsSpectrum mixture(double share) {
    return XafsSpectrum(edges::curve(edges::energies(),
                                     [=](double e) {
                                         return share * edges::step(e, 0.3) +
                                                (1.0 - share) * edges::step(e, -0.2);
                                     }),
                        XafsSpectrum::Simple, 0.0);
}

AnalysisGrid gridOf(int width, int height, int half = 0) {
    return AnalysisGrid::ofArea(width, height, half, half, QRectF(0, 0, width, height));
}

bool near(double actual, double expected) {
    return std::abs(actual - expected) < 1e-6;
}

}  // namespace

class Analysis2DTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase();
    void init();
    void cleanup();

    void panelShowsItsReference();
    void offsetSurvivesBackgroundAndFile();
    void victreenWord_data();
    void victreenWord();
    void unreadableFileHoldsNothing();
    void frozenInputStays();

    void choiceButtonsNameTheImages();
    void scalesReachTheImages();
    void unanswerableFitsAreNotWaitedFor();
    void onlyTheNewestSpectrumWaits();
    void contAccessDrawsFromTheOldShares();

    void lcfMapsComeBack();

  private:
    QString writeReference(const QString& name, double bump) const;
    void addReferences();
    /// Runs the fitter's reports through the driver until it ends.
    void runToEnd();
    LCFReference* panel(int i) const { return m_analyzer->references().at(i); }
    QString textOf(int i, const char* field) const {
        return panel(i)->findChild<QLineEdit*>(field)->text();
    }

    QTemporaryDir m_dir;
    QString m_first;
    QString m_second;
    std::unique_ptr<Analyzer> m_analyzer;
    std::unique_ptr<Analysis2D> m_analysis;
};

QString Analysis2DTest::writeReference(const QString& name, double bump) const {
    QString path = m_dir.filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        QTextStream out(&file);
        for (double e : edges::energies()) {
            out << QString::number(e, 'g', 17) << ' '
                << QString::number(edges::step(e, bump), 'g', 17) << '\n';
        }
    }
    return path;
}

void Analysis2DTest::initTestCase() {
    m_first = writeReference("first.dat", 0.3);
    m_second = writeReference("second.dat", -0.2);
}

void Analysis2DTest::init() {
    m_analyzer = std::make_unique<Analyzer>();
    m_analysis = std::make_unique<Analysis2D>(m_analyzer.get());
}

void Analysis2DTest::cleanup() {
    m_analysis.reset();
    m_analyzer.reset();
}

void Analysis2DTest::addReferences() {
    m_analyzer->addNewRef();
    m_analyzer->addNewRef();
    m_analyzer->setLCFStd(0, m_first, 0.0, "0");
    m_analyzer->setLCFStd(1, m_second, 0.0, "0");
}

void Analysis2DTest::runToEnd() {
    bool done = false;
    const auto connection = connect(m_analyzer.get(), &Analyzer::finished, this, [&] {
        done = m_analysis->lcfPointReported() == Analysis2D::Progress::Finished;
    });
    QTRY_VERIFY(done);
    disconnect(connection);
    m_analysis->generateLcfImages();
    m_analysis->endLcf();
}

void Analysis2DTest::panelShowsItsReference() {
    QCOMPARE(m_analyzer->references().size(), 0);
    for (int i = 0; i < 3; ++i) {
        m_analyzer->addNewRef();
    }
    QVERIFY(panel(0)->isUsed() && panel(1)->isUsed() && !panel(2)->isUsed());
    QVERIFY(!panel(0)->findChild<QCheckBox*>("IsVictreen")->isChecked());
    QSignalSpy newFile(panel(2), &LCFReference::newFileSelected);
    m_analyzer->setLCFStd(2, m_first, 1.23456789, "0");
    QCOMPARE(newFile.size(), 1);
    QVERIFY(panel(2)->isUsed());
    QCOMPARE(textOf(2, "DMut"), QString("1"));
    QCOMPARE(textOf(2, "DeltaE"), QString("1.23457"));
    QCOMPARE(panel(2)->spectrum().shift(), 1.23456789);
    m_analyzer->setLCFStd(2, false, m_first, 0.0, "0");
    QVERIFY(!panel(2)->isUsed());
    m_analyzer->setLCFStd(3, m_first, 0.0, "0");
    m_analyzer->setLCFStd(-1, m_first, 0.0, "0");
    QCOMPARE(m_analyzer->references().size(), 3);

    panel(2)->setRatio(0.12345);
    panel(2)->setDMut(1234567.0);
    QCOMPARE(textOf(2, "R"), QString::asprintf("%5.2f", 12.345));
    QCOMPARE(textOf(2, "T"), QString("1.23457e+06"));
    QCOMPARE(textOf(2, "DMut"), QString("1"));
}

void Analysis2DTest::offsetSurvivesBackgroundAndFile() {
    m_analyzer->addNewRef();
    auto* field = panel(0)->findChild<QLineEdit*>("DeltaE");
    auto* victreen = panel(0)->findChild<QCheckBox*>("IsVictreen");
    panel(0)->newFile(m_first);
    const XafsSpectrum before = panel(0)->spectrum();
    field->setText("3.5");
    panel(0)->editedDeltaE();
    victreen->setChecked(true);
    victreen->setChecked(false);
    panel(0)->newFile(m_first);
    const XafsSpectrum& after = panel(0)->spectrum();
    QCOMPARE(after.shift(), 3.5);
    QVERIFY(after.shiftOn());
    // The series stay where they were: the fit applies the offset, once.
    QCOMPARE(after.doubleNormalizedPreBase().energy(0), before.doubleNormalizedPreBase().energy(0));
    QCOMPARE(after.midE(), before.midE());
    field->setText("nonsense");
    panel(0)->editedDeltaE();
    QCOMPARE(panel(0)->spectrum().shift(), 0.0);
}

void Analysis2DTest::victreenWord_data() {
    QTest::addColumn<QString>("word");
    QTest::addColumn<bool>("victreen");
    QTest::newRow("none") << QString() << true;
    QTest::newRow("vic") << "vic" << true;
    QTest::newRow("1") << "1" << true;
    QTest::newRow("0") << "0" << false;
    QTest::newRow("-1") << "-1" << false;
    QTest::newRow("another word") << "line" << false;
}

void Analysis2DTest::victreenWord() {
    QFETCH(QString, word);
    QFETCH(bool, victreen);
    LCFReference reference;
    reference.findChild<QCheckBox*>("IsVictreen")->setChecked(!victreen);
    reference.setStd(m_first, word);
    QCOMPARE(reference.findChild<QCheckBox*>("IsVictreen")->isChecked(), victreen);
    QCOMPARE(reference.spectrum().backgroundType() != XafsSpectrum::Simple, victreen);
    QVERIFY(reference.isUsed());
}

void Analysis2DTest::unreadableFileHoldsNothing() {
    addReferences();
    m_analyzer->setLCFStd(0, m_dir.filePath("missing.dat"), 0.0, "0");
    QVERIFY(!panel(0)->hasSpectrum());
    QCOMPARE(panel(0)->fileName(), QString());
    QVERIFY(!panel(0)->fitInput().used);
}

void Analysis2DTest::frozenInputStays() {
    addReferences();
    panel(0)->freezeFitInput();
    const double midE = panel(0)->spectrum().midE();
    bool used = false;
    double shift = -1.0;
    panel(0)->setUse(false);
    m_analyzer->setLCFStd(0, false, m_second, 9.0, "0");
    std::unique_ptr<QThread> other(QThread::create([&] {
        used = panel(0)->fitInput().used;
        shift = panel(0)->fitInput().spectrum.shift();
    }));
    other->start();
    other->wait();
    QVERIFY(used);
    QCOMPARE(shift, 0.0);
    QVERIFY(std::isfinite(midE));
    QVERIFY(!panel(0)->fitInput().used);  // the live values on the panel's own thread
}

void Analysis2DTest::choiceButtonsNameTheImages() {
    QSignalSpy changed(m_analyzer.get(), &Analyzer::changedSelection);
    QVERIFY(m_analyzer->selectedResult() == nullptr);
    m_analyzer->selectImage(99);
    QCOMPARE(changed.size(), 1);
    m_analyzer->selectImage(0);  // no panels: the dmut image, not made yet
    QVERIFY(m_analyzer->findChild<QPushButton*>("ShowDMuT")->isChecked());
    QVERIFY(m_analyzer->selectedResult() == nullptr);
    m_analyzer->raDmut()->setGrid(gridOf(2, 2));
    m_analyzer->raDmut()->clear();
    m_analyzer->raDmut()->genImg();
    QCOMPARE(m_analyzer->selectedResult(), m_analyzer->raDmut());

    addReferences();  // ids move: the button that is down stays the dmut image's
    QCOMPARE(m_analyzer->selectedResult(), m_analyzer->raDmut());
    m_analyzer->selectImage(1);
    QCOMPARE(m_analyzer->selectedResult(), panel(1)->result(LCFReference::DMut));
    m_analyzer->setImageType(1);
    m_analyzer->setImageType(7);
    QCOMPARE(m_analyzer->selectedResult(), panel(1)->result(LCFReference::Ratio));
    m_analyzer->selectImage(3);
    QVERIFY(m_analyzer->findChild<QPushButton*>("ShowRest")->isChecked());
}

void Analysis2DTest::scalesReachTheImages() {
    addReferences();
    m_analyzer->setImageType(1);
    m_analyzer->setScaleMax(0.25);
    m_analyzer->setDMutScaleMin(-1.5);
    m_analyzer->setFixedScale(true);
    QCOMPARE(panel(0)->result(LCFReference::Ratio)->rangeMax(), 0.25);
    QCOMPARE(panel(1)->result(LCFReference::DMut)->rangeMin(), -1.5);
    QCOMPARE(m_analyzer->raRatio()->rangeMax(), 0.25);
    QVERIFY(!m_analyzer->raRest()->isFixedScale());
    m_analyzer->setFixedScale(false);
    QVERIFY(!panel(0)->result(LCFReference::Ratio)->isFixedScale());
}

void Analysis2DTest::unanswerableFitsAreNotWaitedFor() {
    m_analyzer->analyzeAndShowSpectrum(mixture(0.5));  // no panels
    m_analyzer->analyzeSpectrum(XafsSpectrum());
    QCOMPARE(m_analyzer->fitsOut(), 0);
    addReferences();
    m_analyzer->analyzeSpectrum(XafsSpectrum());
    QSignalSpy finished(m_analyzer.get(), &Analyzer::finished);
    m_analyzer->analyzeSpectrum(mixture(0.25));
    QTRY_COMPARE(m_analyzer->fitsOut(), 0);
    QVERIFY(!finished.isEmpty());
    QVERIFY(near(m_analyzer->worker()->ratios().at(0), 0.25));
}

void Analysis2DTest::onlyTheNewestSpectrumWaits() {
    addReferences();
    QTRY_COMPARE(m_analyzer->fitsOut(), 0);
    QSignalSpy finished(m_analyzer.get(), &Analyzer::finished);
    for (int i = 0; i <= 20; ++i) {
        m_analyzer->analyzeAndShowSpectrum(mixture(0.04 * i));
        QCOMPARE(m_analyzer->fitsOut(), 1);
    }
    QTRY_COMPARE(m_analyzer->fitsOut(), 0);
    QCOMPARE(finished.size(), 2);
    QCOMPARE(textOf(0, "R"), QString("80.00"));  // the texts are there with the report
    QCOMPARE(textOf(1, "R"), QString("20.00"));
    QCOMPARE(textOf(0, "T"), QString("0.8"));
}

void Analysis2DTest::contAccessDrawsFromTheOldShares() {
    addReferences();
    AnalyzeProc worker;
    QSignalSpy finished(&worker, &AnalyzeProc::finished);
    panel(0)->setRatio(2.0);
    panel(1)->setRatio(1.0);
    XafsSpectrum fitted;
    worker.setContAccess(true);
    worker.analyzeSpectrum0(mixture(0.25), m_analyzer->references(), &fitted, false);
    QVERIFY(near(worker.ratios().at(0), 0.25));
    QCOMPARE(panel(0)->ratio(), 2.0);
    QVERIFY(near(fitted.value(fitted.size() - 1), 3.0));
    worker.setContAccess(false);
    worker.analyzeSpectrum0(mixture(0.25), m_analyzer->references(), &fitted, false);
    QVERIFY(near(panel(0)->ratio(), 0.25));
    QVERIFY(near(fitted.value(fitted.size() - 1), 1.0));
    QCOMPARE(finished.size(), 2);
    worker.analyzeSpectrumByMLCF(XafsSpectrum(), m_analyzer->references(), &fitted);
    worker.analyzeSpectrumByLCF(mixture(0.5), {panel(0)}, &fitted);
    QCOMPARE(finished.size(), 2);
}

void Analysis2DTest::lcfMapsComeBack() {
    addReferences();
    QString why;
    // Bins of 3 x 3 on a 6 x 5 image; the point at (4, 4) has no spectrum.
    const auto spectrumAt = [](int x, int y) {
        return x == 4 && y == 4 ? XafsSpectrum() : mixture(shareAt(x, y));
    };
    QVERIFY(m_analysis->startLcf(gridOf(6, 5, 1), spectrumAt, &why));
    QVERIFY(m_analyzer->isBusy());
    QVERIFY(!m_analyzer->findChild<QPushButton*>("AddRef")->isEnabled());
    m_analyzer->addNewRef();
    QCOMPARE(m_analyzer->references().size(), 2);
    runToEnd();
    QVERIFY(!m_analyzer->isBusy() && m_analyzer->findChild<QPushButton*>("AddRef")->isEnabled());
    const Analyzed2DRes* ratio = panel(0)->result(LCFReference::Ratio);
    const Analyzed2DRes* dMut = panel(1)->result(LCFReference::DMut);
    QCOMPARE(ratio->no(), 2);
    QCOMPARE(dMut->no(), 1);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 6; ++x) {
            const int cx = x < 3 ? 1 : 4;
            const int cy = y < 3 ? 1 : 4;
            const bool visited = cx != 4 || cy != 4;
            QVERIFY(near(ratio->valueAt(x, y), visited ? shareAt(cx, cy) : 0.0));
            QVERIFY(near(dMut->valueAt(x, y), visited ? 1.0 - shareAt(cx, cy) : 0.0));
        }
    }
    QVERIFY(ratio->isValid());
}

TARNWICK_TEST_MAIN(QApplication, Analysis2DTest)
#include "tst_analysis2d.moc"
