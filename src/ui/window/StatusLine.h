#pragma once

#include <QObject>
#include <QTimer>

#include "measurement/Measurement.h"

class MessageLine;
class Messages;
class QMainWindow;
class QPushButton;
class QToolButton;
class WorkBar;

/// The status bar of the main window: the measurement's name, what is on display and what should be
/// known of it as long as it holds, how far work is and what stops a load, for a while what an
/// action has said, and the number of messages that nobody has looked at.
class StatusLine : public QObject {
    Q_OBJECT

  public:
    StatusLine(Measurement& measurement, const Messages& messages, QMainWindow* window);

    /// Stands in front of what is on display for some seconds; nothing for an empty text.
    void say(const QString& notice);
    void endNotice();
    /// The button that counts the messages.
    QPushButton* messagesButton() const { return m_count; }
    void show();

  private:
    void showSoon();
    bool isLoading() const;
    void makeStop(QMainWindow* window);
    void followMessages(const Messages& messages);
    QString display() const;
    QString withState(const QString& title, const Result& result) const;
    void showProgress(Work work, double done, double of);
    void showLoads();

    Measurement& m_measurement;
    MessageLine* m_state;
    MessageLine* m_notice;
    WorkBar* m_bar;
    QToolButton* m_stopLoading;
    QPushButton* m_count;
    QTimer m_pace;
    QTimer m_noticeEnds;
};

/// What there is of dark frames, for people; empty without any.
QString darkState(const DarkData& dark);
