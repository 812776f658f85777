#include <QEventLoop>
#include <QTemporaryDir>
#include <random>

#include "NoThreads.h"
#include "Phantom.h"
#include "SameBits.h"
#include "TestMain.h"
#include "batch/BatchDispatcher.h"
#include "batch/BatchRunner.h"
#include "files/FileListing.h"
#include "measurement/Measurement.h"
#include "measurement/Saving.h"

namespace {

constexpr int Side = 24;

/// Does what a user and a batch might do, in any order, at any time.
class Somebody {
  public:
    Somebody(quint32 seed, const Phantom& phantom)
        : m_phantom(phantom), m_random(seed), m_runner(m_measurement) {
        if (seed % 2 == 1) {
            m_measurement.readCountsWhenNeeded();
        }
        m_i1 = listImageFiles(phantom.dir(), {"i1-*.tif"});
        m_i0 = listImageFiles(phantom.dir(), {"i0-*.tif"});
        m_dark =
            phantom.writeDarkFrames(Side, Side, [](int x, int y) { return 100 + x % 3 + y % 2; });
    }

    Measurement& measurement() { return m_measurement; }

    void act() {
        switch (number(16)) {
            case 0:
                m_measurement.load(StackId::I1, some(m_i1), number(3) > 0);
                break;
            case 1:
                m_measurement.load(StackId::I0, some(m_i0), number(3) > 0);
                break;
            case 2:
                m_measurement.loadDark(some(m_dark));
                break;
            case 3:
                number(4) == 0 ? m_measurement.clear(StackId::I1) : m_measurement.stopLoading();
                break;
            case 4:
                setSomething();
                break;
            case 5:
                number(2) == 0 ? m_measurement.setThreads(1 + number(8)) : m_measurement.stop();
                break;
            case 6:
                changeReferences();
                break;
            case 7:
                look();
                break;
            case 8:
                static_cast<void>(m_measurement.deglitch(1.0 + number(3), 0.1));
                break;
            case 9:
                number(3) == 0 ? m_runner.stop() : m_runner.start(batch());
                break;
            case 10:
            case 11:
            case 12:
                m_measurement.setPosition(number(Side), number(Side));
                m_measurement.sample();
                break;
            default:
                start();
        }
        turn();
    }

    /// To rest, with a stack loaded and fitted as anybody would.
    void comeToRest() {
        m_runner.stop();
        m_measurement.stopLoading();
        m_measurement.stop();
        QTRY_VERIFY(!isAtWork());
        QCoreApplication::processEvents();
    }

    bool isAtWork() const {
        bool is = m_measurement.working() != Work::None;
        for (const Work work : {Work::LoadI1, Work::LoadI0, Work::LoadDark}) {
            is = is || m_measurement.isAtWork(work);
        }
        return is;
    }

  private:
    int number(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }

    QStringList some(const QStringList& files) {
        return number(3) == 0 ? QStringList(files.mid(number(files.size()), 3)) : files;
    }

    /// Some events, or none.
    void turn() {
        for (int turns = number(6); turns > 0; --turns) {
            QCoreApplication::processEvents();
            std::this_thread::sleep_for(std::chrono::microseconds(number(400)));
        }
    }

    void setSomething() {
        m_measurement.set(&Settings::halfWidth, number(3));
        m_measurement.set(&Settings::halfHeight, number(3));
        m_measurement.set(&Settings::errorMaps, number(2) == 0);
        m_measurement.set(&Settings::method, number(2) == 0 ? LinearFit::Lcf : LinearFit::Mlcf);
        m_measurement.set(&Settings::targetBackground, number(2));
        m_measurement.set(&Settings::showsEachRow, number(2) == 0);
        m_measurement.set(
            &Settings::e0,
            EdgeChoice{number(2) == 0 ? EdgeChoice::Kind::Each : EdgeChoice::Kind::Mean, 0.0});
        m_measurement.set(&Settings::raEnergy, 7100.0 + number(100));
    }

    void changeReferences() {
        if (m_measurement.referenceCount() < 3) {
            static_cast<void>(m_measurement.addReference());
        }
        const QString file = m_phantom.file(number(2) == 0 ? "a.dat" : "b.dat");
        if (m_measurement.referenceCount() > 0) {
            m_measurement.change(number(m_measurement.referenceCount()),
                                 [&](Reference& r) { static_cast<void>(r.read(file)); });
        }
    }

