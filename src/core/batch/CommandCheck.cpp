#include "batch/CommandCheck.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "batch/FileProblems.h"

namespace {

QString absolute(const QString& name) {
    return QDir::cleanPath(QFileInfo(name).absoluteFilePath());
}

}  // namespace

void CommandCheck::check(int commandId, const CmdLine& cmd) {
    const CommandRow& row = commandTable()[static_cast<std::size_t>(commandId)];
    const int kinds = static_cast<int>(row.args.size());
    const int count = row.repeats ? cmd.args.size() : std::min(cmd.args.size(), kinds);
    for (int i = 0; i < count; ++i) {
        checkArgument(row.args[static_cast<std::size_t>(std::min(i, kinds - 1))], cmd.args.at(i));
    }
    switch (commandId) {
        case ClearI1Files:
            m_hasI1 = false;
            break;
        case ClearI0Files:
            m_hasI0 = false;
            break;
        case LoadI1FilesOfPattern:
        case LoadI0FilesOfPattern:
            checkListing(cmd);
            (commandId == LoadI1FilesOfPattern ? m_hasI1 : m_hasI0) = true;
            break;
        case LoadI1Files:
        case LoadI0Files:
            checkFrameNames(cmd.args.mid(1));
            (commandId == LoadI1Files ? m_hasI1 : m_hasI0) = true;
            break;
        case SelectDispImage:
            checkRange(cmd, 0, 3);
            break;
        case SaveImage:
        case SaveAllImages:
            error(pictureProblem(cmd.arg(0)));
            break;
        case SaveDataAsTiff:
            for (const char* suffix : {".tif", ".dat"}) {  // added where there is none
                m_written.insert(absolute(cmd.arg(0) + QLatin1String(suffix)));
            }
            break;
        case MovePosition:
            m_moved = true;
            break;
        case SelectRegion:
            checkRegion(cmd);
            break;
        case SaveSpectra:
            if (!m_moved) {
                warn(QStringLiteral("there is no spectrum to save: no move_position before"));
            }
            break;
        case AnalyzerSetLcfStd:
            checkReference(cmd);
            break;
        case AnalyzerSelectImage:
            checkRange(cmd, 0, m_references.size() + 2);
            break;
        case AnalyzerSelectImageType:
            checkRange(cmd, 0, 1);
            break;
        case CalibLoadStd:
            m_hasStandard = !cmd.arg(0).isEmpty();
            break;
        case AnalyzerExecLcf:
        case AnalyzerExecRa:
        case CalibExec:
            checkAnalysis(commandId);
            break;
        default:
            break;
    }
}

void CommandCheck::error(const QString& text) {
    if (!text.isEmpty()) {
        m_report(false, text);
    }
}

void CommandCheck::warn(const QString& text) {
    if (!text.isEmpty()) {
        m_report(true, text);
    }
}

void CommandCheck::checkArgument(ArgKind kind, const QString& text) {
    bool ok = true;
    switch (kind) {
        case ArgKind::Integer:
        case ArgKind::Flag:
            text.toInt(&ok);
            if (!ok) {
                warn(QStringLiteral("'%1' is not an integer and counts as 0").arg(text));
            }
            break;
        case ArgKind::Real: {
            const double value = text.toDouble(&ok);
            if (!ok || !std::isfinite(value)) {
                warn(ok ? QStringLiteral("'%1' is not a finite number").arg(text)
                        : QStringLiteral("'%1' is not a number and counts as 0").arg(text));
            }
            break;
        }
        case ArgKind::Mode:
            checkMode(text);
            break;
        case ArgKind::InFile:
            checkInput(text);
            break;
        case ArgKind::OutFile:
            checkOutput(text);
            break;
        case ArgKind::Text:
        case ArgKind::Directory:
        case ArgKind::Pattern:
        case ArgKind::VictreenWord:
            break;
    }
}

void CommandCheck::checkMode(const QString& word) {
    const QString upper = word.toUpper();
    if (upper == QLatin1String("NEW") || upper == QLatin1String("ADD")) {
        return;
    }
    if (QFileInfo::exists(word)) {
        error(QStringLiteral("'%1' is taken as the mode, not as a file: "
                             "put NEW (replace) or ADD (append) before it")
                  .arg(word));
    } else {
        warn(QStringLiteral("mode '%1' is not NEW, so the files are added; write ADD for that")
                 .arg(word));
    }
}

