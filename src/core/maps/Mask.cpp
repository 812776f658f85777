#include "maps/Mask.h"

#include "maps/Analyzed2DRes.h"

Mask maskBelow(const Analyzed2DRes& value, const Analyzed2DRes& error, double factor) {
    const AnalysisGrid& grid = value.grid();
    if (!value.hasData() || !error.hasData() || grid.width != error.grid().width ||
        grid.height != error.grid().height) {
        return nullptr;
    }
    const std::size_t pixels = static_cast<std::size_t>(value.values().size());
    auto blank = std::make_shared<std::vector<bool>>(pixels);
    for (std::size_t i = 0; i < pixels; ++i) {
        (*blank)[i] = !(value.data()[i] >= factor * error.data()[i]);
    }
    return blank;
}
