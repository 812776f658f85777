#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cstring>

#include "Files.h"
#include "FullDisk.h"
#include "Phantom.h"
#include "TestMain.h"
#include "files/FileListing.h"
#include "measurement/Measurement.h"

using Change = std::function<void(Measurement&)>;
Q_DECLARE_METATYPE(Change)
Q_DECLARE_METATYPE(Work)

namespace {

constexpr int Size = 70;  // rows and columns of bins: in 64 parts, some of two rows

/// The bits of all maps that hold values, one after the other.
QByteArray bitsOf(const Measurement& measurement) {
    QByteArray bits;
    for (const Result* result : measurement.results()) {
        bits += result->kind().source;
        bits.append(reinterpret_cast<const char*>(result->image.data()),
                    Size * Size * static_cast<int>(sizeof(double)));
    }
    return bits;
}

bool isAboutParts(const QString& note) {
    return note.contains(QLatin1String("parts taken from")) ||
           note.contains(QLatin1String("made again")) ||
           note.contains(QLatin1String("parts were kept"));
}

QStringList aboutParts(const Outcome& outcome, bool wanted = true) {
    QStringList notes;
    for (const QString& note : outcome.notes) {
        if (isAboutParts(note) == wanted) {
            notes << note;
        }
    }
    return notes;
}

/// The files of parts by name.
QMap<QString, QByteArray> partsIn(const QString& folder) {
    QMap<QString, QByteArray> parts;
    const QDir dir(folder);
    for (const QString& work : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        for (const QString& part : QDir(dir.filePath(work)).entryList(QDir::Files)) {
            const QString name = work + '/' + part;
            parts[name] = contentOf(dir.filePath(name));
        }
    }
    return parts;
}

void waitFor(const std::function<bool()>& isOver) {
    while (!isOver()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void noneBelowZero(Measurement& m) {
    m.set(&Settings::constraints, FitRule::Constraints::Nonnegative);
}

void anEllipse(Measurement& m) {
    m.set(&Settings::area, Area::ellipse(2, 1, 68, 70));
}

}  // namespace

/// Analyses whose parts lie in a work folder are those of one run, to the last bit.
class TestWorkFolder : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<QTemporaryDir> m_temporary;
    QString m_folder;

    struct Ended {
        QByteArray bits;
        Outcome outcome;
        RasterPass::Tally tally;
    };

    /// A measurement with the stacks, the references, a map and what else is to be set.
    std::unique_ptr<Measurement> measurementWith(const Change& change, int threads) const {
        auto m = std::make_unique<Measurement>();
        int loads = 0;
        connect(m.get(), &Measurement::ended, m.get(), [&loads] { ++loads; });
        for (const StackId id : {StackId::I1, StackId::I0}) {
            const QString pattern = id == StackId::I1 ? "i1-*.tif" : "i0-*.tif";
            m->load(id, listImageFiles(m_phantom->dir(), {pattern}), true);
        }
        waitFor([&loads] { return loads == 2; });
        m->disconnect(m.get());
        m->setThreads(threads);
        m->set(&Settings::halfWidth, 0);
        m->set(&Settings::halfHeight, 0);
        m->set(&Settings::raEnergy, 7150.0);
        m->set(&Settings::differenceFrom, 7100.0);
        m->set(&Settings::differenceTo, 7130.0);
        for (const char* name : {"a.dat", "b.dat"}) {
            [&] { QVERIFY(!m->addReference().failed()); }();
            const QString file = m_phantom->file(QLatin1String(name));
            m->change(m->referenceCount() - 1, [&file](Reference& reference) {
                reference.setUse(true);
                QVERIFY(!reference.read(file).failed());
            });
        }
        [&] { QVERIFY(!m->loadStandard(m_phantom->file("a.dat")).failed()); }();
        change(*m);
        return m;
    }

    std::shared_ptr<WorkFolder> opened() const {
        auto folder = std::make_shared<WorkFolder>();
        [&] { QVERIFY(!folder->open(m_folder).failed()); }();
        return folder;
    }

    Ended run(Work work, const Change& change, bool keeps, int threads = 2) const {
        const auto m = measurementWith(change, threads);
        m->parts().setFolder(keeps ? opened() : nullptr);
        Ended ended;
        bool isOver = false;
        connect(m.get(), &Measurement::ended, m.get(), [&](Work, const Outcome& outcome) {
            ended.outcome = outcome;
            isOver = true;
        });
        const Outcome begun = m->start(work);
        [&] { QVERIFY2(!begun.failed(), qPrintable(begun.failures.join("; "))); }();
        waitFor([&] { return isOver || begun.failed(); });
        ended.bits = bitsOf(*m);
        for (const Result* result : m->results()) {
            ended.tally = result->run ? result->run->tally : ended.tally;
        }
        return ended;
    }

    static void compare(const Ended& found, const Ended& wanted) {
        QVERIFY(!wanted.bits.isEmpty());
        QVERIFY(found.bits == wanted.bits);
        QCOMPARE(aboutParts(found.outcome, false), aboutParts(wanted.outcome, false));
        QCOMPARE(found.outcome.texts(), wanted.outcome.texts());
        QVERIFY(std::memcmp(&found.tally, &wanted.tally, sizeof found.tally) == 0);
    }

    void put(const QString& part, const QByteArray& bytes) const {
        ::put(m_folder + '/' + part, bytes);
    }

    /// Removes some parts and damages some, each in a way of its own; those damaged.
    QStringList harm(const QMap<QString, QByteArray>& parts, quint32 seed, int* whole) const {
        QRandomGenerator chance(seed);
        QStringList damaged;
        QByteArray other = parts.first();
        *whole = 0;
        for (auto part = parts.begin(); part != parts.end(); ++part) {
            QByteArray bytes = part.value();
            switch (chance.bounded(9)) {
                case 0:
                    QFile::remove(m_folder + '/' + part.key());
                    continue;
                case 1:
                    bytes.clear();
                    break;
                case 2:
                    bytes.truncate(chance.bounded(bytes.size()));
                    break;
                case 3:
                    bytes.data()[chance.bounded(bytes.size())] ^= 32;
                    break;
                case 4:
                    bytes += '\0';
                    break;
                case 5:
                    bytes = other;  // whole, but of another place
                    break;
                default:
                    break;
            }
            put(part.key(), bytes);
            other = part.value();
            damaged << (bytes == part.value() ? QStringList() : QStringList{part.key()});
            *whole += bytes == part.value() ? 1 : 0;
        }
        return damaged;
    }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.width = Size;
        options.height = Size;
        options.energies = 41;
        options.i0Energies = 31;
        options.fractionOfA = [](int x, int y) { return 0.1 + 0.01 * x + 0.002 * y; };
        options.energyShift = [](int x, int y) { return 0.02 * x - 0.01 * y; };
        m_phantom = std::make_unique<Phantom>(options);
    }

