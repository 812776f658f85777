#include "window/SaveDialogs.h"

#include <QFileDialog>

#include "display/FolderMemory.h"
#include "files/FileNames.h"

SaveDialogs::SaveDialogs(QWidget* window) : QObject(window), m_window(window) {}

QFileDialog* SaveDialogs::make(const QString& title) {
    auto* dialog = new QFileDialog(m_window, title);
    dialog->setModal(false);
    m_dialogs.insert(title, dialog);
    return dialog;
}

void SaveDialogs::askForTarget(const QString& title, const QStringList& filters,
                               const QString& suffix,
                               const std::function<void(const QString&)>& save) {
    QFileDialog* dialog = m_dialogs.value(title);
    if (dialog == nullptr) {
        dialog = make(title);
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setFileMode(QFileDialog::AnyFile);
        connect(dialog, &QFileDialog::fileSelected, m_window, [save, dialog](const QString& name) {
            save(withSuffix(name, dialog->defaultSuffix()));  // not every platform's dialog does
        });
    }
    dialog->setNameFilters(filters);
    dialog->setDefaultSuffix(suffix);
    FolderMemory::shared().show(dialog);
}

void SaveDialogs::askForFiles(const QString& title, const QStringList& filters, bool onlyOne,
                              const std::function<void(const QStringList&)>& take,
                              const QString& name) {
    QFileDialog* dialog = m_dialogs.value(title);
    if (dialog == nullptr) {
        dialog = make(title);
        dialog->setObjectName(name);
        dialog->setAcceptMode(QFileDialog::AcceptOpen);
        dialog->setFileMode(onlyOne ? QFileDialog::ExistingFile : QFileDialog::ExistingFiles);
        dialog->setNameFilters(filters);
        connect(dialog, &QFileDialog::filesSelected, m_window, take);
    }
    FolderMemory::shared().show(dialog);
}

void SaveDialogs::askForFolder(const QString& title,
                               const std::function<void(const QString&)>& take,
                               const QString& name) {
    QFileDialog* dialog = m_dialogs.value(title);
    if (dialog == nullptr) {
        dialog = make(title);
        dialog->setObjectName(name);
        dialog->setFileMode(QFileDialog::Directory);
        dialog->setOption(QFileDialog::DontUseNativeDialog);
        dialog->setOption(QFileDialog::ShowDirsOnly);
        connect(dialog, &QFileDialog::fileSelected, m_window, take);
    }
    FolderMemory::shared().show(dialog);
}
