#include "display/AreaTool.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "maps/AnalysisGrid.h"

namespace {

QPoint nearest(const QPointF& at) {
    return {static_cast<int>(std::lround(at.x())), static_cast<int>(std::lround(at.y()))};
}

QRect boxOf(const Area& area) {
    return QRect(std::min(area.x0, area.x1), std::min(area.y0, area.y1),
                 std::abs(area.x1 - area.x0), std::abs(area.y1 - area.y0));
}

Area ofBox(const QRect& box, AreaShape shape) {
    const int right = box.left() + box.width();
    const int bottom = box.top() + box.height();
    return shape == AreaShape::Ellipse ? Area::ellipse(box.left(), box.top(), right, bottom)
                                       : Area{box.left(), box.top(), right, bottom};
}

/// By how much a side of a box may move so that no more of it leaves the image.
int within(int by, int low, int end, int size) {
    return std::clamp(by, -std::max(0, low), std::max(0, size - end));
}

/// The same for both ways along a line.
std::array<int, 4> endsOf(const QLine& line) {
    const std::array<int, 4> there{line.x1(), line.y1(), line.x2(), line.y2()};
    const std::array<int, 4> back{line.x2(), line.y2(), line.x1(), line.y1()};
    return std::min(there, back);
}

/// The lines of a polygon but for those that are walked there and back.
std::vector<QLine> linesAround(const QVector<QPoint>& vertices) {
    std::vector<std::array<int, 4>> all;
    all.reserve(static_cast<std::size_t>(vertices.size()));
    for (int i = 0; i < vertices.size(); ++i) {
        all.push_back(endsOf({vertices.at(i), vertices.at(i + 1 < vertices.size() ? i + 1 : 0)}));
    }
    std::sort(all.begin(), all.end());
    std::vector<QLine> lines;
    for (auto line = all.begin(); line != all.end();) {
        const auto next = std::find_if(line, all.end(), [&](const auto& o) { return o != *line; });
        if ((next - line) % 2 == 1) {
            lines.emplace_back((*line)[0], (*line)[1], (*line)[2], (*line)[3]);
        }
        line = next;
    }
    return lines;
}

}  // namespace

void AreaTool::setImageSize(const QSize& size) {
    m_size = size;
    m_grip = Grip::None;
    m_vertices.clear();
    const Area wanted = m_wanted;
    set(wanted);
    m_wanted = size.isEmpty() ? wanted : m_area;
}

void AreaTool::setBins(int halfWidth, int halfHeight) {
    m_halfWidth = halfWidth;
    m_halfHeight = halfHeight;
    note();
}

QRectF AreaTool::box() const {
    return hasArea() ? m_area.within(m_size.width(), m_size.height()) : QRectF();
}

bool AreaTool::set(const Area& area) {
    m_wanted = area;
    Area inside;
    if (!area.within(m_size.width(), m_size.height()).isEmpty()) {
        inside = area.clipped(m_size);
        if (inside.shape == AreaShape::Rectangle) {
            inside = ofBox(boxOf(inside), AreaShape::Rectangle);
        }
    }
    if (inside == m_area) {
        return false;
    }
    m_area = inside;
    note();
    return true;
}

/// Keeps what painting and the mouse ask for at every move.
void AreaTool::note() {
    m_pixels = m_area.pixels(m_size);
    m_lines =
        m_area.shape == AreaShape::Polygon ? linesAround(m_area.vertices) : std::vector<QLine>();
    m_bins = AnalysisGrid::ofArea(m_size.width(), m_size.height(), m_halfWidth, m_halfHeight, box(),
                                  m_pixels)
                 .raster()
                 .count();
}

void AreaTool::choose(AreaShape shape) {
    m_chosen = shape;
    m_isDrawing = shape == AreaShape::Polygon;
    m_vertices.clear();
}

QVector<QPointF> AreaTool::handles() const {
    QVector<QPointF> places;
    if (m_area.shape == AreaShape::Polygon) {
        for (const QPoint& vertex : m_area.vertices) {
            places.append(vertex);
        }
        return places.size() <= MostHandles ? places : QVector<QPointF>();
    }
    if (hasArea()) {
        const QRectF box = boxOf(m_area);
        const QPointF c = box.center();
        places = {box.topLeft(),     {c.x(), box.top()},    box.topRight(),   {box.right(), c.y()},
                  box.bottomRight(), {c.x(), box.bottom()}, box.bottomLeft(), {box.left(), c.y()}};
    }
    return places;
}

int AreaTool::handleAt(const QPointF& at, double reach) const {
    const QVector<QPointF> places = handles();
    const double room = std::min(box().width(), box().height()) / 4;
    int best = -1;
    double least = isInside(at) ? std::min(reach, room) : reach;  // the middle moves it
    for (int i = 0; i < places.size(); ++i) {
        const QPointF off = places.at(i) - at;
        const double distance = std::max(std::abs(off.x()), std::abs(off.y()));
        if (distance < least) {
            least = distance;
            best = i;
        }
    }
    return best;
}

