#include "window/WhatWasDone.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

#include "batch/BatchText.h"
#include "batch/Record.h"
#include "files/Answer.h"
#include "files/InputFile.h"
#include "panels/BatchCtrl.h"
#include "window/Remembered.h"
#include "window/SaveDialogs.h"

WhatWasDone::WhatWasDone(Measurement& measurement, QMainWindow* window, BatchCtrl* batch,
                         SaveDialogs* dialogs)
    : QObject(window),
      m_measurement(measurement),
      m_window(window),
      m_batch(batch),
      m_dialogs(dialogs),
      m_recent(new QMenu(tr("&Recent Records"), window)) {
    auto* save = new QAction(tr("Save &What Was Done..."), this);
    save->setObjectName(QStringLiteral("actionSaveRecord"));
    save->setToolTip(tr("Write down, as a batch, what makes the present results again"));
    connect(save, &QAction::triggered, this, &WhatWasDone::askForTarget);
    auto* open = new QAction(tr("Open W&hat Was Done..."), this);
    open->setObjectName(QStringLiteral("actionOpenRecord"));
    open->setToolTip(tr("Run such a batch in the folder that it lies in"));
    connect(open, &QAction::triggered, this, [this] {
        m_dialogs->askForFiles(tr("Open What Was Done"),
                               {tr("Batch File (*.bat)"), tr("Any Files (* *.*)")}, true,
                               [this](const QStringList& files) { this->open(files.first()); });
    });
    m_actions = {save, open, m_recent->menuAction()};
    connect(m_recent, &QMenu::aboutToShow, this, &WhatWasDone::listRecent);
    connect(batch, &BatchCtrl::insertAsked, this, &WhatWasDone::insert);
    listRecent();
}

void WhatWasDone::askForTarget() {
    m_dialogs->askForTarget(
        tr("Save What Was Done"), {tr("Batch File (*.bat)"), tr("Any Files (* *.*)")},
        QStringLiteral("bat"), [this](const QString& name) { emit saveAsked(name); });
}

void WhatWasDone::listRecent() {
    m_recent->clear();
    const QStringList names = Remembered::shared().recent(Remembered::records());
    for (const QString& name : names) {
        QAction* action = m_recent->addAction(QFileInfo(name).fileName());
        action->setToolTip(name);
        connect(action, &QAction::triggered, this, [this, name] { open(name); });
    }
    m_recent->menuAction()->setEnabled(!names.isEmpty());
}

void WhatWasDone::remember(const QString& fileName) {
    Remembered::shared().note(Remembered::records(), fileName);
    listRecent();
}

void WhatWasDone::open(const QString& fileName) {
    QStringList lines;
    const QFileInfo info(fileName);
    const auto isFile =
        answerOf(fileName, [fileName] { return InputFile(fileName).open(QIODevice::ReadOnly); });
    if (!isFile.value_or(false) || !readBatchFile(fileName, &lines)) {
        emit said(Outcome::failure(tr("cannot be read: %1").arg(fileName)), fileName);
        return;
    }
    // Its names are relative to the folder of the frames, where it is kept.
    if (!QDir::setCurrent(info.absolutePath())) {
        emit said(Outcome::failure(tr("cannot enter %1").arg(info.absolutePath())), fileName);
        return;
    }
    remember(info.absoluteFilePath());
    m_batch->setBatchFile(info.absoluteFilePath());
    m_batch->show();
    m_batch->dispatchLines(BatchText::fromLines(lines).lines);
}

void WhatWasDone::insert() {
    const RecordLines record = recordOf(m_measurement);
    Outcome outcome;
    if (record.whyNotInWindow.isEmpty()) {
        m_batch->insert(record.lines);
    } else {
        outcome = Outcome::failure(record.whyNotInWindow);
    }
    m_batch->say(outcome);
    emit said(outcome);
}

bool WhatWasDone::mayClose() {
    if (!m_asks || !m_measurement.hasUnsavedResults()) {
        return true;
    }
    ask();
    return false;
}

void WhatWasDone::closeAtOnce() {
    m_asks = false;
    m_window->close();
}

void WhatWasDone::ask() {
    if (m_question) {
        m_question->raise();
        return;
    }
    m_question = new QMessageBox(QMessageBox::Question, tr("Results not saved"),
                                 tr("There are results that have not been saved. Close anyway?"),
                                 QMessageBox::NoButton, m_window);
    m_question->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton* close =
        m_question->addButton(tr("Close without saving"), QMessageBox::DestructiveRole);
    close->setObjectName(QStringLiteral("CloseWithoutSaving"));
    QPushButton* save = m_question->addButton(tr("Save what was done..."), QMessageBox::ActionRole);
    m_question->setDefaultButton(m_question->addButton(QMessageBox::Cancel));
    connect(close, &QPushButton::clicked, this, &WhatWasDone::closeAtOnce, Qt::QueuedConnection);
    connect(save, &QPushButton::clicked, this, &WhatWasDone::askForTarget);
    m_question->open();
}