    void look() {
        FrameView view;
        view.kind = number(2) == 0 ? FrameView::Kind::Absorption : FrameView::Kind::Counts;
        m_measurement.set(&Settings::frameView, view);
        m_measurement.setFrame(StackId::I1, number(30));
        m_measurement.frameImage(number(3) == 0 ? Measurement::Wait::UntilMade
                                                : Measurement::Wait::Blink);
    }

    void start() {
        const Work works[] = {Work::Calibrate, Work::Fit, Work::Fit, Work::Residual};
        static_cast<void>(m_measurement.start(works[number(4)]));
    }

    QStringList batch() const {
        return m_phantom.loadAndSetReferences() +
               QStringList{":for i %i 1 3", "set_band_w %i", "analyzer_exec_LCF", ":next i"};
    }

    const Phantom& m_phantom;
    std::mt19937 m_random;
    Measurement m_measurement;
    BatchRunner m_runner;
    QStringList m_i1;
    QStringList m_i0;
    QStringList m_dark;
};

/// Carries a batch out; how its lines ended.
Outcome outcomeOf(Measurement& measurement, const QStringList& lines) {
    Outcome all;
    BatchRunner runner(measurement);
    QEventLoop loop;
    QObject::connect(&runner, &BatchRunner::commandDone, &loop,
                     [&](const CmdLine&, const Outcome& outcome) { all += outcome; });
    QObject::connect(runner.dispatcher(), &BatchDispatcher::ended, &loop, &QEventLoop::quit);
    runner.start(lines);
    loop.exec();
    return all;
}

MapValues valuesOf(Measurement& measurement) {
    return measurement.references().front()->result(Reference::DMut).image.values();
}

}  // namespace

class TestThreads : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.width = options.height = Side;
        options.energies = 31;
        options.i0Energies = 21;
        options.fractionOfA = [](int x, int y) { return 0.1 + 0.02 * x + 0.01 * y; };
        m_phantom = std::make_unique<Phantom>(options);
        m_lines = m_phantom->loadAndSetReferences() << "analyzer_exec_LCF";
        Measurement measurement;
        QVERIFY(!outcomeOf(measurement, m_lines).failed());
        m_expected = valuesOf(measurement);
        QCOMPARE(m_expected.size(), Side * Side);
    }

    void anythingAtAnyTime_data() {
        columns<int>("seed");
        for (int seed = 0; seed < 8; ++seed) {
            QTest::newRow(qPrintable(QString::number(seed))) << seed;
        }
    }

    /// Whatever has happened to it, a measurement does what one does that is new.
    void anythingAtAnyTime() {
        QFETCH(int, seed);
        Somebody somebody(static_cast<quint32>(seed), *m_phantom);
        for (int step = 0; step < 150; ++step) {
            somebody.act();
        }
        somebody.comeToRest();
        Measurement& measurement = somebody.measurement();
        measurement.dark().clear();
        measurement.clearMap();
        for (int r = 0; r < measurement.referenceCount(); ++r) {
            measurement.change(r, [r](Reference& reference) { reference.setUse(r < 2); });
        }
        const Settings usual;
        measurement.set(&Settings::errorMaps, usual.errorMaps);
        measurement.set(&Settings::method, usual.method);
        measurement.set(&Settings::targetBackground, usual.targetBackground);
        measurement.set(&Settings::e0, usual.e0);
        QVERIFY(!outcomeOf(measurement, m_lines).failed());
        const MapValues values = valuesOf(measurement);
        QCOMPARE(values.size(), m_expected.size());
        for (int i = 0; i < values.size(); ++i) {
            QVERIFY2(same(values[i], m_expected[i]), qPrintable(QString::number(i)));
        }
    }

    void itEndsInTheMiddleOfAnything() {
        for (quint32 seed = 100; seed < 106; ++seed) {
            Somebody somebody(seed, *m_phantom);
            for (quint32 step = 0; step < 10 + seed % 7; ++step) {
                somebody.act();
            }
        }
    }

    void withoutThreadsABatchEndsAndSaysWhy() {
        const NoThreads none;
        Measurement measurement;
        const Outcome outcome = outcomeOf(measurement, m_lines);
        QCOMPARE(outcome.failures.size(), 1);
        QVERIFY2(outcome.failures.first().contains("thread"), qPrintable(outcome.failures.first()));
        QCOMPARE(measurement.stack(StackId::I1).size(), 31);
    }

  private:
    std::unique_ptr<Phantom> m_phantom;
    QStringList m_lines;
    MapValues m_expected;
};

TARNWICK_TEST_MAIN(QCoreApplication, TestThreads)
#include "tst_threads.moc"
