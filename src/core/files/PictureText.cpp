#include "files/PictureText.h"

#include <QBuffer>
#include <QImage>
#include <QtEndian>

#include "base/Limits.h"

namespace {

constexpr int SignatureBytes = 8;
constexpr int FrameBytes = 12;  // length, kind and check sum around the data of a chunk
constexpr int HeadBytes = SignatureBytes + FrameBytes + 13;  // up to the end of the first chunk

/// What Qt reads in a picture of one pixel with that chunk: it takes text from whole pictures only,
/// and libpng keeps what is packed into it from growing without end.
QString textOf(const QByteArray& chunk, const QString& key) {
    QImage pixel(1, 1, QImage::Format_Grayscale8);
    pixel.fill(0);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    pixel.save(&buffer, "PNG");
    png.insert(HeadBytes, chunk);
    return QImage::fromData(png, "PNG").text(key);
}

bool isText(const QByteArray& kind) {
    return kind == "tEXt" || kind == "zTXt" || kind == "iTXt";
}

}  // namespace

QString pngText(QIODevice& file, const QString& key) {
    const QByteArray keyAndEnd = key.toLatin1() + '\0';
    qint64 place = HeadBytes;
    for (int i = 0; i < Limits::MostChunks && file.seek(place); ++i) {
        const QByteArray head = file.peek(8 + keyAndEnd.size());
        const QByteArray kind = head.mid(4, 4);
        if (kind.size() < 4 || kind == "IEND") {
            break;
        }
        const qint64 bytes = qFromBigEndian<quint32>(head.constData()) + qint64(FrameBytes);
        if (isText(kind) && head.mid(8) == keyAndEnd && bytes <= Limits::LongestOrigin) {
            const QByteArray chunk = file.read(bytes);
            return chunk.size() == bytes ? textOf(chunk, key) : QString();
        }
        place += bytes;
    }
    return QString();
}
