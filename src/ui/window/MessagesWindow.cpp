#include "window/MessagesWindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeView>
#include <algorithm>

#include "display/Availability.h"
#include "window/Messages.h"

namespace {
constexpr int PaceMs = 100;  // messages of a batch come by the thousand
}

MessagesWindow::MessagesWindow(Messages& messages)
    : m_messages(messages),
      m_list(new QTreeView(this)),
      m_copy(new QPushButton(tr("Copy"), this)),
      m_clear(new QPushButton(tr("Clear"), this)) {
    setObjectName(QStringLiteral("Messages"));
    setWindowTitle(tr("Messages"));
    makeControls();
    m_pace.setSingleShot(true);
    m_pace.setInterval(PaceMs);
    connect(&m_pace, &QTimer::timeout, this, &MessagesWindow::showNewest);
    connect(&m_messages, &Messages::rowsInserted, this, [this] {
        if (isLookedAt() && !m_pace.isActive()) {
            m_pace.start();
        }
    });
    connect(&m_messages, &Messages::counted, this, [this] {
        if (isLookedAt()) {
            m_messages.setSeen();
        }
    });
    connect(&m_messages, &Messages::modelReset, this, &MessagesWindow::updateControls);
    updateControls();
}

void MessagesWindow::makeControls() {
    m_list->setObjectName(QStringLiteral("MessageList"));
    m_list->setToolTip(tr("Failures and warnings since the start, the newest last"));
    m_list->setAccessibleName(tr("Messages"));
    m_list->setModel(&m_messages);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setTextElideMode(Qt::ElideMiddle);  // a long path stands before a reason or behind it
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    const QFontMetrics letters = fontMetrics();
    const QString widest[] = {QStringLiteral("00:00:00MM"), Messages::tr("warning") + "MMM",
                              Messages::tr("Batch line") + "MM",
                              QStringLiteral("i1-0000_000eV.tif")};
    for (int column = 0; column < Messages::Text; ++column) {
        m_list->setColumnWidth(column, letters.horizontalAdvance(widest[column]));
    }
    auto* copy = new QAction(m_list);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    m_list->addAction(copy);
    connect(copy, &QAction::triggered, this, &MessagesWindow::copy);
    m_copy->setObjectName(QStringLiteral("CopyMessages"));
    m_copy->setToolTip(tr("Copy the selected messages, or all when none is selected"));
    connect(m_copy, &QPushButton::clicked, this, &MessagesWindow::copy);
    m_clear->setObjectName(QStringLiteral("ClearMessages"));
    m_clear->setToolTip(tr("Empty the list"));
    connect(m_clear, &QPushButton::clicked, &m_messages, &Messages::clear);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_copy);
    buttons->addWidget(m_clear);
    buttons->addStretch();
    auto* all = new QVBoxLayout(this);
    all->addWidget(m_list);
    all->addLayout(buttons);
    resize(letters.height() * 60, letters.height() * 18);
}

/// Not behind a tab.
bool MessagesWindow::isLookedAt() const {
    return isVisible() && !visibleRegion().isEmpty();
}

void MessagesWindow::showNewest() {
    updateControls();
    m_messages.setSeen();
    m_list->scrollToBottom();
}

void MessagesWindow::updateControls() {
    const QString none = m_messages.rowCount() > 0 ? QString() : tr("There are no messages.");
    setUsable(m_copy, none);
    setUsable(m_clear, none);
}

void MessagesWindow::copy() const {
    QList<int> rows;
    const QModelIndexList selected = m_list->selectionModel()->selectedRows();
    for (const QModelIndex& index : selected) {
        rows << index.row();
    }
    if (rows.isEmpty()) {
        for (int row = 0; row < m_messages.rowCount(); ++row) {
            rows << row;
        }
    }
    std::sort(rows.begin(), rows.end());
    QApplication::clipboard()->setText(m_messages.asText(rows));
}
