#include "spectra/Background.h"

namespace background {

namespace {
constexpr int Straight = 0;
constexpr int ByDefault = 1;
}  // namespace

const std::array<Row, Count>& rows() {
    static constexpr std::array<Row, Count> all = {{{"Simple", ""}, {"Victreen", "VIC"}}};
    return all;
}

int fromBatchWord(const QString& word) {
    const QString upper = word.toUpper();
    for (int kind = 0; kind < Count; ++kind) {
        const QLatin1String own(rows()[static_cast<std::size_t>(kind)].batchWord);
        if (!upper.isEmpty() && upper == own) {
            return kind;
        }
    }
    return upper.isEmpty() || upper.toInt() > 0 ? ByDefault : Straight;
}

QString batchWordOf(int kind) {
    const QString word =
        QString::fromLatin1(rows()[static_cast<std::size_t>(kindOf(kind))].batchWord);
    return word.isEmpty() ? QStringLiteral("0") : word;
}

}  // namespace background