bool AreaTool::isInside(const QPointF& at) const {
    if (m_pixels) {
        return m_pixels->contains(static_cast<int>(std::floor(at.x())),
                                  static_cast<int>(std::floor(at.y())));
    }
    return box().contains(at);
}

void AreaTool::press(const QPointF& at, double reach) {
    m_pressed = at;
    m_before = m_area;
    m_handle = m_isDrawing ? -1 : handleAt(at, reach);
    m_grip = m_isDrawing                      ? Grip::None
             : m_handle >= 0                  ? Grip::Handle
             : isInside(at)                   ? Grip::Move
             : m_chosen == AreaShape::Polygon ? Grip::None
                                              : Grip::New;
}

bool AreaTool::drag(const QPointF& to) {
    switch (m_grip) {
        case Grip::None:
            return false;
        case Grip::New:
            return drawn(m_pressed, to);
        case Grip::Move:
            return moved(m_before, nearest(to - m_pressed));
        case Grip::Handle:
            return handleMoved(nearest(to));
    }
    return false;
}

bool AreaTool::drawn(const QPointF& from, const QPointF& to) {
    const QPoint low(static_cast<int>(std::floor(std::min(from.x(), to.x()))),
                     static_cast<int>(std::floor(std::min(from.y(), to.y()))));
    const QPoint end(static_cast<int>(std::ceil(std::max(from.x(), to.x()))),
                     static_cast<int>(std::ceil(std::max(from.y(), to.y()))));
    return set(ofBox(QRect(low, end - QPoint(1, 1)) & image(), m_chosen));
}

bool AreaTool::moved(const Area& from, const QPoint& by) {
    const QRect box = boxOf(from);
    return set(from.moved({within(by.x(), box.left(), box.left() + box.width(), m_size.width()),
                           within(by.y(), box.top(), box.top() + box.height(), m_size.height())}));
}

bool AreaTool::handleMoved(const QPoint& to) {
    const QPoint at(std::clamp(to.x(), 0, m_size.width()), std::clamp(to.y(), 0, m_size.height()));
    if (m_before.shape == AreaShape::Polygon) {
        QVector<QPoint> vertices = m_before.vertices;
        vertices[m_handle] = at;
        const Area area = Area::polygon(vertices);
        return area.hasPixels(m_size) && set(area);
    }
    const QRect box = boxOf(m_before);
    int sides[] = {box.left(), box.top(), box.left() + box.width(), box.top() + box.height()};
    constexpr int Columns[] = {0, -1, 2, 2, 2, -1, 0, 0};  // which sides a handle moves
    constexpr int Rows[] = {1, 1, 1, -1, 3, 3, 3, -1};
    if (Columns[m_handle] >= 0) {
        sides[Columns[m_handle]] = at.x();
    }
    if (Rows[m_handle] >= 0) {
        sides[Rows[m_handle]] = at.y();
    }
    const QRect now = QRect(QPoint(std::min(sides[0], sides[2]), std::min(sides[1], sides[3])),
                            QSize(std::abs(sides[2] - sides[0]), std::abs(sides[3] - sides[1])));
    return !now.isEmpty() && set(ofBox(now, m_before.shape));
}

bool AreaTool::click(const QPointF& at) {
    if (!m_isDrawing) {
        return false;
    }
    const QPoint vertex(std::clamp(nearest(at).x(), 0, m_size.width()),
                        std::clamp(nearest(at).y(), 0, m_size.height()));
    if (m_vertices.isEmpty() || m_vertices.last() != vertex) {
        m_vertices.append(vertex);
    }
    return true;
}

bool AreaTool::close() {
    const Area area = m_vertices.size() < 3 ? Area() : Area::polygon(m_vertices);
    if (!m_isDrawing || area.isWhole() || !area.hasPixels(m_size)) {
        return false;
    }
    m_isDrawing = false;
    m_vertices.clear();
    return set(area);
}

void AreaTool::removeLastVertex() {
    if (!m_vertices.isEmpty()) {
        m_vertices.removeLast();
    }
}

bool AreaTool::move(const QPoint& by) {
    return hasArea() && moved(m_area, by);
}

bool AreaTool::resize(const QPoint& by) {
    if (!hasArea() || m_area.shape == AreaShape::Polygon) {
        return false;
    }
    const QRect box = boxOf(m_area);
    QRect now(box.topLeft(), box.size() + QSize(by.x(), by.y()));
    now.setSize(now.size().expandedTo(QSize(1, 1)));
    return set(ofBox(now & image(), m_area.shape));
}

Qt::CursorShape AreaTool::cursorAt(const QPointF& at, double reach) const {
    if (m_isDrawing) {
        return Qt::CrossCursor;
    }
    const int handle = handleAt(at, reach);
    if (handle >= 0 && m_area.shape == AreaShape::Polygon) {
        return Qt::PointingHandCursor;
    }
    constexpr Qt::CursorShape Shapes[] = {Qt::SizeFDiagCursor, Qt::SizeVerCursor,
                                          Qt::SizeBDiagCursor, Qt::SizeHorCursor};
    return handle >= 0 ? Shapes[handle % 4] : isInside(at) ? Qt::SizeAllCursor : Qt::ArrowCursor;
}
