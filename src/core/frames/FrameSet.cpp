#include "frames/FrameSet.h"

TiffData* FrameSet::at(int i) {
    return i >= 0 && i < size() ? m_frames[static_cast<std::size_t>(i)].get() : nullptr;
}

const TiffData* FrameSet::at(int i) const {
    return const_cast<FrameSet*>(this)->at(i);
}

int bracketOf(const FrameSet& set, double e) {
    int low = 0;
    int high = set.size() - 1;
    if (e < set.at(low)->energy) {
        return low;
    }
    if (e >= set.at(high)->energy) {
        return high - 1;
    }
    while (high - low > 1) {
        const int middle = low + (high - low) / 2;
        if (e < set.at(middle)->energy) {
            high = middle;
        } else {
            low = middle;
        }
    }
    return low;
}

double setValueAt(const FrameSet& set, double e, int x, int y, int halfWidth, int halfHeight) {
    if (set.isEmpty()) {
        return 1.0;
    }
    if (set.size() == 1) {
        return set.at(0)->boxSum(x, y, halfWidth, halfHeight);
    }
    const int i = bracketOf(set, e);
    const TiffData* a = set.at(i);
    const TiffData* b = set.at(i + 1);
    return lerp(e, a->energy, a->boxSum(x, y, halfWidth, halfHeight), b->energy,
                b->boxSum(x, y, halfWidth, halfHeight));
}
