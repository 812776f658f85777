#pragma once

#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <memory>

namespace Ui {
class SelectDataFiles;
}
class QFileDialog;
class QRegularExpression;

/// The panel that names the files of one stack and gives each its energy from its name. Its list
/// holds the same files in the same order as the stack; the main window reads them.
class SelectDataFiles : public QWidget {
    Q_OBJECT

  public:
    explicit SelectDataFiles(QWidget* parent = nullptr);
    ~SelectDataFiles() override;

    /// "I1 Data" or "I0 Data".
    void setLabel(const QString& text);
    int count() const;
    /// -1 while the list is empty.
    int currentIndex() const;
    /// While a stack loads, no newer files are looked for.
    void setLoading(bool loading);

  signals:
    void currentIndexChanged(int index);
    void filesSelected(QStringList files, bool add);
    /// "Clear" was clicked: list and stack are to be emptied.
    void clearRequested();

  public slots:
    /// Appends a file with its energy (eV), which is returned. Without a match of the pattern the
    /// energy is the number of files before it, less one, in the unit chosen.
    double newFile(const QString& fname);
    /// Empties the list and asks the owner to empty the stack.
    void clear();
    void clearFiles();
    void prev();
    void next();
    /// Does nothing for an index that there is not.
    void select(int i);

  private:
    void connectLoadNew();
    void repeatLoadNew(bool on);
    void loadNewFiles();
    void updateButtons();

    std::unique_ptr<Ui::SelectDataFiles> m_ui;
    QFileDialog* m_dialog;
    std::unique_ptr<QRegularExpression> m_pattern;  // compiled once, not for every file
    bool m_loading = false;
    QTimer m_hold;    // tells a press that is held from a click
    QTimer m_repeat;  // looks for new files while "Load New" stays down
    bool m_wasHeld = false;
};
