#pragma once

#include <QObject>
#include <QString>

class QFileDialog;

/// Where file dialogs open: all that read in the folder of the last file read, all that write in
/// that of the last one written. Without one, or when it is gone, that is DataDir.
class FolderMemory : public QObject {
    Q_OBJECT

  public:
    enum Use { Reading, Writing };

    /// The one of the program.
    static FolderMemory& shared();

    QString folder(Use use) const;
    /// Empty before the first choice.
    const QString& chosen(Use use) const { return m_folders[use]; }
    /// Nothing for what is no folder.
    void note(Use use, const QString& folder);
    /// Shows a dialog where it should open and notes what is chosen in it. One that asks for a
    /// folder shows those beside the last one.
    void show(QFileDialog* dialog);

  signals:
    void changed();

  private:
    QString m_folders[2];
};
