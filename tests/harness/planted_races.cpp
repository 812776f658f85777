// Does on purpose what must not be done, so that it can be seen whether the thread sanitizer sees
// it: writes to a frame that is being analysed, to a result that a run fills, or reads a setting
// from another thread without a copy. "none" does the same analyses without any of it.

#include <QCoreApplication>
#include <QEventLoop>
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>

#include "Phantom.h"
#include "base/Globals.h"
#include "files/FileListing.h"
#include "frames/TiffData.h"
#include "measurement/Measurement.h"

namespace {

constexpr int Side = 48;

void await(Measurement& measurement, Work work) {
    while (measurement.isAtWork(work)) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void load(Measurement& measurement, const Phantom& phantom) {
    measurement.load(StackId::I1, listImageFiles(phantom.dir(), {"i1-*.tif"}), true);
    await(measurement, Work::LoadI1);
    measurement.load(StackId::I0, listImageFiles(phantom.dir(), {"i0-*.tif"}), true);
    await(measurement, Work::LoadI0);
    for (const char* name : {"a.dat", "b.dat"}) {
        const Outcome added = measurement.addReference();
        const QString file = phantom.file(QLatin1String(name));
        measurement.change(measurement.referenceCount() - 1,
                           [&](Reference& r) { const Outcome read = r.read(file); });
    }
    measurement.set(&Settings::halfWidth, 0);
    measurement.set(&Settings::halfHeight, 0);
}

/// As somebody would who forgets that a pass reads it.
void touchFrame(Measurement& measurement) {
    for (quint16* row : measurement.stack(StackId::I1).frames().at(0)->rows) {
        row[0] = static_cast<quint16>(row[0] + 1);
    }
}

/// As a worker would that fills a result itself.
void touchResult(Measurement& measurement) {
    Result& result = measurement.references().front()->result(Reference::DMut);
    for (int y = 0; y < Side; ++y) {
        result.image.setData(0, y, 0, 0, 1.0);
    }
}

}  // namespace

int main(int argc, char** argv) {
    initGlobals();
    QCoreApplication app(argc, argv);
    const std::string planted = argc > 1 ? argv[1] : "none";
    Phantom::Options options;
    options.width = options.height = Side;
    options.fractionOfA = [](int x, int y) { return 0.1 + 0.01 * x + 0.005 * y; };
    const Phantom phantom(options);
    Measurement measurement;
    load(measurement, phantom);
    measurement.setThreads(4);
    const Outcome begun = measurement.start(Work::Fit);
    std::atomic<bool> isOver{false};
    std::atomic<int> seen{0};
    std::thread other([&] {
        while (!isOver && planted != "none" && planted != "frame") {
            if (planted == "result") {
                touchResult(measurement);
            } else {
                seen += measurement.settings().halfWidth;
            }
        }
    });
    while (measurement.isAtWork(Work::Fit)) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (planted == "frame") {
            touchFrame(measurement);
        } else if (planted == "setting") {
            measurement.set(&Settings::halfWidth, 1 - measurement.settings().halfWidth);
        }
    }
    isOver = true;
    other.join();
    std::printf("%s: done\n", planted.c_str());
    return begun.failed() ? 1 : 0;
}