    void init() {
        m_temporary = std::make_unique<QTemporaryDir>();
        m_folder = m_temporary->filePath("a/work");
    }

    void resumedIsAsOneRun_data() {
        columns<Work, Change, int>("work", "change", "passes");
        const auto row = [](const char* name, Work work, const Change& change, int passes) {
            QTest::newRow(name) << work << change << passes;
        };
        row(
            "calibration", Work::Calibrate, [](Measurement&) {}, 1);
        row(
            "LCF", Work::Fit, [](Measurement&) {}, 1);
        row(
            "LCF of the mean E0 with errors, in an ellipse", Work::Fit,
            [](Measurement& m) {
                m.set(&Settings::e0, EdgeChoice{EdgeChoice::Kind::Mean, 0.0});
                m.set(&Settings::errorMaps, true);
                anEllipse(m);
            },
            2);
        row(
            "MLCF, none below 0", Work::Fit,
            [](Measurement& m) {
                m.set(&Settings::method, LinearFit::Mlcf);
                noneBelowZero(m);
            },
            1);
        row(
            "RA", Work::Residual, [](Measurement&) {}, 1);
        row(
            "difference", Work::Difference, [](Measurement&) {}, 1);
    }

    /// With any parts missing or damaged, for other numbers of threads.
    void resumedIsAsOneRun() {
        QFETCH(Work, work);
        QFETCH(Change, change);
        QFETCH(int, passes);
        const Ended wanted = run(work, change, false);
        QVERIFY(aboutParts(wanted.outcome).isEmpty());
        const Ended first = run(work, change, true);
        compare(first, wanted);
        const auto parts = partsIn(m_folder);
        QVERIFY(parts.size() > 60 * passes && parts.size() <= 64 * passes);
        for (quint32 seed = 1; seed <= 3; ++seed) {
            int whole = 0;
            const QStringList damaged = harm(parts, seed, &whole);
            QVERIFY(!damaged.isEmpty());
            const Ended resumed = run(work, change, true, 1 + static_cast<int>(seed));
            compare(resumed, wanted);
            QVERIFY(partsIn(m_folder) == parts);
            const QString notes = aboutParts(resumed.outcome).join('\n');
            for (const QString& part : damaged) {
                QVERIFY2(notes.contains(part), qPrintable(notes));
            }
            QCOMPARE(notes.count("made again"), damaged.size());
            int taken = 0;
            for (const QString& note : aboutParts(resumed.outcome)) {
                taken += note.contains("parts taken") ? note.section(' ', 0, 0).toInt() : 0;
            }
            QCOMPARE(taken, whole);
        }
    }

