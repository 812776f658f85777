#include <QAction>
#include <QCheckBox>
#include <QImage>
#include <QTemporaryDir>
#include <QToolButton>
#include <memory>

#include "BatchRun.h"
#include "Controls.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"

namespace {

constexpr int Size = 5;
constexpr double Drift = 0.5;    // eV a column
constexpr double Glitch = 60.0;  // eV, at one pixel

}  // namespace

/// What a user reaches with buttons and dialogs alone: each does its own work in the whole window.
class TestButtons : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Body> m_body;
    QTemporaryDir m_dir;

    QString file(const QString& name) const { return m_dir.filePath(name); }

    void run(const QStringList& lines) {
        BatchRun batch(*m_body);
        QVERIFY(batch.succeeds(lines));
    }

    static void choose(const char* button, const QString& name) {
        press(button);
        answer({name});
    }

    static QObject* list(const char* panel) { return control<QWidget>(panel); }
    void chooseFrames(const char* panel, const QStringList& names, bool add) {
        control<QCheckBox>("AddFiles", list(panel))->setChecked(add);
        emit list(panel)->findChild<QFileDialog*>()->filesSelected(names);
    }
    static QString count(const char* panel) { return textOf("Count", list(panel)); }

    double shiftAt(int x, int y) {
        m_body->showXafsSpectrum(x, y);
        return textOf("EShiftOnTbl").toDouble();
    }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.width = options.height = Size;
        options.energies = 151;
        options.fractionOfA = [](int x, int) { return 0.2 * x; };
        options.energyShift = [](int x, int y) { return x == 2 && y == 2 ? Glitch : Drift * x; };
        m_phantom = std::make_unique<Phantom>(options);
    }

    void init() {
        m_body = std::make_unique<Body>();
        m_body->show();
        run(m_phantom->loadAndSetReferences() +
            QStringList{"calib_load_std " + m_phantom->file("a.dat")});
    }
    void cleanup() { m_body.reset(); }

    void aWindowOpensByItsButton_data() {
        QTest::addColumn<QStringList>("windows");
        QTest::newRow("ShowXafsView") << QStringList{"Spectrum"};
        QTest::newRow("OpenCalibCtrl") << QStringList{"CalibCtrl"};
        QTest::newRow("ShowAnalyzer") << QStringList{"Analyzer", "AnalyzingSpectrum"};
        QTest::newRow("BatchCtrlB") << QStringList{"BatchCtrl"};
        QTest::newRow("SaveDataCfgB") << QStringList{"SaveDataCfg"};
    }

    void aWindowOpensByItsButton() {
        QFETCH(QStringList, windows);
        const auto shown = [this] {
            QSet<QString> names;
            for (const char* name : {"Spectrum", "CalibCtrl", "Analyzer", "AnalyzingSpectrum",
                                     "BatchCtrl", "SaveDataCfg", "Messages"}) {
                if (isPanelOpen(*control<QWidget>(name, m_body.get()))) {
                    names << name;
                }
            }
            return names;
        };
        const QSet<QString> before = shown();
        press(QTest::currentDataTag());
        QStringList opened = (shown() - before).values();
        opened.sort();
        QCOMPARE(opened, windows);
    }

    void savedIsWhatTheButtonSays() {
        run({"analyzer_set_LCF_std 2 0 0.0 " + m_phantom->file("a.dat") + " 0", "analyzer_exec_LCF",
             "analyzer_select_image 0", "select_disp_image 0", "move_position 1 1"});
        choose("SaveImage", file("plain.png"));
        QCOMPARE(QImage(file("plain.png")).size(), QSize(Size, Size));
        choose("SaveImageWithBar", file("bar.png"));
        QVERIFY(QImage(file("bar.png")).width() > Size);
        choose("SaveAllImages", file("all.png"));
        QVERIFY(!QFile::exists(file("all.png")));
        QCOMPARE(QDir(m_dir.path()).entryList({"all-*.png"}, QDir::Files, QDir::Name),
                 (QStringList{"all-0-0.png", "all-0-1.png", "all-1-0.png", "all-1-1.png"}));
        choose("SaveXAFSSpectra", file("spectra.dat"));
        QVERIFY(contentOf(file("spectra.dat")).startsWith("###Tarnwick::XafsSpectrum"));
        choose("SaveData", file("map.tif"));
        QVERIFY(contentOf(file("map.tif")).startsWith("II*"));
    }

    void aStackIsReplacedExtendedAndClearedAlone_data() {
        // frames: of the other one
        columns<QByteArray, QByteArray, QString, QString>("panel", "other", "prefix", "frames");
        QTest::newRow("I1") << QByteArray("SelectI1Files") << QByteArray("SelectI0Files") << "i1"
                            << "61";
        QTest::newRow("I0") << QByteArray("SelectI0Files") << QByteArray("SelectI1Files") << "i0"
                            << "151";
    }

    void aStackIsReplacedExtendedAndClearedAlone() {
        QFETCH(QByteArray, panel);
        QFETCH(QByteArray, other);
        QFETCH(QString, prefix);
        QFETCH(QString, frames);
        const QString name = m_phantom->file(prefix + "-7000_000eV.tif");
        chooseFrames(panel, {name}, false);
        QTRY_COMPARE(count(panel), QString("1"));
        chooseFrames(panel, {name, name}, true);
        QTRY_COMPARE(count(panel), QString("3"));
        QTRY_VERIFY(!control<QToolButton>("StopLoading")->isVisible());
        press("Clear", list(panel));
        QCOMPARE(count(panel), QString("0"));
        QCOMPARE(count(other), frames);
        QCOMPARE(m_body->measurement().imageSize().width(), panel == "SelectI1Files" ? -1 : Size);
    }

    void bothLoadsAreStopped() {
        QStringList names;
        for (int i = 0; i < 200; ++i) {
            names << m_phantom->file("i0-7000_000eV.tif");
        }
        chooseFrames("SelectI1Files", names, false);
        chooseFrames("SelectI0Files", names, false);
        auto* stop = control<QToolButton>("StopLoading");
        QTRY_VERIFY(stop->isVisible());
        stop->click();
        QTRY_VERIFY(!stop->isVisible());
        QVERIFY(count("SelectI1Files").toInt() < 200);
        QVERIFY(count("SelectI0Files").toInt() < 200);
    }

    void theCalibrationWindowMakesKeepsAndClearsTheMap() {
        auto* asImage = m_body->findChild<QAction*>("actionSaveMapImage");
        QVERIFY(!asImage->isEnabled() && asImage->toolTip().contains("no energy-shift map"));
        press("ExecCalib");
        QTRY_VERIFY(std::abs(shiftAt(4, 1) - shiftAt(0, 1)) > 1.0);
        QVERIFY(std::abs(shiftAt(2, 2)) > 0.8 * Glitch);
        choose("SaveMap", file("map.emp"));
        QVERIFY(contentOf(file("map.emp")).startsWith("###Tarnwick::TWEM"));
        asImage->trigger();
        answer({file("map.image")});
        // Of the map for good: nothing else is processed by it.
        press("NormalizeEShift");
        QTRY_VERIFY(std::abs(shiftAt(2, 2)) < 5.0);
        const double kept = shiftAt(4, 1);
        press("ClearMap");
        QCOMPARE(shiftAt(4, 1), 0.0);
        choose("LoadMap", file("map.emp"));
        QTRY_VERIFY(std::abs(shiftAt(4, 1) - kept) < 0.02);
        press("ClearMap");
        choose("LoadMap", file("map.image.tif"));
        QTRY_VERIFY(std::abs(shiftAt(4, 1) - kept) < 0.02);
        QVERIFY(std::abs(shiftAt(2, 2)) > 0.8 * Glitch);
    }

    void theBackgroundOfTheTargetIsThatOfItsSpectra() {
        const auto saved = [this] {
            run({"move_position 1 1", "save_spectra " + file("background.dat")});
            return contentOf(file("background.dat"));
        };
        const QByteArray simple = saved();
        press("TargetBGVictreen");
        QVERIFY(saved() != simple);
        press("TargetBGSimple");
        QCOMPARE(saved(), simple);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestButtons)
#include "tst_buttons.moc"
