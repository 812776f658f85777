#include "batch/UnknownWord.h"

#include <QStringList>
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "batch/BatchTexts.h"
#include "batch/CommandTables.h"

namespace {

/// Number of single-character changes between two words.
int distance(const QString& a, const QString& b) {
    std::vector<int> row(static_cast<std::size_t>(b.size()) + 1);
    for (std::size_t j = 0; j < row.size(); ++j) {
        row[j] = static_cast<int>(j);
    }
    for (int i = 0; i < a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < b.size(); ++j) {
            const auto k = static_cast<std::size_t>(j);
            const int changed = diagonal + (a.at(i) == b.at(j) ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({changed, diagonal + 1, row[k] + 1});
        }
    }
    return row.back();
}

/// The known word that is nearest; empty where none is near.
QString nearest(const QString& word) {
    if (word.size() > 60) {
        return QString();
    }
    QStringList known{QStringLiteral(":for"), QStringLiteral(":next"), QStringLiteral(":echo"),
                      QStringLiteral(":rem_start"), QStringLiteral(":rem_end")};
    for (const CommandRow& row : commandTable()) {
        known.append(QString::fromLatin1(row.name));
    }
    QString best;
    int least = 4;
    for (const QString& name : qAsConst(known)) {
        if (std::abs(word.size() - name.size()) >= least) {
            continue;  // they differ by more than that
        }
        const int d = distance(word.toLower(), name.toLower());
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
