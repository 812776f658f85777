#include "calibration/NumberScan.h"

#include <QTextStream>
#include <algorithm>
#include <charconv>

#include "base/Limits.h"

namespace {

constexpr int PieceLength = 1 << 16;
constexpr std::size_t UsualLength = 32;

bool isUsual(QChar c) {
    const ushort u = c.unicode();
    return (u >= '0' && u <= '9') || u == '.' || u == '-' || u == '+' || u == 'e' || u == 'E';
}

}  // namespace

double numberIn(QStringView text, bool* isNumber) {
    const auto length = static_cast<std::size_t>(text.size());
    if (length <= UsualLength && std::all_of(text.begin(), text.end(), isUsual)) {
        char letters[UsualLength];
        std::transform(text.begin(), text.end(), letters, [](QChar c) { return c.toLatin1(); });
        double value = 0.0;
        const auto end = std::from_chars(letters, letters + length, value);
        if (end.ec == std::errc() && end.ptr == letters + length) {
            *isNumber = true;
            return value;
        }
    }
    return text.toString().toDouble(isNumber);
}

bool NumberScan::readPiece() {
    m_piece = m_stream.read(PieceLength);
    m_at = 0;
    return !m_piece.isEmpty();
}

bool NumberScan::isAtEnd() {
    for (;;) {
        while (m_at < m_piece.size() && m_piece.at(m_at).isSpace()) {
            ++m_at;
        }
        if (m_at < m_piece.size()) {
            return false;
        }
        if (!readPiece()) {
            return true;
        }
    }
}

double NumberScan::next(bool* isNumber) {
    isAtEnd();
    QString begun;  // in pieces before
    bool isTooLong = false;
    for (;;) {
        const auto from = m_piece.cbegin() + m_at;
        const auto end = std::find_if(from, m_piece.cend(), [](QChar c) { return c.isSpace(); });
        const QStringView part(from, end - from);
        m_at += static_cast<int>(part.size());
        isTooLong = isTooLong || begun.size() + part.size() > Limits::LongestNumber;
        if (m_at < m_piece.size() && begun.isEmpty() && !isTooLong) {
            return numberIn(part, isNumber);
        }
        if (!isTooLong) {
            begun.append(part.data(), static_cast<int>(part.size()));
        }
        if (m_at < m_piece.size() || !readPiece()) {
            break;
        }
    }
    *isNumber = false;
    return isTooLong ? 0.0 : numberIn(begun, isNumber);
}
