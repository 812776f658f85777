#pragma once

#include <QString>
#include <QtGlobal>
#include <memory>

struct FileState;
struct FrameHeader;

/// The counts of one frame where they lie, for frames that are loaded by their headers alone
/// (TiffData::countFile, TiffData::rows is empty then). Any thread may call any of it.
class CountFile {
  public:
    CountFile() = default;
    virtual ~CountFile() = default;
    CountFile(const CountFile&) = delete;
    CountFile& operator=(const CountFile&) = delete;

    /// Reads rows first .. first + rows - 1, one after the other, width counts a row, in the
    /// byte order of the machine. Empty; else what went wrong, with the file's name, and nothing is
    /// promised of what `to` holds.
    virtual QString read(quint32 first, quint32 rows, quint16* to) = 0;
    /// Tells the system that these rows are read soon.
    virtual void willRead(quint32 first, quint32 rows) = 0;
    /// That the file is of another size or time than when it was loaded, with its name; empty where
    /// it is not.
    virtual QString change() const = 0;
};

/// The counts of a file with this header, which a stack takes; the state is the one in which the
/// header was read.
std::shared_ptr<CountFile> countFileOf(const QString& name, const FileState& state,
                                       const FrameHeader& header);
