#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

/// One parsed line of a batch. Travels by value between the batch thread and the main window.
struct CmdLine {
    QString text;            ///< the whole logical line, continued lines already joined
    bool isControl = false;  ///< command begins with ':'
    QString command;         ///< first item, as written
    QStringList args;        ///< remaining items in order; empty items are dropped

    /// Splits a logical line into its items. An empty line gives an empty record.
    static CmdLine parse(const QString& line);

    /// Argument i, or an empty text where the line has none.
    QString arg(int i) const { return args.value(i); }
};

Q_DECLARE_METATYPE(CmdLine)
