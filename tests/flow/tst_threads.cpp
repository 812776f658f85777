#include <QFile>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>

#include "BatchRun.h"
#include "Phantom.h"
#include "TestMain.h"
#include "maps/Analyzed2DRes.h"
#include "panels/LCFReference.h"

namespace {

/// All values of the maps of an analysis, image after image.
QByteArray mapsOf(const QVector<Analyzed2DRes*>& results) {
    QByteArray bytes;
    for (const Analyzed2DRes* result : results) {
        const int pixels = result->grid().width * result->grid().height;
        bytes.append(reinterpret_cast<const char*>(result->data()),
                     pixels * static_cast<int>(sizeof(double)));
        const double range[] = {result->dataMin(), result->dataMax()};
        bytes.append(reinterpret_cast<const char*>(range), sizeof range);
    }
    return bytes;
}

}  // namespace

Q_DECLARE_METATYPE(std::function<void(Body&)>)

/// Whole maps, byte for byte: one point at a time through the fitter's thread, as in the window,
/// against rows of bins in any number of threads.
class TestThreads : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.width = 37;  // no multiple of the spectra that are worked on side by side
        options.height = 21;
        options.fractionOfA = [](int x, int y) { return std::fmod(0.37 * x + 0.21 * y, 1.0); };
        options.energyShift = [](int x, int y) { return 0.11 * x - 0.07 * y; };
        options.i0Energies = 25;
        m_phantom = std::make_unique<Phantom>(options);
        QVERIFY(m_phantom->isValid());
    }

    void everyWayGivesTheSameMaps_data() {
        QTest::addColumn<QStringList>("lines");
        const QStringList bins = {"set_band_w 2", "set_band_h 1"};
        const QStringList map = {"calib_load_std " + m_phantom->file("a.dat"), "calib_exec"};
        QTest::newRow("LCF") << QStringList{};
        QTest::newRow("LCF, bins, part of the image")
            << bins + QStringList{"select_region 3 2 30 14"};
        QTest::newRow("LCF, every bin with its own energies") << map;
        QTest::newRow("MLCF") << QStringList{"analyzer_set_LCF_mode 1"};
        QTest::newRow("MLCF, bins, own energies")
            << bins + map + QStringList{"analyzer_set_LCF_mode 1"};
        QTest::newRow("an area narrower than its bin")
            << QStringList{"set_band_w 9", "set_band_h 9", "select_region 33 5 4 3"};
    }

    void everyWayGivesTheSameMaps() {
        QFETCH(QStringList, lines);
        const QByteArray oneByOne = maps(lines, false, 1);
        QVERIFY(!oneByOne.isEmpty());
        for (int threads : {1, 4}) {
            QVERIFY(maps(lines, true, threads) == oneByOne);
        }
    }

    void theAnalyzerIsFreeAfterwards() {
        // The last point goes to the fitter in either case.
        for (bool rows : {false, true}) {
            Body body;
            body.setFitsRows(rows);
            BatchRun batch(body);
            QVERIFY(
                batch.run(m_phantom->loadAndSetReferences() + QStringList{"analyzer_exec_LCF"}));
            QCOMPARE(batch.problems(), QStringList());
            QVERIFY(!analyzerWindow()->isBusy());
            QCOMPARE(analyzerWindow()->fitsOut(), 0);
        }
    }

    void whatItsThreadsReadMayChange_data() {
        QTest::addColumn<std::function<void(Body&)>>("change");
        using Change = std::function<void(Body&)>;
        const QString frame = m_phantom->file("i1-7000_000eV.tif");
        QTest::newRow("frames cleared") << Change([](Body& body) { body.clearI0Files(); });
        QTest::newRow("frames added")
            << Change([=](Body& body) { body.readI1Files({frame}, false); });
        QTest::newRow("map made") << Change([](Body& body) { body.execCalibration(); });
        QTest::newRow("map cleared") << Change([](Body& body) { body.clearShiftMap(); });
    }

    /// The analysis ends before they do, and the batch goes on.
    void whatItsThreadsReadMayChange() {
        QFETCH(std::function<void(Body&)>, change);
        Body body;
        body.setFitsRows(true);
        BatchRun batch(body);
        QVERIFY(batch.run(m_phantom->loadAndSetReferences()));
        connect(&body, &Body::analysisProgress, &body, [&, done = false](double percent) mutable {
            if (!done && percent > 0.0 && percent < 100.0) {
                done = true;
                change(body);
            }
        });
        QVERIFY(batch.run({"analyzer_exec_LCF", "set_band_w 1"}));
        QCOMPARE(batch.done(), 2);
        QVERIFY(!analyzerWindow()->isBusy());
    }

  private:
    /// Those of LCF or MLCF and of the residual absorption after some more lines.
    QByteArray maps(const QStringList& lines, bool rows, int threads) {
        Body body;
        body.setFitsRows(rows);
        body.setThreads(threads);
        BatchRun batch(body);
        const bool ended = batch.run(
            m_phantom->loadAndSetReferences() + lines +
            QStringList{"analyzer_exec_LCF", "analyzer_set_ra_energy 7120", "analyzer_exec_ra"});
        if (!ended || !batch.problems().isEmpty()) {
            qWarning() << batch.problems();
            return {};
        }
        const Analyzer* analyzer = analyzerWindow();
        QVector<Analyzed2DRes*> results{analyzer->raDmut(), analyzer->raRest(),
                                        analyzer->raRatio()};
        for (const LCFReference* reference : analyzer->references()) {
            results << reference->result(LCFReference::DMut)
                    << reference->result(LCFReference::Ratio);
        }
        return mapsOf(results);
    }

    std::unique_ptr<Phantom> m_phantom;
};

TARNWICK_TEST_MAIN(QApplication, TestThreads)
#include "tst_threads.moc"
