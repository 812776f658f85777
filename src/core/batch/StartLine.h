#pragma once

#include <optional>

#include "batch/BatchText.h"

/// Where a batch goes on that is taken up at a line of its file, counted from 1: the index in
/// text.lines at which that line, or the next that is not blank, begins; in the body of a loop that
/// of the outermost :for around it, as what the rounds save cannot be told apart. Nothing for a
/// line beyond the last.
std::optional<int> startIndex(const BatchText& text, int line);
