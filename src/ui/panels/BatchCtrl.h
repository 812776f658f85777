#pragma once

#include <QMainWindow>
#include <QStringList>
#include <QTimer>
#include <functional>
#include <memory>

#include "batch/BatchText.h"
#include "batch/Verdict.h"
#include "display/Panel.h"
#include "measurement/Outcome.h"

class MessageLine;
class QFileDialog;

namespace Ui {
class BatchCtrl;
}

/// The window in which a batch is written, loaded, saved, started and stopped, in which its
/// progress is logged, and which says how its lines ended. Knows nothing of the language: it turns
/// the editor's text into lines.
class BatchCtrl : public Panel<QMainWindow> {
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

    /// What writes files: calls a writer for a name, or says why not. Without one the writers are
    /// called as they are.
    using Write = std::function<Outcome(const QString& name, const std::function<bool()>& writer)>;
    void setWriter(const Write& write) { m_write = write; }

    /// Shows how an action that was started here ended.
    void say(const Outcome& outcome);
    /// Logs and counts a line of the batch that has been dealt with.
    /// @param index of its last physical line among those dispatched
    /// @return the number of its first line in the editor's text, from 1; 0: it does not count
    int lineDone(const CmdLine& cmd, const Outcome& outcome, int index);

  signals:
    void doDispatchCmds(QStringList cmdLines);
    void batchStop();
    /// A text has been added to the log, as it stands there.
    void logged(QString text);
    /// What was done is wanted at the cursor of the editor.
    void insertAsked();
    /// How an action of this window ended that it has done itself.
    void said(const Outcome& outcome, const QString& file);

  public slots:
    void batchStarted();
    void batchEnded();
    void execCmds();
    void clear();
    void clearLog();
    /// Writes the editor's text; an old file stays whole if that fails.
    void save(QString fname);
    /// Replaces the editor's text by the file's lines; it stays if that cannot be opened.
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
    QString editorText() const;
    bool writeText(const QString& fname) const;
    void sayOwn(const Outcome& outcome, const QString& file);
    void showProgress();
    QString verdict() const;

    std::unique_ptr<Ui::BatchCtrl> m_ui;
    MessageLine* m_message;
    BatchText m_batch;  // that was started last
    Verdict m_verdict;
    int m_line = 0;  // dealt with last
    bool m_running = false;
    QTimer m_pace;
    Write m_write;
    QFileDialog* m_loadDialog = nullptr;
    QFileDialog* m_saveDialog = nullptr;
};
