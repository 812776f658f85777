#include "base/OneThread.h"

namespace {
bool isOne = false;
}

void useOneThread() {
    isOne = true;
}

bool usesOneThread() {
    return isOne;
}
