#include "panels/BatchCtrl.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontInfo>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTextBlock>
#include <QTextStream>
#include <utility>

#include "base/LargeMemory.h"
#include "display/FolderMemory.h"
#include "display/MessageLine.h"
#include "files/WholeDevice.h"
#include "files/WholeFile.h"
#include "ui_BatchCtrl.h"

namespace {

constexpr int ProgressMs = 100;
/// A loop of many rounds would fill the memory: it took 1 kB a round.
constexpr int MostLogLines = 50000;

/// Where the lines of a batch stand in a text that they were taken from; a line that is not there
/// has its own place.
QVector<int> numbersIn(const QStringList& text, const QStringList& lines) {
    QVector<int> numbers;
    int at = 0;
    for (int i = 0; i < lines.size(); ++i) {
        const int found = text.indexOf(lines.at(i), at);
        at = found < 0 ? text.size() : found + 1;
        numbers << (found < 0 ? i + 1 : at);
    }
    return numbers;
}

}  // namespace

BatchCtrl::BatchCtrl(QWidget* parent)
    : Panel(parent), m_ui(std::make_unique<Ui::BatchCtrl>()), m_message(new MessageLine(this)) {
    m_ui->setupUi(this);
    m_message->setObjectName(QStringLiteral("Message"));
    statusBar()->addWidget(m_message, 1);
    m_pace.setSingleShot(true);
    m_pace.setInterval(ProgressMs);
    connect(&m_pace, &QTimer::timeout, this, &BatchCtrl::showProgress);
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPointSizeF(font().pointSizeF());
    fixed.setFamily(QFontInfo(fixed).fixedPitch() ? fixed.family() : QStringLiteral("monospace"));
    m_ui->BatchCmds->setFont(fixed);
    m_ui->BatchLogs->setFont(fixed);
    m_ui->BatchLogs->setMaximumBlockCount(MostLogLines);
    m_ui->BatchCmds->setFocus();
    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    QAction* insert = edit->addAction(tr("&Insert What Was Done"));
    // The style's own width of a menu without shortcuts is too small for large letters.
    edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance(insert->text()) +
                          4 * edit->fontMetrics().height());
    insert->setObjectName(QStringLiteral("actionInsertRecord"));
    connect(insert, &QAction::triggered, this, &BatchCtrl::insertAsked);

    connect(m_ui->Exec, &QPushButton::clicked, this, [this] {
        m_ui->Tabs->setCurrentWidget(m_ui->LogTab);
        execCmds();
    });
    connect(m_ui->Stop, &QPushButton::clicked, this, &BatchCtrl::batchStop);
    connect(m_ui->Clear, &QPushButton::clicked, this, &BatchCtrl::clear);
    connect(m_ui->ClearLog, &QPushButton::clicked, this, &BatchCtrl::clearLog);
    connect(m_ui->Load, &QPushButton::clicked, this, [this] {
        if (m_loadDialog == nullptr) {
            m_loadDialog = makeDialog(tr("Load Batch File"));
            connect(m_loadDialog, &QFileDialog::fileSelected, this, &BatchCtrl::load);
        }
        FolderMemory::shared().show(m_loadDialog);
    });
    connect(m_ui->Save, &QPushButton::clicked, this, [this] {
        if (m_saveDialog == nullptr) {
            m_saveDialog = makeDialog(tr("Save Batch File"));
            m_saveDialog->setAcceptMode(QFileDialog::AcceptSave);
            connect(m_saveDialog, &QFileDialog::fileSelected, this, &BatchCtrl::save);
        }
        FolderMemory::shared().show(m_saveDialog);
    });
}

BatchCtrl::~BatchCtrl() = default;

QFileDialog* BatchCtrl::makeDialog(const QString& title) {
    auto* dialog = new QFileDialog(this, title);
    dialog->setNameFilters({tr("Batch File (*.bat)"), tr("Any Files (* *.*)")});
    return dialog;
}

QStringList BatchCtrl::editorLines(Qt::SplitBehavior behaviour) const {
    return editorText().split(QLatin1Char('\n'), behaviour);
}

/// As it was typed: the editor's own plain text has a blank for a no-break space.
QString BatchCtrl::editorText() const {
    QString text = m_ui->BatchCmds->document()->toRawText();
    for (const QChar::SpecialCharacter end : {QChar::ParagraphSeparator, QChar::LineSeparator}) {
        text.replace(end, QLatin1Char('\n'));
    }
    return text;
}

void BatchCtrl::insert(const QStringList& lines) {
    m_ui->Tabs->setCurrentIndex(0);
    for (const QString& line : lines) {
        m_ui->BatchCmds->insertPlainText(line + QLatin1Char('\n'));
    }
}