    void partsOfOtherInputsAreNotTaken_data() {
        columns<Work, Change, QString, bool>("work", "change", "touched", "taken");
        const auto row = [](const char* name, Work work, const Change& change,
                            const char* touched = "", bool taken = false) {
            QTest::newRow(name) << work << change << QString(touched) << taken;
        };
        const Change none = [](Measurement&) {};
        row(
            "a view", Work::Fit, [](Measurement& m) { m.set(&Settings::selected, 1); }, "", true);
        row(
            "of another work", Work::Fit, [](Measurement& m) { m.set(&Settings::raEnergy, 7.0); },
            "", true);
        row("E0 of all bins", Work::Fit, [](Measurement& m) {
            m.set(&Settings::e0, EdgeChoice{EdgeChoice::Kind::Energy, 7120.0});
        });
        row("last bit of an offset", Work::Fit,
            [](Measurement& m) { m.change(0, [](Reference& r) { r.setDeltaE(5e-324); }); });
        row("errors", Work::Fit, [](Measurement& m) { m.set(&Settings::errorMaps, true); });
        row("constraints", Work::Fit, noneBelowZero);
        row("order of references", Work::Fit, [](Measurement& m) {
            m.change(0, [&m](Reference& r) {
                QVERIFY(!r.read(m.references()[1]->file().path).failed());
            });
        });
        row("shape", Work::Fit, anEllipse);
        row("a shift", Work::Fit, [](Measurement& m) {
            m.map().image.startOver(m.grid());
            m.map().image.setData(3, 4, 0, 0, 1e-9);
        });
        row("energy of RA", Work::Residual,
            [](Measurement& m) { m.set(&Settings::raEnergy, 7151.0); });
        row("second energy", Work::Difference,
            [](Measurement& m) { m.set(&Settings::differenceTo, 7131.0); });
        row("time of a frame", Work::Calibrate, none, "i1-");
        row("time of an I0 frame", Work::Difference, none, "i0-");
        row("a reference", Work::Fit, none, "b.dat");
    }

    void partsOfOtherInputsAreNotTaken() {
        QFETCH(Work, work);
        QFETCH(Change, change);
        QFETCH(QString, touched);
        QFETCH(bool, taken);
        (void)run(
            work, [](Measurement&) {}, true);
        const QStringList files = QDir(m_phantom->dir()).entryList({touched + '*'}, QDir::Files);
        const QString file = touched.isEmpty() ? QString() : m_phantom->file(files.first());
        const QByteArray before = contentOf(file);
        if (!file.isEmpty()) {
            ::put(file, touched.endsWith(".dat") ? before + "7999 1\n" : before);
        }
        const Ended again = run(work, change, true);
        if (!file.isEmpty()) {
            ::put(file, before);
        }
        const QString notes = aboutParts(again.outcome).join('\n');
        const QString wanted = taken ? QStringLiteral("64 of 64") : QStringLiteral("0 of ");
        QVERIFY2(aboutParts(again.outcome).last().startsWith(wanted), qPrintable(notes));
        QCOMPARE(notes.contains("changed since"), !file.isEmpty());
        QVERIFY(file.isEmpty() || notes.contains(file));
    }

