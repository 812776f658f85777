// Memory that an LCF of an image asks for, point by point. Counted is every call of operator new,
// in all threads; operator new is replaced for that in this program. Qt's part is measured beside
// it and taken off: the events of the queued signals between window and fitter, with the copies of
// their arguments. What remains is ours, and must be nothing once the first points are through.

#include <QCoreApplication>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>
#include <atomic>
#include <cstdlib>
#include <new>

#include "Edges.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "panels/AnalyzeProc.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "window/Analysis2D.h"

static std::atomic<qint64> allocations{0};

void* operator new(std::size_t bytes) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    void* memory = std::malloc(bytes > 0 ? bytes : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

constexpr int Points = 4000;
constexpr int WarmUp = 1000;
// For containers of Qt that grow with the events that happen to wait at a time.
constexpr qint64 Few = 32;

/// Takes the arguments of the analyzer's signal and answers, as the fitter does.
class Echo : public QObject {
    Q_OBJECT

  signals:
    void finished();

  public slots:
    void analyzeSpectrum0(const XafsSpectrum&, const QVector<LCFReference*>&, XafsSpectrum*, bool) {
        emit finished();
    }
};

}  // namespace

class AllocationsTest : public QObject {
    Q_OBJECT

  private slots:
    void noneForAPoint_data();
    void noneForAPoint();

  private:
    /// What Qt asks for to deliver the signals of so many points.
    qint64 ofQueuedSignals(Analyzer* analyzer, int points);
};

qint64 AllocationsTest::ofQueuedSignals(Analyzer* analyzer, int points) {
    QThread thread;
    Echo echo;
    echo.moveToThread(&thread);
    connect(analyzer, &Analyzer::analyzeSpectrum0, &echo, &Echo::analyzeSpectrum0);
    int answers = 0;
    XafsSpectrum fitted;
    const XafsSpectrum sample = edges::reference(0.1);
    const QVector<LCFReference*> panels{nullptr, nullptr};
    const auto ask = [&] { emit analyzer->analyzeSpectrum0(sample, panels, &fitted, false); };
    connect(&echo, &Echo::finished, this, [&] {
        if (++answers < points) {
            ask();
        }
    });
    disconnect(analyzer, &Analyzer::analyzeSpectrum0, analyzer->worker(), nullptr);
    thread.start();
    const qint64 before = allocations.load();
    ask();
    while (answers < points) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    const qint64 asked = allocations.load() - before;
    thread.quit();
    thread.wait();
    return asked;
}

void AllocationsTest::noneForAPoint_data() {
    QTest::addColumn<bool>("mlcf");
    QTest::addColumn<bool>("shifted");
    QTest::newRow("LCF") << false << false;
    QTest::newRow("LCF, an energy shift of its own at each position") << false << true;
    QTest::newRow("MLCF") << true << false;
}

void AllocationsTest::noneForAPoint() {
#ifdef __SANITIZE_ADDRESS__
    QSKIP("Storage is not kept under the sanitizer");
#endif
    QFETCH(bool, mlcf);
    QFETCH(bool, shifted);
    const QVector<double> list = edges::energies();
    const std::vector<double> energies(list.begin(), list.end());
    const FrameSet i1 = tinyStack(Points, 1, energies, [&](int frame, int x, int) {
        const double e = energies[static_cast<std::size_t>(frame)];
        return static_cast<quint16>(20000.0 * std::exp(-edges::step(e, 0.01 * (x % 30))));
    });
    const FrameSet i0 = tinyStack(Points, 1, {7000.0, 7300.0}, [](int, int, int) { return 20000; });
    const AbsorptionSource source(i1, i0, Points, 1);
    BinRowSpectra rows(source, 0, 1, Points, 0, 0);

    Analyzer analyzer;
    QTemporaryDir dir;
    for (int i = 0; i < 2; ++i) {
        QFile file(dir.filePath(QString::number(i)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QTextStream out(&file);
        for (double e : list) {
            out << e << ' ' << edges::step(e, 0.3 * i) << '\n';
        }
        file.close();
        analyzer.addNewRef();
        analyzer.setLCFStd(i, file.fileName(), 0.0, "0");
    }
    analyzer.setLCFMode(mlcf ? 1 : 0);
    QTRY_COMPARE(analyzer.fitsOut(), 0);

    Analysis2D analysis(&analyzer);
    QEventLoop loop;
    int reports = 0;
    qint64 before = 0;
    qint64 asked = -1;
    connect(&analyzer, &Analyzer::finished, this, [&] {
        ++reports;
        if (reports == WarmUp) {
            before = allocations.load();
        } else if (reports == Points) {
            asked = allocations.load() - before;
        }
        if (analysis.lcfPointReported() == Analysis2D::Progress::Finished) {
            analysis.endLcf();
            loop.quit();
        }
    });
    QString why;
    QVERIFY(analysis.startLcf(
        AnalysisGrid::ofArea(Points, 1, 0, 0, QRectF(0, 0, Points, 1)),
        [&](int x, int y) {
            return XafsSpectrum(rows.at(x, y), XafsSpectrum::Simple, shifted ? 1e-4 * x : 0.0);
        },
        &why));
    loop.exec();
    QCOMPARE(reports, Points);
    const qint64 ours = asked - ofQueuedSignals(&analyzer, Points - WarmUp);
    QVERIFY2(ours <= Few, qPrintable(QString::number(ours)));
}

TARNWICK_TEST_MAIN(QApplication, AllocationsTest)
#include "tst_allocations.moc"
