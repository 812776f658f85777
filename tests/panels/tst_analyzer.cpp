#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <cmath>
#include <thread>

#include "Controls.h"
#include "Edges.h"
#include "Files.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "display/XafsView.h"
#include "measurement/Display.h"
#include "panels/AnalyzeProc.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "panels/XafsFileSelect.h"

namespace {

XafsSpectrum mixture(double share) {
    return XafsSpectrum(edges::curve(edges::energies(),
                                     [=](double e) {
                                         return share * edges::step(e, 0.3) +
                                                (1.0 - share) * edges::step(e, -0.2);
                                     }),
                        XafsSpectrum::Simple, 0.0);
}

bool near(double actual, double expected) {
    return std::abs(actual - expected) < 1e-6;
}

}  // namespace

class TestAnalyzer : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_first;
    QString m_second;
    std::unique_ptr<Measurement> m_measurement;
    std::unique_ptr<Analyzer> m_analyzer;

    QString writeReference(const QString& name, double bump) const {
        putCurve(m_dir.filePath(name), edges::energies(),
                 [=](double e) { return edges::step(e, bump); });
        return m_dir.filePath(name);
    }

    QPushButton* button(const char* name) const {
        return control<QPushButton>(name, m_analyzer.get());
    }

    LCFReference* panel(int i) const { return m_analyzer->references().at(i); }
    QLineEdit* field(int i, const char* name) const { return control<QLineEdit>(name, panel(i)); }
    void addReferences() const {
        m_analyzer->addNewRef();
        m_analyzer->addNewRef();
        m_analyzer->setLCFStd(0, m_first, 0.0, "0");
        m_analyzer->setLCFStd(1, m_second, 0.0, "0");
    }
    void load() const {
        const std::vector<double> energies{7000, 7050, 7090, 7100, 7110, 7150, 7200, 7300};
        m_measurement->set(&Settings::halfWidth, 0);
        m_measurement->set(&Settings::halfHeight, 0);
        m_measurement->load(
            StackId::I1,
            writeTinyStack(m_dir.path(), "i1", 8, 6, energies,
                           [&](int i, int x, int y) {
                               const double e = energies[static_cast<std::size_t>(i)];
                               return static_cast<quint16>(
                                   40000.0 * std::exp(-edges::step(e, 0.02 * (x - y))));
                           }),
            true);
        QTRY_COMPARE(m_measurement->stack(StackId::I1).size(), 8);
        QTRY_VERIFY(!m_measurement->isAtWork(Work::LoadI1));
    }

  private slots:
    void initTestCase() {
        m_first = writeReference("first.dat", 0.3);
        m_second = writeReference("second.dat", -0.2);
    }

    void init() {
        m_measurement = std::make_unique<Measurement>();
        m_analyzer = std::make_unique<Analyzer>(*m_measurement);
    }

    void cleanup() {
        m_analyzer.reset();
        m_measurement.reset();
    }

    void aRowShowsItsReference() {
        for (int i = 0; i < 3; ++i) {
            m_analyzer->addNewRef();
        }
        QVERIFY(panel(0)->isUsed() && panel(1)->isUsed() && !panel(2)->isUsed());
        QVERIFY(!panel(0)->findChild<QCheckBox*>("IsVictreen")->isChecked());
        QSignalSpy newFile(panel(2), &LCFReference::newFileSelected);
        m_analyzer->setLCFStd(2, m_first, 1.23456789, "0");
        QCOMPARE(newFile.size(), 1);
        QVERIFY(panel(2)->isUsed());
        QCOMPARE(field(2, "DMut")->text(), QString("1"));
        QCOMPARE(field(2, "DeltaE")->text(), QString("1.23457"));
        panel(2)->editedDeltaE();  // of a field that nobody has changed
        QCOMPARE(panel(2)->spectrum().shift(), 1.23456789);
        m_analyzer->setLCFStd(2, false, m_first, 0.0, "0");
        QVERIFY(!panel(2)->isUsed());
        m_analyzer->setLCFStd(3, m_first, 0.0, "0");
        m_analyzer->setLCFStd(-1, m_first, 0.0, "0");
        QCOMPARE(m_analyzer->references().size(), 3);
        m_analyzer->setLCFStd(2, m_dir.filePath("missing.dat"), 0.0, "0");
        QVERIFY(!panel(2)->hasSpectrum() && !panel(2)->fitInput().used);
        QCOMPARE(panel(2)->findChild<XafsFileSelect*>()->fileName(), QString());
        QCOMPARE(field(2, "DMut")->text(), QString());

        // A batch changes the measurement; the row shows it.
        m_measurement->change(2, [this](Reference& r) {
            r.setBackground(XafsSpectrum::Victreen);
            r.read(m_second);
            r.setDeltaE(-2.0);
            r.setUse(true);
        });
        QCOMPARE(panel(2)->findChild<XafsFileSelect*>()->fileName(), m_second);
        QVERIFY(panel(2)->findChild<QCheckBox*>("IsVictreen")->isChecked());
        QVERIFY(panel(2)->findChild<QCheckBox*>("Use")->isChecked());
        QCOMPARE(field(2, "DeltaE")->text(), QString("-2"));
        press("Clear", panel(2));
        QVERIFY(!panel(2)->hasSpectrum() && panel(2)->reference().file().name.isEmpty());
        QVERIFY(panel(2)->isUsed());
        QCOMPARE(field(2, "MidE")->text() + field(2, "DeltaE")->text(), QString("-2"));

        panel(2)->setRatio(0.12345);
        QCOMPARE(field(2, "R")->text(), QString::asprintf("%5.2f", 12.345));
        // As many digits as there is room for, never a part of a number; all in the tool tip.
        for (const int width : {60, 100, 160}) {
            field(2, "T")->setFixedWidth(width);
            for (const double jump : {1234567.0, -0.000691487123, -6.91487e-11, 0.25}) {
                panel(2)->setDMut(jump);
                const QString shown = field(2, "T")->text();
                QVERIFY2(std::abs(shown.toDouble() / jump - 1.0) < 0.3, qPrintable(shown));
                QVERIFY(field(2, "T")->fontMetrics().horizontalAdvance(shown) < width);
                QVERIFY(field(2, "T")->toolTip().endsWith(fieldText(jump)));
            }
        }
    }

    void anOffsetSurvivesBackgroundAndFile() {
        m_analyzer->addNewRef();
        auto* victreen = panel(0)->findChild<QCheckBox*>("IsVictreen");
        panel(0)->newFile(m_first);
        const XafsSpectrum before = panel(0)->spectrum();
        QTest::keyClicks(field(0, "DeltaE"), ".53");  // behind the 0
        m_analyzer->addNewRef();                      // what is being typed stays
        QCOMPARE(field(0, "DeltaE")->text(), QString("0.53"));
        QTest::keyClick(field(0, "DeltaE"), Qt::Key_Return);
        victreen->setChecked(true);
        victreen->setChecked(false);
        panel(0)->newFile(m_first);
        const XafsSpectrum& after = panel(0)->spectrum();
        QCOMPARE(after.shift(), 0.53);
        QVERIFY(after.shiftOn());
        // The series stay where they were: the fit applies the offset, once.
        QCOMPARE(after.doubleNormalizedPreBase().energy(0),
                 before.doubleNormalizedPreBase().energy(0));
        QCOMPARE(after.midE(), before.midE());
        field(0, "DeltaE")->setText("nonsense");
        panel(0)->editedDeltaE();
        QCOMPARE(panel(0)->spectrum().shift(), 0.0);
        QCOMPARE(field(0, "DeltaE")->text(), QString("0"));
    }

    void victreenWords() {
        m_analyzer->addNewRef();
        auto* box = panel(0)->findChild<QCheckBox*>("IsVictreen");
        const QVector<QPair<QString, bool>> words{{QString(), true}, {"vic", true},
                                                  {"1", true},       {"0", false},
                                                  {"-1", false},     {"line", false}};
        for (const auto& [word, victreen] : words) {
            box->setChecked(!victreen);
            panel(0)->setStd(m_first, word);
            QVERIFY2(box->isChecked() == victreen, qPrintable(word));
            QCOMPARE(panel(0)->spectrum().backgroundType() != XafsSpectrum::Simple, victreen);
        }
        QVERIFY(panel(0)->isUsed());
    }

    void frozenInputStays() {
        addReferences();
        panel(0)->freezeFitInput();
        bool used = false;
        double shift = -1.0;
        m_analyzer->setLCFStd(0, false, m_second, 9.0, "0");
        std::thread other([&] {
            used = panel(0)->fitInput().used;
            shift = panel(0)->fitInput().spectrum.shift();
        });
        other.join();
        QVERIFY(used);
        QCOMPARE(shift, 0.0);
        QVERIFY(!panel(0)->fitInput().used);  // the live values on the panel's own thread
    }

    void controlsAreTheMeasurementsSettings() {
        QCOMPARE(control<QLineEdit>("DMutScaleMin", m_analyzer.get())->text(), QString("0.0"));
        m_measurement->set(&Settings::raEnergy, 7200.5);
        m_measurement->set(&Settings::method, LinearFit::Mlcf);
        m_measurement->set(&Settings::showsEachRow, true);
        m_measurement->set(&Settings::dMutMax, 1.0);  // reads 1.0 already
        QCOMPARE(control<QLineEdit>("RAAtEV", m_analyzer.get())->text(), QString("7200.5"));
        QVERIFY(control<QCheckBox>("MLCF", m_analyzer.get())->isChecked());
        QVERIFY(control<QCheckBox>("DispOnTime", m_analyzer.get())->isChecked() &&
                m_analyzer->dispOnTime());
        QCOMPARE(control<QLineEdit>("DMutScaleMax", m_analyzer.get())->text(), QString("1.0"));

        control<QCheckBox>("MLCF", m_analyzer.get())->click();
        QVERIFY(m_measurement->settings().method == LinearFit::Lcf);
        auto* energy = control<QLineEdit>("RAAtEV", m_analyzer.get());
        energy->clear();
        QTest::keyClicks(energy, "7100.2568");
        QCOMPARE(m_analyzer->raEnergy(), 7100.26);
        QCOMPARE(energy->text(), QString("7100.2568"));
        QTest::keyClick(energy, Qt::Key_Return);
        QCOMPARE(energy->text(), QString("7100.26"));
        m_analyzer->setRaFactor(0.123456789);
        QCOMPARE(control<QLineEdit>("RAFactor", m_analyzer.get())->text(), QString("0.123457"));
        QCOMPARE(m_measurement->settings().raFactor, 0.123457);

        QSignalSpy changed(m_analyzer.get(), &Analyzer::changedSelection);
        auto* limit = control<QLineEdit>("RatioScaleMax", m_analyzer.get());
        limit->selectAll();
        QTest::keyClicks(limit, "0.25");
        m_measurement->set(&Settings::ratioMin, -1.0);  // from elsewhere, in mid-typing
        QCOMPARE(limit->text(), QString("0.25"));
        QTest::keyClick(limit, Qt::Key_Return);
        QCOMPARE(m_measurement->settings().ratioMax, 0.25);
        QCOMPARE(changed.size(), 1);
        control<QCheckBox>("FixedScale", m_analyzer.get())->click();
        QVERIFY(m_measurement->settings().fixedScale);
        m_analyzer->setDMutScaleMin(0.0);
        QCOMPARE(control<QLineEdit>("DMutScaleMin", m_analyzer.get())->text(), QString("0"));
        m_analyzer->setImageType(1);
        m_analyzer->setScaleMax(0.75);
        QCOMPARE(m_measurement->settings().ratioMax, 0.75);
        QVERIFY(control<QRadioButton>("SelRatio", m_analyzer.get())->isChecked());
        control<QRadioButton>("SelDMut", m_analyzer.get())->click();
        QCOMPARE(m_measurement->settings().resultType, int(Reference::DMut));
    }

    void choiceButtonsNameTheResults() {
        QSignalSpy changed(m_analyzer.get(), &Analyzer::changedSelection);
        QVERIFY(m_analyzer->selectedResult() == nullptr);
        m_analyzer->selectImage(99);
        QCOMPARE(changed.size(), 1);
        m_analyzer->selectImage(0);  // no references: the dmut image, not made yet
        QVERIFY(button("ShowDMuT")->isChecked());
        QVERIFY(m_analyzer->selectedResult() == nullptr);
        load();
        m_measurement->start(Work::Residual);
        QTRY_VERIFY(!m_analyzer->isBusy());
        QCOMPARE(m_analyzer->selectedResult(), m_analyzer->raDmut());

        addReferences();  // ids move: the button that is down stays the dmut image's
        QVERIFY(button("ShowDMuT")->isChecked());
        QCOMPARE(m_analyzer->selectedResult(), m_analyzer->raDmut());
        control<QRadioButton>("SelectRef2", m_analyzer.get())->click();
        QCOMPARE(m_measurement->settings().selected, 1);
        QCOMPARE(m_analyzer->selectedResult(), panel(1)->result(LCFReference::DMut));
        m_analyzer->setImageType(1);
        m_analyzer->setImageType(7);
        QCOMPARE(m_analyzer->selectedResult(), panel(1)->result(LCFReference::Ratio));
        m_analyzer->selectImage(3);
        QVERIFY(button("ShowRest")->isChecked());
    }

    void listButtonsAndBatchChooseTheSameMap() {
        auto* list = control<QComboBox>("Map", m_analyzer.get());
        QVERIFY(!list->isEnabled());
        addReferences();
        load();
        m_measurement->set(&Settings::errorMaps, true);
        m_measurement->start(Work::Fit);
        QTRY_VERIFY(!m_analyzer->isBusy());
        m_measurement->set(&Settings::differenceFrom, 7090.0);
        m_measurement->set(&Settings::differenceTo, 7110.0);
        m_measurement->start(Work::Difference);
        QCOMPARE(button("AskDifference")->text(), QString("Stop"));
        QTRY_VERIFY(!m_analyzer->isBusy());
        QCOMPARE(list->count(), 4 * 2 + 5 + 1);
        const auto isOn = [this](const char* name) {
            return control<QAbstractButton>(name, m_analyzer.get())->isChecked();
        };
        const auto pick = [list](const QString& title) {
            list->setCurrentIndex(list->findText(title));
            emit list->activated(list->currentIndex());
        };
        pick("Fraction of the reference   second.dat");
        QVERIFY(isOn("SelectRef2") && isOn("SelRatio") && !isOn("SelDMut"));
        QCOMPARE(m_analyzer->selectedResult(), panel(1)->result(LCFReference::Ratio));
        QVERIFY(m_measurement->settings().shown == Shown::Result);
        pick("Counting error of the fraction   second.dat");
        QVERIFY(isOn("SelectRef2") && !isOn("SelRatio") && !isOn("SelDMut"));
        press("SelectRef1", m_analyzer.get());  // its kind stays
        QCOMPARE(list->currentText(), QString("Counting error of the fraction   first.dat"));
        press("SelDMut", m_analyzer.get());
        QCOMPARE(list->currentText(), QString("Edge jump due to the reference   first.dat"));
        QVERIFY(!m_measurement->choose(ResultId::R, -1).failed());
        QCOMPARE(list->currentText(), QString("R factor of the fit"));
        QVERIFY(!isOn("SelectRef1") && !isOn("SelDMut"));
        press("ShowDifference", m_analyzer.get());
        QCOMPARE(list->currentText(), QString("Difference of two energies"));
        press("SelectRef2", m_analyzer.get());
        QVERIFY(!isOn("ShowDifference") && isOn("SelDMut"));

        // Another face of the map, and back to where it came from.
        press("ShowError", m_analyzer.get());
        QCOMPARE(list->currentText(), QString("Counting error of the edge jump   second.dat"));
        press("ShowChi2", m_analyzer.get());
        QCOMPARE(list->currentText(), QString("Reduced chi-square of the fit"));
        QVERIFY(isOn("ShowChi2") && !isOn("ShowValue") && !isOn("ShowError"));
        press("ShowValue", m_analyzer.get());
        QCOMPARE(m_analyzer->selectedResult(), panel(1)->result(LCFReference::DMut));
        QVERIFY(isOn("ShowValue") && !isOn("ShowChi2"));
        press("ShowDifference", m_analyzer.get());
        QVERIFY(!button("ShowError")->isEnabled() && button("ShowR")->isEnabled());
        press("SelectRef2", m_analyzer.get());

        // The mask of a batch is shown; press, field and slider set it.
        auto* mask = button("Mask");
        auto* factor = control<QLineEdit>("MaskFactor", m_analyzer.get());
        auto* slider = control<QSlider>("MaskSlider", m_analyzer.get());
        const QPoint middle = slider->rect().center();
        QWheelEvent wheel(middle, slider->mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(slider, &wheel);  // scrolls the panel
        QTest::keyClick(factor, Qt::Key_Return);  // nothing has been typed
        QVERIFY(slider->value() == 0 && factor->text() == "5" && !mask->isChecked());
        mask->click();
        QCOMPARE(m_measurement->settings().mask, 5.0);
        m_measurement->setMask(3.5);
        QVERIFY(mask->isChecked() && factor->text() == "3.5" && slider->value() == 7);
        mask->click();
        QCOMPARE(m_measurement->settings().mask, 0.0);
        mask->click();
        QCOMPARE(m_measurement->settings().mask, 3.5);
        slider->setSliderDown(true);
        slider->setSliderPosition(100);
        QTRY_COMPARE(m_measurement->settings().mask, 50.0);
        slider->setSliderDown(false);
        factor->selectAll();
        QTest::keyClicks(factor, "1e30");
        QTest::keyClick(factor, Qt::Key_Return);
        QCOMPARE(textOf("MaskCount", m_analyzer.get()), QString("48 of 48 bins blank (100.0 %)"));
        factor->selectAll();
        QTest::keyClicks(factor, "0");
        QTest::keyClick(factor, Qt::Key_Return);
        QVERIFY(!mask->isChecked() && !panel(0)->result(0)->isMasked());
        mask->click();
        QVERIFY(panel(0)->result(0)->isMasked());
        press("ErrorMaps", m_analyzer.get());
        m_measurement->start(Work::Fit);
        QTRY_VERIFY(!m_analyzer->isBusy());
        QVERIFY(mask->isEnabled() && !panel(0)->result(0)->isMasked());
        mask->click();  // off
        QVERIFY(!mask->isEnabled() && mask->toolTip().endsWith("Run again with error maps."));
        QCOMPARE(list->count(), 2 * 2 + 1);

        m_measurement->set(&Settings::constraints, FitRule::Constraints::Sum1);
        QCOMPARE(control<QComboBox>("Constraints", m_analyzer.get())->currentIndex(), 2);
        QVERIFY(button("AskAnalyze")->isEnabled());
        m_measurement->set(&Settings::method, LinearFit::Mlcf);
        QVERIFY(button("AskAnalyze")->toolTip().endsWith("its coefficients are edge jumps."));
    }

    /// The fit at the cursor is that of the bin there, to the last bit, counting errors too.
    void theCursorFitsAsTheMapDoes_data() {
        columns<int, int, bool>("method", "constraints", "darkAndI0");
        QTest::newRow("LCF") << int(LinearFit::Lcf) << int(FitRule::Constraints::None) << false;
        QTest::newRow("LCF, I0, constrained")
            << int(LinearFit::Lcf) << int(FitRule::Constraints::Both) << true;
        QTest::newRow("MLCF, I0") << int(LinearFit::Mlcf) << int(FitRule::Constraints::None)
                                  << true;
    }
    void theCursorFitsAsTheMapDoes() {
        QFETCH(int, method);
        QFETCH(int, constraints);
        QFETCH(bool, darkAndI0);
        addReferences();
        load();
        if (darkAndI0) {
            m_measurement->load(StackId::I0,
                                writeTinyStack(m_dir.path(), "i0", 8, 6, {7000, 7150, 7300},
                                               [](int i, int x, int) {
                                                   return static_cast<quint16>(50000 - 999 * i - x);
                                               }),
                                true);
            QTRY_COMPARE(m_measurement->stack(StackId::I0).size(), 3);
            QTRY_VERIFY(!m_measurement->isAtWork(Work::LoadI0));
        }
        m_measurement->set(&Settings::method, static_cast<LinearFit::Method>(method));
        m_measurement->set(&Settings::constraints, static_cast<FitRule::Constraints>(constraints));
        m_measurement->set(&Settings::errorMaps, true);
        m_measurement->set(&Settings::halfWidth, 1);
        m_measurement->start(Work::Fit);
        QTRY_VERIFY(!m_analyzer->isBusy());
        for (const QPoint at : {QPoint(1, 0), QPoint(4, 3), QPoint(4, 5)}) {
            m_measurement->setPosition(at.x(), at.y());
            m_analyzer->analyzeAndShowPoint();
            QTRY_COMPARE(m_analyzer->fitsOut(), 0);
            const std::vector<double>& live = m_analyzer->worker()->values();
            const FitValues places(2, true);
            QCOMPARE(int(live.size()), places.count());
            const auto same = [&](ResultId id, int reference, int place) {
                const double map =
                    m_measurement->find(id, reference)->image.valueAt(at.x(), at.y());
                const double here = live[std::size_t(place)];
                QVERIFY2(map == here || (std::isnan(map) && std::isnan(here)),
                         qPrintable(QString("%1: %2, %3").arg(place).arg(map).arg(here)));
            };
            for (int r = 0; r < 2; ++r) {
                same(ResultId::Ratio, r, places.ratio(r));
                same(ResultId::RatioError, r, places.ratioError(r));
                same(ResultId::DMutError, r, places.dMutError(r));
            }
            same(ResultId::R, -1, places.r());
            same(ResultId::Chi2Reduced, -1, places.chi2Reduced());
            QVERIFY(m_analyzer->worker()->hadCounts());
        }
        QVERIFY(textOf("FitNumbers", m_analyzer.get()).startsWith("Sum of the fractions 1"));
        m_analyzer->analyzeAndShowPoint();
        m_analyzer->analyzeAndShowSpectrum(mixture(0.3));  // no counts: no chi-square
        QTRY_VERIFY(textOf("FitNumbers", m_analyzer.get()).endsWith(" -"));
        m_analyzer->analyzeAndShowSpectrum(XafsSpectrum());
        QCOMPARE(textOf("RError", panel(0)), QString("\u00b1 -"));
    }

    void filesFillEmptyRowsFirst() {
        const QString noSpectrum = m_dir.filePath("none.dat");
        QFile(noSpectrum).open(QIODevice::WriteOnly);
        Outcome outcome;
        connect(m_analyzer.get(), &Analyzer::said, this, [&](const Outcome& o) { outcome = o; });
        press("AddRef", m_analyzer.get());
        press("AddRef", m_analyzer.get());
        panel(1)->newFile(m_second);
        panel(0)->setUse(false);
        press("AddRefFiles", m_analyzer.get());
        answer({m_first, noSpectrum, m_second, m_first});
        QCOMPARE(m_analyzer->references().size(), 4);
        const QString expected[] = {m_first, m_second, m_second, m_first};
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(panel(i)->fileName(), expected[i]);
            QVERIFY(panel(i)->isUsed() && panel(i)->hasSpectrum());
        }
        QVERIFY(outcome.failures.size() == 1 && outcome.failures.first().contains("none.dat"));
        QVERIFY(outcome.notes.first().endsWith("first.dat, second.dat, first.dat"));

        m_analyzer->disconnect(this);

        // The row that asks gets the first.
        press("Select", panel(1));
        answer({m_first, m_second});
        QCOMPARE(panel(1)->fileName(), m_first);
        QCOMPARE(m_analyzer->references().size(), 5);

        // Dropped files, but no folder.
        const auto drop = [this](const QString& path) {
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(path)});
            QDragEnterEvent enter({}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(m_analyzer.get(), &enter);
            QDropEvent event({}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            return enter.isAccepted() && QApplication::sendEvent(m_analyzer.get(), &event);
        };
        QVERIFY(drop(m_second) && !drop(m_dir.path()));
        QCOMPARE(m_analyzer->references().size(), 6);

        // 50 eV above the edge of the first in use.
        panel(0)->setUse(false);
        press("RAFromEdge", m_analyzer.get());
        QCOMPARE(m_measurement->settings().raEnergy, inField(panel(1)->spectrum().midE() + 50.0));
        for (LCFReference* each : m_analyzer->references()) {
            each->setUse(false);
        }
        QVERIFY(!button("RAFromEdge")->isEnabled());
        const QSize least = m_analyzer->minimumSizeHint();  // whatever there is, the rest scrolls
        QCOMPARE(least.boundedTo(QSize(300, 150)), least);
    }

    void titlesTellOfTheReferenceThatWasFitted() {
        addReferences();
        load();
        m_measurement->select(0);
        m_measurement->start(Work::Fit);
        QTRY_VERIFY(!m_analyzer->isBusy());
        m_analyzer->setLCFStd(0, m_second, 0.0, "0");
        const auto title = [this] {
            return describe(*m_measurement, *m_measurement->selectedResult());
        };
        QCOMPARE(title(),
                 QString("Edge jump due to the reference   first.dat   with earlier references"));
        m_measurement->start(Work::Fit);
        m_measurement->stop();
        QCOMPARE(title(), QString("Edge jump due to the reference   second.dat   stopped at 0 %"));
    }

    void buttonsSayWhyNotAndStop() {
        auto* fit = button("AskAnalyze");
        auto* residual = button("AskRAAnalyze");
        const auto whyNot = [](const QPushButton* b) {
            return b->isEnabled() ? QString() : b->toolTip().section('\n', -1);
        };
        QCOMPARE(whyNot(fit), QString("Load the I1 frames first."));
        load();
        QCOMPARE(whyNot(fit), QString("Add two references first."));
        QCOMPARE(whyNot(residual), QString());
        m_analyzer->addNewRef();
        m_analyzer->addNewRef();
        QVERIFY(whyNot(fit).startsWith("Choose the file"));
        m_analyzer->setLCFStd(0, m_first, 0.0, "0");
        QCOMPARE(whyNot(fit), QString());

        QSignalSpy asked(m_analyzer.get(), &Analyzer::askAnalyze);
        m_measurement->start(Work::Fit);
        QCOMPARE(textOf("Progress", m_analyzer.get()), QString(" 0.00"));
        QCOMPARE(fit->text(), QString("Stop"));
        QVERIFY(fit->isEnabled() && m_analyzer->isBusy());
        QVERIFY(!residual->isEnabled() && !button("AddRef")->isEnabled());
        QVERIFY(!panel(0)->findChild<QPushButton*>("Select")->isEnabled());
        m_analyzer->addNewRef();
        QCOMPARE(m_analyzer->references().size(), 2);
        fit->click();
        QCOMPARE(asked.size(), 1);
        QTRY_VERIFY(!m_analyzer->isBusy());
        QCOMPARE(textOf("Progress", m_analyzer.get()), QString("100.00"));
        QCOMPARE(fit->text(), QString("Analyze"));
        QVERIFY(button("AddRef")->isEnabled());
        m_measurement->start(Work::Residual);
        QCOMPARE(residual->text(), QString("Stop"));
        QVERIFY(residual->isEnabled() && !fit->isEnabled());
    }

    void onlyTheNewestSpectrumWaits() {
        m_analyzer->analyzeAndShowSpectrum(XafsSpectrum());
        m_analyzer->analyzeSpectrum(mixture(0.5));  // no references: never answered
        QCOMPARE(m_analyzer->fitsOut(), 0);
        addReferences();
        QSignalSpy finished(m_analyzer.get(), &Analyzer::finished);
        for (int i = 0; i <= 20; ++i) {
            m_analyzer->analyzeAndShowSpectrum(mixture(0.04 * i));
            QCOMPARE(m_analyzer->fitsOut(), 1);
        }
        QTRY_COMPARE(m_analyzer->fitsOut(), 0);
        QCOMPARE(finished.size(), 2);
        QCOMPARE(field(0, "R")->text(), QString("80.00"));  // there with the report
        QCOMPARE(field(0, "T")->text(), QString("0.8"));
        QVERIFY(m_analyzer->view()->rFactor().has_value());
        // A change of a reference fits it anew.
        panel(1)->setUse(false);
        QTRY_COMPARE(m_analyzer->worker()->usedPanels().size(), std::size_t(1));
        QTRY_VERIFY(field(1, "R")->text().isEmpty() && !field(0, "R")->text().isEmpty());
        m_analyzer->analyzeAndShowSpectrum(XafsSpectrum());
        QVERIFY(field(0, "R")->text().isEmpty() && field(0, "T")->text().isEmpty());
    }

    /// A fit under way when an analysis of the image begins is not shown; the spectrum is fitted
    /// when that has ended.
    void theCursorWaitsForTheImage() {
        addReferences();
        load();
        m_analyzer->analyzeAndShowSpectrum(mixture(0.9));
        m_analyzer->analyzeAndShowSpectrum(mixture(0.8));
        QSignalSpy finished(m_analyzer.get(), &Analyzer::finished);
        m_analyzer->setContAccess(true);
        m_analyzer->analyzeAndShowSpectrum(mixture(0.25));
        QTRY_COMPARE(m_analyzer->fitsOut(), 0);
        QCOMPARE(finished.size(), 1);
        QVERIFY(!m_analyzer->view()->rFactor());
        m_analyzer->setContAccess(false);
        QTRY_VERIFY(near(panel(0)->ratio(), 0.25));
        QTRY_VERIFY(m_analyzer->view()->rFactor().has_value());

        panel(0)->setRatio(7.0);
        m_measurement->start(Work::Fit);
        QVERIFY(m_analyzer->isBusy());
        QTRY_VERIFY(near(panel(0)->ratio(), 0.25));
    }

    void contAccessDrawsFromTheOldShares() {
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
};

TARNWICK_TEST_MAIN(QApplication, TestAnalyzer)
#include "tst_analyzer.moc"
