#pragma once

#include <functional>
#include <memory>

#include "maps/PixelSet.h"

/// Bins at regular places of an image: columns x rows of them, from (firstX, firstY) in steps of
/// stepX and stepY, each (2 halfWidth + 1) x (2 halfHeight + 1) pixels. What lies outside the image
/// has no spectrum and is left out by cutTo().
struct BinRaster {
    int firstX = 0;
    int stepX = 1;
    int columns = 0;
    int firstY = 0;
    int stepY = 1;
    int rows = 0;
    int halfWidth = 0;
    int halfHeight = 0;
    /// Bins whose centre is not among these have no spectrum; null: all have one.
    std::shared_ptr<const PixelSet> inside = nullptr;

    void cutTo(int width, int height);
    int x(int column) const { return firstX + column * stepX; }
    int y(int row) const { return firstY + row * stepY; }
    bool holds(int column, int row) const { return !inside || inside->contains(x(column), y(row)); }
    /// How many bins have a spectrum.
    int count() const;
};

/// What has been worked out for the bin around a point; asked row by row, and null where there is
/// no spectrum.
using BinValuesAt = std::function<const double*(int x, int y)>;
