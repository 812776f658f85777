#include "window/FolderOpening.h"

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

#include "display/FolderMemory.h"
#include "panels/DroppedFiles.h"
#include "panels/FolderDialog.h"
#include "window/Remembered.h"
#include "window/SaveDialogs.h"

FolderOpening::FolderOpening(Measurement& measurement, QMainWindow* window, QPushButton* button,
                             SaveDialogs* dialogs)
    : QObject(window),
      m_measurement(measurement),
      m_window(window),
      m_recent(new QMenu(tr("Open Rece&nt"), window)) {
    connect(button, &QPushButton::clicked, this, [this, dialogs] {
        dialogs->askForFolder(
            tr("Open Folder"),
            [this](const QString& folder) {
                // The dialog that has asked takes the keyboard with it when it goes.
                QTimer::singleShot(0, this, [this, folder] { open({folder}); });
            },
            QStringLiteral("OpenFolderDialog"));
    });
    m_recent->setToolTipsVisible(true);
    m_recent->menuAction()->setObjectName(QStringLiteral("actionOpenRecent"));
    connect(&Remembered::shared(), &Remembered::changed, this, &FolderOpening::listRecent);
    listRecent();
    window->setAcceptDrops(true);
    window->installEventFilter(this);
}

void FolderOpening::listRecent() {
    m_recent->clear();
    const QStringList folders = Remembered::shared().recent(Remembered::folders());
    int number = 0;
    for (const QString& folder : folders) {
        const QString name = QFileInfo(folder).fileName();
        QAction* action = m_recent->addAction(
            QStringLiteral("&%1  %2").arg(++number).arg(QString(name).replace('&', "&&")));
        action->setToolTip(folder);
        connect(
            action, &QAction::triggered, this, [this, folder] { openAgain(folder); },
            Qt::QueuedConnection);  // the list may change by it
    }
    m_recent->menuAction()->setEnabled(!folders.isEmpty());
}

void FolderOpening::openAgain(const QString& folder) {
    if (QFileInfo(folder).isDir()) {
        open({folder});
        return;
    }
    Remembered::shared().forget(Remembered::folders(), folder);
    emit said(Outcome::failure(tr("no longer there, taken out of the list: %1").arg(folder)),
              folder);
}

bool FolderOpening::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::DragEnter || event->type() == QEvent::Drop) {
        auto* drop = static_cast<QDropEvent*>(event);
        const QStringList files = droppedFiles(drop->mimeData());
        if (files.isEmpty()) {
            return false;
        }
        drop->acceptProposedAction();
        if (event->type() == QEvent::Drop) {
            open(files);
        }
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void FolderOpening::open(const QStringList& chosen) {
    const FolderContents contents = contentsOf(m_measurement, listingOf(m_measurement, chosen));
    if (contents.groups.isEmpty() && contents.references.isEmpty() &&
        contents.standards.isEmpty()) {
        emit said(contents.outcome, contents.path);
        return;
    }
    delete m_dialog;
    m_dialog = new FolderDialog(contents, m_window);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_dialog, &QDialog::accepted, this,
            [this, contents, chosen] { load(m_dialog->files(), contents, chosen); });
    m_dialog->open();
}

void FolderOpening::load(const FolderFiles& files, const FolderContents& contents,
                         const QStringList& chosen) {
    const Outcome outcome = openFolder(m_measurement, files);
    if (outcome.failed()) {
        emit said(outcome, contents.path);
        return;
    }
    m_measurement.set(&Settings::shown, Shown::I1);
    FolderMemory::shared().note(FolderMemory::Reading, contents.path);
    if (chosen == QStringList(contents.path) && !files.of(FrameKind::I1).isEmpty()) {
        Remembered::shared().note(Remembered::folders(), contents.path);
    }
}
