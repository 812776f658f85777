#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

// Texts that stand for %NAME% in a batch, so that one batch does for many scans.

struct NamedText {
    QString name;  ///< two or more of A to Z, 0 to 9 and _, a letter first
    QString text;
};

/// "NAME=TEXT". What is wrong with it, in one line; empty: nothing. A text changes neither the
/// number of the lines nor where one ends: no line end stands in it and no backslash at its end.
QString readNamedText(const QString& written, NamedText* named);

/// Replaces the %NAME% of these in the lines of a batch, once, from left to right: what a text
/// holds is not looked at again, and what else stands between per cent signs stays. Names that
/// occur nowhere are given back.
QStringList replaceNamed(const QVector<NamedText>& texts, QStringList* lines);

/// The first %NAME% in a text, with its per cent signs; empty: there is none.
QString leftOverName(const QString& text);
/// What to say of one in a line that runs.
QString aboutLeftOver(const QString& name);
