#pragma once

#include <QDialog>

#include "measurement/FolderLoad.h"

class QComboBox;
class QFormLayout;
class QListWidget;
class QPushButton;

/// Shows what was found in a folder and lets one choose what of it is loaded: which frames are I1,
/// I0 and dark, which spectra are references, which is the standard.
class FolderDialog : public QDialog {
    Q_OBJECT

  public:
    FolderDialog(const FolderContents& contents, QWidget* parent);

    /// What is chosen now.
    FolderFiles files() const;

  private:
    QComboBox* addChoice(QFormLayout* form, const QString& label, const QString& name,
                         const QString& accessibleName);
    void addFrames(QFormLayout* form);
    void addSpectra(QFormLayout* form);
    QWidget* remarks() const;
    QWidget* makeButtons();
    void update();

    const FolderContents m_contents;
    QComboBox* m_frames[FrameKindCount];
    QListWidget* m_references;
    QComboBox* m_standard;
    QPushButton* m_load;
};
