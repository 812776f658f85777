#include "batch/CommandCheck.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "batch/FileProblems.h"
#include "fitting/ResultKinds.h"
#include "spectra/Background.h"
#include "spectra/Units.h"

namespace {

QStringList crystalNames() {
    QStringList names;
    for (const Crystal& crystal : CrystalTable) {
        names << QString::fromLatin1(crystal.name);
    }
    return names;
}

QStringList backgroundNames() {
    QStringList names;
    for (const background::Row& row : background::rows()) {
        names << QString::fromLatin1(row.title);
    }
    return names;
}

QString absolute(const QString& name) {
    return QDir::cleanPath(QFileInfo(name).absoluteFilePath());
}

}  // namespace

void CommandCheck::check(const CommandRow& row, const CmdLine& cmd) {
    const int kinds = static_cast<int>(row.args.size());
    const int count = row.repeats ? cmd.args.size() : std::min(cmd.args.size(), kinds);
    for (int i = 0; i < count; ++i) {
        checkArgument(row.args[static_cast<std::size_t>(std::min(i, kinds - 1))], cmd.args.at(i));
    }
    if (row.check != nullptr) {
        row.check(*this, cmd);
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
        case ArgKind::Stack:
            checkWord(text, {QStringLiteral("I1"), QStringLiteral("I0")});
            break;
        case ArgKind::Unit:
            checkWord(text, {QStringLiteral("eV"), QStringLiteral("keV")});
            break;
        case ArgKind::Background:
            checkWord(text, backgroundNames());
            break;
        case ArgKind::Crystal:
            checkWord(text, crystalNames());
            break;
        case ArgKind::Text:
        case ArgKind::Directory:
        case ArgKind::Pattern:
        case ArgKind::VictreenWord:
            break;
    }
}

void CommandCheck::checkWord(const QString& text, const QStringList& words) {
    if (!words.contains(text, Qt::CaseInsensitive)) {
        error(QStringLiteral("'%1' is none of %2").arg(text, words.join(QStringLiteral(", "))));
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

void CommandCheck::checkFolder(const QString& dir, const QStringList& patterns,
                               const NamePattern* names) {
    if (dir.isEmpty() || m_writtenTo.contains(absolute(dir))) {
        return;
    }
    const QString key = dir + QLatin1Char('\n') + patterns.join(QLatin1Char('\n'));
    auto known = m_known.find(key);
    if (known == m_known.end()) {
        known = m_known.insert(key, listingProblem(dir, patterns));
        if (names != nullptr) {
            warn(energyProblem(dir, patterns, *names));
        }
    }
    error(*known);
}

void CommandCheck::checkListing(StackId stack, const CmdLine& cmd) {
    checkFolder(cmd.arg(1), cmd.args.mid(2), &m_names[static_cast<int>(stack)]);
    setLoaded(stack, true);
}

void CommandCheck::checkDarkListing(const CmdLine& cmd) {
    checkFolder(cmd.arg(0), cmd.args.mid(1), nullptr);
}

void CommandCheck::checkFrames(StackId stack, const CmdLine& cmd) {
    for (const QString& file : cmd.args.mid(1)) {
        warn(energyProblem(file, m_names[static_cast<int>(stack)]));
    }
    setLoaded(stack, true);
}

void CommandCheck::noteEnergyPattern(const CmdLine& cmd) {
    const bool isI1 = cmd.arg(0).compare(QLatin1String("I1"), Qt::CaseInsensitive) == 0;
    const bool isKeV = cmd.arg(2).compare(QLatin1String("keV"), Qt::CaseInsensitive) == 0;
    m_names[isI1 ? 1 : 0] = {cmd.arg(1), isKeV};
    if (!QRegularExpression(cmd.arg(1)).isValid()) {
        error(
            QStringLiteral("'%1' is not a regular expression and finds no energy").arg(cmd.arg(1)));
    }
}

void CommandCheck::checkLoadNew(const CmdLine& cmd) {
    const bool isI1 = cmd.arg(0).compare(QLatin1String("I1"), Qt::CaseInsensitive) == 0;
    if (!m_loaded[isI1 ? 1 : 0]) {
        error(QStringLiteral("no %1 files are loaded beside which to look for new ones")
                  .arg(isI1 ? QStringLiteral("I1") : QStringLiteral("I0")));
    }
}

void CommandCheck::checkPicture(const CmdLine& cmd) {
    error(pictureProblem(cmd.arg(0)));
}

void CommandCheck::noteData(const CmdLine& cmd) {
    for (const char* suffix : {".tif", ".dat"}) {  // added where there is none
        m_written.insert(absolute(cmd.arg(0) + QLatin1String(suffix)));
    }
}

void CommandCheck::checkMoved() {
    if (!m_moved) {
        warn(QStringLiteral("there is no spectrum to save: no move_position before"));
    }
}

void CommandCheck::noteTargetBackground(const CmdLine& cmd) {
    m_targetBackground = std::max(0, backgroundOfWord(cmd.arg(0)));
}

void CommandCheck::checkResult(const CmdLine& cmd) {
    checkRange(cmd, 0, m_references.size() + ResidualCount - 1);
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
    const int background = background::fromBatchWord(cmd.arg(4));
    if (use && background != m_targetBackground) {
        warn(QStringLiteral("reference %1 is normalised with %2 curves, the image with %3 ones")
                 .arg(QString::number(index), backgroundWord(background),
                      backgroundWord(m_targetBackground)) +
             (background == XafsSpectrum::Simple
                  ? QString()
                  : QStringLiteral(": end the line with 0 for straight lines")));
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

void CommandCheck::checkAnalysis(Work work) {
    QStringList missing;
    if (!m_loaded[1]) {
        missing.append(QStringLiteral("no I1 files are loaded"));
    }
    if (!m_loaded[0]) {
        missing.append(QStringLiteral("no I0 files are loaded"));
    }
    if (work == Work::Calibrate && !m_hasStandard) {
        missing.append(QStringLiteral("no standard is loaded (calib_load_std)"));
    }
    if (work == Work::Fit) {
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
