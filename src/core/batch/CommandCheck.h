#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <utility>

#include "batch/CmdLine.h"
#include "batch/CommandTables.h"
#include "measurement/Settings.h"

/// Follows what the commands of a batch would do, as far as it can be told without doing it:
/// arguments that do not read as what they should be, files, and steps that lack an earlier one.
class CommandCheck {
  public:
    /// Takes what is found in the command under check.
    using Report = std::function<void(bool warning, const QString& text)>;

    explicit CommandCheck(Report report) : m_report(std::move(report)) {}

    /// Checks one command, loop variables filled in, after all commands before it.
    void check(const CommandRow& row, const CmdLine& cmd);

    // What the rows of the commands ask for.
    void setLoaded(StackId stack, bool loaded) { m_loaded[static_cast<int>(stack)] = loaded; }
    void checkFrames(StackId stack, const CmdLine& cmd);
    void checkListing(StackId stack, const CmdLine& cmd);
    void noteEnergyPattern(const CmdLine& cmd);
    void checkDarkListing(const CmdLine& cmd);
    void checkLoadNew(const CmdLine& cmd);
    void checkRange(const CmdLine& cmd, int low, int high);
    void checkRegion(const CmdLine& cmd);
    void setMoved() { m_moved = true; }
    void checkMoved();
    void checkPicture(const CmdLine& cmd);
    /// Files that are written under the name with a suffix, where it has none.
    void noteData(const CmdLine& cmd);
    void addReference() { m_references.append(false); }
    void checkReference(const CmdLine& cmd);
    void checkResult(const CmdLine& cmd);
    void checkAnalysis(Work work);
    void noteStandard(const CmdLine& cmd) { m_hasStandard = !cmd.arg(0).isEmpty(); }
    void noteTargetBackground(const CmdLine& cmd);

  private:
    // An empty text is no finding.
    void error(const QString& text);
    void warn(const QString& text);

    void checkArgument(ArgKind kind, const QString& text);
    void checkWord(const QString& text, const QStringList& words);
    void checkMode(const QString& word);
    void checkInput(const QString& name);
    void checkOutput(const QString& name);
    void checkFolder(const QString& dir, const QStringList& patterns, const NamePattern* names);

    Report m_report;
    QHash<QString, QString> m_known;    // problems found before, by file or listing
    QSet<QString> m_written;            // absolute names of files that the batch writes
    QSet<QString> m_writtenTo;          // and the directories they are in
    bool m_loaded[2] = {false, false};  // by StackId
    NamePattern m_names[2];
    bool m_hasStandard = false;
    bool m_moved = false;
    int m_targetBackground = 0;
    QVector<bool> m_references;  // whether they are in use
};
