#pragma once

#include <QWidget>

#include "maps/Statistics.h"

/// The histogram of a map, with the range of its colours: two handles that can be dragged, or moved
/// by the arrow keys, the left one with Shift.
class HistogramView : public QWidget {
    Q_OBJECT

  public:
    explicit HistogramView(QWidget* parent = nullptr);

    void setHistogram(const Histogram& histogram);
    /// What the handles stand for, at the end of the histogram where it lies beyond; there are none
    /// while low is not below high.
    void setRange(double low, double high);
    /// The handles lie about 0 and move together.
    void setAboutZero(bool on) { m_aboutZero = on; }
    double low() const { return m_low; }
    double high() const { return m_high; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    /// A handle is at another value.
    void rangeDragged(double low, double high);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    enum class Handle { None, Low, High };

    QRectF plot() const;
    double valueAt(double x) const;
    double placeOf(double value) const;
    bool hasRange() const { return m_low < m_high; }
    Handle handleAt(double x) const;
    void put(Handle handle, double value);

    Histogram m_histogram;
    double m_low = 0.0;
    double m_high = 0.0;
    bool m_aboutZero = false;
    Handle m_dragged = Handle::None;
};
