#pragma once

#include <QtGlobal>
#include <array>
#include <cstddef>
#include <optional>

/// What a result image holds. The ids of the first five are those of the batch language; those of
/// a reference come first, then those of residual absorption, then the energy map.
enum class ResultId {
    DMut,
    Ratio,
    RaDmut,
    RaRest,
    RaRatio,
    Shift,
    RatioError,
    DMutError,
    R,
    Chi2Reduced,
    Sum,
    TotalJump,
    TotalJumpError,
    Difference
};

/// What makes a result, and how many of it there are.
enum class ResultFamily {
    Reference,    ///< a fit, one for each reference
    Fit,          ///< a fit, one for all references
    Residual,     ///< residual absorption
    Calibration,  ///< the energy map
    Difference    ///< of two energies
};

/// Results of each reference that every fit makes; they have numbers in the batch language.
constexpr int ReferenceKindCount = static_cast<int>(ResultId::RaDmut);

/// Results of residual absorption; they follow the references' where results have numbers.
constexpr int ResidualCount =
    static_cast<int>(ResultId::Shift) - static_cast<int>(ResultId::RaDmut);
constexpr ResultId residualId(int i) {
    return static_cast<ResultId>(static_cast<int>(ResultId::RaDmut) + i);
}

/// Whose limits a fixed scale takes.
enum class ResultScale { DMut, Ratio, Own };

/// One kind of result image.
struct ResultKind {
    ResultId id;
    const char* name;    ///< in batches, file names and data files
    const char* source;  ///< its name in the head of tables
    const char* title;   ///< for people; English, context "ResultKind" of the translation
    const char* unit;
    ResultScale scale;
    ResultFamily family;
    bool needsErrors = false;         ///< made by fits with error maps only
    ResultId value = ResultId::DMut;  ///< of an error: what it is the error of, else itself
};

/// All kinds of result, in the order of their ids.
inline constexpr std::array ResultKinds{
    ResultKind{ResultId::DMut, "jump", "DMut",
               QT_TRANSLATE_NOOP("ResultKind", "Edge jump due to the reference"), "mu-t",
               ResultScale::DMut, ResultFamily::Reference, false, ResultId::DMut},
    ResultKind{ResultId::Ratio, "fraction", "Ratio",
               QT_TRANSLATE_NOOP("ResultKind", "Fraction of the reference"), "fraction",
               ResultScale::Ratio, ResultFamily::Reference, false, ResultId::Ratio},
    ResultKind{ResultId::RaDmut, "ra_jump", "dmut", QT_TRANSLATE_NOOP("ResultKind", "Edge jump"),
               "mu-t", ResultScale::DMut, ResultFamily::Residual, false, ResultId::RaDmut},
    ResultKind{ResultId::RaRest, "ra_residual", "rest",
               QT_TRANSLATE_NOOP("ResultKind", "Residual absorption"), "mu-t", ResultScale::Own,
               ResultFamily::Residual, false, ResultId::RaRest},
    ResultKind{ResultId::RaRatio, "ra_share", "ratio",
               QT_TRANSLATE_NOOP("ResultKind", "Fraction of the residual absorption"), "fraction",
               ResultScale::Ratio, ResultFamily::Residual, false, ResultId::RaRatio},
    ResultKind{ResultId::Shift, "energy_shift", "E-shift",
               QT_TRANSLATE_NOOP("ResultKind", "Energy shift"), "eV", ResultScale::Own,
               ResultFamily::Calibration, false, ResultId::Shift},
    ResultKind{ResultId::RatioError, "fraction_error", "RatioError",
               QT_TRANSLATE_NOOP("ResultKind", "Counting error of the fraction"), "fraction",
               ResultScale::Own, ResultFamily::Reference, true, ResultId::Ratio},
    ResultKind{ResultId::DMutError, "jump_error", "DMutError",
               QT_TRANSLATE_NOOP("ResultKind", "Counting error of the edge jump"), "mu-t",
               ResultScale::Own, ResultFamily::Reference, true, ResultId::DMut},
    ResultKind{ResultId::R, "R", "R", QT_TRANSLATE_NOOP("ResultKind", "R factor of the fit"), "",
               ResultScale::Own, ResultFamily::Fit, true, ResultId::R},
    ResultKind{ResultId::Chi2Reduced, "chi2_reduced", "chi2_reduced",
               QT_TRANSLATE_NOOP("ResultKind", "Reduced chi-square of the fit"), "",
               ResultScale::Own, ResultFamily::Fit, true, ResultId::Chi2Reduced},
    ResultKind{ResultId::Sum, "sum", "sum", QT_TRANSLATE_NOOP("ResultKind", "Sum of the fractions"),
               "fraction", ResultScale::Own, ResultFamily::Fit, true, ResultId::Sum},
    ResultKind{ResultId::TotalJump, "total_jump", "total_jump",
               QT_TRANSLATE_NOOP("ResultKind", "Total edge jump"), "mu-t", ResultScale::Own,
               ResultFamily::Fit, true, ResultId::TotalJump},
    ResultKind{ResultId::TotalJumpError, "total_jump_error", "total_jump_error",
               QT_TRANSLATE_NOOP("ResultKind", "Counting error of the total edge jump"), "mu-t",
               ResultScale::Own, ResultFamily::Fit, true, ResultId::TotalJump},
    ResultKind{ResultId::Difference, "difference", "difference",
               QT_TRANSLATE_NOOP("ResultKind", "Difference of two energies"), "mu-t",
               ResultScale::Own, ResultFamily::Difference, false, ResultId::Difference},
};
static_assert(ResultKinds.size() == static_cast<std::size_t>(ResultId::Difference) + 1);

inline const ResultKind& resultKind(ResultId id) {
    return ResultKinds[static_cast<std::size_t>(id)];
}

/// The kind that holds the errors of another; none where there is no such kind.
inline std::optional<ResultId> errorOf(ResultId value) {
    for (const ResultKind& kind : ResultKinds) {
        if (kind.value == value && kind.id != value) {
            return kind.id;
        }
    }
    return std::nullopt;
}
