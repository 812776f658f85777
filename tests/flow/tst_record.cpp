#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <memory>

#include "BatchRun.h"
#include "Controls.h"
#include "Files.h"
#include "Mouse.h"
#include "Phantom.h"
#include "TestMain.h"
#include "display/ImageView.h"
#include "measurement/Saving.h"
#include "panels/LCFReference.h"

Q_DECLARE_METATYPE(Area)

namespace {

constexpr int Size = 9;
constexpr double Glitch = 40.0;  // eV, at one pixel

struct Saved {
    const char* file;
    const char* press;    // the button that puts it on display
    const char* command;  // the batch line that does
};
constexpr Saved SavedMaps[] = {
    {"shift.tif", "ShowShiftMap", "select_disp_image 2"},
    {"dmut.tif", "SelDMut", "analyzer_select_image_type 0"},
    {"ratio.tif", "SelRatio", "analyzer_select_image_type 1"},
};

}  // namespace

/// What was done with mouse and keyboard is written down, and done again by another program.
class TestRecord : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Body> m_body;

    QString file(const QString& name) const { return m_phantom->file(name); }

    void type(const char* name, const QString& text) {
        auto* field = control<QLineEdit>(name);
        field->window()->activateWindow();
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
    }

    QStringList frames(const QString& pattern) const {
        QStringList names;
        for (const QString& name : QDir(m_phantom->dir()).entryList({pattern}, QDir::Files)) {
            names << file(name);
        }
        return names;
    }

    bool idle() const { return m_body->measurement().working() == Work::None; }

    void loadAndCalibrate() {
        press("Select", control<QWidget>("SelectI1Files"));
        answer(frames("i1-*.tif"));
        press("Select", control<QWidget>("SelectI0Files"));
        answer(frames("i0-*.tif"));
        QTRY_COMPARE(textOf("Count", control<QWidget>("SelectI1Files")), QString("91"));
        QTRY_COMPARE(textOf("Count", control<QWidget>("SelectI0Files")), QString("91"));
        QTRY_VERIFY(!m_body->measurement().isAtWork(Work::LoadI1) &&
                    !m_body->measurement().isAtWork(Work::LoadI0));
        type("HWidth", "1");
        type("VWidth", "0");
        auto* view = control<ImageView>("dispA");
        const auto at = [view](double x, double y) {
            return QPointF(view->coord().r2sX(x), view->coord().r2sY(y));
        };
        Mouse::drag(view, at(1.5, 0.5), at(7.5, 8.5));
        QCOMPARE(m_body->measurement().selection(), QRectF(1, 0, 7, 9));
        press("OpenCalibCtrl");
        press("SelectStd");
        press("Select", control<QWidget>("StdSelector"));
        answer({file("a.dat")});
        press("ExecCalib");
        QTRY_VERIFY(m_body->measurement().map().image.hasData() && idle());
    }

    void fit() {
        press("ShowAnalyzer");
        while (m_body->measurement().referenceCount() < 2) {
            press("AddRef");
        }
        const QStringList names{"a.dat", "b.dat"};
        for (int i = 0; i < names.size(); ++i) {
            press("Select", analyzerWindow()->references()[i]);
            answer({file(names[i])});
        }
        press("AskAnalyze");
        QTRY_VERIFY(idle());
        QVERIFY(!m_body->measurement().results().empty());
    }

    /// Through its entry of the File menu.
    void saveRecord() {
        m_body->findChild<QAction*>("actionSaveRecord")->trigger();
        answer({file("done.bat")});
        QVERIFY(QFile::exists(file("done.bat")));
    }

    struct Again {
        int code = -1;
        QString out;
        QString problems;
    };
    Again runAgain(const QByteArray& batch) {
        put(file("again.bat"), batch);
        QProcess process;
        process.start(TARNWICK_BATCH, {"-C", m_phantom->dir(), file("again.bat")});
        Again again;
        if (process.waitForFinished(50000)) {
            again.code = process.exitCode();
        }
        again.out = QString::fromUtf8(process.readAllStandardOutput());
        again.problems = QString::fromUtf8(process.readAllStandardError());
        return again;
    }

  private slots:
    void init() {
        Phantom::Options options;
        options.width = options.height = Size;
        options.energies = options.i0Energies = 91;
        options.fractionOfA = [](int x, int y) { return 0.1 * x + 0.01 * y; };
        options.energyShift = [](int x, int y) { return x == 4 && y == 4 ? Glitch : 0.3 * x; };
        m_phantom = std::make_unique<Phantom>(options);
        m_body = std::make_unique<Body>();
        m_body->resize(1100, 800);
        m_body->show();
    }
    void cleanup() { m_body.reset(); }

    void sameBytesFromAnotherProgram_data() {
        columns<QString, QString, bool, Area>("e0", "postStart", "unscaled", "area");
        QTest::newRow("as from the start") << "0"
                                           << "10" << false << Area();
        QTest::newRow("mean spectrum") << "1"
                                       << "20" << false << Area::ellipse(1, 0, 9, 9);
        QTest::newRow("an energy") << "7110.5"
                                   << "20.5" << true << Area::polygon({{0, 0}, {9, 1}, {2, 8}});
    }

    void sameBytesFromAnotherProgram() {
        QFETCH(QString, e0);
        QFETCH(QString, postStart);
        QFETCH(bool, unscaled);
        QFETCH(Area, area);
        loadAndCalibrate();
        m_body->measurement().set(&Settings::area, area);
        if (e0.size() > 1) {
            type("E0Energy", e0);
        } else {
            control<QComboBox>("E0Choice")->setCurrentIndex(e0.toInt());
        }
        type("PostStart", postStart);
        press("ShowAnalyzer");
        control<QCheckBox>("Unscaled")->setChecked(unscaled);
        fit();
        press("ShowResAnalysis");
        analyzerWindow()->selectImage(0);
        press("SelRatio");
        type("DeGlitchFactor", "1.5");
        type("DeGlitchRatio", "0.2");
        press("DeGlitch");
        QDir(m_phantom->dir()).mkdir("again");
        QStringList lines;
        for (const Saved& map : SavedMaps) {
            if (QByteArray(map.press) == "SelDMut") {
                press("ShowResAnalysis");
                lines << "select_disp_image 3";
            }
            press(map.press);
            press("SaveData");
            answer({file(map.file)});
            lines << map.command << QString("save_data_as_tiff again/%1").arg(map.file);
        }
        for (const char* name : {"results.h5", "table.csv"}) {
            const QString action = QString(name).endsWith("h5") ? "Results" : "Table";
            m_body->findChild<QAction*>("actionSave" + action)->trigger();
            answer({file(name)});
        }
        lines << "save_table again/table.csv";
        saveRecord();
        const Again again = runAgain(contentOf(file("done.bat")) + lines.join('\n').toUtf8());
        QVERIFY2(again.code == 0, qPrintable(again.out + again.problems));
        const QByteArray done = contentOf(file("done.bat"));
        QCOMPARE(done.contains("set_E0 "), e0 != "0");
        QCOMPARE(done.contains("set_background_ranges "), postStart != "10");
        QCOMPARE(done.contains("analyzer_set_reference_scale "), unscaled);
        const QByteArray origin = contentOf(file("ratio.tif"));
        QCOMPARE(origin.contains("E0 of the mean spectrum = 71"), e0 == "1");
        QVERIFY(origin.contains("background ranges = -100 -10 " + postStart.toUtf8() + " 1000 eV"));
        for (const Saved& map : SavedMaps) {
            const QByteArray first = contentOf(file(map.file));
            QVERIFY2(first.contains("Tarnwick origin 1\n"), map.file);
            QVERIFY2(first == contentOf(file("again/" + QString(map.file))), map.file);
        }
        // A press makes error maps, and so does its record.
        QVERIFY(contentOf(file("table.csv"))
                    .startsWith("x,y,fraction_1,fraction_error_1,jump_1,jump_error_1,fraction_2"));
        QVERIFY(done.contains("\nanalyzer_set_error_maps 1\n"));
        QCOMPARE(contentOf(file("again/table.csv")), contentOf(file("table.csv")));
        Measurement& measurement = m_body->measurement();
        measurement.choose(ResultId::Ratio, 0);
        measurement.set(&Settings::savesMasked, true);
        QVERIFY(!measurement.setMask(5.0).failed());
        MapViews views = measurement.settings().views;  // robust, in the window
        views[ResultId::Ratio].colors = ViewColors{colorScaleOf("viridis"), true};
        measurement.set(&Settings::views, views);
        QVERIFY(!saveImageWithBar(measurement, file("bar.png")).failed());
        views[ResultId::Ratio].range = {MapRange::Kind::Fixed, -0.1, 1.0 / 3.0};
        measurement.set(&Settings::views, views);
        QVERIFY(!saveImage(measurement, file("fixed.png")).failed());
        measurement.set(&Settings::composite, Composite{{-1, 1, 0}});
        QVERIFY(!saveImage(measurement, file("both.png")).failed());
        // A saved map, its picture, or the file with all of them, alone tells as much.
        for (const char* name : {"ratio.tif", "results.h5", "bar.png", "fixed.png", "both.png"}) {
            QProcess record;
            record.start(TARNWICK_BATCH, {"--record", file(name)});
            QVERIFY(record.waitForFinished(50000) && record.exitCode() == 0);
            const QByteArray wanted = contentOf(file(name));
            QVERIFY(QFile::remove(file(name)));
            QCOMPARE(runAgain(record.readAllStandardOutput()).code, 0);
            QVERIFY2(!wanted.isEmpty() && contentOf(file(name)) == wanted, name);
        }
    }

    void whatIsNotAsItWasIsSaid() {
        loadAndCalibrate();
        fit();
        saveRecord();
        const QByteArray record = contentOf(file("done.bat"));
        put(file("b.dat"), contentOf(file("b.dat")).replace('\n', " \n"));
        const Again changed = runAgain(record);
        QCOMPARE(changed.code, 0);
        QVERIFY2(changed.problems.contains("warning: b.dat is not the file that was used"),
                 qPrintable(changed.problems));
        QVERIFY(!changed.problems.contains("a.dat is not"));
        QByteArray newer = record + "fly_to_the_moon 1\n";
        newer.replace("Tarnwick record 1\n", "Tarnwick record 9\n");
        const Again unknown = runAgain(newer);
        QCOMPARE(unknown.code, 1);
        QVERIFY2(unknown.problems.contains("newer version") &&
                     unknown.problems.contains("not known: fly_to_the_moon"),
                 qPrintable(unknown.problems));
    }

    void stoppedAndOlderResultsAreNamedOnly_data() {
        QTest::addColumn<bool>("stops");
        QTest::newRow("stopped") << true;
        QTest::newRow("of other bins") << false;
    }

    void stoppedAndOlderResultsAreNamedOnly() {
        QFETCH(bool, stops);
        loadAndCalibrate();
        fit();
        if (stops) {
            press("AskAnalyze");
            QVERIFY(!idle());
            press("AskAnalyze");  // is Stop now
            QVERIFY(idle());
        } else {
            type("VWidth", "2");
        }
        saveRecord();
        const QByteArray record = contentOf(file("done.bat"));
        const QByteArray remark = record.left(record.indexOf(":rem_end"));
        QVERIFY2(remark.contains("a.dat") && remark.contains("left out:"), record);
        QVERIFY2(remark.contains(stops ? "stopped" : "bins"), record);
        QVERIFY2(!record.contains("analyzer_exec_LCF"), record);
        QVERIFY2(record.contains("calib_exec"), record);
    }

    void closingAsksOnceAboutUnsavedResults() {
        loadAndCalibrate();
        fit();
        QSignalSpy finishing(m_body.get(), &Body::finishing);
        const auto questions = [this] {
            int visible = 0;
            for (const QMessageBox* box : m_body->findChildren<QMessageBox*>()) {
                visible += box->isVisible() ? 1 : 0;
            }
            return visible;
        };
        m_body->close();
        m_body->close();
        QVERIFY(m_body->isVisible() && finishing.isEmpty());
        QCOMPARE(questions(), 1);
        m_body->findChild<QMessageBox*>()->reject();
        saveRecord();
        m_body->close();
        QCOMPARE(questions(), 0);
        QVERIFY(!m_body->isVisible());
        QCOMPARE(finishing.count(), 1);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestRecord)
#include "tst_record.moc"
