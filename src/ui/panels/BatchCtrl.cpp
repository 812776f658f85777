#include "panels/BatchCtrl.h"

#include <QAction>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFontInfo>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSaveFile>
#include <QTextBlock>
#include <QTextStream>

#include "base/Globals.h"
#include "batch/BatchText.h"
#include "files/WholeFile.h"
#include "ui_BatchCtrl.h"

BatchCtrl::BatchCtrl(QWidget* parent)
    : QMainWindow(parent), m_ui(std::make_unique<Ui::BatchCtrl>()) {
    m_ui->setupUi(this);
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPointSizeF(font().pointSizeF());
    fixed.setFamily(QFontInfo(fixed).fixedPitch() ? fixed.family() : QStringLiteral("monospace"));
    m_ui->BatchCmds->setFont(fixed);
    m_ui->BatchLogs->setFont(fixed);
    m_ui->BatchCmds->setFocus();
    QAction* insert = menuBar()->addMenu(tr("&Edit"))->addAction(tr("&Insert What Was Done"));
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
        m_loadDialog->show();
    });
    connect(m_ui->Save, &QPushButton::clicked, this, [this] {
        if (m_saveDialog == nullptr) {
            m_saveDialog = makeDialog(tr("Save Batch File"));
            m_saveDialog->setAcceptMode(QFileDialog::AcceptSave);
            connect(m_saveDialog, &QFileDialog::fileSelected, this, &BatchCtrl::save);
        }
        m_saveDialog->show();
    });
}

BatchCtrl::~BatchCtrl() = default;

QFileDialog* BatchCtrl::makeDialog(const QString& title) {
    auto* dialog = new QFileDialog(this, title);
    dialog->setDirectory(DataDir);
    dialog->setNameFilters({tr("Batch File (*.bat)"), tr("Any Files (* *.*)")});
    return dialog;
}

QStringList BatchCtrl::editorLines(Qt::SplitBehavior behaviour) const {
    return m_ui->BatchCmds->toPlainText().split(QLatin1Char('\n'), behaviour);
}

void BatchCtrl::insert(const QStringList& lines) {
    m_ui->Tabs->setCurrentIndex(0);
    for (const QString& line : lines) {
        m_ui->BatchCmds->insertPlainText(line + QLatin1Char('\n'));
    }
}

void BatchCtrl::dispatchLines(const QStringList& lines) {
    m_cmdLines = lines;
    emit doDispatchCmds(m_cmdLines);
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
    QSaveFile file(fname);
    if (!openBeside(file, QIODevice::WriteOnly | QIODevice::Text)) {
        return;
    }
    QTextStream out(&file);
    out.setCodec("UTF-8");
    out << m_ui->BatchCmds->toPlainText();
    out.flush();
    if (out.status() != QTextStream::Ok) {
        file.cancelWriting();
    }
    putInPlace(file);
}

void BatchCtrl::load(QString fname) {
    QStringList lines;
    if (!readBatchFile(fname, &lines)) {
        return;
    }
    m_ui->BatchCmds->clear();
    QString text;
    for (const QString& line : qAsConst(lines)) {
        text += line + QLatin1Char('\n');
    }
    m_ui->BatchCmds->insertPlainText(text);
    m_ui->BatchCmds->moveCursor(QTextCursor::Start);
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
    if (!outcome.texts().isEmpty()) {
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
