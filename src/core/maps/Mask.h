#pragma once

#include <memory>
#include <vector>

class Analyzed2DRes;

/// Which pixels of a result image show no number, row by row: 1, all others 0. A byte each, which
/// vector units work on.
using MaskPixels = std::vector<unsigned char>;
using Mask = std::shared_ptr<const MaskPixels>;  ///< null: none

/// Blank where a value is not at least `factor` times its error, which counts for what is no number
/// in either; both are images of one size. Null for images without values.
Mask maskBelow(const Analyzed2DRes& value, const Analyzed2DRes& error, double factor);
