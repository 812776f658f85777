#pragma once

#include <QString>
#include <vector>

#include "measurement/Inputs.h"

// The vocabulary of the batch language: control words and commands.

struct Action;
struct CmdLine;

enum ControlId : int {
    ForControl,
    NextControl,
    EchoControl,
    RemStartControl,
    RemEndControl,
    NoControl  ///< not a control word
};

/// The id of no command. The first 49 commands have the ids 0 to 48, additions those from 50 on.
constexpr int NoCommand = 49;

enum class ArgKind {
    Integer,       ///< decimal integer
    Flag,          ///< integer, 0 = no
    Real,          ///< finite real number
    Text,          ///< as it stands
    Mode,          ///< NEW in any case replaces the stack, every other word adds to it
    InFile,        ///< file to read
    OutFile,       ///< file to write
    Directory,     ///< directory to list
    Pattern,       ///< wildcard for file names
    VictreenWord,  ///< VIC, a number above 0 or nothing: Victreen; any other: straight lines
    Stack,         ///< I1 or I0
    Unit,          ///< eV or keV
    Background,    ///< Simple or Victreen
    Edge,          ///< each, mean or an energy above 0 in eV
    Scale,         ///< jump or none
    Crystal,       ///< a crystal of the calibration panel, such as Si(111)
    Constraints,   ///< none, nonnegative, sum1 or both
    MapName,       ///< the name of a kind of result
    MaskLimit,     ///< off or a number above 0
    RangeOf,       ///< the lower end of a range of frames, or the name of a kind of map, or maps
    RangeEnd,      ///< an end of a range, or robust, full or stated
    Viewed,        ///< the name of a kind of map, or maps or frames
    ScaleName,     ///< stated, or a map of colorScales()
    Reversed,      ///< reversed
    Channel        ///< the number of a reference, or none
};

/// How an argument of that kind is written in the reference: "n", "flag", "x", "file" ...
QString argKindName(ArgKind kind);

/// One command: everything that the program, the check before a run, the record and the reference
/// know of it. Adding one is adding a row in one of the files Commands*.cpp.
struct CommandRow {
    using Run = void (*)(Action& action);

    int id;
    const char* name;
    std::vector<ArgKind> args;
    int required;  ///< with fewer arguments the line fails
    bool repeats;  ///< the last argument may be given any number of times
    Work work;     ///< the line is answered when this has ended; None: at once
    Run run;
    bool drawsLetters = false;  ///< needs a QGuiApplication
    bool savesBeside = false;   ///< writes files that no argument names

    /// Writes files.
    bool saves() const;
    /// Reads files, or looks for them.
    bool reads() const;
    /// The file that a line of this command reads or writes; empty for none or several.
    QString fileOf(const CmdLine& cmd) const;
};

/// How a time of finishing is written in the reference: "at once", "when loaded" ...
QString finishName(const CommandRow& row);

/// A command with its arguments as the reference writes it, optional ones in brackets:
/// "load_I1_files_of_pattern mode dir [pattern ...]".
QString commandSyntax(const CommandRow& row);

/// Builds the tables. Called at start-up, before any thread looks a name up.
void initCommandTables();

/// The commands in order of their ids.
const std::vector<CommandRow>& commandTable();

/// The row of an id; null for that of no command.
const CommandRow* commandRow(int id);

/// Id of a control word, whatever its case; NoControl if it is none.
int controlId(const QString& name);

/// Id of a command, whatever its case; NoCommand if it is none.
int commandId(const QString& name);
