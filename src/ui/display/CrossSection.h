#pragma once

#include <QPair>
#include <QString>
#include <QVector>
#include <optional>

#include "display/DispA.h"

class ImageView;

/// Values of the shown image along the row (horizontal) or column (vertical) of the position, on an
/// axis shared with the image view beside it. The pixel under the mouse and its value are written
/// into the corner.
class CrossSection : public DispA {
    Q_OBJECT

  public:
    explicit CrossSection(Qt::Orientation orientation, QWidget* parent = nullptr);

    /// Takes its pixel axis from this view.
    void follow(const ImageView* view);

    /// One value a pixel from firstPixel on; what is no number breaks the line.
    void setProfile(const QVector<double>& values, int firstPixel);
    /// Values at both ends of the value axis; without a range (low not below high) those that are
    /// seen, a few far out of all others left aside.
    void setValueRange(double low, double high);
    /// Position along the axis, in pixels.
    void setMarker(double position);

    /// What is written for the pixel under the mouse, "(pixel, value)"; empty for none.
    QString readOut() const;

  protected:
    void paintBelow(QPainter& painter) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    bool isAcross() const { return m_orientation == Qt::Horizontal; }
    void updateCoord();
    QPair<double, double> rangeOfSeen() const;
    void visibleIndices(int* first, int* end) const;
    void paintProfile(QPainter& painter) const;
    void paintReadOut(QPainter& painter) const;
    void paintProfileOnTicks(QPainter& painter) const;

    Qt::Orientation m_orientation;
    const ImageView* m_view = nullptr;
    QVector<double> m_values;
    int m_firstPixel = 0;
    std::optional<QPair<double, double>> m_valueRange;
    double m_marker = -1.0;
    int m_hovered = -1;  // pixel
};
