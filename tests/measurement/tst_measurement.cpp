#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <limits>

#include "Files.h"
#include "Phantom.h"
#include "SameBits.h"
#include "TestMain.h"
#include "absorption/AbsorptionSource.h"
#include "calibration/EnergyShift.h"
#include "files/FileListing.h"
#include "frames/TiffData.h"
#include "measurement/Display.h"
#include "measurement/Measurement.h"
#include "measurement/ResultParts.h"
#include "measurement/Saving.h"

Q_DECLARE_METATYPE(std::function<void(Measurement&)>)
Q_DECLARE_METATYPE(QVector<Difference>)

namespace {

constexpr int Width = 13;
constexpr int Height = 11;

double fractionOfA(int x, int y) {
    return 0.1 + 0.05 * x + 0.02 * y;
}

double shiftOf(int x, int y) {
    return 0.5 * (x / 3) - 0.25 * (y / 3);
}

QVector<double> valuesOf(const Result& result) {
    QVector<double> values;
    for (int i = 0; i < Width * Height; ++i) {
        values << result.image.valueAt(i % Width, i / Width);
    }
    return values;
}

}  // namespace

class TestMeasurement : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Measurement> m_measurement;
    QVector<Work> m_ended;
    Outcome m_outcome;  // of what ended last

    Reference& reference(int i) const {
        return *m_measurement->references()[static_cast<std::size_t>(i)];
    }

    void load(StackId id, const QString& pattern, bool replace = true) {
        m_ended.clear();
        m_measurement->load(id, listImageFiles(m_phantom->dir(), {pattern}), replace);
        QTRY_VERIFY(!m_ended.isEmpty());
        QVERIFY(!m_outcome.failed());
    }

    /// Runs an analysis to its end.
    void run(Work work) {
        m_ended.clear();
        QVERIFY(!m_measurement->start(work).failed());
        QTRY_COMPARE(m_ended, QVector<Work>{work});
        QVERIFY(m_measurement->working() == Work::None);
    }

    void addReferences() {
        for (const char* name : {"a.dat", "b.dat", "a.dat"}) {
            QVERIFY(!m_measurement->addReference().failed());
            const QString file = m_phantom->file(QLatin1String(name));
            m_measurement->change(m_measurement->referenceCount() - 1,
                                  [&file](Reference& r) { QVERIFY(!r.read(file).failed()); });
        }
    }

    /// What one bin after the other finds at a position, in the present inputs.
    XafsSpectrum sampleAt(const AbsorptionSource& source, int x, int y) const {
        const Settings& s = m_measurement->settings();
        return XafsSpectrum(source.spectrumAt(x, y, s.halfWidth, s.halfHeight), s.targetBackground,
                            shiftAt(&m_measurement->map().image, x, y));
    }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.width = Width;
        options.height = Height;
        options.energies = 41;
        options.i0Energies = 31;
        options.fractionOfA = fractionOfA;
        options.energyShift = shiftOf;
        m_phantom = std::make_unique<Phantom>(options);
    }

    void init() {
        m_measurement = std::make_unique<Measurement>();
        connect(m_measurement.get(), &Measurement::ended, this,
                [this](Work work, const Outcome& outcome) {
                    m_ended << work;
                    m_outcome = outcome;
                });
        load(StackId::I1, "i1-*.tif");
        load(StackId::I0, "i0-*.tif");
        m_measurement->set(&Settings::halfWidth, 1);
        m_measurement->set(&Settings::halfHeight, 1);
        addReferences();
    }

    void whatCannotBegin() {
        Measurement empty;
        QVERIFY(empty.start(Work::Calibrate).failed());
        QVERIFY(empty.deglitch(2.0, 0.1).failed());
        QVERIFY(empty.loadNew(StackId::I1).failed());
        m_measurement->setThreads(1);
        QVERIFY(!m_measurement->start(Work::Fit).failed());
        QVERIFY(m_measurement->isAtWork(Work::Fit));
        QVERIFY(m_measurement->addReference().failed());
        m_ended.clear();
        QVERIFY(m_measurement->start(Work::Residual).failed());
        QVERIFY(m_ended.isEmpty() && m_measurement->isAtWork(Work::Fit));
        m_measurement->stop();
        QCOMPARE(m_ended, QVector<Work>{Work::Fit});
        QVERIFY(m_outcome.failed() && m_measurement->working() == Work::None);
        // Who hears of the beginning may stop it.
        connect(m_measurement.get(), &Measurement::changed, m_measurement.get(),
                &Measurement::stop);
        QVERIFY(!m_measurement->start(Work::Calibrate).failed());
        QVERIFY(m_measurement->working() == Work::None && !m_measurement->map().image.hasData());
    }

    void fitsAreThoseOfOneBinAtATime_data() {
        columns<int, int, bool>("threads", "method", "calibrated");
        QTest::newRow("LCF, one thread") << 1 << int(LinearFit::Lcf) << false;
        QTest::newRow("LCF, four threads") << 4 << int(LinearFit::Lcf) << true;
        QTest::newRow("MLCF, four threads") << 4 << int(LinearFit::Mlcf) << false;
    }

    /// To the last bit, over an area that the bins do not fill.
    void fitsAreThoseOfOneBinAtATime() {
        QFETCH(int, threads);
        QFETCH(int, method);
        QFETCH(bool, calibrated);
        Measurement& m = *m_measurement;
        m.setThreads(threads);
        m.set(&Settings::method, static_cast<LinearFit::Method>(method));
        m.set(&Settings::targetBackground, XafsSpectrum::Victreen);
        if (calibrated) {
            QVERIFY(!m.loadStandard(m_phantom->file("a.dat")).failed());
            run(Work::Calibrate);
        }
        m.set(&Settings::area, Area{12, 10, 2, 1});
        m.change(1, [](Reference& r) { r.setDeltaE(0.37); });
        QVector<double> progress;
        connect(&m, &Measurement::progressed, this,
                [&progress](Work, double done, double) { progress << done; });
        run(Work::Fit);
        QCOMPARE(progress.first(), 0.0);
        QCOMPARE(progress.last(), 100.0);

        QVector<XafsSpectrum> spectra{reference(0).spectrum(), reference(1).spectrum()};
        LinearFit fit(spectra, static_cast<LinearFit::Method>(method));
        const AbsorptionSource source(m.stack(StackId::I1).frames(), m.stack(StackId::I0).frames(),
                                      Width, Height);
        for (int y = 0; y < Height; ++y) {
            for (int x = 0; x < Width; ++x) {
                const bool inside = x >= 2 && x < 11 && y >= 1 && y < 10;
                if (inside) {
                    fit.fit(sampleAt(source, 3 + (x - 2) / 3 * 3, 2 + (y - 1) / 3 * 3));
                }
                for (std::size_t r = 0; r < 2; ++r) {
                    const Reference& found = *m.references()[r];
                    QVERIFY(same(found.result(Reference::Ratio).image.valueAt(x, y),
                                 inside ? fit.ratios()[r] : 0.0));
                    QVERIFY(same(found.result(Reference::DMut).image.valueAt(x, y),
                                 inside ? fit.dMuts()[r] : 0.0));
                }
            }
        }
        const Analyzed2DRes& unused = reference(2).result(Reference::Ratio).image;
        QVERIFY(unused.isValid() && unused.dataMin() > unused.dataMax());
        QCOMPARE(unused.no(), 5);
    }

    /// The lowest rest is far above 0 here, so that it must not be taken for 0.
    void residualAbsorptionWithPositiveRest() {
        Measurement& m = *m_measurement;
        m.set(&Settings::halfWidth, 0);
        m.set(&Settings::halfHeight, 0);
        m.set(&Settings::raEnergy, 7100.0);
        m.set(&Settings::raFactor, 0.125);
        run(Work::Residual);
        const AbsorptionSource source(m.stack(StackId::I1).frames(), m.stack(StackId::I0).frames(),
                                      Width, Height);
        QVector<double> dMut;
        QVector<double> rest;
        for (int i = 0; i < Width * Height; ++i) {
            const XafsSpectrum sample = sampleAt(source, i % Width, i / Width);
            const double pre = sample.preEdge().valueAt(7100.0);
            dMut << sample.postEdge().valueAt(7100.0) - pre;
            rest << pre - 0.125 * dMut.last();
        }
        const double lowest = *std::min_element(rest.begin(), rest.end());
        QVERIFY(lowest > 0.1);
        for (int i = 0; i < Width * Height; ++i) {
            const double above = rest[i] - lowest;
            QCOMPARE(valuesOf(m.residual(0))[i], dMut[i]);
            QCOMPARE(valuesOf(m.residual(1))[i], rest[i]);
            // Small differences of what is equal but for rounding.
            QVERIFY(std::abs(valuesOf(m.residual(2))[i] - above / (dMut[i] + above)) < 1e-9);
        }
    }

    void calibrationStoppedLeavesTheMapInForce() {
        Measurement& m = *m_measurement;
        m.loadStandard(m_phantom->file("a.dat"));
        run(Work::Calibrate);
        const QVector<double> before = valuesOf(m.map());
        const auto input = m.mapInput();
        m.setPosition(4, 4);
        const double correction = m.sample().energyCorrection();
        QVERIFY(correction != 0.0);
        m.loadStandard(m_phantom->file("b.dat"));
        connect(&m, &Measurement::progressed, this, [&m](Work, double done, double) {
            if (done > 0.0) {
                m.stop();
            }
        });
        QVERIFY(!m.start(Work::Calibrate).failed());
        QTRY_VERIFY(m.working() == Work::None);
        QVERIFY(m_outcome.failed());
        QCOMPARE(valuesOf(m.map()), before);
        QVERIFY(m.mapInput() == input);
        QCOMPARE(m.sample().energyCorrection(), correction);
        QVERIFY(m.differenceOf(m.map()) == Difference::Before);
        m.clearMap();
        QVERIFY(!m.map().image.hasData() && !m.mapInput());
        QCOMPARE(m.sample().energyCorrection(), 0.0);
    }

    void residualAbsorptionStoppedKeepsItsRows() {
        Measurement& m = *m_measurement;
        m.set(&Settings::halfHeight, 0);
        run(Work::Residual);
        const QVector<double> whole = valuesOf(m.residual(0));
        bool isStopped = false;
        connect(&m, &Measurement::progressed, this, [&](Work work, double, double) {
            if (work == Work::Residual && !isStopped && m.residual(0).image.valueAt(1, 0) != 0.0) {
                isStopped = true;
                m.stop();
            }
        });
        QVERIFY(!m.start(Work::Residual).failed());
        QTRY_VERIFY(m.working() == Work::None);
        QVERIFY(isStopped && m.residual(0).run->state == Run::State::Stopped);
        const QVector<double> kept = valuesOf(m.residual(0));
        for (int i = 0; i < kept.size(); ++i) {
            QVERIFY(kept[i] == whole[i] || (kept[i] == 0.0 && i >= Width));
        }
        QVERIFY(m.residual(2).image.isValid());
        // In files the rows that were not reached hold no number instead of 0.
        const NexusMaps maps = mapsOf(resultParts(m).front());
        for (int row = 0; row < maps.raster.rows; ++row) {
            const double value = maps.maps.front().value(0, row);
            const bool isDone = row * maps.raster.columns < m.residual(0).run->tally.bins;
            QCOMPARE(std::isnan(value), !isDone);
            QVERIFY(!isDone || value == m.residual(0).image.valueAt(1, row));
        }
    }

    /// A run that does not come about leaves the results of the one before, which say so.
    void resultsOfTheRunBefore() {
        Measurement& m = *m_measurement;
        run(Work::Fit);
        const Result& result = reference(0).result(Reference::Ratio);
        m.set(&Settings::halfHeight, 1000);
        QVERIFY(m.start(Work::Fit).failed());
        m.set(&Settings::halfHeight, 2);
        QVERIFY(m.differenceOf(result) == Difference::Before && result.image.hasData());
        QCOMPARE(marksOf(m, result), QStringList{"of the run before"});
        run(Work::Fit);
        QVERIFY(marksOf(m, result).isEmpty());
        m.forget(Work::Fit);
        QVERIFY(m.results().empty() && result.image.img() == nullptr && !result.run);
    }

    /// What is changed while it is on its way counts for the next run; other frames end it.
    void aRunWorksOnWhatItWasStartedWith() {
        Measurement& m = *m_measurement;
        QVERIFY(!m.loadStandard(m_phantom->file("a.dat")).failed());
        run(Work::Calibrate);
        QCOMPARE(m_outcome.notes.size(), 1);
        QVERIFY(m_outcome.notes.first().endsWith("0 of 16 bins without an edge"));
        QVERIFY(m_outcome.warnings.isEmpty());
        run(Work::Fit);
        const Result& result = reference(0).result(Reference::Ratio);
        const QVector<double> expected = valuesOf(result);

        m.setThreads(1);
        bool isChanged = false;
        const auto changing =
            connect(&m, &Measurement::progressed, this, [&](Work, double, double) {
                if (!std::exchange(isChanged, true)) {
                    m.smoothMap();
                    m.clearMap();
                    m.set(&Settings::area, Area{0, 0, 4, 4});
                    m.set(&Settings::halfWidth, 0);
                    m.set(&Settings::method, LinearFit::Mlcf);
                    m.set(&Settings::targetBackground, XafsSpectrum::Victreen);
                    m.change(0, [](Reference& r) { r.setDeltaE(3.0); });
                    m.change(1, [](Reference& r) { r.setUse(false); });
                    QVERIFY(m.deglitch(2.0, 0.1).failed() && m.showProcessed(true).failed());
                }
            });
        run(Work::Fit);
        disconnect(changing);
        QVERIFY(isChanged);
        QCOMPARE(valuesOf(result), expected);
        QVERIFY(m.differenceOf(result) == Difference::Bins);

        QVERIFY(!m.start(Work::Residual).failed());
        m.clear(StackId::I0);
        QVERIFY(m.working() == Work::None && m_outcome.stopped);
        QCOMPARE(m_outcome.failures, QStringList{"stopped at 0 %: frames were cleared"});
    }

    /// After each change a result says what keeps it from being one of the present inputs, and is
    /// current again when the change is taken back.
    void resultsAreCurrentOrSayWhyNot_data() {
        using M = Measurement;
        // expected: of fit, residual, map
        columns<std::function<void(M&)>, std::function<void(M&)>, QVector<Difference>>(
            "change", "back", "expected");
        using D = Difference;
        const auto row = [](const char* name, const std::function<void(M&)>& change,
                            const std::function<void(M&)>& back,
                            const QVector<Difference>& expected) {
            QTest::newRow(name) << change << back << expected;
        };
        const auto none = D::None;
        const auto set = [](auto member, auto value) {
            return [=](M& m) { m.set(member, value); };
        };
        row("bins", set(&Settings::halfHeight, 2), set(&Settings::halfHeight, 1),
            {D::Bins, D::Bins, D::Bins});
        row("area", set(&Settings::area, Area{0, 0, 9, 9}), set(&Settings::area, Area{}),
            {D::Area, D::Area, D::Area});
        row("shape", set(&Settings::area, Area::ellipse(0, 0, Width, Height)),
            set(&Settings::area, Area{}), {D::Area, D::Area, D::Area});
        row("target background", set(&Settings::targetBackground, 1),
            set(&Settings::targetBackground, 0), {D::Background, D::Background, none});
        row("standard background", set(&Settings::standardBackground, 1),
            set(&Settings::standardBackground, 0), {none, none, D::Background});
        row("method", set(&Settings::method, LinearFit::Mlcf),
            set(&Settings::method, LinearFit::Lcf), {D::Settings, none, none});
        row("RA factor", set(&Settings::raFactor, 2.0), set(&Settings::raFactor, 1.0),
            {none, D::Settings, none});
        const auto offset = [](int r, double dE) {
            return [r, dE](M& m) { m.change(r, [dE](Reference& ref) { ref.setDeltaE(dE); }); };
        };
        row("offset", offset(1, 2.5), offset(1, 0.0), {D::References, none, none});
        row("offset of one not in use", offset(2, 2.5), offset(2, 0.0), {none, none, none});
        const auto use = [](bool on) {
            return [on](M& m) { m.change(2, [on](Reference& ref) { ref.setUse(on); }); };
        };
        row("use", use(true), use(false), {D::References, none, none});
        row(
            "view",
            [](M& m) {
                m.set(&Settings::fixedScale, true);
                m.select(1);
                m.setPosition(1, 1);
            },
            [](M&) {}, {none, none, none});
        row("map", [](M& m) { m.smoothMap(); }, {}, {D::Map, none, none});
        row("standard", [this](M& m) { m.loadStandard(m_phantom->file("b.dat")); }, {},
            {none, none, D::References});
        row("frames", [this](M&) { load(StackId::I0, "i0-7000*.tif", false); }, {},
            {D::Frames, D::Frames, D::Frames});
        row("dark",
            [this](M& m) {
                m_ended.clear();
                m.loadDark(m_phantom->writeDarkFrames(Width, Height, [](int, int) { return 40; }));
                QTRY_COMPARE(m_ended, QVector<Work>{Work::LoadDark});
            },
            {}, {D::Dark, D::Dark, D::Dark});
    }

    void resultsAreCurrentOrSayWhyNot() {
        QFETCH(std::function<void(Measurement&)>, change);
        QFETCH(std::function<void(Measurement&)>, back);
        QFETCH(QVector<Difference>, expected);
        Measurement& m = *m_measurement;
        m.loadStandard(m_phantom->file("a.dat"));
        for (const Work work : {Work::Calibrate, Work::Fit, Work::Residual}) {
            run(work);
        }
        const auto differences = [&] {
            return QVector<Difference>{m.differenceOf(reference(0).result(Reference::DMut)),
                                       m.differenceOf(m.residual(1)), m.differenceOf(m.map())};
        };
        const QVector<Difference> current(3, Difference::None);
        QCOMPARE(differences(), current);
        change(m);
        QCOMPARE(differences(), expected);
        for (const Difference d : expected) {
            QCOMPARE(qstrlen(differenceText(d)) > 0, d != Difference::None);
        }
        if (back) {
            back(m);
            QCOMPARE(differences(), current);
        }
    }

    /// Blank are bins whose total jump is below k errors or no number; what lies beside the area is
    /// neither blank nor does it count for the range.
    void whatIsMaskedIsSavedBlank() {
        Measurement& m = *m_measurement;
        const double nan = std::numeric_limits<double>::quiet_NaN();
        m.set(&Settings::halfWidth, 0);
        m.set(&Settings::halfHeight, 0);
        m.set(&Settings::area, Area{2, 3, 7, 4});
        m.set(&Settings::errorMaps, true);
        run(Work::Fit);
        const auto put = [&m](ResultId id, const std::vector<double>& values) {
            int x = 2;
            for (const double value : values) {
                m.find(id, 0)->image.setData(x++, 3, 0, 0, value);
            }
        };
        put(ResultId::TotalJump, {10.0, 4.9, 5.0, nan, 1.0});
        put(ResultId::TotalJumpError, {1.0, 1.0, 1.0, 1.0, nan});
        put(ResultId::Ratio, {0.25, 100.0, 0.75, -7.0, 3.0});
        QVERIFY(!m.setMask(5.0).failed() && !m.choose(ResultId::Ratio, 0).failed());
        const Analyzed2DRes& map = m.selectedResult()->image;
        QCOMPARE(map.rangeMin(), 0.25);
        QCOMPARE(map.rangeMax(), 0.75);
        QVERIFY(std::isnan(map.visibleValueAt(3, 3)) && map.visibleValueAt(3, 4) == 0.0);

        const auto save = [&](const char* name, DataForm form, bool masked) {
            m.set(&Settings::dataForm, form);
            m.set(&Settings::savesMasked, masked);
            m.set(&Settings::tiff, TiffOptions{false, 0.0, 1.0, true});
            m.set(&Settings::table,
                  TableOptions{TableOptions::Separator::Comma, TableOptions::Layout::Rows, true});
            return saveData(m, m_phantom->file(QLatin1String(name)));
        };
        const Outcome blank = save("masked.tif", DataForm::Tiff, true);
        QVERIFY(blank.warnings.join(' ').contains("3 of 143 pixels are blank"));
        TiffData words;
        QVERIFY(words.load(m_phantom->file("masked.tif")) && words.width == 5);
        QCOMPARE(std::vector<int>(words.rows[0], words.rows[0] + 5),
                 (std::vector<int>{0, 0, 65535, 0, 0}));
        QVERIFY(save("masked.dat", DataForm::Text, true).warnings.isEmpty());
        QVERIFY(contentOf(m_phantom->file("masked.dat")).contains("\n0.25,nan,0.75,nan,nan\n"));
        save("all.dat", DataForm::Text, false);
        QVERIFY(contentOf(m_phantom->file("all.dat")).contains("\n0.25,100,0.75,-7,3\n"));
    }

    void settingsHoldWhatTheirFieldsRead() {
        QCOMPARE(inField(1.23456789), 1.23457);
        Measurement& m = *m_measurement;
        m.set(&Settings::ratioMax, 0.25);
        m.set(&Settings::fixedScale, true);
        QCOMPARE(reference(2).result(Reference::Ratio).image.rangeMax(), 0.25);
        QCOMPARE(m.residual(2).image.rangeMax(), 0.25);
        QVERIFY(!m.residual(1).image.isFixedScale());
        m.loadStandard(m_phantom->file("a.dat"));
        QCOMPARE(m.settings().edgeEnergy, fieldText(m.standard()->midE()));
        m.loadStandard(m_phantom->file("none.dat"));
        QVERIFY(m.standard() != nullptr && m.standard()->isEmpty() && m.standardFile().isEmpty());
        QVERIFY(m.edgeEnergy() > 7000.0);
        for (const char* text : {"Fe K", "nan", "inf", ""}) {
            m.set(&Settings::edgeEnergy, QString(text));
            QCOMPARE(m.edgeEnergy(), 0.0);
        }
        // A result of RA stays chosen when references come before it, and the area of the images.
        run(Work::Residual);
        m.select(4);
        QVERIFY(m.selectedResult() == &m.residual(1));
        m.addReference();
        QVERIFY(m.selectedResult() == &m.residual(1));
        m.set(&Settings::area, Area{-5, 3, 400, 5});
        QCOMPARE(m.area(), QRectF(0, 3, Width, 2));
    }

    /// A large map is worked on in the background: the same values as at once, and what stops it
    /// leaves the map as it was.
    void largeMapsAreDeglitchedInTheBackground() {
        Measurement m;
        QVector<Outcome> ends;
        connect(&m, &Measurement::ended, this, [&ends](Work work, const Outcome& outcome) {
            QVERIFY(work == Work::Deglitch);
            ends << outcome;
        });
        constexpr int Size = 700;
        std::vector<double> row(Size);
        Analyzed2DRes plain;
        for (Analyzed2DRes* map : {&plain, &m.map().image}) {
            map->startOver(AnalysisGrid::ofArea(Size, Size, 0, 0, QRectF(0, 0, Size, Size)));
            for (int y = 0; y < Size; ++y) {
                for (int x = 0; x < Size; ++x) {
                    row[static_cast<std::size_t>(x)] = (x * 31 + y * 17) % 97 == 0 ? 60.0 : x % 7;
                }
                map->setRow(0, 1, y, 0, 0, row.data(), 1, Size);
            }
        }
        m.set(&Settings::shown, Shown::Map);
        const auto begin = [&m] { return !m.deglitch(2.0, 0.1).failed(); };
        QVERIFY(begin() && m.isAtWork(Work::Deglitch) && !m.whyNotDeglitch().isEmpty());
        m.stop();
        QVERIFY(m.working() == Work::None && ends.size() == 1 && ends.last().stopped);
        QVERIFY(!m.map().deglitched && !m.map().image.showsProc());
        QVERIFY(begin());
        QTRY_VERIFY(m.working() == Work::None);
        QVERIFY(ends.size() == 2 && !ends.last().failed() && m.map().deglitched);
        plain.setDeglitchConds(2.0, 0.1);
        plain.deglitch();
        QVERIFY(std::equal(plain.proc(), plain.proc() + Size * Size, m.map().image.proc()));
        QCOMPARE(m.map().image.procMax(), plain.procMax());
        QVERIFY(!m.smoothMap().failed());
        QTRY_VERIFY(ends.size() == 3);
        smoothShiftMap(&plain);
        QVERIFY(std::equal(plain.data(), plain.data() + Size * Size, m.map().image.data()));
        QVERIFY(begin());
        m.clearMap();
        QVERIFY(ends.size() == 4 && ends.last().stopped && m.working() == Work::None);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestMeasurement)
#include "tst_measurement.moc"
