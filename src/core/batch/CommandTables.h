#pragma once

#include <QString>
#include <vector>

// The vocabulary of the batch language: 5 control words and 49 commands. One row says what a
// command takes and when it finishes; the program's handlers, --check and the batch reference in
// docs/ all go by it.

enum ControlId : int {
    ForControl,
    NextControl,
    EchoControl,
    RemStartControl,
    RemEndControl,
    NoControl  ///< not a control word
};

enum CommandId : int {
    ClearI1Files,
    ClearI0Files,
    LoadI1Files,
    LoadI0Files,
    LoadI1FilesOfPattern,
    LoadI0FilesOfPattern,
    SetBandW,
    SetBandH,
    SelectDispImage,
    SaveImage,
    SaveAllImages,
    SaveDataAsTiff,
    MovePosition,
    SelectRegion,
    SaveSpectra,
    AnalyzerShowWindow,
    AnalyzerSetLcfStd,
    AnalyzerSetLcfMode,
    AnalyzerExecLcf,
    AnalyzerSelectImage,
    AnalyzerSelectImageType,
    AnalyzerSetRaEnergy,
    AnalyzerSetRaFactor,
    AnalyzerExecRa,
    AnalyzerSetFixedScale,
    AnalyzerSetScaleMax,
    AnalyzerSetScaleMin,
    AnalyzerSetDMutScaleMax,
    AnalyzerSetDMutScaleMin,
    AnalyzerSetRatioScaleMax,
    AnalyzerSetRatioScaleMin,
    CalibShowWindow,
    CalibLoadStd,
    CalibSetEdgeEv,
    CalibExec,
    CalibLoadMap,
    CalibClearMap,
    CalibSaveMap,
    SaveDataCfgShowWindow,
    SaveDataCfgSaveAsTiff,
    SaveDataCfgSaveAsText,
    SaveDataCfgTiffFixScale,
    SaveDataCfgTiffScaleMin,
    SaveDataCfgTiffScaleMax,
    SaveDataCfgTiffAsAnalyzed,
    SaveDataCfgTextAsCsv,
    SaveDataCfgTextAsSsv,
    SaveDataCfgTextAsXyz,
    SaveDataCfgTextAsVals,
    NoCommand  ///< not a command
};

enum class ArgKind {
    Integer,      ///< decimal integer; anything else counts as 0
    Flag,         ///< integer, 0 = no
    Real,         ///< real number; anything else counts as 0
    Text,         ///< as it stands
    Mode,         ///< NEW in any case replaces the stack, every other word adds to it
    InFile,       ///< file to read
    OutFile,      ///< file to write
    Directory,    ///< directory to list
    Pattern,      ///< wildcard for file names
    VictreenWord  ///< VIC, a number above 0 or nothing: Victreen; any other: straight lines
};

/// How an argument of that kind is written in the reference: "n", "flag", "x", "file" ...
QString argKindName(ArgKind kind);

enum class Finish {
    AtOnce,
    WhenLoaded,   ///< when the last queued file has been read
    WhenAnalysed  ///< when the analysis has visited every block
};

/// How a time of finishing is written in the reference: "at once", "when loaded" ...
QString finishName(Finish finish);

struct CommandRow {
    int id;
    const char* name;
    std::vector<ArgKind> args;
    int required;  ///< so many arguments must be there to do something sensible
    bool repeats;  ///< the last argument may be given any number of times
    Finish finish;
};

/// A command with its arguments as the reference writes it, optional ones in brackets:
/// "load_I1_files_of_pattern mode dir [pattern ...]".
QString commandSyntax(const CommandRow& row);

/// Builds the tables. Called at start-up, before any thread looks a name up.
void initCommandTables();

/// The commands, row i having id i.
const std::vector<CommandRow>& commandTable();

/// Id of a control word, whatever its case; NoControl if it is none.
int controlId(const QString& name);

/// Id of a command, whatever its case; NoCommand if it is none.
int commandId(const QString& name);
