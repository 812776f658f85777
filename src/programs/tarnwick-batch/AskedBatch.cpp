#include "tarnwick-batch/AskedBatch.h"

#include <QFileInfo>
#include <algorithm>

#include "batch/BatchText.h"
#include "batch/CommandTables.h"
#include "batch/LineCheck.h"
#include "batch/StartLine.h"

AskedBatch AskedBatch::read(const RunnerOptions& options) {
    AskedBatch batch;
    const QString file =
        options.file == QLatin1String("-") ? QStringLiteral("/dev/stdin") : options.file;
    batch.file = QFileInfo(file).absoluteFilePath();
    if (!readBatchFile(file, &batch.lines)) {
        batch.problem = QStringLiteral("cannot open ") + options.file;
        return batch;
    }
    const QStringList unused = replaceNamed(options.texts, &batch.lines);
    if (!unused.isEmpty()) {
        batch.problem = QStringLiteral("--set: no %%1% in %2")
                            .arg(unused.join(QStringLiteral("% and no %")), options.file);
    } else if (options.from > 0) {
        const auto start = startIndex(BatchText::fromLines(batch.lines), options.from);
        batch.start = start.value_or(0);
        batch.problem = start ? QString()
                              : QStringLiteral("--from: no command from line %1 of %2 on")
                                    .arg(QString::number(options.from), options.file);
    }
    return batch;
}

bool AskedBatch::drawsLetters() const {
    const QVector<CheckedLine> logical = logicalLines(BatchText::fromLines(lines));
    return std::any_of(logical.begin(), logical.end(), [](const CheckedLine& line) {
        const CommandRow* row = commandRow(line.command);
        return row != nullptr && row->drawsLetters && !line.inRemark;
    });
}
