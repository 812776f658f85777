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

/// Follows what the commands of a batch would do, as far as it can be told without doing it:
/// arguments that do not read as what they should be, files, and steps that lack an earlier one.
class CommandCheck {
  public:
    /// Takes what is found in the command under check.
    using Report = std::function<void(bool warning, const QString& text)>;

    explicit CommandCheck(Report report) : m_report(std::move(report)) {}

    /// Checks one command, loop variables filled in, after all commands before it.
    void check(int commandId, const CmdLine& cmd);

  private:
    // An empty text is no finding.
    void error(const QString& text);
    void warn(const QString& text);

    void checkArgument(ArgKind kind, const QString& text);
    void checkMode(const QString& word);
    void checkInput(const QString& name);
    void checkOutput(const QString& name);
    void checkListing(const CmdLine& cmd);
    void checkFrameNames(const QStringList& files);
    void checkReference(const CmdLine& cmd);
    void checkRange(const CmdLine& cmd, int low, int high);
    void checkAnalysis(int commandId);
    void checkRegion(const CmdLine& cmd);

    Report m_report;
    QHash<QString, QString> m_known;  // problems found before, by file or listing
    QSet<QString> m_written;          // absolute names of files that the batch writes
    QSet<QString> m_writtenTo;        // and the directories they are in
    bool m_hasI1 = false;
    bool m_hasI0 = false;
    bool m_hasStandard = false;
    bool m_moved = false;
    QVector<bool> m_references;  // whether they are in use
};
