#pragma once

#include <QMainWindow>
#include <QPointer>
#include <functional>

#include "measurement/Measurement.h"

class BatchCtrl;
class QAction;
class QMenu;
class QMessageBox;
class SaveDialogs;

/// The record of what was done in the main window's menus, and the question that closing asks when
/// there are results that nobody has saved.
class WhatWasDone : public QObject {
    Q_OBJECT

  public:
    WhatWasDone(Measurement& measurement, QMainWindow* window, BatchCtrl* batch,
                SaveDialogs* dialogs);

    /// Entries of the File menu.
    QList<QAction*> actions() const { return m_actions; }
    /// Notes a record in the list of recent ones.
    void remember(const QString& fileName);
    /// Reads a batch file and runs it in the folder that it lies in.
    void open(const QString& fileName);

    /// Whether the window may close now. Asks once about results that have not been saved.
    bool mayClose();
    /// Closes the window without a question.
    void closeAtOnce();
    void setAsks(bool on) { m_asks = on; }

  signals:
    void saveAsked(const QString& fileName);
    /// Why a record could not be run or inserted.
    void said(const Outcome& outcome, const QString& file = QString());

  private:
    void askForTarget();
    void listRecent();
    void insert();
    void ask();

    Measurement& m_measurement;
    QMainWindow* m_window;
    BatchCtrl* m_batch;
    SaveDialogs* m_dialogs;
    QList<QAction*> m_actions;
    QMenu* m_recent;
    QPointer<QMessageBox> m_question;
    bool m_asks = true;
};
