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
/// not below that.
int distance(const QString& from, const QString& to, int most) {
    const QChar* const a = from.constData();
    const QChar* const b = to.constData();
    const int width = to.size();
    QVarLengthArray<int, 64> cells(width + 1);
    int* const row = cells.data();
    std::iota(row, row + width + 1, 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = row[0];
        int left = i + 1;
        int least = left;
        row[0] = left;
        for (int j = 0; j < width; ++j) {
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

/// What a line may begin with, in lower case.
QStringList knownWords() {
    QStringList known{QStringLiteral(":for"), QStringLiteral(":next"), QStringLiteral(":echo"),
                      QStringLiteral(":rem_start"), QStringLiteral(":rem_end")};
    for (const CommandRow& row : commandTable()) {
        known.append(QString::fromLatin1(row.name));
    }
    return known;
}

/// The known word that is nearest; empty where none is near.
QString nearest(const QString& word) {
    if (word.size() > 60) {
        return QString();
    }
    static const QStringList known = knownWords();
    const QString lower = word.toLower();
    QString best;
    int least = 4;
    for (const QString& name : known) {
        if (std::abs(word.size() - name.size()) >= least) {
            continue;  // they differ by more than that
        }
        const int d = distance(lower, name.toLower(), least);
        if (d < least && d * 2 <= name.size()) {
            least = d;
            best = name;
        }
    }
    return best;
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
