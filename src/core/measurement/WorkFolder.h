#pragma once

#include <QHash>
#include <QString>
#include <memory>

#include "files/FilePlaces.h"
#include "measurement/Outcome.h"
#include "measurement/PartStore.h"
#include "measurement/WorkKey.h"

/// A folder where finished parts of analyses lie, so that a run that was broken off goes on where
/// it was; see docs/file-formats.md. Any number of programs may use it at once: parts are named by
/// what they are made from, and a file is whole or not there. It is only ever added to.
class WorkFolder {
  public:
    /// Makes it where it is missing. Failed, with the reason: nothing can be kept there.
    Outcome open(const QString& path);
    const QString& path() const { return m_path; }

    /// Where the rows of some work are kept. Calls for one job come in the same order in every run
    /// of a batch: the n-th belongs to the n-th of another run.
    /// @param columns what each row holds, with the number of values of each column
    std::shared_ptr<PartStore> parts(const WorkKey& key, const PartCut& cut, int columns,
                                     int valuesPerBin);

    /// The run with this folder has written a file itself: what it holds tells which it is, for
    /// another run of the batch will write it at another time.
    void wrote(const QString& fileName) { m_written.put(fileName, fileName); }

  private:
    Outcome judgeFormat() const;

    QString m_path;
    QHash<QByteArray, int> m_asked;  // by job, how often
    FilePlaces m_written;
    std::shared_ptr<WritingFault> m_fault = std::make_shared<WritingFault>();
};
