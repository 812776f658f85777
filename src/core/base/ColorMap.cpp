#include "base/ColorMap.h"

#include <cstring>

namespace {

using Rgb = ColorScale::Rgb;

constexpr unsigned char level(int i) {
    return static_cast<unsigned char>(i < 0 ? 0 : (i > 255 ? 255 : i));
}

constexpr std::array<Rgb, 256> makeGrey() {
    std::array<Rgb, 256> table{};
    for (int i = 0; i < 256; ++i) {
        table[static_cast<std::size_t>(i)] = {level(i), level(i), level(i)};
    }
    return table;
}

/// Red rises first, then green, then blue.
constexpr std::array<Rgb, 767> makeHeat() {
    std::array<Rgb, 767> table{};
    for (int i = 0; i < 767; ++i) {
        table[static_cast<std::size_t>(i)] = {level(i), level(i - 255), level(i - 510)};
    }
    return table;
}

constexpr std::array<Rgb, 256> Grey = makeGrey();
constexpr std::array<Rgb, 767> Heat = makeHeat();

}  // namespace

const std::vector<ColorScale>& colorScales() {
    static const std::vector<ColorScale> all{
        {"grey", "Grey", true, 256.0, 255, Grey.data()},
        {"heat", "Black, red, yellow, white", false, 766.0, 766, Heat.data()},
    };
    return all;
}

const ColorScale& greyScale() {
    return colorScales()[0];
}

const ColorScale& heatScale() {
    return colorScales()[1];
}

const ColorScale* colorScaleOf(const char* id) {
    for (const ColorScale& scale : colorScales()) {
        if (std::strcmp(scale.id, id) == 0) {
            return &scale;
        }
    }
    return nullptr;
}
