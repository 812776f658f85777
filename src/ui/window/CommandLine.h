#pragma once

#include <QString>

/// What the command line of the windowed program asks for.
struct CommandLine {
    bool translate = true;  ///< install the Japanese translation ("-j", undone by "-e")
    bool execute = false;   ///< run the batch editor's text at start-up ("-x")
    bool debug = false;     ///< "-dbg"
    bool help = false;      ///< print the help ("-h", "--help") and end
    bool version = false;   ///< print the version ("-v", "--version") and end
    QString batchFile;      ///< file for the batch editor ("-b"); empty: none
};

/// Reads the arguments that Qt has left in argv. The name for "-b" is always argv[2], wherever
/// "-b" stands, so that "-b" works as meant only as the first argument; as the last argument it is
/// ignored. Unknown arguments are ignored. Arguments are decoded from the local 8-bit encoding.
CommandLine readCommandLine(int argc, const char* const* argv);

/// What "--help" prints, but for the last line.
extern const char* const CommandLineHelp;
