#pragma once

#include "base/ColorMap.h"
#include "display/DispA.h"

class QLineEdit;

/// The colour bar: the colours of the shown image with the values that they stand for.
///
/// Frames: each has its own range until the user drags an end, widens or narrows the bar with the
/// wheel, clicks on an end value and types another, or takes a range from the context menu, which
/// fixes the range for all frames; a double click goes back. Results: the range that the result
/// reports, which cannot be changed here.
class ColorBar : public DispA {
    Q_OBJECT

  public:
    explicit ColorBar(QWidget* parent = nullptr);

    /// The colours of frames, whose range the user may change, or of a result.
    void showFrames(const ColorScale& colors) { use(Of::Frames, colors); }
    void showResult(const ColorScale& colors) { use(Of::Result, colors); }
    /// Range of the shown frame; in use while no other is fixed.
    void setDataRange(double min, double max);
    /// Range of the shown result.
    void setRange(double min, double max);

    double rangeMin() const;
    double rangeMax() const;
    /// Off: the range in use stays for all frames.
    bool isAuto() const { return m_auto; }
    void setAuto(bool on);
    /// Fixes the range of all frames; an empty one, or one that is not finite, changes nothing.
    void fix(double min, double max);

  signals:
    /// The range in use has changed.
    void newBar();
    /// The range is to be fixed at the percentiles 1 and 99 of the shown frame.
    void percentilesAsked();

  protected:
    void paintBelow(QPainter& painter) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    enum class End { None, Low, High };
    enum class Of { Frames, Result };

    QRectF barRect() const;
    QRectF valueRect(End end) const;
    void use(Of of, const ColorScale& colors);
    bool canBeChanged() const { return m_of == Of::Frames; }
    bool hasRange() const { return rangeMax() > rangeMin(); }
    void paintBar(QPainter& painter, const QRectF& bar) const;
    void paintEnds(QPainter& painter, const QRectF& bar) const;
    void startTyping(End end);
    void takeTyped();

    Of m_of = Of::Frames;
    const ColorScale* m_colors = &frameColors();
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
