#include <QImage>
#include <QRectF>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "TestMain.h"
#include "maps/Analyzed2DRes.h"
#include "maps/RobustRange.h"

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();
const double Inf = std::numeric_limits<double>::infinity();

using Values = QVector<double>;
using Words = QVector<quint16>;

/// A map with one value a bin, in grid order.
std::unique_ptr<Analyzed2DRes> mapOf(int width, int height, int halfW, int halfH,
                                     const Values& values) {
    auto map = std::make_unique<Analyzed2DRes>();
    map->setGrid(AnalysisGrid::ofArea(width, height, halfW, halfH, QRectF(0, 0, width, height)));
    map->clear();
    int n = 0;
    forEachPoint(map->grid(),
                 [&](int x, int y) { map->setData(x, y, halfW, halfH, values.value(n++)); });
    return map;
}

std::unique_ptr<Analyzed2DRes> mapOf(int width, int height, int half, const Values& values) {
    return mapOf(width, height, half, half, values);
}

Values procOf(const Analyzed2DRes& map) {
    Values values;
    forEachPoint(map.grid(),
                 [&](int x, int y) { values.append(map.proc()[y * map.grid().width + x]); });
    return values;
}

Words wordsOf(Analyzed2DRes* map, bool fixed, double min, double max, bool asAnalyzed) {
    const std::unique_ptr<quint16[]> data(map->tiffDataForSave(fixed, min, max, asAnalyzed));
    Words words;
    for (int i = 0; data && i < map->count(); ++i) {
        words.append(data[static_cast<std::size_t>(i)]);
    }
    return words;
}

}  // namespace

class TestAnalyzed2DRes : public QObject {
    Q_OBJECT

  private slots:
    void percentilesOfBins_data() {
        columns<int, int, double, double>("bins", "blanks", "low", "high");
        // Values 0, 1, 2 ... in wild order; some bins are no numbers.
        QTest::newRow("few") << 49 << 0 << 0.0 << 48.0;
        QTest::newRow("more") << 51 << 0 << 1.0 << 49.0;
        QTest::newRow("many") << 1000 << 0 << 10.0 << 989.0;
        QTest::newRow("with blanks") << 1000 << 499 << 5.0 << 495.0;
        QTest::newRow("one") << 1 << 0 << 0.0 << 0.0;
    }

    void percentilesOfBins() {
        QFETCH(int, bins);
        QFETCH(int, blanks);
        const int finite = bins - blanks;
        Values values;
        for (int i = 0; i < bins; ++i) {
            values << (i < finite ? double(i * 7919 % finite) : (i % 3 != 0 ? NaN : Inf));
        }
        const auto map = mapOf(3 * bins, 3, 1, values);
        map->genImg();
        QTEST(map->robustRange().first, "low");
        QTEST(map->robustRange().second, "high");
    }

    /// Whatever range they are looked for in, and by how many threads.
    void percentilesAreThoseOfSortedValues() {
        std::mt19937 random(1);
        std::vector<double> values(90 * 70);
        for (double& value : values) {
            value = random() % 50 == 0 ? 1e6 : static_cast<double>(random() % 4000) - 2000.0;
        }
        const auto rowOf = [&](int row, double* to) {
            std::copy_n(values.data() + 90 * row, 90, to);
            return 90;
        };
        std::vector<double> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        const auto beside = static_cast<std::size_t>(std::lround(0.01 * (90 * 70 - 1)));
        for (const double high : {1e6, 100.0, -Inf, Inf, NaN}) {
            for (const int threads : {1, 3}) {
                const auto range = robustRange({70, 90, rowOf}, 0.01, -2000.0, high, threads);
                QCOMPARE(range->first, sorted[beside]);
                QCOMPARE(range->second, sorted[sorted.size() - 1 - beside]);
            }
        }
    }

