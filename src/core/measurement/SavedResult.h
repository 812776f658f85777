#pragma once

#include "measurement/Measurement.h"

// What is said of a result that is saved, whatever the form of its file.

/// Notes that it has been saved. Warns where it was stopped, and where the inputs of now would not
/// give it again; each text begins with the name, if there is one.
Outcome judgeSaved(const Measurement& measurement, const Result& result, const QString& name = {});

/// Failed: a map without values, as its reference took no part.
Outcome mapWithoutValues();

/// The name of a further file, relative where the one that was asked for is.
QString asGiven(const QString& name, const QString& asked);
