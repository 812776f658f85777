#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "base/Globals.h"

/// A colour map: which colour stands for a value between the ends of a range.
///
/// A new one is a row of the table in ColorMap.cpp; what it colours is said by frameColors() and
/// resultColors(). The tables are constant, so that maps may be read from any thread at any time.
struct ColorScale {
    using Rgb = std::array<unsigned char, 3>;

    const char* id;     ///< the word that names it in batch lines and settings
    const char* title;  ///< in English, context "ColorScale" of the translation
    bool isGrey;        ///< red, green and blue are equal everywhere
    double steps;       ///< a value v has entry trunc(v * steps) ...
    int last;           ///< ... of entries 0 to last
    const Rgb* table;
    Rgb below;                 ///< stands for values below the range, unlike any colour of the map
    Rgb above;                 ///< and for those above it
    bool isDiverging = false;  ///< its middle stands for 0
    Rgb blank{128, 128, 128};  ///< stands for what is no number; mid grey unless the map has it

    /// Red, green and blue for v in 0..1, and of the nearer end outside; NaN gives the lower end.
    const unsigned char* at(double v) const {
        return table[static_cast<std::size_t>(toClampedInt(v * steps, 0, last))].data();
    }
};

/// All colour maps.
const std::vector<ColorScale>& colorScales();
/// The map of this id, null for none.
const ColorScale* colorScaleOf(const char* id);

/// The same map from its upper to its lower end; of one of all colour maps.
const ColorScale& reversed(const ColorScale& scale);

/// Black to white.
const ColorScale& greyScale();
/// Black, red, yellow, white.
const ColorScale& heatScale();

/// The maps of frames and of result images.
inline const ColorScale& frameColors() {
    return greyScale();
}
inline const ColorScale& resultColors() {
    return heatScale();
}
