#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class QIODevice;

// The text of a batch: physical lines, logical lines, files.

/// Reads the logical line that starts at lines[*index]: while a line ends in a backslash, the next
/// one is joined to it without separator. *index is left at the last physical line taken. Empty
/// when *index is outside the list.
QString readLogicalLine(const QStringList& lines, int* index);

/// Reads a batch file (UTF-8), which may be a pipe, into its lines, without line ends. False if it
/// cannot be opened, does not end within 64 MB or is given up, see AnswerWait.
bool readBatchFile(const QString& fileName, QStringList* lines);
/// The same from a device that is open for reading as text.
QStringList readBatchLines(QIODevice* device);

/// A batch as it is dispatched unattended: blank lines dropped, since they would be reported as
/// unknown commands. A line of blanks that ends a continued line stays.
struct BatchText {
    QStringList lines;     ///< what is dispatched
    QVector<int> numbers;  ///< for each of them the number of its line in the file, from 1
    QVector<int> first;    ///< for each of them the index at which its logical line starts

    static BatchText fromLines(const QStringList& all);
    /// Lines that are dispatched as they are, with their numbers.
    static BatchText numbered(const QStringList& lines, const QVector<int>& numbers);

    /// Number in the file, from 1, of the start of the logical line that holds lines[index]; 0
    /// outside the list.
    int lineNumber(int index) const;
};
