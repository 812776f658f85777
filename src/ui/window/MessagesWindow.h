#pragma once

#include <QFrame>
#include <QTimer>

class Messages;
class QPushButton;
class QTreeView;

/// The window of the messages: the newest is in sight, all can be copied, and what is on display
/// here has been looked at.
class MessagesWindow : public QFrame {
    Q_OBJECT

  public:
    explicit MessagesWindow(Messages& messages);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void makeControls();
    void copy() const;
    void showNewest();
    void updateControls();

    Messages& m_messages;
    QTreeView* m_list;
    QPushButton* m_copy;
    QPushButton* m_clear;
    QTimer m_pace;
};
