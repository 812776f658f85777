#include "measurement/Inputs.h"

#include <algorithm>

bool sameReference(const ReferenceInput& a, const ReferenceInput& b) {
    return a.file.revision == b.file.revision && a.deltaE == b.deltaE &&
           a.background == b.background;
}

namespace {

/// Those that take no part do not count.
bool sameReferences(const Inputs& a, const Inputs& b) {
    const std::size_t n = std::max(a.references.size(), b.references.size());
    const ReferenceInput none;
    for (std::size_t i = 0; i < n; ++i) {
        const ReferenceInput& x = i < a.references.size() ? a.references[i] : none;
        const ReferenceInput& y = i < b.references.size() ? b.references[i] : none;
        if (x.takesPart != y.takesPart || (x.takesPart && !sameReference(x, y))) {
            return false;
        }
    }
    return true;
}

bool sameMap(const Inputs& a, const Inputs& b) {
    return a.map == b.map || (a.map && b.map && a.map->revision == b.map->revision);
}

Difference ofFit(const Inputs& a, const Inputs& b) {
    if (!sameMap(a, b)) {
        return Difference::Map;
    }
    if (!sameReferences(a, b)) {
        return Difference::References;
    }
    if (a.background != b.background) {
        return Difference::Background;
    }
    if (a.method == LinearFit::Lcf && !(a.e0 == b.e0)) {
        return Difference::Edge;
    }
    const bool hasLines =
        a.method == LinearFit::Lcf || a.referenceScale == FitRule::ReferenceScale::Jump;
    if (hasLines && !(a.ranges == b.ranges)) {
        return Difference::Ranges;
    }
    const bool same = a.method == b.method && a.referenceScale == b.referenceScale &&
                      a.constraints == b.constraints;
    return same ? Difference::None : Difference::Settings;
}

Difference ofResidual(const Inputs& a, const Inputs& b) {
    if (hasCommonE0(a, Work::Residual) && !sameMap(a, b)) {
        return Difference::Map;
    }
    if (a.background != b.background) {
        return Difference::Background;
    }
    if (!(a.e0 == b.e0)) {
        return Difference::Edge;
    }
    if (!(a.ranges == b.ranges)) {
        return Difference::Ranges;
    }
    return a.raEnergy == b.raEnergy && a.raFactor == b.raFactor ? Difference::None
                                                                : Difference::Settings;
}

Difference ofDifference(const Inputs& a, const Inputs& b) {
    if (!sameMap(a, b)) {
        return Difference::Map;
    }
    return a.differenceFrom == b.differenceFrom && a.differenceTo == b.differenceTo
               ? Difference::None
               : Difference::Settings;
}

Difference ofCalibration(const Inputs& a, const Inputs& b) {
    if (a.standard.revision != b.standard.revision) {
        return Difference::References;
    }
    return a.standardBackground == b.standardBackground ? Difference::None : Difference::Background;
}

}  // namespace

bool hasCommonE0(const Inputs& inputs, Work work) {
    return inputs.e0.kind != EdgeChoice::Kind::Each &&
           (work == Work::Residual || (work == Work::Fit && inputs.method == LinearFit::Lcf));
}

bool sameMeanSpectrum(const Inputs& a, const Inputs& b) {
    return difference(a, b, Work::None) == Difference::None && sameMap(a, b);
}

Normalisation sampleRule(const Inputs& inputs) {
    Normalisation rule(inputs.background);
    rule.ranges = inputs.ranges;
    if (inputs.e0.kind == EdgeChoice::Kind::Energy) {
        rule.e0 = inputs.e0.energy;
    }
    return rule;
}

FitRule fitRule(const Inputs& inputs) {
    FitRule rule(inputs.method, sampleRule(inputs));
    rule.referenceScale = inputs.referenceScale;
    rule.constraints = inputs.constraints;
    rule.withErrors = inputs.errorMaps;
    return rule;
}

Difference difference(const Inputs& a, const Inputs& b, Work work) {
    if (a.i1.revision != b.i1.revision || a.i0.revision != b.i0.revision || a.size != b.size) {
        return Difference::Frames;
    }
    if (a.darkRevision != b.darkRevision) {
        return Difference::Dark;
    }
    if (a.halfWidth != b.halfWidth || a.halfHeight != b.halfHeight) {
        return Difference::Bins;
    }
    if (!sameArea(a.area, b.area, a.size)) {
        return Difference::Area;
    }
    switch (work) {
        case Work::Fit:
            return ofFit(a, b);
        case Work::Residual:
            return ofResidual(a, b);
        case Work::Difference:
            return ofDifference(a, b);
        case Work::Calibrate:
            return ofCalibration(a, b);
        default:
            return Difference::None;
    }
}