    void percentilesKeepToWhatIsFilledAndNotMasked() {
        // Two rows of a map of four, with pixels around the area; zeros elsewhere.
        Analyzed2DRes map;
        map.startOver(AnalysisGrid::ofArea(20, 20, 1, 1, QRectF(2, 3, 12, 12)));
        QCOMPARE(map.robustRange(), std::make_pair(1e300, -1e300));
        const Values row{5, 6, 7, 8};
        map.setRow(3, 3, 4, 1, 1, row.constData(), 1, 4);
        map.setRow(3, 3, 7, 1, 1, row.constData(), 1, 4);
        map.genImg();
        QCOMPARE(map.filled(), QRect(2, 3, 12, 6));
        QCOMPARE(map.robustRange(), std::make_pair(5.0, 8.0));
        MaskPixels mask(400);
        mask[4 * 20 + 3] = mask[7 * 20 + 3] = true;
        map.setMask(std::make_shared<const MaskPixels>(mask));
        QCOMPARE(map.robustRange(), std::make_pair(6.0, 8.0));
        // Beside a shape, whatever stands there.
        auto inside = std::make_shared<PixelSet>(QRect(0, 0, 20, 20));
        inside->insert(4, 0, 8);
        map.startOver(AnalysisGrid::ofArea(20, 20, 1, 1, QRectF(2, 3, 12, 12), inside));
        map.fill(0.0);
        map.setRow(3, 3, 4, 1, 1, row.constData(), 1, 4);
        map.genImg();
        QCOMPARE(map.robustRange(), std::make_pair(5.0, 6.0));
    }

    void aRowOfBinsIsThatOfEachBin_data() {
        columns<int, int, int>("x", "y", "half");
        QTest::newRow("pixels") << 1 << 2 << 0;
        QTest::newRow("pixels, over the edge") << 3 << 2 << 0;
        QTest::newRow("below the image") << 1 << 5 << 0;
        QTest::newRow("bins") << -1 << 1 << 1;
    }
    void aRowOfBinsIsThatOfEachBin() {
        QFETCH(int, x);
        QFETCH(int, y);
        QFETCH(int, half);
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double values[] = {3.0, 0.5, nan, 0.5, -2.0, 0.5};
        Analyzed2DRes row, each;
        for (Analyzed2DRes* map : {&row, &each}) {
            map->startOver(AnalysisGrid::ofArea(6, 5, half, half, QRectF(0, 0, 6, 5)));
        }
        row.setRow(x, 2, y, half, half, values, 2, 3);
        for (int i = 0; i < 3; ++i) {
            each.setData(x + 2 * i, y, half, half, values[2 * i]);
        }
        for (int i = 0; i < 30; ++i) {
            const bool isSame = row.data()[i] == each.data()[i];
            QVERIFY(isSame || (std::isnan(row.data()[i]) && std::isnan(each.data()[i])));
        }
        QCOMPARE(row.dataMin(), each.dataMin());
        QCOMPARE(row.dataMax(), each.dataMax());
    }

    void fillsBinsClippedToTheImage() {
        Analyzed2DRes map;
        map.setGrid(AnalysisGrid::ofArea(4, 3, 1, 1, QRectF(0, 0, 4, 3)));
        map.clear();
        QVERIFY(map.dataMin() > map.dataMax());
        map.setData(0, 0, 1, 1, 2.0);
        map.setData(5, 2, 2, 0, 7.0);      // reaches in from outside
        map.setData(-40, -40, 1, 1, 9.0);  // nowhere
        map.setData(3, 0, 0, std::numeric_limits<int>::max(), 3.0);
        const Values expected = {2, 2, 0, 3, 2, 2, 0, 3, 0, 0, 0, 3};
        QCOMPARE(Values(map.data(), map.data() + 12), expected);
        QCOMPARE(map.valueAt(1, 1), 2.0);
        QCOMPARE(map.valueAt(-1, 1), 0.0);
        QCOMPARE(map.valueAt(4, 0), 0.0);
    }

    void rangesLeaveOutWhatIsNoNumber() {
        auto map = mapOf(4, 1, 0, {NaN, 2.0, -Inf, 5.0});
        QCOMPARE(map->dataMin(), 2.0);
        QCOMPARE(map->dataMax(), 5.0);
        QVERIFY(std::isnan(map->valueAt(0, 0)));
        map->updateExtremes();
        QCOMPARE(map->dataMin(), 2.0);
        QCOMPARE(map->rangeMax(), 5.0);
        map->setScale(-1.0, 1.0);
        map->setFixedScale(true);
        QCOMPARE(map->rangeMin(), -1.0);
    }

    void clearDropsPictureAndValues() {
        auto map = mapOf(3, 2, 0, {1, 2, 3, 4, 5, 6});
        map->genImg();
        QVERIFY(map->isValid() && map->img() != nullptr);
        map->clear();
        QVERIFY(!map->isValid());
        QVERIFY(map->img() == nullptr);
        QCOMPARE(map->valueAt(2, 1), 0.0);
        QCOMPARE(map->procMin(), 0.0);
        QCOMPARE(map->procMax(), 1.0);
    }

