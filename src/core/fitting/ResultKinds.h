#pragma once

#include <QtGlobal>
#include <array>
#include <cstddef>

/// What a result image holds: those of each reference, those of residual absorption, the energy
/// map. Ids as in ResultKinds.
enum class ResultId { DMut, Ratio, RaDmut, RaRest, RaRatio, Shift };

/// Results of each reference of a fit.
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
    const char* source;  ///< its name in the head of tables
    const char* title;   ///< for people; English, context "ResultKind" of the translation
    const char* unit;
    ResultScale scale;
};

/// All kinds of result, in the order of their ids.
inline constexpr std::array ResultKinds{
    ResultKind{ResultId::DMut, "DMut",
               QT_TRANSLATE_NOOP("ResultKind", "Edge jump due to the reference"), "mu-t",
               ResultScale::DMut},
    ResultKind{ResultId::Ratio, "Ratio", QT_TRANSLATE_NOOP("ResultKind", "Share of the reference"),
               "share", ResultScale::Ratio},
    ResultKind{ResultId::RaDmut, "dmut", QT_TRANSLATE_NOOP("ResultKind", "Edge jump"), "mu-t",
               ResultScale::DMut},
    ResultKind{ResultId::RaRest, "rest", QT_TRANSLATE_NOOP("ResultKind", "Residual absorption"),
               "mu-t", ResultScale::Own},
    ResultKind{ResultId::RaRatio, "ratio",
               QT_TRANSLATE_NOOP("ResultKind", "Share of the residual absorption"), "share",
               ResultScale::Ratio},
    ResultKind{ResultId::Shift, "E-shift", QT_TRANSLATE_NOOP("ResultKind", "Energy shift"), "eV",
               ResultScale::Own},
};
static_assert(ResultKinds.size() == static_cast<std::size_t>(ResultId::Shift) + 1);

inline const ResultKind& resultKind(ResultId id) {
    return ResultKinds[static_cast<std::size_t>(id)];
}
