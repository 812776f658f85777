#pragma once

#include <QMainWindow>
#include <QStringList>
#include <memory>

#include "batch/CmdLine.h"
#include "measurement/Outcome.h"

class QFileDialog;

namespace Ui {
class BatchCtrl;
}

/// The window in which a batch is written, loaded, saved, started and stopped, and in which its
/// progress is logged. Knows nothing of the language: it turns the editor's text into lines.
class BatchCtrl : public QMainWindow {
    Q_OBJECT

  public:
    explicit BatchCtrl(QWidget* parent = nullptr);
    ~BatchCtrl() override;

    /// The lines of the editor's text.
    QStringList editorLines(Qt::SplitBehavior behaviour = Qt::KeepEmptyParts) const;

    /// Puts lines into the editor at its cursor.
    void insert(const QStringList& lines);

    /// Starts a batch of these lines instead of the editor's text.
    void dispatchLines(const QStringList& lines);

  signals:
    void doDispatchCmds(QStringList cmdLines);
    void batchStop();
    /// A text has been added to the log, as it stands there.
    void logged(QString text);
    /// What was done is wanted at the cursor of the editor.
    void insertAsked();

  public slots:
    void execCmds();
    void clear();
    void clearLog();
    /// Writes the editor's text; an old file stays whole if that fails. Nothing is said then.
    void save(QString fname);
    /// Replaces the editor's text by the file's lines. Does nothing if it cannot be opened.
    void load(QString fname);
    /// Adds a text to the end of the log. No line feed is added: the texts carry their own.
    void logmsg(QString log);
    /// Adds a line for each failure and warning, each on a line of its own.
    void logOutcome(const Outcome& outcome);
    void setBatchFile(QString fname);
    void execBatch();
    void showCmdErr(CmdLine cmd);

  private:
    QFileDialog* makeDialog(const QString& title);

    std::unique_ptr<Ui::BatchCtrl> m_ui;
    QStringList m_cmdLines;  // of the batch started last, shared with the dispatcher
    QFileDialog* m_loadDialog = nullptr;
    QFileDialog* m_saveDialog = nullptr;
};