    void pictureFollowsRangeAndArray() {
        // Three bytes a pixel and a width of 3: rows that are no multiple of four bytes.
        auto map = mapOf(3, 2, 0, {0.0, 0.5, 1.0, NaN, 1.0, 0.0});
        map->genImg();
        QCOMPARE(map->img()->size(), QSize(3, 2));
        const auto colour = [&](int x, int y) { return map->img()->pixel(x, y); };
        const auto expected = [](double t) {
            const unsigned char* c = colorOf(t);
            return qRgb(c[0], c[1], c[2]);
        };
        QCOMPARE(colour(0, 0), expected(0.0));
        QCOMPARE(colour(1, 0), expected(0.5));
        QCOMPARE(colour(2, 0), expected(1.0));
        QCOMPARE(colour(0, 1), expected(NaN));
        QCOMPARE(colour(1, 1), expected(1.0));
        map->setScale(0.0, 2.0);
        map->setFixedScale(true);
        QCOMPARE(colour(1, 1), expected(0.5));
        map->setFixedScale(false);
        map->selectProcImg(true);  // zeros on 0..1
        QCOMPARE(map->proc()[5], 0.0);
        QCOMPARE(wordsOf(map.get(), false, 0.0, 0.0, false), Words(6, 0));
        QCOMPARE(colour(1, 1), expected(0.0));
        QCOMPARE(map->shownValueAt(1, 1), 0.0);
        // A range of no width divides by zero and must not do worse.
        auto flat = mapOf(2, 1, 0, {3.0, 3.0});
        flat->genImg();
        QVERIFY(flat->isValid());
    }

    void wordsOfPixels_data() {
        columns<double, int>("value", "word");
        // On a fixed scale of 0..1.
        QTest::newRow("low end") << 0.0 << 0;
        QTest::newRow("high end") << 1.0 << 65535;
        QTest::newRow("cut toward zero") << 0.5 << 32767;
        QTest::newRow("above wraps") << 2.0 << (2 * 65535) % 65536;
        QTest::newRow("below wraps") << -1.0 << 1;
        QTest::newRow("just below cuts to zero") << -1e-6 << 0;
        QTest::newRow("beyond 64 bits") << 1e300 << 0;
        QTest::newRow("NaN") << NaN << 0;
        QTest::newRow("infinite") << -Inf << 0;
    }

    void wordsOfPixels() {
        QFETCH(double, value);
        QFETCH(int, word);
        auto map = mapOf(2, 1, 0, {value, 0.25});
        QCOMPARE(wordsOf(map.get(), true, 0.0, 1.0, false), (Words{quint16(word), 16383}));
        QCOMPARE(map->count(), 2);
    }

    void wordsOfPointsAreClamped() {
        auto map = mapOf(6, 6, 1, {-1.0, 0.5, 7.0, NaN});
        QCOMPARE(wordsOf(map.get(), true, 0.0, 1.0, true), (Words{0, 32767, 65535, 0}));
        QCOMPARE(wordsOf(map.get(), false, 0.0, 0.0, true), (Words{0, 12287, 65535, 0}));
        // A scale given the wrong way round clamps to its first end.
        QCOMPARE(wordsOf(map.get(), true, 1.0, 0.0, true).size(), 4);

        // A map whose area reaches past its image has more points than pixels.
        AnalysisGrid grid = AnalysisGrid::ofArea(2, 2, 0, 0, QRectF(0, 0, 2, 2));
        grid.x1 = 4;
        Analyzed2DRes wide;
        wide.setGrid(grid);
        wide.clear();
        wide.setData(1, 1, 0, 0, 1.0);
        QCOMPARE(wordsOf(&wide, true, 0.0, 1.0, true), (Words{0, 0, 0, 0, 0, 65535, 0, 0}));
    }

    void noWordsWithoutValues() {
        Analyzed2DRes map;
        QVERIFY(map.tiffDataForSave(false, 0.0, 1.0, true) == nullptr);
        map.deglitch();
        map.deglitch2(1.0);
        map.copyProc2Data();
        map.genImg();
        QVERIFY(!map.isValid());
    }

