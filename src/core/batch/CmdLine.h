#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

#include "measurement/Outcome.h"

/// One parsed line of a batch. Travels by value between the batch thread and the main window.
struct CmdLine {
    QString text;            ///< the whole logical line, continued lines already joined
    bool isControl = false;  ///< command begins with ':'
    QString command;         ///< first item, as written
    QStringList args;        ///< remaining items in order; empty items are dropped
    int line = -1;           ///< index of its last physical line in the batch; -1: of none
    Outcome problems;        ///< of its form and its place among the control words

    /// Splits a logical line into its items. An empty line gives an empty record.
    static CmdLine parse(const QString& line);

    /// Argument i, or an empty text where the line has none.
    QString arg(int i) const { return args.value(i); }
};

Q_DECLARE_METATYPE(CmdLine)
