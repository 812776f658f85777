#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>
#include <functional>

class QFileDialog;
class QWidget;

/// The file dialogs of a window, each made when it is first shown: one takes longer to make than
/// the rest of a window. None is modal; they open where FolderMemory says.
class SaveDialogs : public QObject {
  public:
    explicit SaveDialogs(QWidget* window);

    /// Asks for the name of a file to write.
    void askForTarget(const QString& title, const QStringList& filters, const QString& suffix,
                      const std::function<void(const QString&)>& save);
    /// Asks for files to read; several of them unless for one.
    void askForFiles(const QString& title, const QStringList& filters, bool onlyOne,
                     const std::function<void(const QStringList&)>& take,
                     const QString& name = QString());
    void askForFolder(const QString& title, const std::function<void(const QString&)>& take,
                      const QString& name);
    QFileDialog* dialog(const QString& title) const { return m_dialogs.value(title); }

  private:
    QFileDialog* make(const QString& title);

    QWidget* m_window;
    QHash<QString, QFileDialog*> m_dialogs;  // by title
};
