#include "base/Numbers.h"

#include <cmath>

int toClampedInt(double v, int low, int high) {
    if (!(v > static_cast<double>(low))) {  // also NaN
        return low;
    }
    return v >= static_cast<double>(high) ? high : static_cast<int>(v);
}

int toPixel(double position) {
    constexpr int Far = 1 << 30;
    return toClampedInt(std::floor(position), -Far, Far);
}
