#pragma once

#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

#include "window/Body.h"

class QPoint;
class QSize;
class QWidget;

/// The program's windows, driven as a user drives them, and a folder for pictures of them.
class Stage {
  public:
    /// Pictures go to files whose names begin with prefix.
    explicit Stage(const QString& prefix);

    Body& body() { return m_body; }
    /// Each panel for itself, in the size that it likes best.
    void takeApart();
    /// The main window in a size, with the docks as a program that is new has them there.
    void arrange(const QSize& size);
    /// A panel for itself has room for what it shows now.
    void giveRoom(QWidget* panel);
    /// The first window or control of this object name; ends the program when there is none.
    QWidget* control(const char* name);

    /// Runs batch lines to their end and shows what they left.
    void run(const QStringList& lines);
    void click(const char* button);
    /// The same, to the end of the analysis that it starts.
    void clickAndWait(const char* button);
    /// Takes in everything that is under way, such as a fit of the cursor's spectrum.
    void settle();

    /// The left button held from one place in a widget to another.
    void drag(QWidget* widget, const QPointF& from, const QPointF& to);
    // Mouse in the image view, in pixels of the image.
    void select(const QPoint& from, const QPoint& to);
    void wheel(const QPoint& at, int notches);

    /// The open windows and panels with a title, docked ones, too.
    QWidgetList windows() const;

    QImage picture(QWidget* widget) const;
    QString fileOf(const QString& name) const;
    void save(const QImage& image, const QString& name) const;
    void save(QWidget* widget, const QString& name) const { save(picture(widget), name); }

  private:
    QString m_prefix;
    Body m_body;
};

/// Pictures side by side on white, aligned at their top.
QImage sideBySide(const QList<QImage>& images);

/// Pictures of every window.
void makeWindowPictures(Stage& stage);
/// Pictures of the main window on screens of several sizes, and of every panel as it is there.
void makeSizePictures(Stage& stage);
/// Pictures of failures, warnings, and results that are marked.
void makeOutcomePictures(Stage& stage);
/// The pictures of the user guide. All of them in English, those that Japanese chapters show in
/// Japanese, too.
void makeGuidePictures(Stage& stage, bool all);
