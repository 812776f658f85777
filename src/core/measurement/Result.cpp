#include "measurement/Result.h"

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
