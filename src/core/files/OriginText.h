#pragma once

#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>
#include <optional>

/// What a saved result says of how it came about: "key = value" entries in order and the lines of
/// the batch that makes it again, without the last one, which saves it.
struct OriginText {
    QVector<QPair<QString, QString>> entries;  ///< keys hold no " = " and may occur more than once
    QStringList record;                        ///< empty: none

    /// The name of the entry with the command word that saved the file.
    static QString savedByKey() { return QStringLiteral("saved by"); }
    /// What that command was given behind the name of the file, of a composite.
    static QString compositeKey() { return QStringLiteral("composite"); }
    /// The name of the entry that says why there is no record.
    static QString recordKey() { return QStringLiteral("record"); }

    /// The first entry of that key; empty where there is none.
    QString value(const QString& key) const;

    /// "Tarnwick origin 1", the entries and, after an empty line, the record, each line ended by
    /// '\n'. Line ends and NUL in keys and values become blanks, since the text has one line each.
    QString toText() const;

    /// What toText() made. Line ends may be "\r\n"; empty lines and NUL at the end are passed over.
    /// Nothing for any other text, with the reason in one line: no origin, one of a newer version,
    /// or an entry that is none.
    static std::optional<OriginText> fromText(const QString& text, QString* whyNot = nullptr);

    /// Whether a text begins as an origin does, of whatever version.
    static bool beginsIn(const QString& line);
};
