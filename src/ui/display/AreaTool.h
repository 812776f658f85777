#pragma once

#include <QColor>
#include <QLine>
#include <QPointF>
#include <vector>

#include "measurement/Area.h"

class ChCoord;
class QPainter;

/// The selected area of an image view, and how the mouse and the keyboard draw, move and resize
/// it. Positions are those of the image, where pixel n reaches from n to n + 1; reach is how near,
/// in these, a handle must be.
class AreaTool {
  public:
    /// Another size clips the area; while there is no image it waits for the next one.
    void setImageSize(const QSize& size);
    void setBins(int halfWidth, int halfHeight);

    /// Inside the image; that of the whole image for none.
    const Area& area() const { return m_area; }
    bool hasArea() const { return !m_area.isWhole(); }
    QRectF box() const;  ///< around it, empty for none
    /// Whether that was a change. An area of no pixel is none.
    bool set(const Area& area);

    /// What the next drag draws; a polygon is begun, by clicks.
    void choose(AreaShape shape);
    AreaShape chosen() const { return m_chosen; }
    bool isDrawing() const { return m_isDrawing; }

    /// The left button goes down: on a handle, inside the area or beside it.
    void press(const QPointF& at, double reach);
    /// It moves on. Whether the area has changed.
    bool drag(const QPointF& to);
    /// A click, while a polygon is drawn: a vertex more. Whether it was meant for that.
    bool click(const QPointF& at);
    /// Ends the polygon being drawn. Whether the area has changed.
    bool close();
    void removeLastVertex();
    /// Moves the area by pixels, or its lower right corner, within the image.
    bool move(const QPoint& by);
    bool resize(const QPoint& by);
    void setMouse(const QPointF& at) { m_mouse = at; }
    Qt::CursorShape cursorAt(const QPointF& at, double reach) const;

    void paint(QPainter& painter, const ChCoord& coord, const QColor& color,
               const QRectF& inside) const;

  private:
    enum class Grip { None, New, Move, Handle };
    static constexpr int MostHandles = 100;

    QRect image() const { return QRect(QPoint(), m_size); }
    QVector<QPointF> handles() const;
    int handleAt(const QPointF& at, double reach) const;
    bool isInside(const QPointF& at) const;
    bool drawn(const QPointF& from, const QPointF& to);
    bool moved(const Area& from, const QPoint& by);
    bool handleMoved(const QPoint& to);
    void note();
    void paintOutline(QPainter& painter, const ChCoord& coord, const QColor& color) const;
    void paintLines(QPainter& painter, const ChCoord& coord) const;
    void paintDrawing(QPainter& painter, const ChCoord& coord, const QColor& color,
                      const QRectF& inside) const;
    QString sizeText() const;

    QSize m_size;
    Area m_wanted;  // as it was asked for
    Area m_area;
    int m_halfWidth = 0;
    int m_halfHeight = 0;
    int m_bins = 0;  // in the area
    std::shared_ptr<const PixelSet> m_pixels;
    std::vector<QLine> m_lines;  // around a polygon
    AreaShape m_chosen = AreaShape::Rectangle;
    bool m_isDrawing = false;
    QVector<QPoint> m_vertices;  // of the polygon being drawn
    QPointF m_mouse;
    Grip m_grip = Grip::None;
    int m_handle = -1;
    QPointF m_pressed;
    Area m_before;
};
