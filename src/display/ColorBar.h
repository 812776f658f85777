#pragma once

#include "display/DispA.h"

class QLineEdit;

/// The colour bar: the colours of the shown image with the values that they stand for.
///
/// Frames: each has its own range until the user drags an end, widens or narrows the bar with the
/// wheel, or clicks on an end value and types another, which fixes the range for all frames; a
/// double click goes back. Results: the range that the result reports, which cannot be changed
/// here.
class ColorBar : public DispA {
    Q_OBJECT

  public:
    enum Table { Grey, False };

    explicit ColorBar(QWidget* parent = nullptr);

    void setTable(Table table);
    /// Range of the shown frame; in use while no other is fixed.
    void setDataRange(double min, double max);
    /// Range of the shown result.
    void setRange(double min, double max);

    double rangeMin() const;
    double rangeMax() const;
    /// Off: the range in use stays for all frames.
    bool isAuto() const { return m_auto; }
    void setAuto(bool on);

  signals:
    /// The range in use has changed.
    void newBar();

  protected:
    void paintBelow(QPainter& painter) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    enum class End { None, Low, High };

    QRectF barRect() const;
    QRectF valueRect(End end) const;
    bool canBeChanged() const { return m_table == Grey; }
    bool hasRange() const { return rangeMax() > rangeMin(); }
    void paintBar(QPainter& painter, const QRectF& bar) const;
    void paintEnds(QPainter& painter, const QRectF& bar) const;
    void startTyping(End end);
    void takeTyped();
    void fix(double min, double max);

    Table m_table = Grey;
    double m_min = 0.0;
    double m_max = 1.0;
    double m_fixedMin = 0.0;
    double m_fixedMax = 1.0;
    bool m_auto = true;
    End m_drag = End::None;
    bool m_dragged = false;
    QLineEdit* m_editor = nullptr;
    End m_typed = End::None;
};
