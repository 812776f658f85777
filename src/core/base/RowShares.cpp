#include "base/RowShares.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

#include "base/AddressSpace.h"
#include "base/OneThread.h"

namespace {
constexpr int RowsAtATime = 8;
}

bool RowShares::take(int* first, int* end) {
    if (m_stop != nullptr && *m_stop) {
        return false;
    }
    *first = m_next.fetch_add(RowsAtATime);
    *end = std::min(m_rows, *first + RowsAtATime);
    return *first < m_rows;
}

void inThreads(int threads, const std::function<void()>& work) {
    std::vector<std::thread> others;
    try {
        for (int i = 1; i < threads && !usesOneThread() && hasRoomForThread(); ++i) {
            others.emplace_back(work);
        }
    } catch (const std::exception&) {
        // No thread: the rows are shared out among those that there are.
    }
    work();
    for (std::thread& other : others) {
        other.join();
    }
}
