#include "frames/FrameReader.h"

#include <QIODevice>
#include <new>

#include "base/LargeMemory.h"
#include "frames/TiffData.h"

// The reader of each format, in a file of its own.
QString readTiffFrom(QIODevice& in, TiffData* frame);
QString readImgFrom(QIODevice& in, TiffData* frame);
FrameHeader headerOfTiff(const QString& name);
FrameHeader headerOfImg(const QString& name);

const std::vector<FrameReader>& frameReaders() {
    static const std::vector<FrameReader> rows = {
        {"Tiff", {"II", "MM"}, {"tif", "tiff"}, readTiffFrom, headerOfTiff, &TiffData::readTiff},
        {"IMG", {"IM"}, {"img"}, readImgFrom, headerOfImg, &TiffData::readImg},
    };
    return rows;
}

const FrameReader* frameReaderOf(const QByteArray& head) {
    for (const FrameReader& reader : frameReaders()) {
        for (const QByteArray& magic : reader.magics) {
            if (head.startsWith(magic)) {
                return &reader;
            }
        }
    }
    return nullptr;
}

QString readFrame(QIODevice& in, TiffData* frame) {
    frame->loaded = false;
    if (in.isSequential() || !in.seek(0)) {
        return QStringLiteral("Error on reading");
    }
    const FrameReader* const reader = frameReaderOf(in.peek(FrameMagicBytes));
    if (reader == nullptr) {
        return QStringLiteral("Not an image of a known format");
    }
    QString error;
    try {
        error = reader->read(in, frame);
    } catch (const std::bad_alloc&) {
        frame->clearRows();
        frame->dropPicture();
        error = lackOfMemory();
    }
    frame->loaded = error.isEmpty();
    return error;
}

QStringList frameNameFilters(const QString& text) {
    QStringList filters;
    for (const FrameReader& reader : frameReaders()) {
        filters += text.arg(reader.name, "*." + reader.suffixes.join(QStringLiteral(" *.")));
    }
    return filters;
}
