#pragma once

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QVector>

#include "batch/CmdLine.h"
#include "batch/TinyFolder.h"
#include "measurement/Measurement.h"

/// What became of a line that was handed out.
struct AnsweredLine {
    QString text;
    int line = 0;  ///< index, see CmdLine
    Outcome outcome;
};

/// Carries out batches in a folder and ends the program where a line is not answered exactly once
/// or the batch has no end.
class BatchExecution {
  public:
    explicit BatchExecution(const TinyFolder& folder) : m_folder(folder) {}

    /// Lines that draw letters are answered without being carried out.
    void leaveOutLetters() { m_leavesOutLetters = true; }
    /// @param rounds of lines that are handed out before loops are left
    void run(Measurement& measurement, const QStringList& lines, int rounds);

    const QVector<AnsweredLine>& answers() const { return m_answers; }
    /// All rounds of loops were run, no line was left out and no name changed to stay in the
    /// folder.
    bool isWhole() const { return m_isWhole; }
    /// Absolute paths of the files said to be written, since the start.
    const QSet<QString>& written() const { return m_written; }

  private:
    void confine(CmdLine* cmd);

    const TinyFolder& m_folder;
    QVector<AnsweredLine> m_answers;
    QSet<QString> m_written;
    bool m_isWhole = true;
    bool m_leavesOutLetters = false;
};
