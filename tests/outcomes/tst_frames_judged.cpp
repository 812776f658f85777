#include <sys/stat.h>
#include <tiffio.h>

#include <QDateTime>
#include <initializer_list>
#include <utility>

#include "OutcomeCase.h"
#include "TinyStacks.h"
#include "files/OriginText.h"
#include "frames/FrameHeader.h"
#include "frames/TiffFile.h"

namespace {

constexpr int Width = 12;
constexpr int Height = 8;
const char* const Frame = "i1-7305eV.tif";  // joins the 31 of the stack

/// A file of one image of the tags given, its counts 500 everywhere; mode "a" adds an image.
void putTiff(const char* name, const std::initializer_list<std::pair<ttag_t, int>>& tags,
             const char* mode = "w") {
    TIFF* const tiff = TIFFOpen(name, mode);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, Width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, Height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    for (const auto& [tag, value] : tags) {
        TIFFSetField(tiff, tag, value);
    }
    std::vector<quint16> row(4096, 500);
    if (TIFFIsTiled(tiff) != 0) {
        TIFFWriteEncodedTile(tiff, 0, row.data(), TIFFTileSize(tiff));
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 4);
        for (quint32 y = 0; y < Height; ++y) {
            TIFFWriteScanline(tiff, row.data(), y, 0);
        }
    }
    TIFFClose(tiff);
}

QByteArray plainTiff(int width, int height, quint16 count) {
    QByteArray counts;
    for (int i = 0; i < width * height; ++i) {
        counts.append(static_cast<char>(count & 0xFF)).append(static_cast<char>(count >> 8));
    }
    return rawTiff(static_cast<quint32>(width), static_cast<quint32>(height), 16, counts);
}

void putPlain(const QStringList& names, int width = Width, int height = Height,
              quint16 count = 500) {
    for (const QString& name : names) {
        put(name, plainTiff(width, height, count));
        QFile file(name);  // not one that is still being written
        QVERIFY(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(QDateTime::currentDateTime().addSecs(-60),
                                 QFileDevice::FileModificationTime));
    }
}

/// Strips of zeros in place of what a compression made.
void putDamaged() {
    putTiff(Frame, {{TIFFTAG_COMPRESSION, COMPRESSION_LZW}});
    QByteArray content = contentOf(Frame);
    content.replace(8, 40, QByteArray(40, '\0'));
    put(Frame, content);
}

}  // namespace

/// What a stack takes, and what is said of its frames.
class TestFramesJudged : public QObject {
    Q_OBJECT

    OutcomeCases m_cases;

