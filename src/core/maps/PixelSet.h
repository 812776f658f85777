#pragma once

#include <QRect>
#include <vector>

/// A set of pixels of an image, all of them inside a rectangle: a bit a pixel.
class PixelSet {
  public:
    /// Empty; pixels outside the box will not come in.
    explicit PixelSet(const QRect& box);

    const QRect& box() const { return m_box; }
    bool contains(int x, int y) const {
        return x >= m_box.left() && x <= m_box.right() && y >= m_box.top() && y <= m_box.bottom() &&
               m_bits[indexOf(x, y)];
    }
    /// Takes in the pixels first, first + 1, ... below end of row y.
    void insert(int y, int first, int end);
    bool isEmpty() const { return bounds().isEmpty(); }
    /// The smallest rectangle that holds all of them.
    QRect bounds() const { return m_bounds; }

  private:
    std::size_t indexOf(int x, int y) const {
        return static_cast<std::size_t>(y - m_box.top()) * static_cast<std::size_t>(m_box.width()) +
               static_cast<std::size_t>(x - m_box.left());
    }

    QRect m_box;
    QRect m_bounds;
    std::vector<bool> m_bits;
};
