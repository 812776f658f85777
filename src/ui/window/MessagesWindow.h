#pragma once

#include <QFrame>
#include <QTimer>

#include "display/Panel.h"

class Messages;
class QPushButton;
class QTreeView;

/// The window of the messages: the newest is in sight, all can be copied, and what is on display
/// here has been looked at.
class MessagesWindow : public Panel<QFrame> {
    Q_OBJECT

  public:
    explicit MessagesWindow(Messages& messages);

    /// Somebody looks at it: the newest is in sight and has been seen.
    void showNewest();

  private:
    void makeControls();
    void copy() const;
    bool isLookedAt() const;
    void updateControls();

    Messages& m_messages;
    QTreeView* m_list;
    QPushButton* m_copy;
    QPushButton* m_clear;
    QTimer m_pace;
};
