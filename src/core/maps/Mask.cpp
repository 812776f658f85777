#include "maps/Mask.h"

#include "maps/Analyzed2DRes.h"

Mask maskBelow(const Analyzed2DRes& value, const Analyzed2DRes& error, double factor) {
    const AnalysisGrid& grid = value.grid();
    if (!value.hasData() || !error.hasData() || grid.width != error.grid().width ||
        grid.height != error.grid().height) {
        return nullptr;
    }
    const std::size_t pixels = static_cast<std::size_t>(value.values().size());
    auto blank = std::make_shared<MaskPixels>(pixels);
    const double* const values = value.data();
    const double* const errors = error.data();
    unsigned char* const isBlank = blank->data();
    for (std::size_t i = 0; i < pixels; ++i) {
        isBlank[i] = values[i] >= factor * errors[i] ? 0 : 1;
    }
    return blank;
}
