#pragma once

#include "display/DispA.h"

class QLineEdit;

/// The colour bar: the colours of the shown image with the values that they stand for.
///
/// Frames: each has its own range until the user drags an end, types its value or turns the wheel,
/// which fixes the range for all frames; a double click goes back. Results: the range that the
/// result reports, which cannot be changed here.
class ColorBar : public DispA {
    Q_OBJECT

  public:
    enum Table { Grey, False };

    explicit ColorBar(QWidget* parent = nullptr);

    /// Wide enough for any end value.
    QSize minimumSizeHint() const override;

    void setTable(Table table);
    /// Range of the shown frame; in use while no other is fixed.
    void setDataRange(double min, double max);
    /// Range of the shown result.
    void setRange(double min, double max);

    double rangeMin() const;
    double rangeMax() const;
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
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    enum class End { None, Low, High };

    QRectF barRect() const;
    bool canBeDragged() const { return m_table == Grey; }
    void fix(double min, double max);
    void moveEnd(End end, double value);
    void openEditor(End end);
    void acceptEditor();

    Table m_table = Grey;
    double m_min = 0.0;
    double m_max = 1.0;
    double m_fixedMin = 0.0;
    double m_fixedMax = 1.0;
    bool m_auto = true;
    End m_drag = End::None;
    double m_dragStart = 0.0;  // screen y
    double m_dragMin = 0.0;    // the range at that moment
    double m_dragMax = 0.0;
    QLineEdit* m_editor = nullptr;
    End m_edited = End::None;
};
