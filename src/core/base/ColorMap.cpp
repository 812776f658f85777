#include "base/ColorMap.h"

#include <QtGlobal>
#include <algorithm>
#include <cstring>

#include "base/ColorTables.h"

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

std::vector<Rgb> unpacked(const std::array<unsigned, 256>& packed) {
    std::vector<Rgb> table;
    for (const unsigned rgb : packed) {
        table.push_back({level(static_cast<int>(rgb >> 16 & 255)),
                         level(static_cast<int>(rgb >> 8 & 255)),
                         level(static_cast<int>(rgb & 255))});
    }
    return table;
}

constexpr Rgb Blue{0, 90, 255};
constexpr Rgb Green{0, 210, 60};
constexpr Rgb Lime{120, 255, 0};
constexpr Rgb Magenta{255, 0, 255};
constexpr Rgb Red{255, 30, 30};

std::vector<ColorScale> makeReversed() {
    static std::vector<std::vector<Rgb>> tables;
    std::vector<ColorScale> all = colorScales();
    for (ColorScale& scale : all) {
        tables.emplace_back(scale.table, scale.table + scale.last + 1);
        std::reverse(tables.back().begin(), tables.back().end());
        scale.table = tables.back().data();
    }
    return all;
}

}  // namespace

const std::vector<ColorScale>& colorScales() {
    static const std::vector<Rgb> viridis = unpacked(colortables::Viridis);
    static const std::vector<Rgb> cividis = unpacked(colortables::Cividis);
    static const std::vector<Rgb> inferno = unpacked(colortables::Inferno);
    static const std::vector<Rgb> vik = unpacked(colortables::Vik);
    static const std::vector<ColorScale> all{
        {"grey",
         QT_TRANSLATE_NOOP("ColorScale", "Grey"),
         true,
         256.0,
         255,
         Grey.data(),
         Blue,
         Red,
         false,
         {60, 100, 170}},
        {"heat", QT_TRANSLATE_NOOP("ColorScale", "Black, red, yellow, white"), false, 766.0, 766,
         Heat.data(), Blue, Green},
        {"viridis", QT_TRANSLATE_NOOP("ColorScale", "Viridis"), false, 256.0, 255, viridis.data(),
         Magenta, Red},
        {"cividis",
         QT_TRANSLATE_NOOP("ColorScale", "Cividis"),
         false,
         256.0,
         255,
         cividis.data(),
         Magenta,
         Red,
         false,
         {230, 230, 230}},
        {"inferno", QT_TRANSLATE_NOOP("ColorScale", "Inferno"), false, 256.0, 255, inferno.data(),
         Blue, Green},
        {"vik", QT_TRANSLATE_NOOP("ColorScale", "Blue, white, red about 0 (vik)"), false, 256.0,
         255, vik.data(), Lime, Magenta, true},
    };
    return all;
}

const ColorScale& reversed(const ColorScale& scale) {
    static const std::vector<ColorScale> all = makeReversed();
    return all[static_cast<std::size_t>(&scale - colorScales().data())];
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
