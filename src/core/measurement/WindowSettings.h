#pragma once

#include <optional>

#include "measurement/Settings.h"

class Measurement;

/// The settings that a window starts otherwise than the program: error maps are made, and maps are
/// shown in their robust range. A batch says itself what it wants of them, wherever it runs: while
/// one runs they are as at the start of the program, and the user's come back at its end. A
/// composite on display goes.
class WindowSettings {
  public:
    /// As a window starts.
    static void start(Measurement& measurement);

    /// A batch begins, maybe before another has ended.
    void setAside(Measurement& measurement);
    /// It has ended. A range or colours that it has chosen itself stay.
    void giveBack(Measurement& measurement);

  private:
    struct Own {
        bool errorMaps;
        MapViews views;
    };
    std::optional<Own> m_before;  // the batch that runs
};
