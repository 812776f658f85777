#include "measurement/Result.h"

Normalisation sampleRule(const Run& run) {
    Normalisation rule = sampleRule(run.inputs);
    if (run.inputs.e0.kind == EdgeChoice::Kind::Mean && run.mean) {
        rule.e0 = run.mean->e0();
    }
    return rule;
}

FitRule fitRule(const Run& run) {
    FitRule rule = fitRule(run.inputs);
    rule.sample = sampleRule(run);
    return rule;
}

Result::Result(ResultId resultId, int referenceIndex) : id(resultId), reference(referenceIndex) {
    if (id > ResultId::Shift) {
        image.markGaps();  // files of the others keep the colour that they had
    }
}

const ReferenceInput* Result::referenceInput() const {
    const auto index = static_cast<std::size_t>(reference);
    return reference >= 0 && run && index < run->inputs.references.size()
               ? &run->inputs.references[index]
               : nullptr;
}

bool Result::tookPart() const {
    const ReferenceInput* input = referenceInput();
    return input == nullptr || input->takesPart;
}
