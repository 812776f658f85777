#pragma once

#include <QString>
#include <vector>

class FrameSet;
struct TiffData;

/// The mean of frames taken without beam, in counts a pixel: what the detector shows of its own.
class DarkFrame {
  public:
    /// No frame: every sum is 0.
    DarkFrame() = default;
    /// Mean over the frames of width x height pixels; those of another size are left out. Rows that
    /// a frame lacks count 0. Frames whose counts are read when they are needed are read here; one
    /// that cannot be, or is another by then, leaves no frame and a problem.
    DarkFrame(const FrameSet& frames, int width, int height);

    static bool fits(const TiffData& frame, int width, int height);

    /// Names the file that could not be read; else empty.
    const QString& problem() const { return m_problem; }
    /// Frames that went into the mean.
    int frameCount() const { return m_frameCount; }
    int width() const { return m_width; }
    int height() const { return m_height; }

    /// Sum of the mean counts over the box of TiffData::boxSum(), row by row and column by column;
    /// pixels outside count 0. Every path to a spectrum takes its sum from here, so that all of
    /// them round alike.
    double boxSum(int x, int y, int halfWidth, int halfHeight) const;
    /// The sums over single pixels, of `count` of them from x >= 0 on along row y.
    void copyRow(int x, int y, int count, double* sums) const;

  private:
    QString read(const TiffData& frame);

    QString m_problem;
    int m_frameCount = 0;
    int m_width = 0;
    int m_height = 0;
    std::vector<double> m_mean;  // row after row; empty without frames
};
