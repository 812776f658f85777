#pragma once

#include <QCoreApplication>
#include <QStringList>
#include <vector>

/// Rows that lie one after another in a file: a strip, or several neighbours.
struct StripRun {
    quint64 offset;  ///< bytes from the start of the file
    quint64 rows;
};

/// Where the rows of the plainest kind of file lie (whole strips of uncompressed 16-bit counts), in
/// order. No run for any other file, which is to be read row by row.
struct PlainStrips {
    std::vector<StripRun> runs;
    bool isSwapped = false;  ///< the counts are not in the byte order of the machine
};

/// What a file says of its frame before any count is read.
struct FrameHeader {
    Q_DECLARE_TR_FUNCTIONS(FrameHeader)

  public:
    quint32 width = 0;     ///< pixels a row; 0 where the file does not tell
    quint32 height = 0;    ///< rows
    quint64 rowsHeld = 0;  ///< of these, as many as the file can hold, whatever it claims
    /// Why no stack takes the file, in one phrase such as "32-bit float, not 16-bit counts". Empty:
    /// nothing but a strip that cannot be decoded keeps a stack from taking it.
    QString refusal;
    /// What somebody should know of a file that is taken, each in one phrase.
    QStringList remarks;
    PlainStrips plain;
};

/// The header of a frame's file, told by its first bytes as TiffData::load() does; no count is
/// read. What load() accepts and a stack does not (see TiffData::refusal) is refused here, too.
FrameHeader frameHeader(const QString& fileName);
