#pragma once

#include <QMainWindow>
#include <QPointer>

#include "measurement/FolderLoad.h"
#include "measurement/Measurement.h"

class FolderDialog;
class QMenu;
class QPushButton;
class SaveDialogs;

/// Opens a measurement by its folder: chosen with the button, dropped on the main window or taken
/// from the list of recent ones. A dialog shows what was found; what is chosen in it is loaded.
class FolderOpening : public QObject {
    Q_OBJECT

  public:
    /// Makes the action "actionOpenRecent" of the window.
    FolderOpening(Measurement& measurement, QMainWindow* window, QPushButton* button,
                  SaveDialogs* dialogs);

    /// Shows what files and folders hold.
    void open(const QStringList& chosen);

  signals:
    void said(const Outcome& outcome, const QString& file = QString());

  private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void listRecent();
    void openAgain(const QString& folder);
    void load(const FolderFiles& files, const FolderContents& contents, const QStringList& chosen);

    Measurement& m_measurement;
    QMainWindow* m_window;
    QMenu* m_recent;
    QPointer<FolderDialog> m_dialog;
};
