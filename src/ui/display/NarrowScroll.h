#pragma once

#include <QScrollArea>

/// A column that scrolls up and down where its place is too low for it, and is never narrower than
/// what it holds.
class NarrowScroll : public QScrollArea {
    Q_OBJECT

  public:
    explicit NarrowScroll(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
};
