#pragma once

#include <optional>

/// What pictures of I1 frames show; those of I0 frames always show counts.
struct FrameView {
    enum class Kind {
        Counts,
        Absorption,  ///< mu-t = ln(I0 / I1) of every pixel
        Difference   ///< of mu-t at two energies
    };
    Kind kind = Kind::Counts;
    double from = 0.0;         ///< eV, of the energy that is taken off
    std::optional<double> to;  ///< eV; none: the energy of the frame on display

    bool operator==(const FrameView& o) const {
        return kind == o.kind && from == o.from && to == o.to;
    }
};