  private slots:
    /// A file that is left out is named with what it is, the others are loaded; its header alone
    /// tells the same, but for what only decoding finds.
    void kinds_data() {
        columns<Make, QString, bool>("make", "kind", "inHeader");
        const auto row = [](const char* kind, const Make& make, bool inHeader = true) {
            QTest::newRow(kind) << make << QString(kind) << inHeader;
        };
        const auto tags = [](std::initializer_list<std::pair<ttag_t, int>> list) -> Make {
            const std::vector<std::pair<ttag_t, int>> kept(list);
            return [kept] {
                kept.size() > 1 ? putTiff(Frame, {kept[0], kept[1]}) : putTiff(Frame, {kept[0]});
            };
        };
        row("32-bit float, not 16-bit counts",
            tags({{TIFFTAG_BITSPERSAMPLE, 32}, {TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP}}));
        row("32 bits a sample, not 16", tags({{TIFFTAG_BITSPERSAMPLE, 32}}));
        row("8 bits a sample, not 16", tags({{TIFFTAG_BITSPERSAMPLE, 8}}));
        row("3 samples a pixel, not 1",
            tags({{TIFFTAG_SAMPLESPERPIXEL, 3}, {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB}}));
        row("signed 16-bit numbers, not counts", tags({{TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_INT}}));
        row("tiled, not in rows", tags({{TIFFTAG_TILEWIDTH, 16}, {TIFFTAG_TILELENGTH, 16}}));
        row("truncated: 3 of 8 rows",
            [] { put(Frame, plainTiff(Width, Height, 500).chopped(5 * Width * 2 - 3)); });
        row("truncated: 0 of 8 rows", [] {
            QByteArray tiff = plainTiff(Width, Height, 500).chopped(1);
            constexpr int Compression = 54;
            tiff[Compression] = COMPRESSION_LZW;
            put(Frame, tiff);
        });
        row("damaged: 0 of 8 rows can be decoded", putDamaged, false);
        row("a strip is announced longer than the file", [] {
            putTiff(Frame, {});  // two strips of 4 rows, their lengths in 16 bits
            const QByteArray lengths("\x60\0\x60\0", 4);
            put(Frame, contentOf(Frame).replace(lengths, QByteArray("\x60\0\x60\x9", 4)));
        });
        row("not a file", [] { QVERIFY(mkfifo(QFile::encodeName(Frame).constData(), 0600) == 0); });
        row("an empty file", [] { put(Frame, ""); });
        row("neither TIFF nor IMG", [] { put(Frame, "7000 1\n"); });
        row("a TIFF file without an image", [] { put(Frame, "II*"); });
        row("an IMG file, whose counts are not read",
            [] { put(Frame, QByteArray("IM") + QByteArray(400, '\0')); });
        row(
            "12 x 9 pixels, the first frame 12 x 8", [] { putPlain({Frame}, 12, 9); }, false);
    }
    void kinds() {
        QFETCH(Make, make);
        QFETCH(QString, kind);
        QFETCH(bool, inHeader);
        const DebugLines unseen;
        QTemporaryDir dir;
        const QString before = QDir::currentPath();
        QDir::setCurrent(dir.path());
        putPlain({"i1-7000eV.tif"});
        make();
        QCOMPARE(frameHeader(Frame).refusal, inHeader ? kind : QString());
        Measurement m;
        Outcome outcome;
        connect(&m, &Measurement::ended, this,
                [&outcome](Work, const Outcome& ended) { outcome = ended; });
        m.load(StackId::I1, {"i1-7000eV.tif", Frame, "i1-7310eV.tif"}, true);
        QTRY_VERIFY(!m.stack(StackId::I1).isLoading() && outcome.failed());
        QDir::setCurrent(before);
        QCOMPARE(outcome.failures.join('|'),
                 QString(Frame) + ": " + kind + "|i1-7310eV.tif: no such file");
        QCOMPARE(m.stack(StackId::I1).size(), 1);
    }

