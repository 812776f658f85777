#include "Fuzz.h"

#include <QGuiApplication>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "base/Globals.h"

// The two functions that libFuzzer calls.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::atomic<int> lines{0};

void countLine(QtMsgType, const QMessageLogContext&, const QString&) {
    ++lines;
}

}  // namespace

int logLines() {
    return lines;
}

void require(bool holds, const char* property) {
    require(holds, property, QString());
}

void require(bool holds, const char* property, const QString& of) {
    if (!holds) {
        std::fprintf(stderr, "==ERROR: does not hold: %s %s\n", property, qPrintable(of));
        std::abort();
    }
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    initGlobals();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(argc, argv);
    qInstallMessageHandler(countLine);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lines = 0;
    fuzz(QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    return 0;
}
