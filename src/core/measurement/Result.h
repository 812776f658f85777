#pragma once

#include <memory>
#include <optional>

#include "absorption/MeanSpectrum.h"
#include "absorption/RasterPass.h"
#include "fitting/ResultKinds.h"
#include "maps/Analyzed2DRes.h"
#include "measurement/Inputs.h"

/// One pass over an area: what it was made from and how far it came. Shared by all its results.
struct Run {
    enum class State { Running, Complete, Stopped };

    Work work = Work::None;
    Inputs inputs;
    State state = State::Running;
    double percent = 0.0;        ///< done, when it was stopped
    QStringList warnings;        ///< of what could be judged at its start
    RasterPass::Tally tally;     ///< of the bins done
    int rows = 0;                ///< of bins, that are done
    mutable bool saved = false;  ///< one of its results, or the record that makes them
    /// That of the area, when E0 is its own; null until it has been found.
    std::shared_ptr<const MeanSpectrum> mean;
};

// Those of its inputs, with the E0 of the mean spectrum.
Normalisation sampleRule(const Run& run);
FitRule fitRule(const Run& run);

/// A result image with what it was made from.
struct Result {
    /// The conditions of the last deglitching.
    struct Deglitched {
        double factor;
        double ratio;
    };

    explicit Result(ResultId resultId, int referenceIndex = -1);

    const ResultKind& kind() const { return resultKind(id); }
    /// The input of the reference that it belongs to; null for a result of none.
    const ReferenceInput* referenceInput() const;
    /// False for the map of a reference that took no part in the run: it holds no values.
    bool tookPart() const;

    ResultId id;
    int reference;  ///< index; -1: of none
    Analyzed2DRes image;
    std::shared_ptr<const Run> run;  ///< null: empty, or a map that was loaded
    std::optional<Deglitched> deglitched;
    bool isOfBefore = false;  ///< a later run that was to make it failed
};