void CommandCheck::checkInput(const QString& name) {
    if (m_written.contains(absolute(name))) {
        return;
    }
    auto known = m_known.find(name);
    if (known == m_known.end()) {
        known = m_known.insert(name, inputProblem(name));
    }
    error(*known);
}

void CommandCheck::checkOutput(const QString& name) {
    error(outputProblem(name));
    const QString file = absolute(name);
    m_written.insert(file);
    m_writtenTo.insert(QFileInfo(file).path());
}

void CommandCheck::checkListing(const CmdLine& cmd) {
    const QString dir = cmd.arg(1);
    if (dir.isEmpty() || m_writtenTo.contains(absolute(dir))) {
        return;
    }
    const QStringList patterns = cmd.args.mid(2);
    const QString key = dir + QLatin1Char('\n') + patterns.join(QLatin1Char('\n'));
    auto known = m_known.find(key);
    if (known == m_known.end()) {
        known = m_known.insert(key, listingProblem(dir, patterns));
        warn(energyProblem(dir, patterns));
    }
    error(*known);
}

void CommandCheck::checkFrameNames(const QStringList& files) {
    for (const QString& file : files) {
        warn(energyProblem(file));
    }
}

void CommandCheck::checkReference(const CmdLine& cmd) {
    if (cmd.args.isEmpty()) {
        return;
    }
    const int index = cmd.arg(0).toInt();
    const int count = m_references.size();
    if (index < 0 || index > count) {
        error(QStringLiteral("there is no reference %1: the next new one is %2")
                  .arg(QString::number(index), QString::number(count)));
        return;
    }
    const bool use = cmd.arg(1).toInt() != 0;
    if (index == count) {
        m_references.append(use);
    } else {
        m_references[index] = use;
    }
    const QString word = cmd.arg(4).toUpper();
    if (use && (word.isEmpty() || word == QLatin1String("VIC") || word.toInt() > 0)) {
        warn(QStringLiteral("reference %1 is normalised with Victreen curves, the image with "
                            "straight lines: end the line with 0 for straight lines")
                 .arg(index));
    }
}

void CommandCheck::checkRange(const CmdLine& cmd, int low, int high) {
    const int value = cmd.arg(0).toInt();
    if (!cmd.args.isEmpty() && (value < low || value > high)) {
        warn(QStringLiteral("%1 is out of range %2 to %3 and changes nothing")
                 .arg(QString::number(value), QString::number(low), QString::number(high)));
    }
}

void CommandCheck::checkRegion(const CmdLine& cmd) {
    if (cmd.args.size() < 4) {
        return;
    }
    const int x0 = cmd.arg(0).toInt();
    const int y0 = cmd.arg(1).toInt();
    const int x1 = cmd.arg(2).toInt();
    const int y1 = cmd.arg(3).toInt();
    const bool none = x0 == 0 && y0 == 0 && x1 == 0 && y1 == 0;
    if (!none && (x0 == x1 || y0 == y1)) {
        warn(
            QStringLiteral("the region is empty (its corners are x0 y0 x1 y1), so the whole "
                           "image is meant"));
    }
}

void CommandCheck::checkAnalysis(int commandId) {
    QStringList missing;
    if (!m_hasI1) {
        missing.append(QStringLiteral("no I1 files are loaded"));
    }
    if (!m_hasI0) {
        missing.append(QStringLiteral("no I0 files are loaded"));
    }
    if (commandId == CalibExec && !m_hasStandard) {
        missing.append(QStringLiteral("no standard is loaded (calib_load_std)"));
    }
    if (commandId == AnalyzerExecLcf) {
        const int used = m_references.count(true);
        if (m_references.size() < 2) {
            missing.append(
                QStringLiteral("two references are needed (analyzer_set_LCF_std), not %1")
                    .arg(m_references.size()));
        } else if (used < 2) {
            warn(QStringLiteral("only %1 of the references is in use (analyzer_set_LCF_std)")
                     .arg(used));
        }
    }
    if (!missing.isEmpty()) {
        error(QStringLiteral("the analysis cannot start: ") + missing.join(QLatin1String(", ")));
    }
}
