#include "maps/PixelSet.h"

#include <algorithm>

PixelSet::PixelSet(const QRect& box)
    : m_box(box.isEmpty() ? QRect() : box),
      m_bits(static_cast<std::size_t>(m_box.width()) * static_cast<std::size_t>(m_box.height())) {}

void PixelSet::insert(int y, int first, int end) {
    const int from = std::max(first, m_box.left());
    const int to = std::min(end, m_box.right() + 1);
    if (from >= to || y < m_box.top() || y > m_box.bottom()) {
        return;
    }
    const auto row = m_bits.begin() + static_cast<std::ptrdiff_t>(indexOf(from, y));
    std::fill(row, row + (to - from), true);
    m_bounds |= QRect(from, y, to - from, 1);
}
