#include "frames/FrameHeader.h"

#include <QFileInfo>

#include "files/FilePlaces.h"
#include "frames/FrameReader.h"

FrameHeader frameHeader(const QString& fileName) {
    FrameHeader header;
    const QString place = placeOf(fileName);
    const QFileInfo info(place);
    if (info.exists() && !info.isFile()) {
        header.refusal = FrameHeader::tr("a folder or a device, not a file");
        return header;
    }
    QFile file(place);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        header.refusal =
            file.exists() ? FrameHeader::tr("cannot be opened") : FrameHeader::tr("no such file");
        return header;
    }
    const QByteArray mark = file.read(FrameMagicBytes);
    file.close();
    if (const FrameReader* const reader = frameReaderOf(mark)) {
        return reader->header(place);
    }
    header.refusal =
        mark.isEmpty() ? FrameHeader::tr("an empty file") : FrameHeader::tr("neither TIFF nor IMG");
    return header;
}
