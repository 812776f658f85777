#pragma once

#include "display/DispA.h"
#include "drawing/CompositePicture.h"
#include "drawing/MapPicture.h"
#include "measurement/MapView.h"

class QLineEdit;
class QMenu;

/// The colour bar: the colours of the shown image with the values that they stand for.
///
/// The user drags an end, widens or narrows the range with the wheel, clicks on an end value and
/// types another, or takes a range or a colour map from the context menu; by keyboard, the arrow
/// keys move the end chosen with Tab or Space, Enter types, Home and Delete go back. For frames
/// that fixes the range of all of them until a double click gives each its own; for maps it fixes
/// the range of the kind shown until a double click takes their percentiles 1 and 99.
class ColorBar : public DispA {
    Q_OBJECT

  public:
    explicit ColorBar(QWidget* parent = nullptr);

    void showFrames(const ViewColors& colors = {});
    /// A map in its view. Of a fixed scale: the Analyzer gives the range unless the view has its
    /// own.
    void showMap(const MapView& view, const MapColoring& coloring, bool isFixedScale = false);
    /// The triangle of a composite; there is no range to change.
    void showLegend(const CompositeNames& names);
    /// Range of the shown frame; in use while no other is fixed.
    void setDataRange(double min, double max);
    /// That of all its values, where the range in use leaves some out.
    void setWholeRange(double min, double max);

    double rangeMin() const;
    double rangeMax() const;
    /// Off: the range in use stays for all frames.
    bool isAuto() const { return m_auto; }
    void setAuto(bool on);
    /// Fixes the range of all frames, or that of the maps; an empty one, or one that is not finite,
    /// changes nothing.
    void fix(double min, double max);

  signals:
    /// The range of frames in use has changed.
    void newBar();
    /// The range is to be fixed at the percentiles 1 and 99 of the shown frame.
    void percentilesAsked();
    /// For the kind of map shown.
    void rangeChosen(const MapRange& range);
    /// For the kind of map shown, or frames.
    void colorsChosen(const ViewColors& colors);

  protected:
    void paintBelow(QPainter& painter) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    enum class End { None, Low, High };
    enum class Of { Frames, Map, Composite };

    QRectF barRect() const;
    QRectF valueRect(End end) const;
    void use(Of of);
    bool isOfComposite() const { return m_of == Of::Composite; }
    bool hasRange() const { return rangeMax() > rangeMin() && !isOfComposite(); }
    bool isAbout0() const;
    const ColorScale& colors() const;
    const ViewColors& chosenColors() const;
    void choose(const MapRange& range);
    void choose(const ViewColors& colors);
    void moveEnd(End end, double by);
    void reset();
    QString rangeText() const;
    void describe();
    void paintBar(QPainter& painter, const QRectF& bar) const;
    void paintEnds(QPainter& painter, const QRectF& bar) const;
    void startTyping(End end);
    void takeTyped();
    void addRanges(QMenu* menu);
    void addColors(QMenu* menu);

    Of m_of = Of::Frames;
    ViewColors m_frameColors;
    MapView m_view;  // of the map
    MapColoring m_coloring;
    bool m_isFixedScale = false;
    CompositeNames m_names;
    double m_min = 0.0;
    double m_max = 1.0;
    double m_wholeMin = 0.0;
    double m_wholeMax = 1.0;
    double m_fixedMin = 0.0;
    double m_fixedMax = 1.0;
    bool m_auto = true;
    End m_drag = End::None;
    bool m_dragged = false;
    QLineEdit* m_editor = nullptr;
    End m_typed = End::None;
    End m_chosen = End::High;  // by keyboard
};
