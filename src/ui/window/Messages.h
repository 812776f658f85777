#pragma once

#include <QAbstractTableModel>
#include <QTime>
#include <deque>

#include "measurement/Outcome.h"

/// The failures and warnings since the start of the program, a row each, the newest last. Of very
/// many the oldest go.
class Messages : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { Time, Kind, Line, File, Text, ColumnCount };
    static constexpr int Most = 100000;

    explicit Messages(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

    /// Takes in what there is to look at in an outcome.
    /// @param file that the action is about, as it was given; empty: none
    /// @param line of the batch, from 1; 0: of none
    void take(const Outcome& outcome, const QString& file = QString(), int line = 0);
    /// How many have come since they were last looked at.
    int unseen() const { return m_unseen; }
    void setSeen();
    void clear();
    /// Rows as text, a line each, with tabs between the columns.
    QString asText(const QList<int>& rows) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  signals:
    /// The number of those not looked at has changed.
    void counted();

  private:
    struct Message {
        QTime time;
        bool failed;
        int line;
        QString file;
        QString text;
    };
    QString cell(const Message& message, int column) const;

    std::deque<Message> m_messages;
    int m_unseen = 0;
};
