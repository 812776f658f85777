#pragma once

#include <array>

/// Published tables of perceptual colour maps, 0xRRGGBB from the lower to the upper end; where they
/// come from and under which licences is said in ColorTables.cpp.
namespace colortables {

extern const std::array<unsigned, 256> Viridis;
extern const std::array<unsigned, 256> Cividis;
extern const std::array<unsigned, 256> Inferno;
extern const std::array<unsigned, 256> Vik;

}  // namespace colortables
