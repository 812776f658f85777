#pragma once

#include "window/Body.h"

class SelectDataFiles;

/// One of the main window's two stacks with its panel.
struct Body::Stack {
    enum Id { I0 = 0, I1 = 1 };

    Stack(Id stackId, SelectDataFiles* files) : id(stackId), panel(files) {}

    BatchPacing::Work work() const {
        return id == I1 ? BatchPacing::Work::LoadI1 : BatchPacing::Work::LoadI0;
    }

    Id id;
    SelectDataFiles* panel;
    StackLoader loader{2};
};
