#pragma once

#include <functional>

/// The value of a bin by its column and row in the raster; not a number where there is none.
using BinValue = std::function<double(int column, int row)>;
