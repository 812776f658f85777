#include <QFileInfo>

#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"
#include "base/Memory.h"
#include "files/FileListing.h"
#include "measurement/Display.h"
#include "measurement/Measurement.h"
#include "measurement/Saving.h"

namespace {

constexpr int Width = 12;
constexpr int Height = 8;

Phantom::Options options() {
    Phantom::Options options;
    options.fractionOfA = [](int x, int y) { return 0.1 + 0.05 * x + 0.02 * y; };
    options.dark = [](int x, int y) { return 40 + x % 3 + y; };
    return options;
}

}  // namespace

/// Frames whose counts stay in their files, beside the same frames in memory.
class TestFramesInFiles : public QObject {
    Q_OBJECT

    Phantom m_phantom{options()};
    QStringList m_dark;

    QStringList files(const char* pattern) const {
        return listImageFiles(m_phantom.dir(), {pattern});
    }

    /// Loads all frames; what is told of it.
    Outcome load(Measurement* m) {
        Outcome outcome;
        QObject context;
        bool isLoaded = false;
        connect(m, &Measurement::ended, &context, [&](Work work, const Outcome& ended) {
            isLoaded = isLoaded || work == Work::LoadFolder;
            outcome += ended;
        });
        m->loadTogether(files("i1-*.tif"), files("i0-*.tif"), m_dark, {});
        for (int i = 0; i < 30000 && !isLoaded; i += 10) {
            QTest::qWait(10);
        }
        m->set(&Settings::halfWidth, 0);
        m->set(&Settings::halfHeight, 0);
        m->set(&Settings::raEnergy, 7120.0);
        return outcome;
    }

    static Outcome run(Measurement* m) {
        Outcome outcome = m->start(Work::Residual);
        if (!outcome.failed()) {
            bool hasEnded = false;
            QObject context;
            connect(m, &Measurement::ended, &context, [&](Work, const Outcome& ended) {
                hasEnded = true;
                outcome = ended;
            });
            for (int i = 0; i < 30000 && !hasEnded; i += 10) {
                QTest::qWait(10);
            }
        }
        return outcome;
    }

  private slots:
    void initTestCase() { m_dark = m_phantom.writeDarkFrames(Width, Height, options().dark); }

    /// All that shows or uses counts gives the same of both.
    void sameAsInMemory() {
        Measurement inMemory;
        Measurement inFiles;
        inFiles.readCountsWhenNeeded();
        for (Measurement* m : {&inMemory, &inFiles}) {
            const Outcome outcome = load(m);
            QVERIFY2(outcome.texts().isEmpty(), qPrintable(outcome.texts().join('\n')));
            const QString said = run(m).texts().join('\n');
            QVERIFY2(said.isEmpty(), qPrintable(said));
            m->setPosition(3.5, 4.5);
        }
        QVERIFY(!inMemory.stack(StackId::I1).isInFiles());
        QVERIFY(inFiles.stack(StackId::I1).isInFiles());
        for (int x = 0; x < Width * Height; ++x) {
            for (const int i : {0, 1}) {
                QCOMPARE(inFiles.residual(i).image.valueAt(x % Width, x / Width),
                         inMemory.residual(i).image.valueAt(x % Width, x / Width));
            }
        }
        QCOMPARE(inFiles.sample().size(), inMemory.sample().size());
        for (int i = 0; i < inMemory.sample().size(); ++i) {
            QCOMPARE(inFiles.sample().value(i), inMemory.sample().value(i));
        }
        for (const Shown shown : {Shown::I1, Shown::I0}) {
            for (const auto kind : {FrameView::Kind::Counts, FrameView::Kind::Absorption,
                                    FrameView::Kind::Difference}) {
                for (const bool isFixed : {false, true}) {
                    for (Measurement* m : {&inMemory, &inFiles}) {
                        m->set(&Settings::shown, shown);
                        m->set(&Settings::frameView, FrameView{kind, 7050.0, {}});
                    }
                    if (isFixed) {
                        QCOMPARE(fixPercentiles(inFiles).texts(), fixPercentiles(inMemory).texts());
                    }
                    QVERIFY(!shownPicture(inMemory).isNull());
                    QCOMPARE(shownPicture(inFiles), shownPicture(inMemory));
                    const BarPicture bar = shownWithBar(inFiles);
                    QCOMPARE(bar.picture, shownWithBar(inMemory).picture);
                    QCOMPARE(bar.low, shownWithBar(inMemory).low);
                    QCOMPARE(bar.high, shownWithBar(inMemory).high);
                }
            }
        }
    }

