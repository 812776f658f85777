#pragma once

#include "measurement/Measurement.h"

class QFormLayout;
class QLabel;

/// Lines below the value at the cursor: what the maps know of the bin there beyond the value of the
/// one on display. They are always there; a dash stands for what is not known.
class CursorNumbers {
  public:
    /// Puts the lines into the box, after the one whose field is given.
    CursorNumbers(QFormLayout* box, QWidget* after);

    /// Shows them for a pixel; outside the image there is nothing to know.
    void show(const Measurement& measurement, const Result* shown, int x, int y);

  private:
    QLabel* m_withError;
    QLabel* m_goodness;
};
