#pragma once

#include <array>

#include "base/ColorMap.h"
#include "fitting/ResultKinds.h"

// How maps and frames are looked at: colours and ranges of pictures. No value depends on them.

/// Colours chosen in place of the stated ones, which are those of resultColors() and frameColors().
struct ViewColors {
    const ColorScale* scale = nullptr;  ///< one of colorScales(); null: the stated ones
    bool isReversed = false;

    bool isStated() const { return scale == nullptr && !isReversed; }
    const ColorScale& inPlaceOf(const ColorScale& stated) const {
        const ColorScale& chosen = scale != nullptr ? *scale : stated;
        return isReversed ? reversed(chosen) : chosen;
    }
    bool operator==(const ViewColors& o) const {
        return scale == o.scale && isReversed == o.isReversed;
    }
};

/// The range of a map's colours.
struct MapRange {
    enum class Kind {
        Stated,  ///< that of the finite values
        Full,    ///< the same; in pictures, what is no number is blank
        Robust,  ///< their percentiles 1 and 99, see Analyzed2DRes::robustRange()
        Fixed    ///< the limits here
    };
    Kind kind = Kind::Stated;
    double low = 0.0;
    double high = 1.0;

    bool operator==(const MapRange& o) const {
        return kind == o.kind && low == o.low && high == o.high;
    }
};

struct MapView {
    ViewColors colors;
    MapRange range;

    bool isStated() const { return colors.isStated() && range.kind == MapRange::Kind::Stated; }
    bool operator==(const MapView& o) const { return colors == o.colors && range == o.range; }
};

/// The views of all kinds of map, and the colours of frames.
struct MapViews {
    std::array<MapView, ResultKinds.size()> of{};
    ViewColors frames;

    MapView& operator[](ResultId id) { return of[static_cast<std::size_t>(id)]; }
    const MapView& operator[](ResultId id) const { return of[static_cast<std::size_t>(id)]; }
    bool operator==(const MapViews& o) const { return of == o.of && frames == o.frames; }
};

/// The fractions of up to three references in one picture, as red, green and blue.
struct Composite {
    std::array<int, 3> references{-1, -1, -1};  ///< by number; -1: none

    bool isOn() const { return !(*this == Composite()); }
    bool operator==(const Composite& o) const { return references == o.references; }
};
