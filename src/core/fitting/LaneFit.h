#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "absorption/RasterPass.h"
#include "fitting/CountingErrors.h"
#include "fitting/FitValues.h"
#include "fitting/LinearFit.h"
#include "fitting/ShiftedPack.h"
#include "spectra/LaneNormaliser.h"

/// Fits a pack of spectra of the same energies as LinearFit does one, to the same bits. For one
/// thread.
class LaneFit {
  public:
    /// The energies must suit LaneNormaliser.
    LaneFit(const QVector<XafsSpectrum>& references, const FitRule& rule,
            const std::vector<double>& energies, lanes::Units units = lanes::bestUnits());

    int referenceCount() const { return m_fit.referenceCount(); }

    /// Fits the first `count` spectra of the pack mu[energy * lanes::Count + spectrum]; of each,
    /// the energy correction in eV is taken off its energies. results: for every spectrum the
    /// numbers of FitValues. The counts behind the spectra are for errors.
    void fit(const double* mu, const double* corrections, int count, const lanes::Counts* counts,
             double* results);
    /// See LaneNormaliser; 0 for a method that needs no normalisation.
    unsigned withoutJump() const { return m_normaliser.withoutJump(); }
    unsigned withoutLines() const { return m_normaliser.withoutLines(); }

  private:
    void prepare(double correction);
    void project(const double* y);
    void fitTogether(const double* y, const double* corrections, int count, double* results);
    void fitInTurn(const double* y, const double* corrections, bool isOneBasis, int count,
                   double* results);
    void solve(int l);
    void finish(int l, const std::vector<double>& coefficients, double* results);
    void keepRows(int l);
    void shareRows(bool isOneBasis, int count);
    void evaluateErrors(const double* y, int count, const lanes::Counts* counts, double* results);

    LinearFit m_fit;
    FitRule m_rule;
    std::vector<double> m_energies;
    const lanes::Kernels& m_kernels;
    LaneNormaliser m_normaliser;
    std::vector<int> m_allPoints;
    ShiftedPack m_shifted;

    std::vector<double> m_corrected;
    double m_correction = 0.0;
    bool m_prepared = false;
    std::vector<double> m_y;
    std::vector<double> m_sums;
    std::vector<double> m_plain;   // the solutions without constraints
    std::vector<double> m_solved;  // the coefficients of the pack, see lanes::Fits
    std::vector<double> m_coefficients;

    // For errors.
    FitValues m_places;
    std::unique_ptr<CountingErrors> m_errors;
    CountingErrors::Pack m_pack;
    std::vector<double> m_span;
    std::vector<double> m_ownBasis;
    std::vector<double> m_ownResponse;
};

/// Energy correction (eV) at a pixel; called from several threads.
using CorrectionAt = std::function<double(int x, int y)>;

// What a RasterPass works out, one evaluator for each thread. The energies are those of the source,
// any: where packs cannot be worked on, the spectra are taken one by one, with the same results as
// LinearFit and XafsSpectrum give.

/// With fits: for each bin the numbers of FitValues; its energy correction is that at its centre. A
/// bin without counts at some energy, wherever that lies, has no errors.
std::vector<RasterPass::Evaluate> fitEvaluators(int threads, const BinRaster& raster,
                                                const QVector<XafsSpectrum>& references,
                                                const FitRule& rule,
                                                const std::vector<double>& energies,
                                                const CorrectionAt& correctionAt);

/// For residual absorption: for each bin the values of the pre-edge and of the post-edge curve at
/// an energy (eV); 0.0 where there are too few points for a curve. Energy corrections move a common
/// E0 alone.
std::vector<RasterPass::Evaluate> backgroundEvaluators(int threads, const BinRaster& raster,
                                                       const std::vector<double>& energies,
                                                       const Normalisation& sample, double e,
                                                       const CorrectionAt& correctionAt);
