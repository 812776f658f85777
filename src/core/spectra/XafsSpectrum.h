#pragma once

#include <QMetaType>
#include <atomic>
#include <cstddef>
#include <optional>

#include "spectra/BgCurve.h"
#include "spectra/Normalisation.h"
#include "spectra/Spectrum.h"

/// An absorption spectrum (energy in eV, mu-t) that normalises itself: it finds its edge, fits a
/// pre-edge and a post-edge background, and from them the mid-edge energy, the edge jump and four
/// normalised series. Curves and series always belong to the last normalisation. With a common E0
/// no edge is sought: the spectrum has it at that E0 plus its energy correction.
///
/// Copies share curves and series, behind one pointer, until one of them is normalised again, also
/// between threads.
///
/// Degenerate data give debug lines and series that are not finite, never an error.
class XafsSpectrum : public Spectrum {
  public:
    enum Background { Simple = 0, Victreen = 1 };  ///< any non-zero type is Victreen
    enum Debug { Quiet, Talkative };               ///< whether an edge jump of 0 gives a debug line

    /// Empty, to be read from a file; Victreen until told otherwise.
    XafsSpectrum();
    /// Takes the measured points with their shift and normalises them. The energy correction is
    /// what the calibration found for the position (eV, taken off when fitting and writing).
    XafsSpectrum(const Spectrum& measured, const Normalisation& rule, double energyCorrection,
                 Debug debug = Talkative);
    XafsSpectrum(const XafsSpectrum& other);
    XafsSpectrum& operator=(const XafsSpectrum& other);
    ~XafsSpectrum();

    /// Normalises with this background type, in the ranges and with the common E0 that have been
    /// given; does nothing without points.
    void normalise(int backgroundType, Debug debug = Talkative);

    int backgroundType() const { return m_backgroundType; }
    void setBackgroundType(int type) { m_backgroundType = type; }

    /// 0 when read from a file of the 9809 kind, else 1.
    int not9809() const { return m_not9809; }
    void setNot9809(int flag) { m_not9809 = flag; }

    // Ranges of the background fits in eV, relative to the edge.
    double preStart() const { return m_ranges.preStart; }
    double preEnd() const { return m_ranges.preEnd; }
    double postStart() const { return m_ranges.postStart; }
    double postEnd() const { return m_ranges.postEnd; }
    void setPreRange(double start, double end);
    void setPostRange(double start, double end);
    void setRanges(const BackgroundRanges& ranges) { m_ranges = ranges; }

    const BgCurve& preEdge() const { return m_results->preEdge; }
    const BgCurve& postEdge() const { return m_results->postEdge; }

    /// Mean energy (eV) at which mu-t crosses the middle between the backgrounds, 0.0 for none;
    /// with a common E0 that, plus the energy correction.
    double midE() const { return m_results->midE; }
    /// Edge jump: post-edge minus pre-edge curve at midE.
    double dMut() const { return m_results->dMut; }

    const Spectrum& postBased() const { return m_results->postBased; }  ///< (mu-post) / dMut
    const Spectrum& postBasedBySpan() const {
        return m_results->postBasedBySpan;
    }  ///< (mu-post) / (post-pre)
    const Spectrum& normalized() const { return m_results->normalized; }  ///< (mu-post) / dMut + 1
    /// (mu-pre) / (post-pre): what fits compare and spectrum files carry.
    const Spectrum& doubleNormalizedPreBase() const { return m_results->doubleNormalized; }
    double doubleNormalizedPreBase(double e) const {
        return m_results->doubleNormalized.valueAt(e);
    }

    double energyCorrection() const { return m_energyCorrection; }
    void setEnergyCorrection(double correction) { m_energyCorrection = correction; }
    /// Energy of point i as fits and corrected files use it.
    double correctedEnergy(int i) const { return energy(i) - m_energyCorrection; }

  private:
    /// What the last normalisation has made.
    struct Results {
        std::atomic<int> ref{1};
        BgCurve preEdge;
        BgCurve postEdge;
        double midE = 0.0;
        double dMut = 0.0;
        Spectrum postBased;
        Spectrum postBasedBySpan;
        Spectrum normalized;
        Spectrum doubleNormalized;

        Results() = default;
        Results(const Results& other);
        static void* operator new(std::size_t bytes);
        static void operator delete(void* memory, std::size_t bytes);
    };

    Results* share() const;
    static void release(Results* results);
    double crossingAround(double e0) const;
    void findMidEandDMut(double e0, Debug debug);
    void fillSeries();

    Results* m_results;  // never null
    int m_not9809 = 1;
    int m_backgroundType = Victreen;
    BackgroundRanges m_ranges;
    std::optional<double> m_commonE0;
    double m_energyCorrection = 0.0;
};

Q_DECLARE_METATYPE(XafsSpectrum)
Q_DECLARE_METATYPE(XafsSpectrum*)
