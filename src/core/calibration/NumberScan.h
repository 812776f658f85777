#pragma once

#include <QString>

class QTextStream;

/// What a text is worth as a number: bit for bit what QString::toDouble() makes of it, for the
/// usual forms several times as fast.
double numberIn(QStringView text, bool* isNumber);

/// The texts between white space that follow in a stream, read piece by piece. One of more than
/// Limits::LongestNumber characters is no number, so that a file without blanks takes no memory.
class NumberScan {
  public:
    explicit NumberScan(QTextStream& stream) : m_stream(stream) {}

    /// Whether nothing but white space is left.
    bool isAtEnd();
    /// The worth of the next text, 0 where it is no number; not at the end.
    double next(bool* isNumber);

  private:
    bool readPiece();

    QTextStream& m_stream;
    QString m_piece;
    int m_at = 0;  // in the piece
};
