#pragma once

#include <QFrame>
#include <memory>

namespace Ui {
class XafsFileSelect;
}
class QFileDialog;

/// Lets the user pick one XAFS data file and says which. Its "Use" box tells, for a reference
/// spectrum, whether it takes part in the fit.
class XafsFileSelect : public QFrame {
    Q_OBJECT

  public:
    explicit XafsFileSelect(QWidget* parent = nullptr);
    ~XafsFileSelect() override;

    /// The name shown; empty after clear() or when the file could not be read.
    QString fileName() const;
    void setFileNameText(const QString& text);

    /// Whether a file has ever been chosen; clear() does not reset it.
    bool isSelected() const { return m_selected; }
    bool use() const;
    /// From now on Select asks others for files: only asked() is emitted.
    void leaveAsking() { m_leavesAsking = true; }

  signals:
    void changedUse(bool use);
    void newFile(const QString& fname);
    /// Select was pressed, see leaveAsking().
    void asked();
    /// The user wants none.
    void cleared();

  public slots:
    void fileSelected(const QString& fname);
    void load(const QString& fname);
    void clear();
    void setUse(bool use);
    void showUse(bool visible);

  private:
    void showDialog();

    std::unique_ptr<Ui::XafsFileSelect> m_ui;
    QFileDialog* m_dialog = nullptr;  // made when it is first shown: making one takes long
    bool m_selected = false;
    bool m_leavesAsking = false;
};
