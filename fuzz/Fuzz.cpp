#include "Fuzz.h"

#include <QCoreApplication>
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
    if (!holds) {
        std::fprintf(stderr, "==ERROR: does not hold: %s\n", property);
        std::abort();
    }
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    initGlobals();
    static const QCoreApplication application(argc, argv);
    qInstallMessageHandler(countLine);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lines = 0;
    fuzz(QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    return 0;
}
