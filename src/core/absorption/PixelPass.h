#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "absorption/AbsorptionSource.h"
#include "absorption/RasterPass.h"

class RowShares;

/// A number for every pixel of an image.
struct PixelValues {
    int width = 0;
    int height = 0;
    std::unique_ptr<double[]> values;  ///< row by row
    double min = 1.0;                  ///< of what is a number; min > max where nothing is
    double max = 0.0;
    QString problem;  ///< why there are none, where counts could not be read

    double at(int x, int y) const {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

/// Works out mu-t of single pixels from a few frames: the same bits as
/// AbsorptionSource::spectrumAt() with half widths of 0, for any number of threads. No number where
/// one of these frames, or I0 at its energy, has no counts.
///
/// The frames stay as they are while it runs.
class PixelPass {
  public:
    /// mu-t of one I1 frame, which is among those of the source.
    static PixelPass absorption(const AbsorptionSource& source, const TiffData* frame);
    /// mu-t at one energy less that at another (eV), as differenceEvaluators() has it for bins of
    /// one pixel. All shifts (eV) lie between the two given.
    static PixelPass difference(const AbsorptionSource& source, double from, double to,
                                const std::function<double(int x, int y)>& shiftAt,
                                double lowestShift, double highestShift);

    /// Fills *out, whose memory is used again where the size allows. False when it was stopped,
    /// when memory ran out or counts could not be read: *out is empty then but for the problem.
    bool run(int threads, const std::atomic<bool>& stop, PixelValues* out) const;

  private:
    struct Extremes;

    PixelPass(const AbsorptionSource& source, RasterPass::Evaluate evaluate)
        : m_source(source), m_evaluate(std::move(evaluate)) {}

    void fill(RowShares* rows, PixelValues* out, Extremes* extremes) const;

    AbsorptionSource m_source;  // of the frames that it takes
    RasterPass::Evaluate m_evaluate;
};