    /// Total jump and error of five bins, and a map of the same fit.
    void maskedPixelsAreBlankInPictureRangeAndFile() {
        const auto jump = mapOf(5, 1, 0, {10.0, 4.9, 5.0, NaN, 1.0});
        const auto error = mapOf(5, 1, 0, {1.0, 1.0, 1.0, 1.0, NaN});
        auto map = mapOf(5, 1, 0, {0.25, 100.0, 0.75, -7.0, 3.0});
        map->genImg();
        const Words before = wordsOf(map.get(), false, 0, 0, false);
        const Mask mask = maskBelow(*jump, *error, 5.0);
        QCOMPARE(*mask, (MaskPixels{0, 1, 0, 1, 1}));
        QVERIFY(maskBelow(*jump, Analyzed2DRes(), 5.0) == nullptr);
        map->setMask(mask);
        QCOMPARE(map->rangeMin(), 0.25);  // of what is left
        QCOMPARE(map->rangeMax(), 0.75);
        QVERIFY(std::isnan(map->visibleValueAt(1, 0)) && map->visibleValueAt(2, 0) == 0.75);
        QCOMPARE(map->img()->pixel(1, 0), qRgb(128, 128, 128));
        QVERIFY(map->img()->pixel(2, 0) != map->img()->pixel(0, 0));
        QCOMPARE(wordsOf(map.get(), false, 0, 0, false), before);  // the values are kept
        Analyzed2DRes saved;
        saved.takeVisible(*map);
        QCOMPARE(wordsOf(&saved, false, 0, 0, false), (Words{0, 0, 65535, 0, 0}));
        QCOMPARE(wordsOf(&saved, true, 0.0, 1.0, true), (Words{16383, 0, 49151, 0, 0}));

        // Deglitched values bear it, too; a mask that leaves nothing has a range all the same.
        map->deglitch();
        map->selectProcImg(true);
        QVERIFY(std::isnan(map->visibleValueAt(3, 0)) && map->rangeMax() < 100.0);
        map->setMask(maskBelow(*jump, *error, 1e9));
        QVERIFY(map->rangeMin() < map->rangeMax() && map->rangeMax() < 1e9);
        map->setMask(nullptr);
        QVERIFY(!std::isnan(map->visibleValueAt(3, 0)) && map->rangeMax() > 0.75);
        map->startOver(map->grid());
        QVERIFY(!map->isMasked());
    }

    void deglitchMeasuresAndReplaces() {
        // A spike of 9 on a plane that rises by 1 a column. The measure is |2c - left - right| and
        // |2c - up - down|, averaged where both exist: at the spike (16 + 16) / 2, beside it (8 +
        // 0) / 2 across the plane or 8 alone at the border; their mean is 48 / 9.
        const Values spike = {0, 1, 2, 0, 9, 2, 0, 1, 2};
        const Values plane = {0, 1, 2, 0, 1, 2, 0, 1, 2};
        auto map = mapOf(3, 3, 0, spike);
        map->setDeglitchConds(1.0, 0.2);
        map->deglitch();
        QCOMPARE(procOf(*map), plane);
        QCOMPARE(map->procMin(), 0.0);
        QCOMPARE(map->procMax(), 2.0);
        QCOMPARE(map->valueAt(1, 1), 9.0);  // the original stays

        // Bins wider than high, and higher than wide: a step is a bin, not a pixel.
        for (const auto& bins : {mapOf(15, 3, 2, 0, spike), mapOf(3, 15, 0, 2, spike)}) {
            bins->setDeglitchConds(1.0, 0.2);
            bins->deglitch();
            QCOMPARE(procOf(*bins), plane);
            bins->deglitch2(5.0);
            QCOMPARE(procOf(*bins), plane);
            QCOMPARE(std::count(bins->proc(), bins->proc() + 45, 2.0), 15);
        }
        // A factor that lifts the threshold above the spike's measure leaves it.
        map->setDeglitchConds(10.0, 0.2);
        map->deglitch();
        QCOMPARE(procOf(*map).at(4), 9.0);

        // A row of bins: only left and right neighbours, one step (three pixels) away.
        auto row = mapOf(9, 3, 1, {1, 9, 3});
        row->setDeglitchConds(1.0, 0.2);
        row->deglitch();
        QCOMPARE(procOf(*row), (Values{1, 2, 3}));
        QCOMPARE(row->proc()[5], 2.0);

        // What the grid does not reach keeps its value.
        AnalysisGrid inner = AnalysisGrid::ofArea(4, 3, 0, 0, QRectF(0, 0, 3, 3));
        Analyzed2DRes part;
        part.setGrid(inner);
        part.clear();
        part.setData(3, 1, 0, 0, 5.0);
        part.deglitch();
        QCOMPARE(part.proc()[7], 5.0);
        part.deglitch2(1.0);
        QCOMPARE(part.proc()[7], 5.0);
    }

