#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "Files.h"
#include "Mouse.h"
#include "TestMain.h"
#include "display/DispA.h"
#include "display/XafsView.h"
#include "drawing/PlotPicture.h"

namespace {

constexpr double Edge = 7112.0;

// An edge of a given height on a sloping background.
XafsSpectrum edge(double height, double correction = 0.0) {
    Spectrum measured;
    for (double e = Edge - 100; e <= Edge + 200; e += 2.0) {
        measured.append(e, 0.2 + 1e-4 * (e - Edge) + height / (1 + std::exp(-(e - Edge) / 3)));
    }
    return XafsSpectrum(measured, XafsSpectrum::Simple, correction);
}

// A fit that misses the sample's double normalized values by a constant.
XafsSpectrum fitOf(const XafsSpectrum& sample, double miss) {
    Spectrum points;
    const Spectrum& values = sample.doubleNormalizedPreBase();
    for (int i = 0; i < values.size(); ++i) {
        points.append(sample.correctedEnergy(i), values.value(i) - miss);
    }
    return XafsSpectrum(points, XafsSpectrum::Simple, 0.0);
}

double lastMuT(const QString& name) {
    const QList<QByteArray> columns = rowsOf(name).value(rowsOf(name).size() - 1).split('\t');
    return columns.size() == 5 ? columns[2].toDouble() : -1.0;
}

double firstEnergy(const QString& name) {
    return rowsOf(name).value(0).split('\t').first().toDouble();
}

struct View : XafsView {
    View() {
        resize(720, 480);
        show();
        grab();
    }
    DispA* canvas() { return findChild<DispA*>("Canvas"); }
    QComboBox* ordinate() { return findChild<QComboBox*>("Ordinate"); }
    QComboBox* abscissa() { return findChild<QComboBox*>("Abscissa"); }
    QString readOutAt(const QPointF& at) {
        Mouse::move(canvas(), at);
        return findChild<QLabel*>("ReadOut")->text();
    }
    // Energy read at a place, in the unit shown.
    double energyAt(const QPointF& at) { return readOutAt(at).section(' ', 0, 0).toDouble(); }
};

}  // namespace

// The spectrum plot: what it saves, reads out and survives.
class XafsViewTest : public QObject {
    Q_OBJECT

