#include "display/FolderMemory.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QVariant>

#include "base/Globals.h"

FolderMemory& FolderMemory::shared() {
    static FolderMemory memory;
    return memory;
}

QString FolderMemory::folder(Use use) const {
    return QFileInfo(m_folders[use]).isDir() ? m_folders[use] : DataDir;
}

void FolderMemory::note(Use use, const QString& folder) {
    const QFileInfo info(folder);
    if (info.isDir() && m_folders[use] != info.absoluteFilePath()) {
        m_folders[use] = info.absoluteFilePath();
        emit changed();
    }
}

void FolderMemory::show(QFileDialog* dialog) {
    const Use use = dialog->acceptMode() == QFileDialog::AcceptSave ? Writing : Reading;
    const bool asksForFolder = dialog->fileMode() == QFileDialog::Directory;
    constexpr char Follows[] = "follows the memory of folders";
    if (!dialog->property(Follows).toBool()) {
        dialog->setProperty(Follows, true);
        connect(dialog, &QFileDialog::filesSelected, this,
                [this, use, asksForFolder](const QStringList& files) {
                    const QString& first = files.value(0);
                    note(use, asksForFolder ? first : QFileInfo(first).absolutePath());
                });
        // Names that complete what was typed may come when the dialog is gone.
        connect(dialog, &QDialog::finished, dialog, [dialog] {
            for (auto* completer : dialog->findChildren<QCompleter*>()) {
                completer->popup()->hide();
                completer->setWidget(nullptr);  // until the field is used again
            }
        });
    }
    QDir at(folder(use));
    if (asksForFolder && at.path() != DataDir) {
        at.cdUp();
    }
    dialog->setDirectory(at);
    dialog->show();
}
