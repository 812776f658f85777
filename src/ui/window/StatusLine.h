#pragma once

#include <QObject>
#include <QTimer>

#include "measurement/Measurement.h"

class QLabel;
class QMainWindow;
class QProgressBar;
class QToolButton;

/// The status bar of the main window: what is on display, how far work is and what stops a load,
/// and for a while what an action has said.
class StatusLine : public QObject {
    Q_OBJECT

  public:
    StatusLine(Measurement& measurement, QMainWindow* window);

    /// Covers the rest for some seconds.
    void say(const QString& notice);
    void show();

  private:
    void showSoon();
    bool isLoading() const;
    void makeStop(QMainWindow* window);
    QString display() const;
    QString resultOnDisplay(const Result* result) const;
    void showProgress(Work work, double done, double of);
    void showLoads();

    Measurement& m_measurement;
    QMainWindow* m_window;
    QLabel* m_state;
    QProgressBar* m_bar;
    QToolButton* m_stopLoading;
    QTimer m_pace;
};

/// What there is of dark frames, for people; empty without any.
QString darkState(const DarkData& dark);
