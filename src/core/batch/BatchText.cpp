#include "batch/BatchText.h"

#include <QBuffer>
#include <QFile>
#include <QTextStream>

#include "base/LargeMemory.h"
#include "base/Limits.h"
#include "batch/LineItems.h"
#include "files/Answer.h"

namespace {

/// False where there is no end, or none in sight, as of a device.
bool readToEnd(QIODevice* device, QByteArray* content) {
    constexpr qint64 Piece = 1 << 16;
    for (QByteArray piece = device->read(Piece); !piece.isEmpty(); piece = device->read(Piece)) {
        if (content->size() + piece.size() > Limits::LargestText) {
            return false;
        }
        content->append(piece);
    }
    return true;
}

}  // namespace

QString readLogicalLine(const QStringList& lines, int* index) {
    QString line = lines.value(*index);
    while (hasContinuation(line) && *index + 1 < lines.size()) {
        ++*index;
        line += lines.at(*index);
    }
    return line;
}

bool readBatchFile(const QString& fileName, QStringList* lines) {
    auto read = answerOf(fileName, [fileName] {
        QFile file(fileName);
        std::optional<QByteArray> content(std::in_place);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text) || !readToEnd(&file, &*content)) {
            content.reset();
        }
        return content;
    });
    if (!read || !*read ||
        !mayTakeMemory(Limits::MemoryOfText * static_cast<quint64>((*read)->size()))) {
        return false;
    }
    QBuffer buffer(&**read);
    buffer.open(QIODevice::ReadOnly);
    *lines = readBatchLines(&buffer);
    return true;
}

QStringList readBatchLines(QIODevice* device) {
    QTextStream in(device);
    in.setCodec("UTF-8");
    QStringList lines;
    QString line;
    while (in.readLineInto(&line)) {
        lines.append(line);
    }
    return lines;
}

BatchText BatchText::fromLines(const QStringList& all) {
    QStringList lines;
    QVector<int> numbers;
    bool continued = false;
    for (int i = 0; i < all.size(); ++i) {
        const QString& line = all.at(i);
        if (line.isEmpty() || (!continued && line.trimmed().isEmpty())) {
            continue;
        }
        QString copy = line;
        continued = hasContinuation(copy);
        lines.append(line);
        numbers.append(i + 1);
    }
    return numbered(lines, numbers);
}

BatchText BatchText::numbered(const QStringList& lines, const QVector<int>& numbers) {
    BatchText text{lines, numbers, {}};
    for (int i = 0; i < text.lines.size(); ++i) {
        const int start = i;
        readLogicalLine(text.lines, &i);
        text.first.insert(text.first.size(), i + 1 - start, start);
    }
    return text;
}

int BatchText::lineNumber(int index) const {
    return index < 0 || index >= first.size() ? 0 : numbers.at(first.at(index));
}
