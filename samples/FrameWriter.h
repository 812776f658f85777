#pragma once

#include <string>

#include "Measurement.h"

namespace samples {

// "fe-i1" and 7112.5 give "fe-i1-7112_50eV.tif". An underscore stands for the decimal point, so
// none may come before the number; two decimals throughout keep the files in order of energy.
std::string frameName(const std::string& stem, double energy);

// One uncompressed 16-bit channel. Throws std::runtime_error when the file cannot be written.
void writeFrame(const std::string& fileName, int width, int height, const Frame& frame);

}  // namespace samples
