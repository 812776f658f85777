#pragma once

#include <QPointer>
#include <QVector>

#include "display/DispA.h"

class ImageView;

/// Values of the shown image along the row (horizontal) or column (vertical) of the position, on an
/// axis shared with the image view beside it.
class CrossSection : public DispA {
    Q_OBJECT

  public:
    explicit CrossSection(Qt::Orientation orientation, QWidget* parent = nullptr);

    /// Takes its pixel axis from this view.
    void follow(const ImageView* view);

    /// One value a pixel from firstPixel on; what is no number breaks the line.
    void setProfile(const QVector<double>& values, int firstPixel);
    /// Position along the axis, in pixels.
    void setMarker(double position);

    /// "(pixel, value)" under the mouse; empty where there is none.
    QString readOut() const;

  protected:
    void paintBelow(QPainter& painter) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    void updateCoord();
    void paintTicks(QPainter& painter) const;
    void paintReadOut(QPainter& painter) const;

    Qt::Orientation m_orientation;
    QPointer<const ImageView> m_view;
    QVector<double> m_values;
    int m_firstPixel = 0;
    double m_marker = -1.0;
    bool m_hovered = false;
};
