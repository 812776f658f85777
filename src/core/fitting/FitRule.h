#pragma once

#include "spectra/Normalisation.h"

/// How spectra are fitted with references.
struct FitRule {
    enum Method { Lcf, Mlcf };

    /// What of a reference a fit compares. Jump: its normalised spectrum. None: the values of its
    /// file as they are, for edges without room for lines.
    enum class ReferenceScale { Jump, None };

    /// What the coefficients are held to: nothing, not below 0, a sum of 1, or both.
    enum class Constraints { None, Nonnegative, Sum1, Both };

    Method method;
    ReferenceScale referenceScale = ReferenceScale::Jump;
    Constraints constraints = Constraints::None;
    Normalisation sample;     ///< of the spectra that are fitted
    bool withErrors = false;  ///< counting errors and goodness of fit, too

    FitRule(Method fitMethod = Lcf, const Normalisation& ofSample = {})  // NOLINT: as is a method
        : method(fitMethod), sample(ofSample) {}

    bool operator==(const FitRule& o) const {
        return method == o.method && referenceScale == o.referenceScale &&
               constraints == o.constraints && sample == o.sample && withErrors == o.withErrors;
    }
};