    /// Neither harms the other, and both do their work.
    void twoRunsAtOnce() {
        const Change none = [](Measurement&) {};
        const Ended wanted = run(Work::Fit, none, false);
        std::vector<std::unique_ptr<Measurement>> both;
        int over = 0;
        for (int i = 0; i < 2; ++i) {
            both.push_back(measurementWith(none, 2));
            both.back()->parts().setFolder(opened());
            connect(both.back().get(), &Measurement::ended, this,
                    [&over](Work, const Outcome& outcome) { over += outcome.failed() ? 9 : 1; });
        }
        for (const auto& m : both) {
            QVERIFY(!m->start(Work::Fit).failed());
        }
        waitFor([&over] { return over > 1; });
        QCOMPARE(over, 2);
        for (const auto& m : both) {
            QVERIFY(bitsOf(*m) == wanted.bits);
        }
        both.clear();
        QCOMPARE(partsIn(m_folder).size(), 64);
        QVERIFY(aboutParts(run(Work::Fit, none, true).outcome).join("").contains("64 of 64"));
    }

    /// The run is made whole without parts, with one warning.
    void aFullFolder() {
        const Change none = [](Measurement&) {};
        const Ended wanted = run(Work::Fit, none, false);
        Ended found;
        {
            const FullDisk full(1500);
            found = run(Work::Fit, none, true);
        }
        QVERIFY(found.bits == wanted.bits);
        QCOMPARE(found.outcome.warnings.size(), wanted.outcome.warnings.size() + 1);
        QVERIFY(found.outcome.warnings.join("").contains(m_folder));
        QVERIFY(partsIn(m_folder).isEmpty());  // nor what was left of them
    }

    void foldersThatCannotBe_data() {
        columns<QString, QByteArray, QString>("file", "content", "why");
        QTest::newRow("a file") << "" << QByteArray("x") << "is a file";
        QTest::newRow("below a file") << "/../file" << QByteArray("x") << "cannot be made";
        QTest::newRow("another version")
            << "/tarnwick-work-folder" << QByteArray("7\n") << "another version";
        QTest::newRow("no format")
            << "/tarnwick-work-folder" << QByteArray("\x1b[2J") << "does not tell";
    }

    void foldersThatCannotBe() {
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        QFETCH(QString, why);
        QVERIFY(QDir().mkpath(file.isEmpty() ? QFileInfo(m_folder).path() : m_folder));
        ::put(m_folder + file, content);
        WorkFolder folder;
        const Outcome outcome =
            folder.open(file.endsWith("/file") ? m_folder + "/../file/work" : m_folder);
        QVERIFY2(outcome.failures.join("").contains(why), qPrintable(outcome.failures.join("")));
        QCOMPARE(contentOf(m_folder + file), content);
    }

    void whatKilledRunsLeaveBehind() {
        const Change none = [](Measurement&) {};
        (void)run(Work::Difference, none, true);
        const QFileInfo part(m_folder + '/' + partsIn(m_folder).firstKey());
        const QString beside = part.path() + "/." + part.fileName();
        ::put(beside + ".0123456789ab.tarnwick-part", "x");
        ::put(beside + ".000000000000.tarnwick-part", "x");
        QFile old(beside + ".0123456789ab.tarnwick-part");
        QVERIFY(old.open(QIODevice::ReadWrite));
        QVERIFY(old.setFileTime(QDateTime::currentDateTime().addDays(-2),
                                QFileDevice::FileModificationTime));
        old.close();
        (void)run(Work::Difference, none, true);
        QVERIFY(!old.exists() && QFile::exists(beside + ".000000000000.tarnwick-part"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestWorkFolder)
#include "tst_workfolder.moc"
