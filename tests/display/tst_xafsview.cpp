#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "Mouse.h"
#include "TestMain.h"
#include "display/DispA.h"
#include "display/XafsView.h"

namespace {

constexpr int Points = 151;

/// An edge at 7100 eV from 7000 to 7300 eV.
XafsSpectrum edge(double height = 1.0) {
    Spectrum raw;
    for (int i = 0; i < Points; ++i) {
        const double e = 7000.0 + 2.0 * i;
        raw.append(e, 0.2 + height * 0.5 * (1.0 + std::tanh((e - 7100.0) / 4.0)));
    }
    return XafsSpectrum(raw, XafsSpectrum::Simple, 0.0);
}

int count(const QImage& grab, const QColor& color, const QRect& where) {
    int n = 0;
    for (int y = where.top(); y <= where.bottom(); ++y) {
        for (int x = where.left(); x <= where.right(); ++x) {
            const QColor c = grab.pixelColor(x, y);
            n += std::abs(c.red() - color.red()) < 40 && std::abs(c.green() - color.green()) < 40 &&
                 std::abs(c.blue() - color.blue()) < 40;
        }
    }
    return n;
}

}  // namespace

class TestXafsView : public QObject {
    Q_OBJECT

  private:
    struct Fixture {
        Fixture() {
            view.resize(720, 480);
            view.show();
            canvas = view.findChild<DispA*>("Canvas");
            ordinate = view.findChild<QComboBox*>("Ordinate");
            abscissa = view.findChild<QComboBox*>("Abscissa");
            readOut = view.findChild<QLabel*>("ReadOut");
        }
        QImage grab() { return canvas->grab().toImage(); }
        QStringList readAt(const QPointF& at) {
            mouse::move(canvas, at);
            return readOut->text().split(' ', Qt::SkipEmptyParts);
        }
        /// Points on the left and right side of the frame.
        QPointF left() { return QPointF(side(1), 100); }
        QPointF right() { return QPointF(side(-1), 100); }
        int side(int step) {
            const QImage picture = grab();
            const int y = picture.height() / 2;
            const auto isFrame = [&](int x) {
                for (int dy = -60; dy < 60; ++dy) {
                    if (qGray(picture.pixel(x, y + dy)) > 60) {
                        return false;
                    }
                }
                return true;
            };
            int x = step > 0 ? 0 : picture.width() - 1;
            while (picture.valid(x, y) && !isFrame(x)) {
                x += step;
            }
            return x;
        }
        XafsView view;
        DispA* canvas = nullptr;
        QComboBox* ordinate = nullptr;
        QComboBox* abscissa = nullptr;
        QLabel* readOut = nullptr;
    };

