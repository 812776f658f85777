#include <cmath>

#include "Edges.h"
#include "TestMain.h"
#include "drawing/PlotLayout.h"
#include "drawing/SpectrumPlot.h"

namespace {

const QRectF All(10, 20, 700, 400);
constexpr PlotLetters Sizes{15, 40};
const QString Name = QStringLiteral("Sample");

// A sample from 7000 to 7300 eV whose double normalized series is the step of Edges.h, measured
// with energies that are 2 eV too high.
SpectrumPlot::Named sample() {
    const auto value = [](double e) { return edges::step(e - 2.0, 0.2); };
    const Spectrum measured = edges::curve(edges::energies(7002.0, 7302.0), value);
    return {XafsSpectrum(measured, XafsSpectrum::Simple, 2.0), Name};
}

// A fit of it that misses by 0.03 throughout, on every second point.
XafsSpectrum fit() {
    const auto value = [](double e) { return edges::step(e, 0.2) - 0.03; };
    return XafsSpectrum(edges::curve(edges::energies(7000.0, 7300.0, 4.0), value),
                        XafsSpectrum::Simple, 0.0);
}

SpectrumPlot plot() {
    SpectrumPlot result;
    result.sample = sample();
    result.fit = fit();
    return result;
}

bool near(double a, double b, double tolerance) {
    return std::abs(a - b) <= tolerance;
}

}  // namespace

// What a spectrum plot shows, and where: no window, no letters.
class PlotTest : public QObject {
    Q_OBJECT

  private slots:
    void axesSpanWhatIsShown_data() {
        columns<int, double, double, double>("unit", "spacing", "low", "high");
        // hc = 12398.42 eV A; asin(hc / E / 2d) by hand
        QTest::newRow("eV") << 0 << 3.1355316 << 7000.0 << 7300.0;
        QTest::newRow("keV") << 1 << 3.1355316 << 7.0 << 7.3;
        QTest::newRow("angstrom") << 2 << 3.1355316 << 1.698414 << 1.771203;
        QTest::newRow("degrees, Si(111)") << 3 << 3.1355316 << 15.7139 << 16.4059;
        QTest::newRow("degrees, Si(311)") << 3 << 1.637478 << 31.2388 << 32.7403;
    }

    void axesSpanWhatIsShown() {
        QFETCH(int, unit);
        QFETCH(double, low);
        QFETCH(double, high);
        SpectrumPlot shown = plot();
        shown.abscissa = static_cast<SpectrumPlot::Abscissa>(unit);
        QFETCH(double, spacing);
        shown.spacing = spacing;
        const PlotLayout layout(shown, All, Sizes);
        QVERIFY2(near(layout.coord.rx0, low, 1e-5 * low),
                 qPrintable(QString::number(layout.coord.rx0)));
        QVERIFY2(near(layout.coord.rx1, high, 1e-5 * high),
                 qPrintable(QString::number(layout.coord.rx1)));
        QVERIFY(near(layout.coord.r2sX(low), layout.axes.left(), 0.5));
        QVERIFY(layout.coord.ry0 < -0.03 && layout.coord.ry1 > 1.0 && layout.coord.ry1 < 1.2);
        shown.zoom = QRectF(QPointF(low, 0.25), QPointF(0.5 * (low + high), 0.75));
        const PlotLayout zoomed(shown, All, Sizes);
        QVERIFY(near(zoomed.coord.s2rX(zoomed.axes.right()), 0.5 * (low + high), 1e-9 * high));
        QVERIFY(near(zoomed.coord.s2rY(zoomed.axes.top()), 0.75, 1e-9));
        QVERIFY(zoomed.xTicks.values.size() > 2 && zoomed.yTicks.values.size() > 2);
    }

    void residualAndRFactor() {
        SpectrumPlot shown = plot();
        const PlotLayout layout(shown, All, Sizes);
        QCOMPARE(layout.differences.size(), fit().size());
        double squares = 0.0;
        for (const QPointF& p : layout.differences) {
            QVERIFY(near(p.y(), 0.03, 1e-3));
            squares += std::pow(edges::step(p.x(), 0.2), 2);
        }
        QVERIFY(near(layout.largestDifference(), 0.03, 1e-3));
        QVERIFY(layout.residualToY(0.03) > layout.residual.top());
        const double expected = layout.differences.size() * 0.03 * 0.03 / squares;
        QVERIFY(near(*shown.rFactor() / expected, 1.0, 0.05));
        QVERIFY(layout.curves[1].name.startsWith("Fit (R = 0.0"));
        shown.zoom = QRectF(8000, 0, 10, 1);  // nothing of it in sight
        QVERIFY(near(PlotLayout(shown, All, Sizes).reach, 1e-6, 1e-9));
    }

    void shownOnes() {
        SpectrumPlot shown = plot();
        shown.standard = SpectrumPlot::Named{edges::reference(0), "standard"};
        shown.references = {{edges::reference(0), "hidden", false, Qt::red},
                            {edges::reference(0), "reference", true, Qt::red, "in English"},
                            {XafsSpectrum(), "without points", true, Qt::red}};
        shown.pinned = {{edges::reference(0), "pinned"}};
        const auto names = [](const SpectrumPlot& from) {
            QStringList list;
            for (const SpectrumPlot::Shown& one : from.shown()) {
                list += one.name;
            }
            return list.join(',');
        };
        shown.texts.fit = "?";
        QCOMPARE(names(shown), QString("Sample,?,standard,reference,pinned"));
        QCOMPARE(names(shown.forSaving()), QString("Sample,Fit,standard,in English,pinned"));
        for (int i = 0; i < 5; ++i) {
            shown.ordinate = static_cast<SpectrumPlot::Ordinate>(i);
            QCOMPARE(shown.rFactor().has_value(), i == SpectrumPlot::DoubleNormalized);
            QCOMPARE(names(shown).contains("?"), i == SpectrumPlot::DoubleNormalized);
        }
        shown.ordinate = SpectrumPlot::DoubleNormalized;
        shown.sample.reset();
        QCOMPARE(names(shown), QString("standard,reference,pinned"));
    }

    void backgroundsUnderMuTOnly() {
        SpectrumPlot shown = plot();
        QCOMPARE(shown.curves().size(), 2);  // sample and fit
        shown.ordinate = SpectrumPlot::MuT;
        const QVector<PlotCurve> curves = shown.curves();
        QCOMPARE(curves.size(), 3);
        QVERIFY(curves[1].name.isEmpty() && near(curves[1].points.first().y(), 0.0, 1e-6));
        QVERIFY(near(curves[2].points.last().y(), 1.0, 1e-6));
        shown.backgrounds = false;
        QCOMPARE(shown.curves().size(), 1);
    }

    void everythingHasItsPlace() {
        SpectrumPlot shown = plot();
        const PlotLayout with(shown, All, Sizes);
        shown.fit.reset();
        const PlotLayout without(shown, All, Sizes);
        QVERIFY(All.contains(with.axes) && All.contains(with.residual));
        QVERIFY(with.residual.top() > with.axes.bottom());
        QVERIFY(without.residual.isEmpty() && without.axes.bottom() == with.foot());
        QVERIFY(All.bottom() - with.foot() >= 2 * Sizes.row);  // numbers and title of the abscissa
        QVERIFY(with.axes.left() - All.left() >= Sizes.row + Sizes.number);
        QVERIFY(!PlotLayout(shown, QRectF(0, 0, 90, 400), Sizes).hasRoom);
        QVERIFY(PlotLayout(SpectrumPlot(), All, Sizes).curves.isEmpty());
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, PlotTest)
#include "tst_plot.moc"
