#include "window/Messages.h"

#include <QFileInfo>
#include <algorithm>

void Messages::take(const Outcome& outcome, const QString& file, int line) {
    const int count = outcome.failures.size() + outcome.warnings.size();
    if (count == 0) {
        return;
    }
    const int tooMany = std::min(rowCount(), rowCount() + count - Most);
    if (tooMany > 0) {
        const int go = std::min(rowCount(), std::max(tooMany, Most / 10));  // not one at a time
        beginRemoveRows(QModelIndex(), 0, go - 1);
        m_messages.erase(m_messages.begin(), m_messages.begin() + go);
        endRemoveRows();
    }
    const QTime now = QTime::currentTime();
    beginInsertRows(QModelIndex(), rowCount(), rowCount() + count - 1);
    for (const QString& failure : outcome.failures) {
        m_messages.push_back({now, true, line, file, failure});
    }
    for (const QString& warning : outcome.warnings) {
        m_messages.push_back({now, false, line, file, warning});
    }
    endInsertRows();
    m_unseen += count;
    emit counted();
}

void Messages::setSeen() {
    if (m_unseen > 0) {
        m_unseen = 0;
        emit counted();
    }
}

void Messages::clear() {
    beginResetModel();
    m_messages.clear();
    endResetModel();
    setSeen();
}

QString Messages::asText(const QList<int>& rows) const {
    QString text;
    for (const int row : rows) {
        QStringList cells;
        for (int column = 0; column < ColumnCount; ++column) {
            cells << cell(m_messages[static_cast<std::size_t>(row)], column);
        }
        text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
    return text;
}

int Messages::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_messages.size());
}

int Messages::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QString Messages::cell(const Message& message, int column) const {
    switch (column) {
        case Time:
            return message.time.toString(QStringLiteral("hh:mm:ss"));
        case Kind:
            return message.failed ? tr("failed") : tr("warning");
        case Line:
            return message.line > 0 ? QString::number(message.line) : QString();
        case File:
            return message.file;
        default:
            return message.text;
    }
}

QVariant Messages::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return QVariant();
    }
    const QString text = cell(m_messages[static_cast<std::size_t>(index.row())], index.column());
    switch (role) {
        case Qt::DisplayRole:
            return index.column() == File ? QFileInfo(text).fileName() : text;
        case Qt::ToolTipRole:
            return text;
        default:
            return QVariant();
    }
}

QVariant Messages::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return QVariant();
    }
    const QStringList titles{tr("Time"), tr("Outcome"), tr("Batch line"), tr("File"),
                             tr("Message")};
    return titles.value(section);
}
