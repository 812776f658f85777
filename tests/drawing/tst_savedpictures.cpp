#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "Edges.h"
#include "Files.h"
#include "TestMain.h"
#include "drawing/BarPicture.h"
#include "drawing/PlotPicture.h"
#include "drawing/SpectrumPlot.h"
#include "files/PictureFile.h"

namespace {

// In the environment: the program saves its pictures there and ends.
constexpr char SaveOnly[] = "TST_SAVE_PICTURES";

BarPicture parts(const QSize& size, const ColorScale& colors) {
    BarPicture result;
    result.picture = QImage(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            result.picture.setPixel(x, y, qRgb(x % 256, y % 256, (x + 7 * y) % 256));
        }
    }
    result.colors = &colors;
    result.low = -0.25;
    result.high = 1234.5;
    result.title = "Share of the reference";
    result.source = "oxide.dat";
    result.unit = "share";
    return result;
}

SpectrumPlot plot() {
    SpectrumPlot result;
    result.sample = SpectrumPlot::Named{edges::reference(0.2), QString::fromUtf8("位置"), true,
                                        QColor(), "Position (3, 4)"};
    result.standard = SpectrumPlot::Named{edges::reference(0.4), "standard.dat"};
    result.fit = edges::reference(0.1);
    result.raEnergy = 7050;
    return result;
}

void save(const QString& dir) {
    BarPicture bar = parts(QSize(16, 16), heatScale());
    bar.source = QString(200, 'W') + ".dat";
    QVERIFY(writePicture(dir + "/bar.png", withColorBar(bar)));
    QVERIFY(writePlot(dir + "/plot.png", plot()));
}

// Where two pictures differ from a column on, by more than letters do that move by a hundredth of a
// pixel.
QRect difference(const QImage& a, const QImage& b, int from) {
    QRect area;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = from; x < a.width(); ++x) {
            if (std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 24) {
                area |= QRect(x, y, 1, 1);
            }
        }
    }
    return area;
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

class SavedPicturesTest : public QObject {
    Q_OBJECT

  private slots:
    void readsBack_data() {
        columns<QSize, bool, int>("size", "isGrey", "scale");
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
        const BarPicture wanted = parts(size, isGrey ? greyScale() : heatScale());
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

    void endsOfTheBarAreThoseOfTheRange() {
        BarPicture wanted = parts(QSize(16, 16), heatScale());
        wanted.low = 100.001;
        wanted.high = 999.991;
        const QImage image = withColorBar(wanted);
        const QRect map(barPictureOrigin(wanted), QSize(480, 480));
        const int numbers = barColumn(image, map, Qt::white) + 23;  // right of the ticks
        for (bool upper : {true, false}) {
            BarPicture other = wanted;
            (upper ? other.high : other.low) += 0.007;  // another last digit
            const QImage changed = withColorBar(other);
            QCOMPARE(changed.size(), image.size());
            const QRect area = difference(image, changed, numbers);
            QVERIFY(!area.isEmpty() && area.width() < 12 && area.height() < 20);
            QVERIFY(std::abs(area.center().y() - (upper ? map.top() : map.bottom())) < 10);
        }
    }

    /// Not of the platform's font, its resolution, nor the colours and the language of a window.
    void savedPicturesDependOnTheirPartsAlone() {
        QTemporaryDir here;
        save(here.path());
        QTemporaryDir there;
        QProcess other;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_FONT_DPI", "200");
        environment.insert("QT_SCALE_FACTOR", "2");
        environment.insert(SaveOnly, there.path());
        other.setProcessEnvironment(environment);
        other.start(QCoreApplication::applicationFilePath(), QStringList());
        QVERIFY(other.waitForFinished() && other.exitCode() == 0);
        for (const char* name : {"/bar.png", "/plot.png"}) {
            QVERIFY(contentOf(here.path() + name).size() > 5000);
            QVERIFY2(contentOf(here.path() + name) == contentOf(there.path() + name), name);
        }
        SpectrumPlot seen = plot();
        seen.colors = {Qt::white, Qt::black, Qt::red};
        seen.texts.fit = seen.texts.residual = seen.texts.abscissas[0] = "?";
        QVERIFY(writePlot(here.filePath("seen.png"), seen));
        QVERIFY(contentOf(here.filePath("seen.png")) == contentOf(here.filePath("plot.png")));
    }

    void anyRangeAndText_data() {
        columns<double, double>("low", "high");
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
        BarPicture wanted = parts(QSize(20, 10), heatScale());
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

int main(int argc, char** argv) {
    initGlobals();
    QGuiApplication app(argc, argv);
    if (qEnvironmentVariableIsSet(SaveOnly)) {
        QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Serif"), 30, QFont::Bold, true));
        save(qEnvironmentVariable(SaveOnly));
        return 0;
    }
    SavedPicturesTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_savedpictures.moc"
