#include "batch/ArgumentCheck.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "batch/BatchTexts.h"
#include "batch/CommandTables.h"
#include "batch/NamedTexts.h"
#include "files/FileNames.h"
#include "measurement/SettingWords.h"
#include "measurement/Settings.h"
#include "spectra/Units.h"

namespace {

bool isOneOf(const QString& text, std::initializer_list<const char*> words) {
    return std::any_of(words.begin(), words.end(), [&text](const char* word) {
        return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    });
}

bool isNumber(const QString& text) {
    bool ok = false;
    return std::isfinite(text.toDouble(&ok)) && ok;
}

/// Why the text is not of its kind, of those that speak of pictures; empty: it is.
QString refusalInView(ArgKind kind, const QString& text) {
    switch (kind) {
        case ArgKind::RangeOf:
            return isNumber(text) || !mapsOfName(text).empty()
                       ? QString()
                       : Batch::tr("neither a number nor a map: %1").arg(text);
        case ArgKind::RangeEnd:
            return isNumber(text) || rangeOfWord(text)
                       ? QString()
                       : Batch::tr("neither a number nor robust, full or stated: %1").arg(text);
        case ArgKind::Viewed:
            return isOneOf(text, {"frames"}) || !mapsOfName(text).empty()
                       ? QString()
                       : Batch::tr("no such map: %1").arg(text);
        case ArgKind::ScaleName:
            return colorsOfWord(text) ? QString() : Batch::tr("no such colour map: %1").arg(text);
        case ArgKind::Reversed:
            return isOneOf(text, {"reversed"}) ? QString()
                                               : Batch::tr("not 'reversed': %1").arg(text);
        case ArgKind::Channel: {
            bool ok = isOneOf(text, {"none"});
            if (!ok) {
                text.toInt(&ok);
            }
            return ok ? QString() : Batch::tr("neither none nor an integer: %1").arg(text);
        }
        default:
            return QString();
    }
}

/// Why the text is not of its kind; empty: it is.
QString refusal(ArgKind kind, const QString& text) {
    bool ok = true;
    switch (kind) {
        case ArgKind::Integer:
        case ArgKind::Flag:
            text.toInt(&ok);
            return ok ? QString() : Batch::tr("'%1' is not an integer").arg(text);
        case ArgKind::Real:
            return isNumber(text) ? QString() : Batch::tr("'%1' is not a number").arg(text);
        case ArgKind::Stack:
            ok = isOneOf(text, {"I1", "I0"});
            return ok ? QString() : Batch::tr("neither I1 nor I0: %1").arg(text);
        case ArgKind::Unit:
            ok = isOneOf(text, {"eV", "keV"});
            return ok ? QString() : Batch::tr("neither eV nor keV: %1").arg(text);
        case ArgKind::Background:
            ok = backgroundOfWord(text) >= 0;
            return ok ? QString() : Batch::tr("no such background: %1").arg(text);
        case ArgKind::Edge:
            ok = edgeOfWord(text).has_value();
            return ok ? QString()
                      : Batch::tr("neither each nor mean nor an energy above 0: %1").arg(text);
        case ArgKind::Scale:
            ok = scaleOfWord(text).has_value();
            return ok ? QString() : Batch::tr("neither jump nor none: %1").arg(text);
        case ArgKind::Crystal:
            ok = crystalOfName(text) >= 0;
            return ok ? QString() : Batch::tr("no such crystal: %1").arg(text);
        case ArgKind::Constraints:
            ok = constraintsOfWord(text).has_value();
            return ok ? QString() : Batch::tr("no such constraints: %1").arg(text);
        case ArgKind::MapName:
            ok = resultOfName(text).has_value();
            return ok ? QString() : Batch::tr("no such map: %1").arg(text);
        case ArgKind::MaskLimit:
            ok = maskOfWord(text).has_value();
            return ok ? QString() : Batch::tr("neither off nor a number above 0: %1").arg(text);
        case ArgKind::RangeOf:
        case ArgKind::RangeEnd:
        case ArgKind::Viewed:
        case ArgKind::ScaleName:
        case ArgKind::Reversed:
        case ArgKind::Channel:
            return refusalInView(kind, text);
        case ArgKind::Text:
        case ArgKind::Mode:
        case ArgKind::InFile:
        case ArgKind::OutFile:
        case ArgKind::Directory:
        case ArgKind::Pattern:
        case ArgKind::VictreenWord:
            break;
    }
    return QString();
}

/// The same, of any text: a %NAME% that nobody has replaced is no name of a file, but of one that
/// is there.
QString refusalOfLeftOver(const QString& text) {
    const QString name = leftOverName(text);
    return name.isEmpty() || QFileInfo::exists(text) ? QString() : aboutLeftOver(name);
}

}  // namespace

Outcome judgeArguments(const CommandRow& row, const QStringList& args) {
    Outcome outcome;
    const int kinds = static_cast<int>(row.args.size());
    const int count = args.size();
    if (count < row.required) {
        outcome.failures << Batch::tr("too few arguments: %1").arg(commandSyntax(row));
    }
    for (int i = 0; i < (row.repeats ? count : std::min(count, kinds)); ++i) {
        // Those that are repeated behind the last kind are looked at by who takes them.
        const ArgKind kind = i < kinds ? row.args[static_cast<std::size_t>(i)] : ArgKind::Text;
        const QString leftOver = refusalOfLeftOver(args.at(i));
        const QString why = leftOver.isEmpty() ? refusal(kind, args.at(i)) : leftOver;
        if (!why.isEmpty()) {
            outcome.failures << why;
        }
        if (kind == ArgKind::Mode && !isOneOf(args.at(i), {"NEW", "ADD"})) {
            outcome.warnings
                << Batch::tr("'%1' is neither NEW nor ADD: the files are added").arg(args.at(i));
        }
    }
    if (count > kinds && !row.repeats) {
        outcome.warnings << Batch::tr("'%1' is ignored: too many arguments")
                                .arg(args.mid(kinds).join(QLatin1Char(' ')));
    }
    return outcome;
}

QStringList withTypedNames(const CommandRow& row, QStringList args) {
    for (int i = 0; i < args.size() && !row.args.empty(); ++i) {
        const ArgKind kind = row.args[std::min(static_cast<std::size_t>(i), row.args.size() - 1)];
        if (kind == ArgKind::InFile || kind == ArgKind::OutFile || kind == ArgKind::Directory) {
            args[i] = typedFileName(args.at(i));
        }
    }
    return args;
}