    /// A file that is another than when it was loaded fails what reads it, by name.
    void changedFiles() {
        for (const QString& name :
             {files("i1-*.tif").at(7), files("i0-*.tif").at(3), m_dark.first()}) {
            Measurement m;
            m.readCountsWhenNeeded();
            QVERIFY(load(&m).texts().isEmpty());
            const QByteArray content = contentOf(name);
            put(name, content.chopped(7));
            const Outcome outcome = run(&m);
            QVERIFY2(outcome.failures.join('\n').contains(name), qPrintable(name));
            m.setPosition(3.5, 6.5);
            const Outcome saved = saveSpectra(m, m_phantom.file("s.dat"), {});
            QVERIFY2(saved.failures.join('\n').contains(name), qPrintable(name));
            QVERIFY(!QFileInfo::exists(m_phantom.file("s.dat")));
            put(name, content);
        }
    }

    /// A file of results without the mean spectrum says so.
    void resultsWithoutTheirCounts() {
        Measurement m;
        m.readCountsWhenNeeded();
        QVERIFY(load(&m).texts().isEmpty());
        QVERIFY(!run(&m).failed());
        const QString name = files("i1-*.tif").at(7);
        const QByteArray content = contentOf(name);
        put(name, content.chopped(7));
        const Outcome saved = saveResults(m, m_phantom.file("r.nxs"));
        put(name, content);
        QVERIFY2(!saved.failed(), qPrintable(saved.texts().join('\n')));
        const QString warnings = saved.warnings.join('\n');
        QVERIFY2(warnings.contains("mean spectrum") && warnings.contains(name),
                 qPrintable(warnings));
        QVERIFY(QFileInfo::exists(m_phantom.file("r.nxs")));
    }

    /// Frames that do not fit into memory fail with the sizes, and all stays as it was; frames
    /// whose counts stay in their files need none.
    void memory() {
        Measurement m;
        QVERIFY(load(&m).texts().isEmpty());
        const int frames = m.stack(StackId::I1).size();
        setMemoryLimit(1);
        QStringList told;
        connect(&m, &Measurement::ended, this, [&told](Work work, const Outcome& outcome) {
            told << QString::number(static_cast<int>(work)) + ' ' + outcome.failures.join('|');
        });
        const quint64 revision = m.stack(StackId::I1).revision();
        QStringList many;
        for (int i = 0; i < 1000; ++i) {
            many << files("i1-*.tif").first();
        }
        const auto failed = [&](Work work, const char* text) {
            const bool isSo = told.size() == 1 &&
                              told.first() == QString::number(static_cast<int>(work)) + ' ' + text;
            if (!isSo) {
                qWarning("%s", qPrintable(told.join('\n')));
            }
            told.clear();
            return isSo && m.stack(StackId::I1).revision() == revision && m.dark().loaded() == 3;
        };
        m.load(StackId::I1, many, false);
        QVERIFY(failed(Work::LoadI1,
                       "I1: the counts of 1000 frame(s) need 188 KB of memory, 0 "
                       "bytes are available: nothing was read"));
        m.loadDark(many);
        QVERIFY(failed(Work::LoadDark,
                       "dark: the counts of 1000 frame(s) need 188 KB of memory, "
                       "576 bytes are available: nothing was read"));
        m.loadTogether(many, files("i0-*.tif").mid(0, 1), {}, {});
        QVERIFY(!m.isAtWork(Work::LoadFolder));
        told.replaceInStrings(QRegularExpression(", [0-9]+ KB are"), ", x KB are");
        QVERIFY(failed(Work::LoadFolder,
                       "I1, I0: the counts of 1001 frame(s) need 188 KB of "
                       "memory, x KB are available: nothing was read"));
        QCOMPARE(m.stack(StackId::I1).size(), frames);
        Measurement inFiles;
        inFiles.readCountsWhenNeeded();
        QVERIFY(load(&inFiles).texts().isEmpty());
        setMemoryLimit(0);
        m.load(StackId::I0, files("i0-*.tif"), true);
        QTRY_VERIFY(!told.isEmpty());
        QVERIFY(!told.first().contains("available"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestFramesInFiles)
#include "tst_framesinfiles.moc"
