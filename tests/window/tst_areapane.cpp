#include <QLineEdit>

#include "BatchRun.h"
#include "Controls.h"
#include "DebugLines.h"
#include "Phantom.h"
#include "TestMain.h"
#include "display/HistogramView.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "measurement/AreaSpectrum.h"
#include "measurement/MapDisplay.h"
#include "panels/AreaStatistics.h"
#include "window/Body.h"

namespace {

double fractionOfA(int x, int y) {
    return 0.1 + 0.05 * x + 0.02 * y;
}

}  // namespace

/// The statistics of the area, wired as in the main window.
class TestAreaPane : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Body> m_body;

    static AreaStatistics* panel() { return topLevel<AreaStatistics>(); }
    static QString number(const char* name) { return textOf(name, panel()); }
    static QVector<XafsSpectrum> kept() { return control<XafsView>("Spectrum")->pinned(); }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.fractionOfA = fractionOfA;
        m_phantom = std::make_unique<Phantom>(options);
    }

    void init() {
        const DebugLines unseen;
        m_body = std::make_unique<Body>();
        m_body->show();
        QVERIFY(BatchRun(*m_body).run(m_phantom->loadAndSetReferences() +
                                      QStringList{"select_region 2 1 8 6", "analyzer_exec_LCF",
                                                  "analyzer_select_map fraction 0"}));
        press("ShowStatistics");
    }

    void cleanup() { m_body.reset(); }

    void numbersFollowMapAndArea() {
        QCOMPARE(number("Count"), "30");
        QVERIFY(std::abs(number("Median").toDouble() - 0.385) < 1e-3);
        QVERIFY(std::abs(number("Maximum").toDouble() - fractionOfA(7, 5)) < 1e-3);
        // A later area counts, with the bins that the map has there.
        m_body->measurement().set(&Settings::area, Area::polygon({{0, 0}, {12, 0}, {0, 3}}));
        QTRY_COMPARE(number("Count"), "4");
        m_body->measurement().set(&Settings::shown, Shown::I1);
        QTRY_COMPARE(number("Count"), "-");
        QVERIFY(!control<QAbstractButton>("SelectThreshold", panel())->isEnabled());
    }

    void limitsSelectBins() {
        control<QLineEdit>("ThresholdLow", panel())->setText("0.4");
        control<QLineEdit>("ThresholdHigh", panel())->setText("0.43");
        press("SelectThreshold", panel());
        int bins = 0;
        for (int i = 0; i < 30; ++i) {
            const double value =
                m_body->measurement().shownResult()->image.shownValueAt(2 + i % 6, 1 + i / 6);
            bins += value >= 0.4 && value <= 0.43;
        }
        QVERIFY(bins > 0);
        QTRY_COMPARE(number("Count"), QString::number(bins));
        QCOMPARE(control<ImageView>("dispA")->selectedArea().shape, AreaShape::Polygon);
        control<QLineEdit>("ThresholdLow", panel())->setText("0.43");
        control<QLineEdit>("ThresholdHigh", panel())->setText("0.4");
        press("SelectThreshold", panel());
        QVERIFY(textOf("Message", panel()).contains("must not lie below"));
    }

    /// As a batch forms it; frames that go end it.
    void theMeanSpectrumGoesToThePlot() {
        press("MeanSpectrum", panel());
        QTRY_COMPARE(kept().size(), 1);
        const AreaSpectrum expected = areaSpectrumOf(m_body->measurement());
        const XafsSpectrum mean = kept().first();
        QCOMPARE(expected.bins, 30);
        QCOMPARE(mean.size(), 61);
        for (int i = 0; i < mean.size(); ++i) {
            QCOMPARE(mean.value(i), expected.spectrum.value(i));
        }
        press("MeanSpectrum", panel());
        m_body->clearI1Files();
        QCoreApplication::processEvents();
        QCOMPARE(kept().size(), 1);
        QTRY_VERIFY(!control<QAbstractButton>("MeanSpectrum", panel())->isEnabled());
    }

    void handlesAreDragged() {
        HistogramView* view = panel()->histogram();
        QSignalSpy dragged(view, &HistogramView::rangeDragged);
        QTest::keyClick(view, Qt::Key_Left);
        QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(dragged.count(), 2);
        QVERIFY(view->low() > fractionOfA(2, 1) - 1e-3 && view->high() < fractionOfA(7, 5) + 1e-3);
        QVERIFY(view->low() < view->high());
        // Ends of a range about 0 move together.
        m_body->measurement().set(&Settings::views, [this] {
            MapViews views = m_body->measurement().settings().views;
            views[ResultId::Ratio].colors.scale = colorScaleOf("vik");
            return views;
        }());
        const double before = view->high();
        QTest::keyClick(view, Qt::Key_Left);
        QVERIFY(view->high() < before);
        QCOMPARE(view->low(), -view->high());
        const auto coloring =
            coloringOf(m_body->measurement(), *m_body->measurement().shownResult());
        QCOMPARE(coloring.high, view->high());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestAreaPane)
#include "tst_areapane.moc"
