#pragma once

#include <memory>
#include <vector>

#include "measurement/Result.h"

/// One result for each kind of some families, in the order of their ids; always there, empty until
/// a run fills them.
class ResultSet {
  public:
    /// reference: the index of the one that all of them belong to; -1: of none.
    ResultSet(std::initializer_list<ResultFamily> families, int reference = -1);

    /// Null for a kind that is not among them.
    Result* find(ResultId id) const;
    /// Those of a family.
    std::vector<Result*> of(ResultFamily family) const;
    std::vector<Result*> all() const;

  private:
    std::vector<std::unique_ptr<Result>> m_results;
};
