#pragma once

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QMainWindow>

#include "base/Inbox.h"
#include "files/Answer.h"

class QLabel;

/// What the main window does while a file that an action asks for does not answer: it says which,
/// is painted, and takes nothing but what gives the file up: Esc, its button, the stop of the
/// batch, its closing. No work of other threads is taken in, and no timer goes off, in the midst of
/// the action.
///
/// A file that is given up stays so until the action has ended, and so do others that it asks for.
class FileWait : public QObject {
    Q_OBJECT

  public:
    FileWait(QMainWindow* window, QAbstractButton* batchStop);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool wait(const QString& fileName, const std::function<bool()>& hasAnswered);
    void giveUp(const std::function<void()>& then);
    void show(const QString& fileName);
    void hide();

    QMainWindow* m_window;
    QAbstractButton* m_batchStop;
    QLabel* m_text;
    QAbstractButton* m_button;
    bool m_isGivenUp = false;  // until the action has ended
    Inbox m_inbox;
    AnswerWait m_answers;
};
