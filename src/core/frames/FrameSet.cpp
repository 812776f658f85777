#include "frames/FrameSet.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "base/Numbers.h"

TiffData* FrameSet::at(int i) {
    return i >= 0 && i < size() ? m_frames[static_cast<std::size_t>(i)].get() : nullptr;
}

const TiffData* FrameSet::at(int i) const {
    return const_cast<FrameSet*>(this)->at(i);
}

std::vector<int> inOrderOfEnergy(const FrameSet& set) {
    std::vector<int> order(static_cast<std::size_t>(set.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&set](int a, int b) {
        const double ea = set.at(a)->energy;
        const double eb = set.at(b)->energy;
        return std::isnan(eb) ? !std::isnan(ea) : ea < eb;
    });
    return order;
}

int nearestFrame(const FrameSet& set, double e) {
    int nearest = -1;
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i < set.size(); ++i) {
        const double distance = std::abs(set.at(i)->energy - e);
        if (nearest < 0 || distance < least) {
            nearest = i;
            least = std::isnan(distance) ? least : distance;
        }
    }
    return nearest;
}

double setValueAt(const FrameSet& set, double e, int x, int y, int halfWidth, int halfHeight) {
    if (set.isEmpty()) {
        return 1.0;
    }
    if (set.size() == 1) {
        return set.at(0)->boxSum(x, y, halfWidth, halfHeight);
    }
    const int i = pairAround(set.size(), e, [&set](int k) { return set.at(k)->energy; });
    const TiffData* a = set.at(i);
    const TiffData* b = set.at(i + 1);
    return lerp(e, a->energy, a->boxSum(x, y, halfWidth, halfHeight), b->energy,
                b->boxSum(x, y, halfWidth, halfHeight));
}
