#include "display/FolderMemory.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QVariant>

#include "base/Globals.h"

namespace {

/// The list of names that complete what is typed may come when the dialog is gone.
void endCompletion(const QFileDialog* dialog) {
    const auto completers = dialog->findChildren<QCompleter*>();
    for (QCompleter* completer : completers) {
        completer->popup()->hide();
        completer->setWidget(nullptr);  // until the field is used again
    }
}

}  // namespace

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
        // Before another window opens by the choice, and when there is none.
        connect(dialog, &QFileDialog::filesSelected, dialog, [dialog] { endCompletion(dialog); });
        connect(dialog, &QDialog::finished, dialog, [dialog] { endCompletion(dialog); });
    }
    QDir at(folder(use));
    if (asksForFolder && at.path() != DataDir) {
        at.cdUp();
    }
    dialog->setDirectory(at);
    dialog->show();
}
