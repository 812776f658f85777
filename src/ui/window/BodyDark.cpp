// The dark frames of the main window: their button, its dialog and what is said about them.

#include <QAction>
#include <QFileDialog>

#include "base/Globals.h"
#include "frames/DarkData.h"
#include "ui_Body.h"
#include "window/Body.h"
#include "window/BodyStack.h"

void Body::connectDark() {
    m_clearDark = new QAction(tr("Clear dark data"), this);
    m_clearDark->setObjectName(QStringLiteral("ClearDark"));
    m_ui->SelectDark->addAction(m_clearDark);
    m_ui->SelectDark->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_darkToolTip = m_ui->SelectDark->toolTip();

    connect(m_ui->SelectDark, &QPushButton::clicked, this, &Body::showDarkDialog);
    connect(m_clearDark, &QAction::triggered, m_dark.get(), &DarkData::clear);
    connect(m_dark.get(), &DarkData::changed, this, &Body::darkChanged);
    connect(m_dark.get(), &DarkData::progressed, this, &Body::showDarkState);
    showDarkState();
}

void Body::showDarkDialog() {
    if (m_darkDialog == nullptr) {
        m_darkDialog = new QFileDialog(this, tr("Dark Data"));
        m_darkDialog->setDirectory(DataDir);
        m_darkDialog->setObjectName(QStringLiteral("DarkDialog"));
        m_darkDialog->setFileMode(QFileDialog::ExistingFiles);
        m_darkDialog->setAcceptMode(QFileDialog::AcceptOpen);
        m_darkDialog->setNameFilters(
            {tr("Tiff Files (*.tif *.tiff)"), tr("IMG Files (*.img)"), tr("Any Files (* *.*)")});
        m_darkDialog->setModal(false);
        connect(m_darkDialog, &QFileDialog::filesSelected, m_dark.get(), &DarkData::replace);
    }
    m_darkDialog->show();
}

void Body::darkChanged() {
    m_darkIsNew = true;
    showDarkState();
    if (!m_i1->loader.isLoading()) {
        showSpectrumAgain();
    }
}

void Body::takeNewDark() {
    // A run under way ends with the dark frames with which it began.
    if (m_darkIsNew && !m_rows) {
        m_darkIsNew = false;
        stacksChanged();
    }
}

QString Body::darkState() const {
    QStringList parts;
    if (m_dark->isLoading()) {
        parts << tr("%n dark file(s) to read", nullptr, m_dark->filesLeft());
    } else if (m_dark->loaded() > m_dark->fitting()) {
        parts << tr("%1 of %2 dark frames in use, the others are not of the image's size")
                     .arg(m_dark->fitting())
                     .arg(m_dark->loaded());
    } else if (m_dark->loaded() > 0) {
        parts << tr("%n dark frame(s)", nullptr, m_dark->loaded());
    }
    if (m_dark->refused() > 0) {
        parts << tr("%n dark file(s) unreadable or not of the image's size", nullptr,
                    m_dark->refused());
    }
    return parts.join(QStringLiteral("   "));
}

void Body::showDarkState() {
    const QString state = darkState();
    m_clearDark->setEnabled(!state.isEmpty());
    m_ui->SelectDark->setToolTip(state.isEmpty() ? m_darkToolTip : m_darkToolTip + '\n' + state);
    updateStatus();
}
