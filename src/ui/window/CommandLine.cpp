#include "window/CommandLine.h"

const char* const CommandLineHelp =
    "Usage: tarnwick [-b FILE] [options]\n"
    "Opens the main window. Unknown options are ignored.\n"
    "\n"
    "Options:\n"
    "  -b <FILE>      Put the batch file into the batch window. Must come first.\n"
    "  -x             Run the batch window's text at once.\n"
    "  -e             English interface.\n"
    "  -j             Japanese interface (the default).\n"
    "  -dbg           Set the debug flag.\n"
    "  -h, --help     Show this text.\n"
    "  -v, --version  Show the version.\n"
    "\n";

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
        } else if (argument == QLatin1String("-h") || argument == QLatin1String("--help")) {
            result.help = true;
        } else if (argument == QLatin1String("-v") || argument == QLatin1String("--version")) {
            result.version = true;
        }
    }
    return result;
}
