#pragma once

#include <optional>

/// Ranges in which the backgrounds are fitted, in eV relative to E0: preStart <= E - E0 < preEnd
/// and postStart <= E - E0 < postEnd.
struct BackgroundRanges {
    double preStart = -100.0;
    double preEnd = -10.0;
    double postStart = 10.0;
    double postEnd = 1000.0;

    /// Energies that a curve should rest on: with fewer it tells nothing of the scatter.
    static constexpr int FewestPoints = 3;

    bool ascend() const { return preStart < preEnd && preEnd <= postStart && postStart < postEnd; }
    bool operator==(const BackgroundRanges& o) const {
        return preStart == o.preStart && preEnd == o.preEnd && postStart == o.postStart &&
               postEnd == o.postEnd;
    }
};

/// How a spectrum is normalised.
struct Normalisation {
    int background;  ///< its kind, see background::kindOf()
    BackgroundRanges ranges;
    /// E0 of all spectra, in eV of the calibrated scale: a spectrum has it at this plus its energy
    /// correction. None: each has its own, where it rises through half its height.
    std::optional<double> e0;

    Normalisation(int kind = 0) : background(kind) {}  // NOLINT: a kind is a rule

    bool operator==(const Normalisation& o) const {
        return background == o.background && ranges == o.ranges && e0 == o.e0;
    }
};
