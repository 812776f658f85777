#pragma once

#include <memory>
#include <mutex>

#include "files/FileState.h"
#include "frames/CountFile.h"

struct FrameHeader;
struct TiffData;

/// Counts that cannot be read at places of a file (compressed ones above all): decoded as a whole
/// when the first are asked for, and kept. They stay in memory as far as their share of
/// memoryLimit() goes, then in SpillFile. What is read is what TiffData::load() gives.
class DecodedCounts : public CountFile {
  public:
    /// @param name of the file, as messages name it
    DecodedCounts(const QString& name, const FileState& state, const FrameHeader& header);
    ~DecodedCounts() override;

    QString read(quint32 first, quint32 rows, quint16* to) override;
    void willRead(quint32, quint32) override {}  // all of them come with the first
    QString change() const override;

  private:
    QString decode();
    QString decodeInto(TiffData* frame) const;
    QString keep(const TiffData& frame);
    QString spill(const TiffData& frame);
    quint64 bytes() const { return quint64(m_width) * m_height * sizeof(quint16); }

    const QString m_name;
    const FileState m_state;
    const quint32 m_width;
    const quint32 m_height;

    std::mutex m_mutex;
    bool m_isDecoded = false;
    std::unique_ptr<quint16[]> m_counts;  // null: in the spill file, at m_offset
    quint64 m_offset = 0;
};

/// What the frames that are loaded and not yet decoded may still take of the memory, in bytes,
/// which memoryLeft() has not; 0: there are none.
quint64 memoryToDecode();
