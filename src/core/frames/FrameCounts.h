#pragma once

#include <QString>
#include <memory>

#include "frames/TiffData.h"

/// A frame with counts in memory, for as long as this lives: the frame itself where it has them,
/// else a copy whose counts have been read (TiffData::countFile).
class FrameCounts {
  public:
    explicit FrameCounts(TiffData* frame);

    /// What went wrong, with the file's name: there are no rows. Else empty.
    const QString& problem() const { return m_problem; }
    /// With all rows, min, max and saturated.
    TiffData& frame() const { return *m_frame; }
    /// Whether what is made of the frame, such as its picture, goes with this.
    bool isCopy() const { return m_copy != nullptr; }

  private:
    std::unique_ptr<TiffData> m_copy;
    TiffData* m_frame;
    QString m_problem;
};