    void frames_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const QString all = "load_I1_files_of_pattern NEW . i1-*.tif";
        const QString only = "load_I1_files_of_pattern NEW . x*.tif";
        add("sound", {}, all, "done", "");
        add(
            "another kind", [] { put(Frame, plainTiff(Width, Height, 5).chopped(30)); }, all,
            "failed", "i1-7305eV.tif: truncated: 6 of 8 rows");
        add(
            "none taken", [] { put("x1eV.tif", "II*"); }, "LOAD\n" + only, "failed",
            "I1: no frame was taken");
        add(
            "nothing is left of before", [] { put("x1eV.tif", "II*"); },
            "LOAD\n" + only + "\ncalib_exec", "failed", "no images are loaded");
        add(
            "I0 of another size", [] { putPlain({"x7000eV.tif"}, 8, 12); },
            "LOAD\nload_I0_files NEW x7000eV.tif\ncalib_exec", "failed",
            "I0 frames have 8 x 12 pixels, the I1 frames 12 x 8");
        add("no I0", {}, "LOAD\nclear_I0_files\nanalyzer_exec_ra", "warning", "no I0 frames");
        add("two energies", {},
            "LOAD\nload_I1_files NEW i1-7000_000eV.tif i1-7010_000eV.tif\nanalyzer_exec_ra",
            "failed", "three energies, the I1 frames have 2");
        add(
            "one without energy", [] { putPlain({"i1-b.tif"}); }, all, "failed",
            "i1-b.tif: no energy in its name");
        add(
            "none with energy",
            [] {
                putPlain({"x1.tif", "x2.tif"});
            },
            only, "warning", "the number of the frame stands for it: x1.tif and 1 more");
        add(
            "a number cut in two", [] { putPlain({"x7112.5eV.tif"}); }, only, "warning",
            "finds only part of a number: 5 eV read from x7112.5eV.tif");
        add(
            "energies in keV",
            [] {
                putPlain({"x7_1eV.tif", "x7_2eV.tif"});
            },
            only, "warning",
            "below 50 eV or above 200 keV: 7.1 eV read from x7_1eV.tif and 1 more");
        add(
            "an energy below the last", [] { putPlain({"x7005eV.tif"}); },
            all + "\nload_I1_files ADD x7005eV.tif", "warning", "do not ascend");
        add(
            "repeated",
            [] {
                putPlain({"x7300eV.tif", "x7300_0eV.tif"});
            },
            all + "\nload_I1_files ADD x7300_0eV.tif x7300eV.tif", "warning",
            "2 frame\\(s\\) with an energy");
        add(
            "marked as white",
            [] {
                putTiff(Frame, {{TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE}});
            },
            all, "warning", "I1: i1-7305eV.tif: .* 0 is marked as white");
        add(
            "several images",
            [] {
                putTiff(Frame, {});
                putTiff(Frame, {}, "a");
            },
            all, "warning", "I1: i1-7305eV.tif: only the first");
        add(
            "dark frames of another size", [] { putPlain({"x.tif"}, 8, 12); },
            "load_dark_files x.tif\nLOAD\nanalyzer_exec_ra", "warning", "1 dark frame\\(s\\)");
        add(
            "no dark frame is left of before", [] { putPlain({"x.tif"}, Width, Height, 60000); },
            "LOAD\nanalyzer_set_ra_energy 7120\nload_dark_files x.tif\n"
            "load_dark_files_of_pattern . y*\nanalyzer_exec_ra",
            "done", "");
        // 4 of 32 x 96 pixels are 0.13 %, 3 are less than 0.1 %.
        const auto saturate = [](int pixels) -> Make {
            return [pixels] {
                QByteArray tiff = plainTiff(Width, Height, 500);
                tiff.replace(tiff.size() - 2 * pixels, 2 * pixels, QByteArray(2 * pixels, '\xff'));
                put(Frame, tiff);
            };
        };
        // tarnwick-batch says it where the counts are read first, the window of the load.
        const QString twice =
            "LOAD\nanalyzer_set_ra_energy 7120\nanalyzer_exec_ra\nanalyzer_exec_ra";
        add("saturated", saturate(4), twice.section('\n', 0, 2), "warning",
            "^warning: I1: 0.13 % of the pixels are saturated[^\n]*$");
        add("saturated, said once", saturate(4), twice, "done", "");
        add("hardly saturated", saturate(3), twice, "done", "");
        add("damaged", putDamaged, twice.section('\n', 0, 2), "failed",
            "^failed: I1: [^ ]*i1-7305eV.tif: damaged: 0 of 8 rows can be decoded$");
        add(
            "damaged dark frame",
            [] {
                putDamaged();
                QVERIFY(QFile::rename(Frame, "dark.tif"));
            },
            "load_dark_files dark.tif\nLOAD\nmove_position 3 3\nsave_spectra s.dat", "failed",
            "^failed: dark: [^ ]*dark.tif: damaged: 0 of 8 rows can be decoded$");
    }
    void frames() { m_cases.judge(); }

    /// A measurement opened by its folder: what is not taken is said, and nothing of before stays.
    void folders_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const QString fit = "open_folder .\nset_band_w 0\nset_band_h 0\nanalyzer_exec_LCF";
        add("sound", {}, fit, "done", "");
        add("with what it would save", {},
            fit +
                "\nselect_disp_image 3\nanalyzer_select_image 0\nsave_data_as_tiff m.tif\n"
                "save_table t.csv\nmove_position 3 3\nsave_spectra s.dat\n" +
                fit,
            "done", "");
        add(
            "unreadable members",
            [] {
                put("i1-7305eV.tif", "II*");
                putPlain({"i1-7306eV.tif"}, 8, 12);
                put("i0-b.tif", "");
                put("dark1.tif", "7000");
                putPlain({"dark2.tif"});
            },
            "open_folder .", "warning",
            "I0: not taken: i0-b.tif: no energy.*\n.*I1: not taken: i1-7305eV.tif: a TIFF|"
            "I1: not taken: i1-7306eV.tif: 8 x 12 pixels, the first frame 12 x 8");
        add(
            "none that can be read",
            [] {
                QVERIFY(QDir().mkpath("d/i1") && QDir().mkpath("d/references"));
                put("d/i1/7100eV.tif", "II*");
                put("d/i1/7110eV.tif", "II*");
                QVERIFY(QFile::copy("a.dat", "d/references/a.dat"));
            },
            "LOAD\nopen_folder d", "failed",
            "^failed: I1: not taken: 7100eV.tif and 1 more: a TIFF file without an image$");
        add(
            "no spectrum among the references",
            [] {
                QVERIFY(QDir().mkpath("refs"));
                put("refs/readme.txt", "none");
                putCurve("refs/au.dat", std::vector<double>{11900, 11920, 11930, 11940, 12100},
                         [](double e) { return e > 11925 ? 1.0 : 0.0; });
            },
            "open_folder .", "warning",
            "no reference: .*readme.txt|no reference: au.dat: 11900.0 to 12100.0 eV, the frames "
            "7000.0 to 7300.0 eV");
        add(
            "no I0, nor any of before",
            [] {
                QVERIFY(QDir().mkpath("d"));
                for (const QString& file : QDir().entryList({"i1-*.tif"})) {
                    QVERIFY(QFile::copy(file, "d/" + file));
                }
            },
            "LOAD\nopen_folder d\nanalyzer_exec_ra", "warning", "no I0 frames");
        add(
            "empty", [] { QVERIFY(QDir().mkpath("d")); }, "LOAD\nopen_folder d", "failed",
            "^failed: there is no frame in d$");
        add("not one", {}, "LOAD\nopen_folder a.dat", "failed", "^failed: not a folder: a.dat$");
        add(
            "one of folders", [] { QVERIFY(QDir().mkpath("d/run1/i1")); }, "LOAD\nopen_folder d",
            "failed", "^failed: there is no frame in d, nor in the folders in it: run1$");
        add(
            "a link to itself", [] { QVERIFY(QFile::link(".", "again")); }, "open_folder .", "done",
            "");
    }
    void folders() { m_cases.judge(); }

    /// "Load New" takes what only energy and counters tell from a loaded file, and no result.
    void newFrames() {
        const DebugLines unseen;
        QTemporaryDir dir;
        const auto path = [&dir](const QString& name) { return dir.filePath(name); };
        putPlain({path("i1-0001-7000eV.tif"), path("i1-0002-7100eV.tif"), path("i0-7000eV.tif"),
                  path("i1-0003-7200eV.tif"), path("i1-0004-7300eV.TIF"),
                  path("i1_0004-7300eV.tif"), path("i2-0003-7200eV.tif"), path("i1-fraction.tif")});
        QVERIFY(writeTiff(path("i1-0005-7400eV.tif"), 1, 1, std::vector<quint16>{1}.data(),
                          OriginText().toText()));
        Measurement m;
        m.set(&Settings::halfWidth, 0);
        m.set(&Settings::halfHeight, 0);
        const auto loaded = [&m] {
            return !m.stack(StackId::I1).isLoading() && !m.stack(StackId::I0).isLoading();
        };
        m.load(StackId::I1, {path("i1-0001-7000eV.tif"), path("i1-0002-7100eV.tif")}, true);
        m.load(StackId::I0, {path("i0-7000eV.tif")}, true);
        QTRY_VERIFY(loaded());
        const Outcome outcome = m.loadNew(StackId::I1);
        QVERIFY(m.start(Work::Residual).failures.join(' ').contains("I1 is being loaded"));
        QTRY_VERIFY(loaded());
        QStringList names;
        for (const Stack::File& file : m.stack(StackId::I1).files().mid(2)) {
            names << QFileInfo(file.path).fileName();
        }
        QCOMPARE(names.join(' '), QString("i1-0003-7200eV.tif i1-0004-7300eV.TIF"));
        QVERIFY(outcome.warnings.join(' ').contains("i2-0003-7200eV.tif"));

        // Frames that become others stop a run, and say so.
        QStringList stopped;
        connect(&m, &Measurement::ended, this, [&stopped](Work work, const Outcome& ended) {
            stopped += work == Work::Residual ? ended.failures : QStringList();
        });
        QVERIFY(!m.start(Work::Residual).failed());
        m.load(StackId::I0, {path("i0-7000eV.tif")}, true);
        QTRY_VERIFY(loaded());
        QVERIFY(!m.start(Work::Residual).failed());
        m.clear(StackId::I0);
        QVERIFY2(QRegularExpression("^stopped at \\d+ %: frames were replaced\\|"
                                    "stopped at \\d+ %: frames were cleared$")
                     .match(stopped.join('|'))
                     .hasMatch(),
                 qPrintable(stopped.join('|')));
    }
};

TARNWICK_TEST_MAIN(QApplication, TestFramesJudged)
#include "tst_frames_judged.moc"
