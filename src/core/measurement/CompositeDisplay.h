#pragma once

#include "drawing/CompositePicture.h"
#include "measurement/Measurement.h"

// The fractions of up to three references in one picture.

/// Failed: it names no reference, one that there is not or one twice, or one whose fraction holds
/// no values.
Outcome judgeComposite(const Measurement& measurement, const Composite& composite);

/// Whether the composite chosen is on display.
bool showsComposite(const Measurement& measurement);

/// From black to a full colour fractions go from 0 to 1, unless their range is fixed, in the view
/// or by the Analyzer. Of a composite that judgeComposite() has accepted.
CompositeMaps compositeOf(const Measurement& measurement, const Composite& composite);
/// The names of the references' files.
CompositeNames namesOf(const Measurement& measurement, const Composite& composite);

/// Saves the picture with its legend, in the format of the name's suffix. Needs a QGuiApplication
/// for its letters.
Outcome saveComposite(const Measurement& measurement, const QString& fileName,
                      const Composite& composite);
