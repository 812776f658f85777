#pragma once

#include <QFrame>

#include "display/MouseC.h"
#include "drawing/ChCoord.h"

/// A drawing canvas: lets others paint on it in two layers and tells of the mouse, with the
/// transform between its screen and the real rectangle that it shows.
class DispA : public QFrame {
    Q_OBJECT

  public:
    explicit DispA(QWidget* parent = nullptr);

    const ChCoord& coord() const { return m_coord; }
    const MouseC& mouse() const { return m_mouse; }

    /// Acts as if the mouse had been moved to a real position.
    virtual void setRealMousePos(double x, double y);
    /// The same in screen pixels.
    virtual void setScreenMousePos(double x, double y);

  signals:
    void drawImage1(QPainter* p);
    void drawImage2(QPainter* p);
    void mouseMoved0();
    void mousePressed0();
    void mouseReleased0();
    void mouseDoubleClicked0();
    void wheelMoved0();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

    /// What the canvas itself paints under, between and over the two layers.
    virtual void paintBelow(QPainter&) {}
    virtual void paintAbove(QPainter&) {}

    /// Takes a position over as if the mouse had been there; what is no number counts as 0.
    void moveMouse(double x, double y);

    ChCoord m_coord;
    MouseC m_mouse;

  private:
    void record(const QMouseEvent* event);
};
