#include "panels/XafsFileSelect.h"

#include <QFileDialog>

#include "display/FolderMemory.h"
#include "ui_XafsFileSelect.h"

XafsFileSelect::XafsFileSelect(QWidget* parent)
    : QFrame(parent), m_ui(std::make_unique<Ui::XafsFileSelect>()) {
    m_ui->setupUi(this);
    // On the fixed light ground, whatever the desktop's colours are.
    QPalette dark = m_ui->Selected->palette();
    dark.setColor(QPalette::Text, Qt::black);
    dark.setColor(QPalette::PlaceholderText, Qt::darkGray);
    m_ui->Selected->setPalette(dark);
    const QString noFile = m_ui->Selected->toolTip();
    connect(m_ui->Selected, &QLineEdit::textChanged, this, [this, noFile](const QString& name) {
        m_ui->Selected->setToolTip(name.isEmpty() ? noFile : name);
    });
    connect(m_ui->Select, &QPushButton::clicked, this, &XafsFileSelect::showDialog);
    connect(m_ui->Clear, &QPushButton::clicked, this, &XafsFileSelect::clear);
    connect(m_ui->Clear, &QPushButton::clicked, this, &XafsFileSelect::cleared);
    connect(m_ui->Use, &QCheckBox::toggled, this, &XafsFileSelect::changedUse);
}

XafsFileSelect::~XafsFileSelect() = default;

void XafsFileSelect::showDialog() {
    if (m_leavesAsking) {
        emit asked();
        return;
    }
    if (m_dialog == nullptr) {
        m_dialog = new QFileDialog(this, tr("XAFS File Select"));
        m_dialog->setFileMode(QFileDialog::ExistingFile);
        m_dialog->setNameFilters({tr("XAFS Data File (*.dat)"), tr("Any Files (* *.*)")});
        connect(m_dialog, &QFileDialog::fileSelected, this, &XafsFileSelect::fileSelected);
    }
    FolderMemory::shared().show(m_dialog);
}

QString XafsFileSelect::fileName() const {
    return m_ui->Selected->text();
}
void XafsFileSelect::setFileNameText(const QString& text) {
    m_ui->Selected->setText(text);
}
bool XafsFileSelect::use() const {
    return m_ui->Use->isChecked();
}

void XafsFileSelect::fileSelected(const QString& fname) {
    m_selected = true;
    m_ui->Selected->setText(fname);
    emit newFile(fname);
}

void XafsFileSelect::load(const QString& fname) {
    fileSelected(fname);
}
void XafsFileSelect::clear() {
    m_ui->Selected->setText(QString());
}
void XafsFileSelect::setUse(bool use) {
    m_ui->Use->setChecked(use);
}
void XafsFileSelect::showUse(bool visible) {
    m_ui->Use->setVisible(visible);
}
