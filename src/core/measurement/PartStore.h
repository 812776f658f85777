#pragma once

#include <QString>
#include <future>
#include <memory>
#include <optional>
#include <set>

#include "measurement/Outcome.h"
#include "measurement/PartCut.h"
#include "measurement/PartFile.h"
#include "measurement/WorkKey.h"

/// Why nothing more is written into a work folder, for all who would.
struct WritingFault {
    QString why;          ///< empty: everything could be written
    bool isSaid = false;  ///< to the user
};

/// The parts of one work in a work folder: those that have been made, by whatever run, and those
/// that this one adds. To be used on one thread.
class PartStore {
  public:
    struct Place {
        QString folder;    ///< of the parts; is made with the first
        QString manifest;  ///< file that tells of which states of the inputs the parts are
        QString shown;     ///< the work folder, for messages
    };

    PartStore(const Place& place, const WorkKey& key, const PartCut& cut, int columns,
              int valuesPerBin, std::shared_ptr<WritingFault> fault);
    /// Waits for the part that is being written.
    ~PartStore();
    PartStore(const PartStore&) = delete;
    PartStore& operator=(const PartStore&) = delete;

    const PartCut& cut() const { return m_cut; }
    Part::Form form(int part) const;
    /// Whether there is a file of this part; that it is whole is seen when it is read.
    bool has(int part) const;
    /// Whether there is one of every part.
    bool isComplete() const;

    /// The input file that has been changed since parts of the same job were begun; empty: none.
    const QString& changedInput() const { return m_changed; }
    /// From now on the parts in the folder are those of the inputs as they are.
    void begin();

    /// A part that is there. Nothing for one that is missing, or damaged, which is noted, and
    /// where there is no memory for it.
    std::optional<Part> read(int part);
    /// Keeps a part, in the background; before, it waits for the last one. When that fails, nothing
    /// more is written.
    void write(Part part);
    void finishWriting();
    /// Nothing more is written.
    void giveUp(const QString& why);

    int taken() const { return m_taken; }
    int made() const { return m_made; }  ///< and given to write()
    /// What a pass whose rows are kept has in memory at most: a part in the making, one that is
    /// being written.
    static quint64 bytesInMemory(const PartCut& cut, int columns, int valuesPerBin);
    /// Why parts could not be written; empty: they could.
    const QString& writingFault() const { return m_fault->why; }
    /// What there is to say at the end: how many parts were taken, which were damaged, that they
    /// could not be written, which is said once for all stores of a folder.
    Outcome told() const;

  private:
    QString fileOf(int part) const;

    Place m_place;
    WorkKey m_key;
    PartCut m_cut;
    int m_columns;
    int m_valuesPerBin;
    std::shared_ptr<WritingFault> m_fault;
    QString m_changed;
    std::set<int> m_damaged;
    int m_taken = 0;
    int m_made = 0;
    std::future<QString> m_writing;
};
