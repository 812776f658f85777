#include "output/ReadOrigin.h"

#include <algorithm>

#include "base/Limits.h"
#include "files/Answer.h"
#include "files/FilePlaces.h"
#include "files/Hdf5File.h"
#include "files/InputFile.h"
#include "files/PictureFile.h"
#include "files/PictureText.h"
#include "frames/TiffFile.h"
#include "output/NexusFile.h"

namespace {

/// The lines of a table from where its origin begins up to its values, without their "#". A table
/// that ends before its values has lost lines of its origin, so that none of it counts.
QString textInTable(QIODevice& file) {
    QString text;
    qint64 left = Limits::LongestOrigin;
    while (left > 1 && !file.atEnd()) {
        const QByteArray raw = file.readLine(std::min(left, Limits::LongestLine));
        if (!raw.startsWith('#')) {
            return text;
        }
        left -= raw.size();
        const QString line = QString::fromUtf8(raw.mid(raw.startsWith("# ") ? 2 : 1));
        if (!text.isEmpty() || OriginText::beginsIn(line)) {
            text += line;
        }
    }
    return QString();
}

bool isTiff(const QByteArray& start) {
    return start.startsWith("II\x2a") || start.startsWith("II\x2b") ||
           start.startsWith(QByteArray("MM\0\x2a", 4)) ||
           start.startsWith(QByteArray("MM\0\x2b", 4));
}

/// Origin and record of a results file, put together.
QString textInHdf5(const QString& fileName, QString* problem) {
    const QString whyNot = whyNoHdf5();
    if (!whyNot.isEmpty()) {
        *problem = QStringLiteral("not readable: ") + whyNot;
        return QString();
    }
    const auto origin = hdf5Text(fileName, nexusOriginPath(), Limits::LongestOrigin);
    const auto record = hdf5Text(fileName, nexusRecordPath(), Limits::LongestOrigin);
    if (!origin || !record) {
        *problem = QStringLiteral("a damaged HDF5 file");
        return QString();
    }
    return *origin + QLatin1Char('\n') + *record;
}

QString textIn(QIODevice& file, QString* problem) {
    const QByteArray start = file.peek(8);
    if (isHdf5(start)) {
        const auto* const named = qobject_cast<QFileDevice*>(&file);
        return named != nullptr ? textInHdf5(named->fileName(), problem) : QString();
    }
    if (isTiff(start)) {
        return tiffDescription(file);
    }
    if (start == "\x89PNG\r\n\x1a\n") {
        return pngText(file, originChunkKey());
    }
    return start.startsWith('#') ? textInTable(file) : QString();
}

}  // namespace

namespace {

std::optional<OriginText> originIn(const QString& fileName, QString* whyNot) {
    InputFile file(placeOf(fileName));
    QString problem;
    std::optional<OriginText> origin;
    if (file.open(QIODevice::ReadOnly)) {
        return readOrigin(file, whyNot);
    }
    if (!file.isMissing()) {
        problem = file.whyNot();
    } else {
        // A TIFF file may have its name in Latin-1, whatever the system's encoding.
        const QString text = tiffDescription(fileName);
        problem = QStringLiteral("there is no such file");
        origin = text.isEmpty() ? std::nullopt : OriginText::fromText(text, &problem);
    }
    if (!origin) {
        *whyNot = problem;
    }
    return origin;
}

}  // namespace

std::optional<OriginText> readOrigin(const QString& fileName, QString* whyNot) {
    const auto read = answerOf(fileName, [fileName] {
        QString why;
        auto origin = originIn(fileName, &why);
        return std::pair(std::move(origin), why);
    });
    if (whyNot && !(read && read->first)) {
        *whyNot = read ? read->second : givenUpText();
    }
    return read ? read->first : std::nullopt;
}

std::optional<OriginText> readOrigin(QIODevice& in, QString* whyNot) {
    QString problem;
    const QString text = textIn(in, &problem);
    std::optional<OriginText> origin;
    if (problem.isEmpty()) {
        origin = OriginText::fromText(text, &problem);
    }
    if (whyNot && !origin) {
        *whyNot = problem;
    }
    return origin;
}