    void deglitchIgnoresNotANumber() {
        auto map = mapOf(5, 3, 0, {0, 1, 2, 3, NaN, 0, 9, 2, 3, NaN, 0, 1, 2, 3, NaN});
        map->setDeglitchConds(1.5, 0.2);
        map->deglitch();
        QCOMPARE(procOf(*map).at(6), 1.0);
        QVERIFY(std::isnan(procOf(*map).at(4)));
        QCOMPARE(map->procMax(), 3.0);
        // An infinite value goes like any other, and does not take its neighbours along.
        auto border =
            mapOf(3, 3, 0, {1, 1, 1, 9, std::numeric_limits<double>::infinity(), 1, 1, 1, 1});
        border->setDeglitchConds(1.0, 0.2);
        border->deglitch();
        QCOMPARE(procOf(*border), (Values{1, 1, 1, 1, 3, 1, 1, 1, 1}));
    }

    void deglitch2ReplacesFarPoints() {
        // Mean of what is below 5 in magnitude: 8 / 8 = 1. The 30 goes to the mean of its
        // neighbours that lie within 5 of 1; the NaN stays and is nobody's neighbour.
        auto map = mapOf(3, 4, 0, {0, 1, 2, 0, 30, 2, 0, 1, 2, NaN, NaN, NaN});
        map->deglitch2(5.0);
        QCOMPARE(procOf(*map).mid(0, 9), (Values{0, 1, 2, 0, 1, 2, 0, 1, 2}));
        QVERIFY(std::isnan(procOf(*map).at(9)));
        QCOMPARE(map->procMin(), 0.0);
        QCOMPARE(map->procMax(), 2.0);
    }

    void deglitch2WithALowLimit() {
        // Nothing is below the limit: the mean is 0, every point is far, no neighbour is near.
        auto map = mapOf(2, 2, 0, {3, 4, 5, 6});
        map->deglitch2(1.0);
        QCOMPARE(procOf(*map), (Values{0, 0, 0, 0}));
    }

    /// A picture shows the values and the range of the moment at which it was asked for, whether it
    /// was looked at before they changed or not.
    void picturesKeepTheirMoment() {
        for (const bool processed : {false, true}) {
            const Values values = {0, 1, 2, 0, 9, 2, 0, 1, 2};
            auto seen = mapOf(3, 3, 0, values);
            auto unseen = mapOf(3, 3, 0, values);
            for (const auto& map : {seen.get(), unseen.get()}) {
                map->setDeglitchConds(1.0, 0.2);
                map->deglitch();
                map->selectProcImg(processed);
            }
            const QImage before = seen->img()->copy();
            for (const auto& map : {seen.get(), unseen.get()}) {
                map->copyProc2Data();
                QCOMPARE(map->valueAt(1, 1), 1.0);
                QCOMPARE(map->dataMax(), 2.0);
                map->setData(0, 2, 0, 0, 7.0);
                QCOMPARE(map->proc()[6], 0.0);
                map->updateExtremes();
                map->setProcRange(0.0, 100.0);
                QVERIFY(map->isValid());
                QCOMPARE(*map->img(), before);
            }
        }
    }

    /// Rows come, the range grows now and then: the picture that is followed up is that of the
    /// values of this moment, and one of before keeps its own.
    void aPictureThatFollowsShowsWhatHasCome() {
        for (const bool fixed : {false, true}) {
            Analyzed2DRes map;
            map.startOver(AnalysisGrid::ofArea(5, 6, 0, 0, QRectF(0, 0, 5, 6)));
            map.setScale(0.0, 2.0);
            map.setFixedScale(fixed);
            const MapValues zeros = map.values();
            map.followUp();
            for (int y = 0; y < 6; ++y) {
                const double row[] = {0.5, y % 3 - 0.5, NaN, y / 3 + 1.0, 0.25 * y};
                map.setRow(0, 1, y, 0, 0, row, 1, 5);
                map.followUp();
                const QImage followed = map.img()->copy();
                Analyzed2DRes same;
                same.startOver(map.grid());
                for (int i = 0; i < 5 * (y + 1); ++i) {
                    same.setData(i % 5, i / 5, 0, 0, map.data()[i]);
                }
                same.setScale(0.0, 2.0);
                same.setFixedScale(fixed);
                same.genImg();
                QCOMPARE(followed, *same.img());
                QVERIFY(map.isValid());
            }
            QVERIFY(std::all_of(zeros.begin(), zeros.end(), [](double v) { return v == 0.0; }));
        }
    }
};

TARNWICK_TEST_MAIN(QGuiApplication, TestAnalyzed2DRes)
#include "tst_analyzed2dres.moc"
