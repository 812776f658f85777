#include "batch/UnknownWord.h"

#include <QStringList>
#include <QVarLengthArray>
#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "batch/BatchTexts.h"
#include "batch/CommandTables.h"

namespace {

/// Number of single-character changes between two words, or some number from `most` on where it is
/// not below that. Only what lies so near to the diagonal is worked out.
int distance(const QString& from, const QString& to, int most) {
    const QChar* const a = from.constData();
    const QChar* const b = to.constData();
    const int width = to.size();
    if (std::abs(from.size() - width) >= most) {
        return most;
    }
    QVarLengthArray<int, 64> cells(width + 1);
    int* const row = cells.data();
    std::iota(row, row + width + 1, 0);
    for (int i = 0; i < from.size(); ++i) {
        const int first = std::max(0, i - most);
        const int end = std::min(width, i + most);
        int diagonal = row[first];
        int left = first == 0 ? i + 1 : most;
        int least = left;
        row[first] = left;
        for (int j = first; j < end; ++j) {
            const int changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            left = std::min(changed, std::min(diagonal, left) + 1);
            row[j + 1] = left;
            least = std::min(least, left);
        }
        if (least >= most) {
            return least;  // no row below has less
        }
    }
    return row[width];
}

/// What a line may begin with.
QStringList knownWords() {
    QStringList known{QStringLiteral(":for"), QStringLiteral(":next"), QStringLiteral(":echo"),
                      QStringLiteral(":rem_start"), QStringLiteral(":rem_end")};
    for (const CommandRow& row : commandTable()) {
        known.append(QString::fromLatin1(row.name));
    }
    return known;
}

QStringList inLowerCase(QStringList words) {
    for (QString& word : words) {
        word = word.toLower();
    }
    return words;
}

/// The known word that is nearest; empty where none is near.
QString nearest(const QString& word) {
    if (word.size() > 60) {
        return QString();
    }
    static const QStringList known = knownWords();
    static const QStringList lower = inLowerCase(known);
    const QString given = word.toLower();  // may be longer than the word
    int best = -1;
    int least = 4;
    for (int i = 0; i < lower.size(); ++i) {
        if (std::abs(word.size() - lower.at(i).size()) >= least) {
            continue;  // they differ by more than that
        }
        const int d = distance(given, lower.at(i), least);
        if (d < least && d * 2 <= lower.at(i).size()) {
            least = d;
            best = i;
        }
    }
    return known.value(best);
}

}  // namespace

QString unknownWord(const QString& word) {
    if (word.startsWith(QLatin1Char('#'))) {
        return Batch::tr("'#' does not start a comment: use :rem_start and :rem_end");
    }
    const QString meant = nearest(word);
    return meant.isEmpty() ? Batch::tr("unknown command")
                           : Batch::tr("unknown command (did you mean %1?)").arg(meant);
}