    static QStringList lines(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly | QIODevice::Text)
                   ? QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)
                   : QStringList();
    }

  private slots:
    void whatIsShownIsDrawnInItsColour() {
        Fixture f;
        QSignalSpy updated(&f.view, &XafsView::updated);
        QVERIFY(!f.view.hasCurves());
        QCOMPARE(count(f.grab(), getColor(2), f.canvas->rect()), 0);
        f.view.setSample(edge(), "sample");
        f.view.setStandard(edge(0.8), "/data/standard.dat");
        f.view.setReferences({{edge(), "shown", true, getColor(4)},
                              {edge(), "hidden", false, getColor(7)},
                              {XafsSpectrum(), "empty", true, getColor(8)}});
        QCOMPARE(updated.size(), 3);
        QVERIFY(f.view.hasCurves());
        for (int i = 0; i < f.ordinate->count(); ++i) {
            f.ordinate->setCurrentIndex(i);
            const QImage grab = f.grab();
            QVERIFY(count(grab, getColor(4), f.canvas->rect()) > 100);
            QCOMPARE(count(grab, getColor(7), f.canvas->rect()), 0);
            QCOMPARE(count(grab, getColor(8), f.canvas->rect()), 0);
        }
        f.view.clearSample();
        f.view.clearStandard();
        f.view.setReferences({});
        QVERIFY(!f.view.hasCurves());
    }

    void theFitIsDrawnOverTheDoubleNormalizedSeriesOnly() {
        Fixture f;
        f.view.setSample(edge(), "sample");
        f.view.setFit(edge());
        const QRect all = f.canvas->rect();
        f.ordinate->setCurrentIndex(2);
        QVERIFY(count(f.grab(), getColor(0), all) > 100);
        f.ordinate->setCurrentIndex(0);
        QCOMPARE(count(f.grab(), getColor(0), all), 0);
        f.ordinate->setCurrentIndex(2);
        f.view.clearFit();
        QCOMPARE(count(f.grab(), getColor(0), all), 0);
    }

    void backgroundsAreShownUnderMuTOnDemand() {
        Fixture f;
        f.view.setReferences({{edge(), "r", true, getColor(4)}});
        f.ordinate->setCurrentIndex(0);
        const int with = count(f.grab(), getColor(4), f.canvas->rect());
        f.view.findChild<QCheckBox*>("Backgrounds")->click();
        QVERIFY(count(f.grab(), getColor(4), f.canvas->rect()) < with - 100);
    }

    void theReadOutFollowsTheMouseInEveryUnit_data() {
        QTest::addColumn<int>("unit");
        QTest::addColumn<double>("low");  // the values at the left and right end of the data
        QTest::addColumn<double>("high");
        QTest::addColumn<QString>("name");
        QTest::newRow("eV") << 0 << 7000.0 << 7300.0 << "eV";
        QTest::newRow("keV") << 1 << 7.0 << 7.3 << "keV";
        QTest::newRow("A") << 2 << 12398.424360387684 / 7300 << 12398.424360387684 / 7000 << "A";
        QTest::newRow("deg, d = 2") << 3 << 25.119 << 26.285 << "deg";
    }
    void theReadOutFollowsTheMouseInEveryUnit() {
        QFETCH(int, unit);
        QFETCH(double, low);
        QFETCH(double, high);
        QFETCH(QString, name);
        Fixture f;
        f.view.setCrystalSpacing(2.0);
        QVERIFY(f.readAt(QPointF(300, 100)).isEmpty());
        f.view.setSample(edge(), "sample");
        f.abscissa->setCurrentIndex(unit);
        f.grab();
        const QStringList left = f.readAt(f.left());
        QCOMPARE(left.size(), 3);
        QCOMPARE(left[1], name);
        QVERIFY(std::abs(left[0].toDouble() - low) < 1e-3 * low);
        const QStringList right = f.readAt(f.right());
        QVERIFY(std::abs(right[0].toDouble() - high) < 1e-3 * high);
    }

    void energiesAreThoseInUse() {
        Fixture f;
        XafsSpectrum sample = edge();
        sample.setEnergyCorrection(100.0);
        f.view.setSample(sample, "sample");
        f.grab();
        QVERIFY(std::abs(f.readAt(f.left())[0].toDouble() - 6900.0) < 1.0);
        XafsSpectrum reference = edge();
        reference.setShift(50.0);
        reference.setShiftOn(true);
        f.view.clearSample();
        f.view.setReferences({{reference, "r", true, getColor(4)}});
        f.grab();
        QVERIFY(std::abs(f.readAt(f.left())[0].toDouble() - 6950.0) < 1.0);
    }

    void energiesThatTheCrystalCannotReachAreLeftOut() {
        Fixture f;
        f.view.setSample(edge(), "sample");
        f.abscissa->setCurrentIndex(3);
        f.view.setCrystalSpacing(0.86);  // nothing below 7208 eV
        f.grab();
        QVERIFY(f.readAt(f.left())[0].toDouble() > 70.0);
        f.view.setCrystalSpacing(0.0);
        f.grab();
    }

    void aDragMagnifiesAndADoubleClickResets() {
        Fixture f;
        f.view.setSample(edge(), "sample");
        f.grab();
        const double from = f.readAt(QPointF(200, 100))[0].toDouble();
        const double to = f.readAt(QPointF(400, 300))[0].toDouble();
        mouse::drag(f.canvas, QPointF(200, 100), QPointF(400, 300));
        f.grab();
        const QPointF right = f.right();
        QVERIFY(std::abs(f.readAt(f.left())[0].toDouble() - from) < 1.0);
        QVERIFY(std::abs(f.readAt(right)[0].toDouble() - to) < 1.0);
        f.view.setSample(edge(0.5), "the next position");  // stays magnified
        f.grab();
        QVERIFY(std::abs(f.readAt(right)[0].toDouble() - to) < 1.0);
        mouse::doubleClick(f.canvas, QPointF(300, 200));
        f.grab();
        QVERIFY(std::abs(f.readAt(right)[0].toDouble() - 7300.0) < 1.0);
        mouse::click(f.canvas, QPointF(300, 200));  // a click is no drag
        f.grab();
        QVERIFY(std::abs(f.readAt(right)[0].toDouble() - 7300.0) < 1.0);
        Fixture empty;
        mouse::drag(empty.canvas, QPointF(200, 100), QPointF(400, 300));
        empty.view.setSample(edge(), "sample");
        empty.grab();
        QVERIFY(std::abs(empty.readAt(right)[0].toDouble() - 7300.0) < 1.0);
    }

    void everyShownSpectrumIsSaved() {
        QTemporaryDir dir;
        const QString name = dir.filePath("50%2 spectra.x.dat");
        Fixture f;
        QVERIFY(!f.view.saveData(name));
        QVERIFY(!QFile::exists(name));
        XafsSpectrum sample = edge();
        sample.setEnergyCorrection(1.5);
        f.view.setSample(sample, "sample");
        f.view.setStandard(edge(0.8), "standard");
        f.view.setReferences(
            {{edge(), "hidden", false, getColor(4)}, {edge(0.3), "shown", true, getColor(4)}});
        QVERIFY(f.view.saveData(name));
        const QStringList first = lines(name);
        QCOMPARE(first.size(), Points + 2);
        QCOMPARE(first[2].split('\t').size(), 5);
        QCOMPARE(first[2].section('\t', 0, 0).toDouble(), 6998.5);
        QVERIFY(QFile::exists(dir.filePath("50%2 spectra.x-1.dat")));
        QVERIFY(
            std::abs(
                lines(dir.filePath("50%2 spectra.x-2.dat")).last().section('\t', 2, 2).toDouble() -
                0.5) < 1e-3);
        QVERIFY(!QFile::exists(dir.filePath("50%2 spectra.x-3.dat")));
        f.view.findChild<QCheckBox*>("Corrected")->click();
        QVERIFY(f.view.saveData(name));
        QCOMPARE(lines(name)[2].section('\t', 0, 0).toDouble(), 7000.0);
        QVERIFY(!f.view.saveData(dir.filePath("missing/spectra.dat")));
    }

    void oddSpectraDoNoHarm() {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        Spectrum onePoint;
        onePoint.append(7112.0, 1.0);
        Spectrum flat;
        Spectrum noNumbers;
        Spectrum huge;
        for (int i = 0; i < 30; ++i) {
            flat.append(7100.0 + i, 1.0);
            noNumbers.append(7100.0 + i, nan);
            huge.append(i, i % 2 ? 1e308 : -1e308);
        }
        Fixture f;
        f.view.setRaEnergy(7110.0);
        for (const Spectrum& raw : {onePoint, flat, noNumbers, huge, Spectrum()}) {
            f.view.setSample(XafsSpectrum(raw, XafsSpectrum::Simple, 0.0), "sample");
            f.view.setFit(XafsSpectrum(raw, XafsSpectrum::Simple, nan));
            for (int y = 0; y < f.ordinate->count(); ++y) {
                f.ordinate->setCurrentIndex(y);
                f.abscissa->setCurrentIndex(y % f.abscissa->count());
                f.grab();
                f.readAt(QPointF(200, 100));
                mouse::drag(f.canvas, QPointF(200, 100), QPointF(300, 200));
                f.grab();
            }
        }
        f.view.resize(10, 10);
        f.grab();
    }
};

TARNWICK_TEST_MAIN(QApplication, TestXafsView)
#include "tst_xafsview.moc"
