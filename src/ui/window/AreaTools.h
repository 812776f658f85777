#pragma once

#include <QWidget>

class ImageView;
class QButtonGroup;
class QToolButton;

/// The row of presses at the image that say what is drawn into it: a rectangle, an ellipse or a
/// polygon; and the one that opens the statistics of the area, where a threshold is set.
class AreaTools : public QWidget {
    Q_OBJECT

  public:
    explicit AreaTools(ImageView* view, QWidget* parent = nullptr);

  signals:
    void statisticsAsked();

  private:
    QToolButton* add(const char* name, const QIcon& icon, const QString& text, const QString& tip);
};