void BatchCtrl::dispatchLines(const QStringList& lines) {
    m_batch = BatchText::numbered(lines, numbersIn(editorLines(), lines));
    emit doDispatchCmds(lines);
}

void BatchCtrl::batchStarted() {
    m_verdict = Verdict();
    m_line = 0;
    m_running = true;
    showProgress();
}

int BatchCtrl::lineDone(const CmdLine& cmd, const Outcome& outcome, int index) {
    const int line = m_batch.lineNumber(index);
    m_line = index + 1;
    if (!m_verdict.take(cmd, outcome, line)) {
        return 0;
    }
    logOutcome(outcome);
    if (m_running && !m_pace.isActive()) {
        m_pace.start();
    }
    return line;
}

void BatchCtrl::batchEnded() {
    m_pace.stop();
    if (std::exchange(m_running, false)) {
        m_message->setText(verdict());
    }
}

void BatchCtrl::showProgress() {
    const QString line = tr("Line %1 of %2").arg(m_line).arg(m_batch.lines.size());
    m_message->setText(m_verdict.lines() > 0 ? line + QStringLiteral("   ") + verdict() : line);
}

QString BatchCtrl::verdict() const {
    return tr("%1 done, %2 with a warning, %3 failed")
        .arg(m_verdict.done())
        .arg(m_verdict.warned())
        .arg(m_verdict.failed());
}

void BatchCtrl::say(const Outcome& outcome) {
    m_message->say(outcome);
}

void BatchCtrl::sayOwn(const Outcome& outcome, const QString& file) {
    say(outcome);
    emit said(outcome, file);
}

void BatchCtrl::execCmds() {
    dispatchLines(editorLines());
}

void BatchCtrl::execBatch() {
    execCmds();
}

void BatchCtrl::clear() {
    // Not the editor's own clear(), which leaves nothing to undo.
    QTextCursor all(m_ui->BatchCmds->document());
    all.select(QTextCursor::Document);
    all.removeSelectedText();
}

void BatchCtrl::clearLog() {
    m_ui->BatchLogs->clear();
}

void BatchCtrl::save(QString fname) {
    const auto writer = [this, &fname] { return writeText(fname); };
    sayOwn(m_write    ? m_write(fname, writer)
           : writer() ? Outcome()
                      : Outcome::failure(tr("cannot be written: %1").arg(fname)),
           fname);
}

bool BatchCtrl::writeText(const QString& fname) const {
    WholeDevice file(fname);
    if (!file.open()) {
        return false;
    }
    QTextStream out(&file);
    out.setCodec("UTF-8");
    out << editorText();
    return file.putInPlace(out) && noteSaved(fname);
}

void BatchCtrl::load(QString fname) {
    QStringList lines;
    if (!readBatchFile(fname, &lines)) {
        sayOwn(Outcome::failure(tr("cannot be read: %1").arg(fname)), fname);
        return;
    }
    constexpr quint64 BytesOfLine = 512;  // in the editor, beside its letters
    if (!mayTakeMemory(BytesOfLine * static_cast<quint64>(lines.size()))) {
        sayOwn(Outcome::failure(lackOfMemory()), fname);
        return;
    }
    m_ui->BatchCmds->clear();
    QString text;
    for (const QString& line : qAsConst(lines)) {
        text += line + QLatin1Char('\n');
    }
    m_ui->BatchCmds->insertPlainText(text);
    m_ui->BatchCmds->moveCursor(QTextCursor::Start);
    sayOwn(Outcome::note(tr("Loaded %1").arg(QFileInfo(fname).fileName())), fname);
}

void BatchCtrl::logOutcome(const Outcome& outcome) {
    // The log's own texts do not all end their line.
    QString lines = m_ui->BatchLogs->document()->lastBlock().text().isEmpty()
                        ? QString()
                        : QStringLiteral("\n");
    for (const QString& failure : outcome.failures) {
        lines += QStringLiteral("failed: %1\n").arg(failure);
    }
    for (const QString& warning : outcome.warnings) {
        lines += QStringLiteral("warning: %1\n").arg(warning);
    }
    // Names of saved files stand in the line itself.
    const QStringList notes = outcome.files.isEmpty() ? outcome.notes : QStringList();
    for (const QString& note : notes) {
        lines += QStringLiteral("note: %1\n").arg(note);
    }
    if (!outcome.texts().isEmpty() || !notes.isEmpty()) {
        logmsg(lines);
    }
}

void BatchCtrl::setBatchFile(QString fname) {
    load(fname);
}

void BatchCtrl::logmsg(QString log) {
    m_ui->BatchLogs->insertPlainText(log);
    m_ui->BatchLogs->moveCursor(QTextCursor::End);
    emit logged(log);
}

void BatchCtrl::showCmdErr(CmdLine cmd) {
    logmsg(QStringLiteral("Err: %1").arg(cmd.text));
}
