#include "window/CommandLine.h"

CommandLine readCommandLine(int argc, const char* const* argv) {
    CommandLine result;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == QLatin1String("-j")) {
            result.translate = true;
        } else if (argument == QLatin1String("-e")) {
            result.translate = false;
        } else if (argument == QLatin1String("-b")) {
            if (i + 1 < argc) {
                result.batchFile = QString::fromLocal8Bit(argv[2]);
            }
        } else if (argument == QLatin1String("-x")) {
            result.execute = true;
        } else if (argument == QLatin1String("-dbg")) {
            result.debug = true;
        }
    }
    return result;
}
