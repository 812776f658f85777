#include <QGuiApplication>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "TestMain.h"
#include "drawing/BarPicture.h"
#include "files/PictureFile.h"
#include "output/ResultWriter.h"

namespace {

BarPicture parts(const QSize& size, bool isGrey) {
    BarPicture result;
    result.picture = QImage(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            result.picture.setPixel(x, y, qRgb(x % 256, y % 256, (x + 7 * y) % 256));
        }
    }
    result.isGrey = isGrey;
    result.low = -0.25;
    result.high = 1234.5;
    result.title = "Share of the reference";
    result.source = "oxide.dat";
    result.unit = "share";
    return result;
}

// The column of a colour bar beside a picture: from the right edge of the picture on the first one
// whose upper end has this colour.
int barColumn(const QImage& image, const QRect& map, const QColor& high) {
    for (int x = map.right() + 4; x < image.width(); ++x) {
        if (image.pixelColor(x, map.top()) == high && image.pixelColor(x, map.top() + 40) != high) {
            return x;
        }
    }
    return -1;
}

bool isBlank(const QImage& image, const QRect& area) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::white)) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace

class TestBarPicture : public QObject {
    Q_OBJECT

  private slots:
    void readsBack_data() {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("isGrey");
        QTest::addColumn<int>("scale");
        QTest::newRow("small map") << QSize(16, 16) << false << 30;
        QTest::newRow("one pixel") << QSize(1, 1) << true << 480;
        QTest::newRow("frame") << QSize(600, 300) << true << 1;
        QTest::newRow("upright") << QSize(3, 200) << false << 2;
        QTest::newRow("a line") << QSize(1500, 2) << false << 1;
    }

    void readsBack() {
        QFETCH(QSize, size);
        QFETCH(bool, isGrey);
        QFETCH(int, scale);
        const BarPicture wanted = parts(size, isGrey);
        QTemporaryDir dir;
        const QString name = dir.filePath("map.png");
        QVERIFY(writePicture(name, withColorBar(wanted)));
        const QImage image(name);

        QCOMPARE(barPictureScale(size), scale);
        const QRect map(barPictureOrigin(wanted), size * scale);
        QVERIFY(image.rect().contains(map));
        for (int y = 0; y < map.height(); ++y) {
            for (int x = 0; x < map.width(); ++x) {
                QCOMPARE(image.pixel(map.left() + x, map.top() + y),
                         wanted.picture.pixel(x / scale, y / scale));
            }
        }

        const QColor high(Qt::white);
        const int bar = barColumn(image, map, high);
        QVERIFY(bar > map.right());
        int foot = map.top();
        while (foot + 1 < image.height() && image.pixelColor(bar, foot) != QColor(Qt::black)) {
            ++foot;
        }
        QVERIFY(foot - map.top() >= 100);  // a thin map has a bar to be read, too
        if (!isGrey) {
            const QColor middle = image.pixelColor(bar, (map.top() + foot) / 2);
            QVERIFY(middle.red() == 255 && middle.green() > 60 && middle.blue() == 0);
        }
        // The title above, the texts beside, and no letter cut off at an edge.
        QVERIFY(!isBlank(image, QRect(0, 0, image.width(), map.top() - 4)));
        QVERIFY(!isBlank(image, QRect(QPoint(bar + 40, 0), image.rect().bottomRight())));
        QVERIFY(isBlank(image, QRect(0, 0, image.width(), 4)));
        QVERIFY(isBlank(image, QRect(0, image.height() - 4, image.width(), 4)));
        QVERIFY(isBlank(image, QRect(image.width() - 4, 0, 4, image.height())));
    }

    void anyRangeAndText_data() {
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        const double no = std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("equal") << 3.0 << 3.0;
        QTest::newRow("no values") << 1e300 << -1e300;
        QTest::newRow("no numbers") << no << no;
        QTest::newRow("huge") << -1e300 << 1e300;
        QTest::newRow("tiny") << 1e-300 << 2e-300;
    }

    void anyRangeAndText() {
        QFETCH(double, low);
        QFETCH(double, high);
        BarPicture wanted = parts(QSize(20, 10), false);
        wanted.low = low;
        wanted.high = high;
        wanted.title = QString(5000, 'W');
        wanted.source.clear();
        wanted.unit.clear();
        const QImage image = withColorBar(wanted);
        QVERIFY(!image.isNull() && image.width() < 2000);
        QVERIFY(isBlank(image, QRect(image.width() - 4, 0, 4, image.height())));
        wanted.picture = QImage();
        QVERIFY(withColorBar(wanted).isNull());
    }
};

TARNWICK_TEST_MAIN(QGuiApplication, TestBarPicture)
#include "tst_barpicture.moc"
