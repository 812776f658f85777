#include "panels/FolderDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

#include "display/Availability.h"
#include "display/PathFields.h"

namespace {

constexpr int ListLines = 5;
constexpr int RemarkLines = 3;

QString textOf(const FrameGroup& group) {
    const QString count = QStringLiteral("%1: %2").arg(group.name, countText(group.files.size()));
    return group.hasEnergies()
               ? count + QStringLiteral(", ") + energiesText(group.lowest, group.highest)
               : count;
}

int heightOf(int lines, const QWidget* widget) {
    return (lines + 1) * widget->fontMetrics().lineSpacing();
}

}  // namespace

FolderDialog::FolderDialog(const FolderContents& contents, QWidget* parent)
    : QDialog(parent), m_contents(contents) {
    setObjectName(QStringLiteral("FolderDialog"));
    setWindowTitle(tr("Open Folder"));
    auto* form = new QFormLayout(this);
    auto* path = new PathField(contents.path, this);
    path->setObjectName(QStringLiteral("FolderPath"));
    path->setAccessibleName(tr("Folder"));
    path->setReadOnly(true);
    path->setFocusPolicy(Qt::ClickFocus);
    path->setToolTip(contents.path);
    form->addRow(tr("Folder"), path);
    addFrames(form);
    addSpectra(form);
    if (QWidget* said = remarks()) {
        form->addRow(said);
    }
    form->addRow(makeButtons());
    update();
    resize(34 * fontMetrics().height(), sizeHint().height());
}

QComboBox* FolderDialog::addChoice(QFormLayout* form, const QString& label, const QString& name,
                                   const QString& accessibleName) {
    auto* box = new QComboBox(this);
    box->setObjectName(name);
    box->setAccessibleName(accessibleName);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(20);
    box->addItem(tr("None"), -1);
    form->addRow(label, box);
    connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &FolderDialog::update);
    return box;
}

void FolderDialog::addFrames(QFormLayout* form) {
    m_frames[0] = addChoice(form, tr("I&1"), QStringLiteral("FolderI1"), tr("Frames of I1"));
    m_frames[1] = addChoice(form, tr("I&0"), QStringLiteral("FolderI0"), tr("Frames of I0"));
    m_frames[2] = addChoice(form, tr("&Dark"), QStringLiteral("FolderDark"), tr("Dark frames"));
    for (int kind = 0; kind < FrameKindCount; ++kind) {
        const QSignalBlocker blocked(m_frames[kind]);
        for (const FrameGroup& group : m_contents.groups) {
            m_frames[kind]->addItem(textOf(group));
        }
        m_frames[kind]->setCurrentIndex(m_contents.taken[kind] + 1);
    }
}

void FolderDialog::addSpectra(QFormLayout* form) {
    m_references = new QListWidget(this);
    m_references->setObjectName(QStringLiteral("FolderReferences"));
    m_references->setAccessibleName(tr("References"));
    m_references->setToolTip(tr("Those checked are loaded and used in the fit"));
    m_references->setFixedHeight(heightOf(ListLines, this));
    for (const QString& file : m_contents.references) {
        auto* item = new QListWidgetItem(QFileInfo(file).fileName(), m_references);
        item->setToolTip(file);
        item->setCheckState(Qt::Checked);
    }
    m_references->setCurrentRow(0);
    form->addRow(tr("&References"), m_references);
    connect(m_references, &QListWidget::itemChanged, this, &FolderDialog::update);
    m_standard = addChoice(form, tr("&Standard"), QStringLiteral("FolderStandard"),
                           tr("Standard of the calibration"));
    const QSignalBlocker blocked(m_standard);
    for (const QString& file : m_contents.standards) {
        m_standard->addItem(QFileInfo(file).fileName());
        m_standard->setCurrentIndex(1);
    }
}

/// What was found and not taken; null: nothing.
QWidget* FolderDialog::remarks() const {
    const Outcome& outcome = m_contents.outcome;
    // Names within the folder are enough below its own.
    const QString said = (outcome.texts() + outcome.notes)
                             .join(QLatin1Char('\n'))
                             .remove(m_contents.path + QLatin1Char('/'));
    if (said.isEmpty()) {
        return nullptr;
    }
    auto* text = new QPlainTextEdit(said);
    text->setObjectName(QStringLiteral("FolderRemarks"));
    text->setAccessibleName(tr("What was found and not taken"));
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setFixedHeight(heightOf(RemarkLines, text));
    return text;
}

QWidget* FolderDialog::makeButtons() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_load = buttons->addButton(tr("&Load"), QDialogButtonBox::AcceptRole);
    m_load->setObjectName(QStringLiteral("FolderLoad"));
    m_load->setDefault(true);
    m_load->setToolTip(tr("Replace the frames there are, and set and use the references"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("FolderCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    QWidget::setTabOrder(m_standard, m_load);
    m_load->setFocus();
    return buttons;
}

FolderFiles FolderDialog::files() const {
    FolderFiles files;
    for (int kind = 0; kind < FrameKindCount; ++kind) {
        const int group = m_frames[kind]->currentIndex() - 1;
        if (group >= 0) {
            files.frames[kind] = m_contents.groups[group].files;
        }
    }
    for (int i = 0; i < m_references->count(); ++i) {
        if (m_references->item(i)->checkState() == Qt::Checked) {
            files.references << m_contents.references[i];
        }
    }
    files.standard = m_contents.standards.value(m_standard->currentIndex() - 1);
    return files;
}

void FolderDialog::update() {
    const FolderFiles now = files();
    bool isTwice = false;
    bool isNone = now.references.isEmpty() && now.standard.isEmpty();
    for (int kind = 0; kind < FrameKindCount; ++kind) {
        const int group = m_frames[kind]->currentIndex();
        isNone = isNone && group == 0;
        for (int other = 0; other < kind; ++other) {
            isTwice = isTwice || (group > 0 && group == m_frames[other]->currentIndex());
        }
    }
    setUsable(m_load, isNone    ? tr("Choose what is to be loaded.")
                      : isTwice ? tr("The same frames are chosen twice.")
                                : QString());
}
