#pragma once

#include <array>
#include <cstddef>

/// What a result image holds. Ids as in ResultKinds.
enum class ResultId { DMut, Ratio, RaDmut, RaRest, RaRatio, Shift };

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
extern const std::array<ResultKind, 6> ResultKinds;

inline const ResultKind& resultKind(ResultId id) {
    return ResultKinds[static_cast<std::size_t>(id)];
}
