#include "maps/AreaShape.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/LargeMemory.h"

namespace {

qint64 dividedUp(qint64 number, qint64 by) {
    return number >= 0 ? (number + by - 1) / by : -(-number / by);
}

/// The pixels of row y whose middle lies left of the line from a to b are those below this one; the
/// line is one that the middle of the row crosses.
int firstRightOf(QPoint a, QPoint b, int y) {
    if (a.y() > b.y()) {
        std::swap(a, b);
    }
    // Left of it: x + 1/2 < a.x + (b.x - a.x) (y + 1/2 - a.y) / (b.y - a.y)
    const qint64 height = 2 * (qint64(b.y()) - a.y());
    const qint64 across = (qint64(b.x()) - a.x()) * (2 * (qint64(y) - a.y()) + 1);
    return static_cast<int>(a.x() + dividedUp(2 * across - height, 2 * height));
}

}  // namespace

PixelSet pixelsInEllipse(const QRect& box, const QRect& image) {
    PixelSet pixels(box & image);
    const QRect& inside = pixels.box();
    const double width = box.width();
    const double height = box.height();
    const double limit = width * width * height * height;
    // Twice the distances from the centre, which are whole.
    const auto part = [](int pixel, int from, int size) {
        const double twice = 2.0 * (pixel - from) + 1.0 - size;
        return twice * twice;
    };
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        const double down = part(y, box.top(), box.height()) * width * width;
        const auto isInside = [&](int x) {
            return part(x, box.left(), box.width()) * height * height + down <= limit;
        };
        int first = inside.left();
        int last = inside.right();
        while (first <= last && !isInside(first)) {
            ++first;
        }
        while (last >= first && !isInside(last)) {
            --last;
        }
        pixels.insert(y, first, last + 1);
    }
    return pixels;
}

PixelSet pixelsInPolygon(const QVector<QPoint>& vertices, const QRect& image) {
    PixelSet pixels(boundsOf(vertices) & image);
    const QRect& inside = pixels.box();
    std::vector<std::vector<int>> crossings(static_cast<std::size_t>(inside.height()));
    for (int i = 0; i < vertices.size(); ++i) {
        const QPoint& a = vertices.at(i);
        const QPoint& b = vertices.at(i + 1 < vertices.size() ? i + 1 : 0);
        const int first = std::max(std::min(a.y(), b.y()), inside.top());
        const int end = std::min(std::max(a.y(), b.y()), inside.bottom() + 1);
        for (int y = first; y < end; ++y) {
            crossings[static_cast<std::size_t>(y - inside.top())].push_back(firstRightOf(a, b, y));
        }
    }
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        std::vector<int>& row = crossings[static_cast<std::size_t>(y - inside.top())];
        std::sort(row.begin(), row.end());
        for (std::size_t i = 0; i + 1 < row.size(); i += 2) {
            pixels.insert(y, row[i], row[i + 1]);
        }
    }
    return pixels;
}

QRect boundsOf(const QVector<QPoint>& vertices) {
    if (vertices.isEmpty()) {
        return QRect();
    }
    QPoint low = vertices.first();
    QPoint high = low;
    for (const QPoint& vertex : vertices) {
        low = QPoint(std::min(low.x(), vertex.x()), std::min(low.y(), vertex.y()));
        high = QPoint(std::max(high.x(), vertex.x()), std::max(high.y(), vertex.y()));
    }
    return QRect(low, high - QPoint(1, 1));
}

namespace {

/// Walks the lines between the pixels of a set and those beside it, with the set on the right.
class Outlines {
  public:
    explicit Outlines(const PixelSet& pixels)
        : m_pixels(pixels),
          m_area(pixels.bounds()),
          m_seen(static_cast<std::size_t>(m_area.width()) *
                 static_cast<std::size_t>(m_area.height())) {}

    /// One behind the other, joined. Every outline has an upper side; the walk along it begins at
    /// its first one. Stops beyond so many vertices.
    std::vector<QPoint> all(std::size_t most) {
        for (int y = m_area.top(); y <= m_area.bottom() && m_outline.size() <= most; ++y) {
            for (int x = m_area.left(); x <= m_area.right(); ++x) {
                if (m_pixels.contains(x, y) && !m_pixels.contains(x, y - 1) && !seen(x, y)) {
                    add({x, y});
                }
            }
        }
        for (std::size_t i = m_firsts.size(); i > 2; --i) {
            m_outline.push_back(m_firsts[i - 2]);
        }
        return std::move(m_outline);
    }

  private:
    std::vector<bool>::reference seen(int x, int y) {
        return m_seen[static_cast<std::size_t>(y - m_area.top()) *
                          static_cast<std::size_t>(m_area.width()) +
                      static_cast<std::size_t>(x - m_area.left())];
    }

    /// An outline ends where it has begun, but for a single one.
    void add(const QPoint& start) {
        if (m_firsts.size() == 1) {
            m_outline.push_back(m_firsts.front());
        }
        const std::size_t first = m_outline.size();
        walk(start);
        m_firsts.push_back(m_outline[first]);
        if (m_firsts.size() > 1) {
            m_outline.push_back(m_firsts.back());
        }
    }

    void walk(const QPoint& start) {
        constexpr QPoint Steps[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
        QPoint at = start;
        int way = 0;
        do {
            if (way == 0) {
                seen(at.x(), at.y()) = true;
            }
            at += Steps[way];
            // Of the pixels that meet here, those ahead on the left and on the right. Where only
            // two meet at a corner, they are kept apart.
            const QPoint ahead =
                at + QPoint(way == 2 || way == 3 ? -1 : 0, way == 0 || way == 3 ? -1 : 0);
            const QPoint onRight =
                at + QPoint(way == 1 || way == 2 ? -1 : 0, way == 2 || way == 3 ? -1 : 0);
            const bool left = m_pixels.contains(ahead.x(), ahead.y());
            const bool right = m_pixels.contains(onRight.x(), onRight.y());
            const int turn = !right ? 1 : left ? 3 : 0;
            if (turn != 0) {
                m_outline.push_back(at);
                way = (way + turn) % 4;
            }
        } while (at != start || way != 0);
    }

    const PixelSet& m_pixels;
    QRect m_area;
    std::vector<bool> m_seen;  // upper sides that have been walked
    std::vector<QPoint> m_outline;
    std::vector<QPoint> m_firsts;  // of each
};

}  // namespace

QVector<QPoint> outlineOf(const PixelSet& pixels, qint64 most) {
    const std::vector<QPoint> outline = Outlines(pixels).all(static_cast<std::size_t>(most));
    if (static_cast<qint64>(outline.size()) > most) {
        return {};
    }
    askForMemory(outline.size() * sizeof(QPoint));
    return QVector<QPoint>(outline.begin(), outline.end());
}
