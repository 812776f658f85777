#pragma once

#include "files/FileState.h"
#include "frames/CountFile.h"
#include "frames/FrameHeader.h"
#include "frames/OpenFiles.h"

/// Counts that lie in a file as they are: read at their offsets, never mapped into memory.
class PlainCounts : public CountFile {
  public:
    /// @param name of the file, as messages name it
    PlainCounts(const QString& name, const FileState& state, const FrameHeader& header);
    ~PlainCounts() override;

    QString read(quint32 first, quint32 rows, quint16* to) override;
    void willRead(quint32 first, quint32 rows) override;
    QString change() const override;

  private:
    template <class Do>
    bool forRuns(quint32 first, quint32 rows, Do run) const;

    const QString m_name;
    const FileState m_state;
    const quint32 m_width;
    const PlainStrips m_strips;
    OpenFiles::Place m_place;
};