  private slots:
    void savesWhatIsShown() {
        QTemporaryDir dir;
        View view;
        view.setSample(edge(1.0), "Sample");
        view.setStandard(edge(2.0), "/some/where/standard.dat");
        view.setReferences(
            {{edge(3.0), "hidden", false, Qt::red}, {edge(4.0), "shown", true, Qt::red}});
        QVERIFY(view.hasCurves());
        QVERIFY(view.saveData(dir.filePath("out.dat")));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files),
                 (QStringList{"out-1.dat", "out-2.dat", "out.dat"}));
        QVERIFY(std::abs(lastMuT(dir.filePath("out.dat")) - 1.22) < 1e-3);
        QVERIFY(std::abs(lastMuT(dir.filePath("out-1.dat")) - 2.22) < 1e-3);
        QVERIFY(std::abs(lastMuT(dir.filePath("out-2.dat")) - 4.22) < 1e-3);
        view.setFit(fitOf(edge(1.0), 0.01));  // one shown curve more, after the sample
        QVERIFY(view.saveData(dir.filePath("fit.dat")));
        QCOMPARE(QDir(dir.path()).entryList({"fit*"}, QDir::Files).size(), 4);
        QVERIFY(std::abs(lastMuT(dir.filePath("fit-2.dat")) - 2.22) < 1e-3);
        view.clearSample();
        QVERIFY(view.saveData(dir.filePath("rest.dat")));  // the standard comes first then
        QVERIFY(std::abs(lastMuT(dir.filePath("rest.dat")) - 2.22) < 1e-3);
    }

    void correctedOnDemand() {
        QTemporaryDir dir;
        View view;
        view.setSample(edge(1.0, 1.5), "Sample");
        auto* corrected = view.findChild<QAbstractButton*>("Corrected");
        QVERIFY(corrected->isChecked());
        QVERIFY(view.saveData(dir.filePath("corrected.dat")));
        corrected->setChecked(false);
        QVERIFY(view.saveData(dir.filePath("raw.dat")));
        QCOMPARE(firstEnergy(dir.filePath("corrected.dat")), Edge - 101.5);
        QCOMPARE(firstEnergy(dir.filePath("raw.dat")), Edge - 100.0);
    }

    void pinnedStayAndAreSaved() {
        QTemporaryDir dir;
        View view;
        auto* pin = view.findChild<QAction*>("PinSpectrum");
        QVERIFY(!pin->isEnabled());
        view.setStandard(edge(9.0), "standard");
        for (int i = 1; i <= XafsView::MostPinned; ++i) {
            view.setSample(edge(i), QString("Position (%1, 0)").arg(i));
            QVERIFY(pin->isEnabled());
            view.pinAction()->trigger();
        }
        QVERIFY(!pin->isEnabled());
        view.pinSpectrum();  // one too many
        view.clearSample();
        view.removePinned(0);
        view.removePinned(-1);
        view.removePinned(XafsView::MostPinned);
        QVERIFY(!view.grab().isNull());
        QVERIFY(view.saveData(dir.filePath("out.dat")));  // after the standard
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), XafsView::MostPinned);
        QVERIFY(std::abs(lastMuT(dir.filePath("out.dat")) - 9.22) < 1e-3);
        QVERIFY(std::abs(lastMuT(dir.filePath("out-1.dat")) - 2.22) < 1e-3);
        view.clearStandard();
        view.removeAllPinned();
        QVERIFY(!view.hasCurves());
    }

    void savesThePlot() {
        QTemporaryDir dir;
        View view;
        view.setSample(edge(1.0), QString::fromUtf8("\u9244"));
        view.setFit(fitOf(edge(1.0), 0.01));
        const QString picture = dir.filePath("plot.png");
        QTest::ignoreMessage(QtDebugMsg, qPrintable("Saved " + picture));
        QVERIFY(view.savePlot(picture));
        const QImage read(picture);
        QCOMPARE(read.size(), 3 * SavedPlotSize);  // whatever the window's size
        QCOMPARE(read.pixelColor(2, read.height() - 2), QColor(Qt::white));
        QVERIFY(view.savePlot(dir.filePath("plot.pdf")));
        const QByteArray drawing = contentOf(dir.filePath("plot.pdf"));
        QVERIFY(drawing.startsWith("%PDF-1."));
        QVERIFY(drawing.trimmed().endsWith("%%EOF"));
        QVERIFY(!drawing.contains("/Subtype /Image"));  // lines, no picture of them
    }

    void unwritablePlotIsTold() {
        QTemporaryDir dir;
        View view;
        view.setSample(edge(1.0), "Sample");
        for (const char* name : {"none/plot.png", "none/plot.pdf", "plot.none", "plot"}) {
            const QString file = dir.filePath(name);
            QTest::ignoreMessage(QtDebugMsg, qPrintable("cannot be written: " + file));
            QVERIFY(!view.savePlot(file));
        }
        QVERIFY(QDir(dir.path()).isEmpty());
    }

    void emptyPlotWritesNothing() {
        QTemporaryDir dir;
        View view;
        QSignalSpy updated(&view, &XafsView::updated);
        QVERIFY(!view.hasCurves());
        QVERIFY(!view.saveData(dir.filePath("a.dat")));
        view.setSample(XafsSpectrum(), "empty");
        QCOMPARE(updated.count(), 1);
        view.setReferences({{edge(1.0), "hidden", false, Qt::red}});
        QVERIFY(!view.hasCurves());
        QVERIFY(!view.saveData(dir.filePath("a.dat")));
        view.setSample(edge(1.0), "Sample");
        QVERIFY(!view.saveData(dir.filePath("no such directory/a.dat")));
        QVERIFY(QDir(dir.path()).isEmpty());
    }

    void readsInAllUnits() {
        View view;
        view.setSample(edge(1.0), "Sample");
        const QPointF middle(view.canvas()->width() / 2, 100);
        const double expected[] = {7165, 7.165, 1.73, 16.0};  // Si(111)
        const QStringList names{"eV", "keV", "A", "deg"};
        for (int unit = 0; unit < names.size(); ++unit) {
            view.abscissa()->setCurrentIndex(unit);
            view.grab();
            QCOMPARE(view.readOutAt(middle).section(' ', 1, 1), names[unit]);
            QVERIFY(std::abs(view.energyAt(middle) / expected[unit] - 1) < 0.01);
            QVERIFY(view.readOutAt(QPointF(1, 1)).isEmpty());  // outside the axes
        }
        // Another crystal moves the axis in degrees, and what was magnified is no longer there.
        Mouse::drag(view.canvas(), QPointF(200, 80), QPointF(260, 250));
        view.setCrystalSpacing(CrystalTable[1].spacing);
        view.grab();
        QVERIFY(std::abs(view.energyAt(middle) / 31.92 - 1) < 0.01);  // asin(1.73 / 2 / 1.637478)
    }

    void dragZoomsAndDoubleClickResets() {
        View view;
        view.setSample(edge(1.0), "Sample");
        view.grab();
        const QPointF from(200, 80);
        const QPointF to(400, 250);
        const double low = view.energyAt(from);
        const double high = view.energyAt(to);
        QVERIFY(high > low + 50);
        Mouse::drag(view.canvas(), to, from);
        view.grab();
        const double middle = view.energyAt(QPointF(view.canvas()->width() / 2, 150));
        QVERIFY(middle > low && middle < high);
        QVERIFY(std::abs(view.energyAt(from) - low) > 5);
        Mouse::doubleClick(view.canvas(), QPointF(300, 200));
        view.grab();
        QCOMPARE(view.energyAt(from), low);
        Mouse::drag(view.canvas(), from, from + QPointF(2, 2));  // hardly a drag
        view.grab();
        QCOMPARE(view.energyAt(from), low);
    }

    void controlsChooseWhatIsPlotted() {
        View view;
        auto* backgrounds = view.findChild<QAbstractButton*>("Backgrounds");
        for (int i = 0; i < view.ordinate()->count(); ++i) {
            view.ordinate()->setCurrentIndex(i);
            QCOMPARE(int(view.plot().ordinate), i);
            QCOMPARE(backgrounds->isEnabled(), i == SpectrumPlot::MuT);
        }
        backgrounds->setChecked(false);
        QVERIFY(!view.plot().backgrounds);
    }

    void drawsAnything_data() {
        QTest::addColumn<QVector<double>>("values");
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("one point") << QVector<double>{1.0};
        QTest::newRow("flat") << QVector<double>(50, 1.0);
        QTest::newRow("noughts") << QVector<double>(50, 0.0);
        QTest::newRow("no numbers") << QVector<double>(50, nan);
        QTest::newRow("huge") << QVector<double>{-1.7e308, 1.7e308, 0.0, 1e200, -1e300, 1e150};
        QVector<double> gap(60);
        for (int i = 0; i < gap.size(); ++i) {
            gap[i] = i > 30 ? 1.0 : 0.0;
        }
        gap[40] = nan;
        gap[45] = std::numeric_limits<double>::infinity();
        QTest::newRow("gaps") << gap;
    }

    void drawsAnything() {
        QFETCH(QVector<double>, values);
        Spectrum measured;
        for (int i = 0; i < values.size(); ++i) {
            measured.append(7000.0 + 4 * i, values[i]);
        }
        const XafsSpectrum spectrum(measured, XafsSpectrum::Simple, 0.0);
        View view;
        view.setSample(spectrum, QString(500, 'x'));
        view.setFit(spectrum);
        view.setReferences({{spectrum, QString(), true, Qt::red}});
        view.setRaEnergy(std::numeric_limits<double>::infinity());
        view.setCrystalSpacing(0.1);  // no Bragg angle at all
        for (int i = 0; i < view.ordinate()->count(); ++i) {
            for (int unit = 0; unit < view.abscissa()->count(); ++unit) {
                view.ordinate()->setCurrentIndex(i);
                view.abscissa()->setCurrentIndex(unit);
                QVERIFY(!view.grab().isNull());
                Mouse::drag(view.canvas(), QPointF(150, 50), QPointF(300, 200));
                QVERIFY(!view.grab().isNull());
                view.readOutAt(QPointF(200, 100));
            }
        }
    }
};

TARNWICK_TEST_MAIN(QApplication, XafsViewTest)
#include "tst_xafsview.moc"
