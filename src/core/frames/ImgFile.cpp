#include "frames/ImgFile.h"

#include <QtEndian>
#include <algorithm>

#include "base/DebugLog.h"
#include "base/LargeMemory.h"
#include "base/Limits.h"
#include "files/InputFile.h"
#include "frames/FrameHeader.h"
#include "frames/TiffData.h"

// Of the row in FrameReader.cpp.
QString readImgFrom(QIODevice& in, TiffData* frame);
FrameHeader headerOfImg(const QString& name);

// IMG files: a 64-byte header ("IM", length of the comment in bytes 2 and 3, little-endian), the
// comment, then 16-bit little-endian counts row by row.

namespace {

constexpr int FixedHeader = 64;

QString refusalOfAll() {
    return FrameHeader::tr("an IMG file, whose counts are not read");
}

quint32 firstNumber(const QByteArray& text) {
    const QList<QByteArray> words = text.simplified().split(' ');
    const qlonglong value = words.first().toLongLong();
    return value < 0 || value > 0xFFFFFFFFLL ? 0 : static_cast<quint32>(value);
}

void readItem(const QByteArray& item, TiffData* frame) {
    const QByteArray width("Prop_ImageWidth=");
    const QByteArray height("Prop_ImageHeight=");
    if (item.startsWith(width)) {
        frame->width = firstNumber(item.mid(width.size()));
    } else if (item.startsWith(height)) {
        frame->height = firstNumber(item.mid(height.size()));
    }
}

/// Length of the comment after the fixed header, which begins with these ten bytes.
int commentLength(const char* head) {
    return static_cast<uchar>(head[2]) + 256 * static_cast<uchar>(head[3]);
}

/// The counts from the device's place; width and height are known.
QString readCounts(QIODevice& in, TiffData* frame) {
    const quint64 pixels = static_cast<quint64>(frame->width) * frame->height;
    if (std::max(frame->width, frame->height) > Limits::LongestSide ||
        pixels > quint64(Limits::MostPixels)) {
        return QStringLiteral("Too large an image");
    }
    const quint64 left = static_cast<quint64>(std::max<qint64>(0, in.size() - in.pos()));
    if (pixels == 0 || 2 * pixels > left) {
        return QStringLiteral("Error on reading (2)");
    }
    frame->startCounts();
    frame->makeRows(static_cast<std::size_t>(frame->width) * 2);
    if (frame->rows.size() < frame->height) {
        return lackOfMemory();
    }
    const qint64 rowBytes = static_cast<qint64>(frame->width) * 2;
    for (quint16* row : frame->rows) {
        if (in.read(reinterpret_cast<char*>(row), rowBytes) < rowBytes) {
            frame->clearRows();
            return QStringLiteral("Error on reading (2)");
        }
        qFromLittleEndian<quint16>(row, frame->width, row);
        frame->foldIn(row);
    }
    frame->dropPicture();
    return QString();
}

}  // namespace

QString readImgFrom(QIODevice& in, TiffData* frame) {
    frame->clearRows();
    frame->width = 0;
    frame->height = 0;
    const QByteArray head = in.read(FixedHeader);
    if (head.size() < FixedHeader || !readImgComment(in, commentLength(head.constData()), frame)) {
        return QStringLiteral("Error on reading");
    }
    return readCounts(in, frame);
}

bool readImgComment(QIODevice& in, int length, TiffData* frame) {
    QByteArray item;
    for (int i = 0; i < length; ++i) {
        char c = 0;
        if (!in.getChar(&c)) {
            return false;
        }
        if (c == ',') {
            readItem(item, frame);
            item.clear();
        } else {
            item.append(c);
        }
    }
    return true;
}

int TiffData::readImgHeader(const QString& name) {
    width = 0;
    height = 0;
    InputFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        debugFile("Can not open", name);
        return 0;
    }
    char head[10];
    if (file.read(head, sizeof head) < static_cast<qint64>(sizeof head)) {
        debugFile("Error on reading", name);
        return 0;
    }
    const int length = commentLength(head);
    // The text part is to be read through a second open of the same file, which a file that is
    // still open refuses (isOpen() spares the warning that open() would print): the detector's IMG
    // files are recognised and refused, only TIFF stacks load. Kept until such files can be tried
    // for real.
    if (file.isOpen() || !file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        debugFile("Can not open", name);
        return 0;
    }
    file.seek(FixedHeader);
    if (!readImgComment(file, length, this)) {
        debugFile("Error on reading", name);
        return 0;
    }
    return length + FixedHeader;
}

FrameHeader headerOfImg(const QString& name) {
    TiffData frame;
    FrameHeader header;
    if (frame.readImgHeader(name) < 1) {
        header.refusal = refusalOfAll();
    }
    header.width = frame.width;
    header.height = frame.height;
    return header;
}

bool TiffData::readImg(const QString& name) {
    const int offset = readImgHeader(name);
    if (offset < 1) {
        refusal = refusalOfAll();
        return false;
    }
    clearRows();
    fileName = name;
    InputFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        debugFile("Can not open (2)", name);
        return false;
    }
    file.seek(offset);
    const QString error = readCounts(file, this);
    if (!error.isEmpty()) {
        debugFile(qPrintable(error), name);
    }
    return error.isEmpty();
}
