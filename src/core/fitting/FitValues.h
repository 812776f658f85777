#pragma once

#include "fitting/FitRule.h"
#include "fitting/ResultKinds.h"

/// Where the numbers of a fit stand among those of its bin: for m references first 2 m, edge jumps
/// and then ratios; with errors 4 m + 5. A number that there is not is NaN.
struct FitValues {
    int references;
    bool withErrors;

    constexpr FitValues(int count, bool hasErrors) : references(count), withErrors(hasErrors) {}

    constexpr int count() const {
        return withErrors ? 4 * references + 5 : ReferenceKindCount * references;
    }

    constexpr int dMut(int r) const { return r; }                ///< edge jump due to reference r
    constexpr int ratio(int r) const { return references + r; }  ///< its share
    // One sigma of counting, in the unit of the value.
    constexpr int ratioError(int r) const { return 2 * references + r; }
    constexpr int dMutError(int r) const { return 3 * references + r; }
    // For all references together.
    constexpr int r() const { return 4 * references; }  ///< R factor: sum (y - f)^2 / sum y^2
    constexpr int chi2Reduced() const { return 4 * references + 1; }
    constexpr int sum() const { return 4 * references + 2; }  ///< of the ratios
    constexpr int totalJump() const { return 4 * references + 3; }
    constexpr int totalJumpError() const { return 4 * references + 4; }
};
