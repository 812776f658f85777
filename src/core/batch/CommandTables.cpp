#include "batch/CommandTables.h"

#include <QHash>
#include <algorithm>

#include "batch/CmdLine.h"
#include "batch/CommandRows.h"

namespace {

struct Tables {
    std::vector<CommandRow> rows;
    QHash<QString, int> controls;  // by names in upper case
    QHash<QString, int> commands;
};

std::vector<CommandRow> commandRows() {
    std::vector<CommandRow> rows;
    for (const auto& add :
         {addStackCommands, addViewCommands, addAreaCommands, addSaveCommands, addAnalyzerCommands,
          addMapCommands, addCalibrationCommands, addSaveFormCommands}) {
        add(&rows);
    }
    std::sort(rows.begin(), rows.end(),
              [](const CommandRow& a, const CommandRow& b) { return a.id < b.id; });
    return rows;
}

Tables buildTables() {
    Tables tables;
    tables.rows = commandRows();
    for (const CommandRow& row : tables.rows) {
        tables.commands.insert(QString::fromLatin1(row.name).toUpper(), row.id);
    }
    tables.controls = {{QStringLiteral(":FOR"), ForControl},
                       {QStringLiteral(":NEXT"), NextControl},
                       {QStringLiteral(":ECHO"), EchoControl},
                       {QStringLiteral(":REM_START"), RemStartControl},
                       {QStringLiteral(":REM_END"), RemEndControl}};
    return tables;
}

const Tables& tables() {
    static const Tables built = buildTables();
    return built;
}

}  // namespace

void initCommandTables() {
    tables();
}

const std::vector<CommandRow>& commandTable() {
    return tables().rows;
}

const CommandRow* commandRow(int id) {
    const auto& rows = tables().rows;
    const auto row =
        std::lower_bound(rows.begin(), rows.end(), id,
                         [](const CommandRow& r, int wanted) { return r.id < wanted; });
    return row == rows.end() || row->id != id ? nullptr : &*row;
}

int controlId(const QString& name) {
    return tables().controls.value(name.toUpper(), NoControl);
}

int commandId(const QString& name) {
    return tables().commands.value(name.toUpper(), NoCommand);
}

bool CommandRow::saves() const {
    return savesBeside || std::find(args.begin(), args.end(), ArgKind::OutFile) != args.end();
}

bool CommandRow::reads() const {
    return isLoad(work) || std::any_of(args.begin(), args.end(), [](ArgKind kind) {
               return kind == ArgKind::InFile || kind == ArgKind::Directory;
           });
}

QString CommandRow::fileOf(const CmdLine& cmd) const {
    const auto file = std::find_if(args.begin(), args.end(), [](ArgKind kind) {
        return kind == ArgKind::InFile || kind == ArgKind::OutFile;
    });
    const bool several = repeats && cmd.args.size() > static_cast<int>(args.size());
    return file == args.end() || several ? QString()
                                         : cmd.arg(static_cast<int>(file - args.begin()));
}

QString argKindName(ArgKind kind) {
    switch (kind) {
        case ArgKind::Integer:
            return QStringLiteral("n");
        case ArgKind::Flag:
            return QStringLiteral("flag");
        case ArgKind::Real:
            return QStringLiteral("x");
        case ArgKind::Text:
            return QStringLiteral("text");
        case ArgKind::Mode:
            return QStringLiteral("mode");
        case ArgKind::InFile:
        case ArgKind::OutFile:
            return QStringLiteral("file");
        case ArgKind::Directory:
            return QStringLiteral("dir");
        case ArgKind::Pattern:
            return QStringLiteral("pattern");
        case ArgKind::VictreenWord:
        case ArgKind::Background:
        case ArgKind::Crystal:
        case ArgKind::Constraints:
            return QStringLiteral("word");
        case ArgKind::MapName:
            return QStringLiteral("name");
        case ArgKind::MaskLimit:
            return QStringLiteral("off|x");
        case ArgKind::Stack:
            return QStringLiteral("I1|I0");
        case ArgKind::Edge:
            return QStringLiteral("each|mean|x");
        case ArgKind::Scale:
            return QStringLiteral("jump|none");
        case ArgKind::Unit:
            return QStringLiteral("unit");
        case ArgKind::RangeOf:
            return QStringLiteral("x|name");
        case ArgKind::RangeEnd:
            return QStringLiteral("x|word");
        case ArgKind::Viewed:
            return QStringLiteral("name");
        case ArgKind::ScaleName:
            return QStringLiteral("word");
        case ArgKind::Reversed:
            return QStringLiteral("reversed");
        case ArgKind::Channel:
            return QStringLiteral("n|none");
    }
    return QString();
}

QString commandSyntax(const CommandRow& row) {
    QString syntax = QString::fromLatin1(row.name);
    const int count = static_cast<int>(row.args.size());
    for (int i = 0; i < count; ++i) {
        QString arg = argKindName(row.args[static_cast<std::size_t>(i)]);
        if (row.repeats && i + 1 == count) {
            arg += QStringLiteral(" ...");
        }
        syntax += i < row.required ? QLatin1Char(' ') + arg : QStringLiteral(" [%1]").arg(arg);
    }
    return syntax;
}

QString finishName(const CommandRow& row) {
    switch (row.work) {
        case Work::None:
            return QStringLiteral("at once");
        case Work::LoadI1:
        case Work::LoadI0:
        case Work::LoadDark:
        case Work::LoadFolder:
            return QStringLiteral("when loaded");
        case Work::Deglitch:
            return QStringLiteral("when deglitched");
        default:
            return QStringLiteral("when analysed");
    }
}
