#pragma once

#include <QWidget>
#include <memory>

#include "measurement/Measurement.h"

namespace Ui {
class SelectDataFiles;
}
class QFileDialog;

/// The panel that names the files of one stack and how energies are found in their names. Its list
/// holds the same files in the same order as the stack that it follows; the one on display is the
/// current one.
class SelectDataFiles : public QWidget {
    Q_OBJECT

  public:
    explicit SelectDataFiles(QWidget* parent = nullptr);
    ~SelectDataFiles() override;

    /// Shows a stack of the measurement and acts on it from now on.
    void follow(Measurement& measurement, StackId stack);
    /// "I1 Data" or "I0 Data".
    void setLabel(const QString& text);
    int count() const;
    /// -1 while the list is empty.
    int currentIndex() const;

  signals:
    void currentIndexChanged(int index);
    void filesSelected(QStringList files, bool add);
    /// "Clear" was clicked: the stack is to be emptied.
    void clearRequested();
    /// How an action of this panel ended that ends at once.
    void said(const Outcome& outcome, const QString& file = QString());

  public slots:
    /// Appends a file with its energy (eV, see frameEnergy()), which is returned. For a list that
    /// follows no stack.
    double newFile(const QString& fname);
    /// Asks the owner to empty the stack; a list that follows none is emptied at once.
    void clear();
    void clearFiles();
    void prev();
    void next();
    /// Does nothing for an index that there is not.
    void select(int i);

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    /// Takes all frames among the files, and of the folders, that are dropped.
    void dropEvent(QDropEvent* event) override;

  private:
    NamePattern names() const;
    void changeNames();
    void changeIndex(int index);
    void showChanges(Measurement::Changes what);
    void showFiles();
    void showNames();
    void loadNewFiles();
    void updateButtons();

    std::unique_ptr<Ui::SelectDataFiles> m_ui;
    QFileDialog* m_dialog;
    Measurement* m_measurement = nullptr;  // null: follows none
    StackId m_stack = StackId::I1;
    bool m_isShowing = false;  // the list is brought in step with the stack
};
