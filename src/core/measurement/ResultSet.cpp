#include "measurement/ResultSet.h"

#include <algorithm>

ResultSet::ResultSet(std::initializer_list<ResultFamily> families, int reference) {
    for (const ResultKind& kind : ResultKinds) {
        if (std::find(families.begin(), families.end(), kind.family) != families.end()) {
            m_results.push_back(std::make_unique<Result>(kind.id, reference));
        }
    }
}

Result* ResultSet::find(ResultId id) const {
    const auto found = std::find_if(m_results.begin(), m_results.end(),
                                    [id](const auto& result) { return result->id == id; });
    return found != m_results.end() ? found->get() : nullptr;
}

std::vector<Result*> ResultSet::of(ResultFamily family) const {
    std::vector<Result*> found;
    for (const auto& result : m_results) {
        if (result->kind().family == family) {
            found.push_back(result.get());
        }
    }
    return found;
}

std::vector<Result*> ResultSet::all() const {
    std::vector<Result*> found;
    for (const auto& result : m_results) {
        found.push_back(result.get());
    }
    return found;
}
