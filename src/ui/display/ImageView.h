#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <optional>

#include "display/AreaTool.h"
#include "display/DispA.h"

/// The image view: shows an image letter-boxed with square pixels, zoomed and panned by the mouse,
/// with a position mark and a selected area, which the mouse and Alt with the arrow keys draw, move
/// and resize.
///
/// One real unit is one image pixel; pixel n covers n to n + 1, x to the right, y down. The view
/// keeps no picture: who owns it paints it on the second layer through paintImage().
class ImageView : public DispA {
    Q_OBJECT

  public:
    explicit ImageView(QWidget* parent = nullptr);

    /// 0 x 0: nothing to show. Another size shows the whole image and clips the selection.
    void setImageSize(int width, int height);

    bool hasSelection() const { return m_area.hasArea(); }
    /// The rectangle around the selected area, in pixels.
    QRectF selection() const { return m_area.box(); }
    /// The same, else the whole image, whatever the zoom.
    QRectF area() const;
    /// That of the whole image for none.
    const Area& selectedArea() const { return m_area.area(); }
    /// Clipped to the image; an area of no pixel is no selection.
    void select(const Area& area);
    void clearSelection() { select(Area()); }
    /// What a drag draws; a polygon is drawn by clicks, begins at once, and again once it has been
    /// removed.
    void chooseShape(AreaShape shape);
    AreaShape chosenShape() const { return m_area.chosen(); }

    /// Whether a result, not a frame, is on display.
    void setResultDisplayed(bool on) { m_resultDisplayed = on; }
    bool resultDisplayed() const { return m_resultDisplayed; }

    /// A text in a band over the image, for what must be known of it; empty: none.
    void setBand(const QString& text);
    QString band() const { return m_band; }

    /// A text in a corner of the image that says what it shows; empty: none.
    void setCaption(const QString& text);
    QString caption() const { return m_caption; }

    /// Half widths of the bin that is drawn around the position.
    void setBinBox(int halfWidth, int halfHeight);

    /// The position mark, exactly as it was set or as the mouse was last.
    QPointF realPosition() const { return m_position; }
    /// A click on the image pins the position; the next one frees it.
    bool isPinned() const { return m_pinned; }

    /// The part of the image that is seen, in pixels.
    QRectF visibleRect() const { return m_visible; }

    /// Paints the picture of the image in its place: crisp when magnified, smooth when reduced.
    void paintImage(QPainter* p, const QImage& picture) const;

    /// Screen pixels are whole numbers: the exact real position is kept beside them until the
    /// next real mouse event.
    void setRealMousePos(double x, double y) override;
    void setScreenMousePos(double x, double y) override;

  signals:
    void mouseMoved(double x, double y);
    void selectionChanged();
    /// Zoom or pan: what is seen has changed.
    void viewChanged();

  public slots:
    /// Shows the whole image.
    void resetImageViewWindow();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintBelow(QPainter& painter) override;
    void paintAbove(QPainter& painter) override;

  private:
    enum class Drag { None, Pan, Select };
    static constexpr double HandleReach = 6.0;  // of screen pixels

    QRectF imageRect() const { return QRectF(0, 0, m_width, m_height); }
    bool isInside(const QPointF& real) const;
    QPointF toReal(const QPointF& screen) const;
    double wholeScale() const;
    double closestScale() const;
    void zoomTo(double scale, const QPointF& centre);
    void showAgain();
    void bringIntoView(const QPointF& real);
    void setPosition(const QPointF& real);
    void tellArea(bool isChanged);
    void removeArea();
    bool editArea(const QKeyEvent& key);
    double reach() const { return HandleReach / m_coord.r2sLengthX(1.0); }
    void endDrag();
    QRectF onScreen(const QRectF& real) const;
    void paintReduced(QPainter* p, const QImage& picture) const;
    void paintPosition(QPainter& painter) const;
    void paintTicks(QPainter& painter) const;
    void paintBand(QPainter& painter) const;
    void paintCaption(QPainter& painter) const;

    /// The picture as it was last reduced, for pictures are repainted with every mouse move.
    struct Reduced {
        qint64 key = 0;
        QRect part;
        QImage image;
    };

    int m_width = 0;
    int m_height = 0;
    double m_zoom = 1.0;  // times the scale at which the whole image fits
    QPointF m_centre;
    QRectF m_visible;
    std::optional<QPointF> m_wheelAnchor;  // what the wheel zooms about, until the mouse moves
    QPointF m_wheelAt;                     // and where that was on the screen
    AreaTool m_area;
    bool m_resultDisplayed = false;
    QString m_band;
    QString m_caption;
    int m_halfWidth = 0;
    int m_halfHeight = 0;
    QPointF m_position{-1.0, -1.0};
    bool m_pinned = false;
    Drag m_drag = Drag::None;
    Qt::MouseButton m_dragButton = Qt::NoButton;
    bool m_dragged = false;
    QPoint m_dragStart;
    QPointF m_dragStartReal;
    bool m_clicked = false;  // a click has just changed the pin, and what was before
    bool m_pinnedBefore = false;
    QPointF m_positionBefore;
    mutable Reduced m_reduced;
};
