#include "frames/FrameHeader.h"

#include "files/Answer.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "frames/FrameReader.h"

namespace {

FrameHeader headerIn(const QString& fileName) {
    FrameHeader header;
    const QString place = placeOf(fileName);
    InputFile file(place);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        header.refusal = file.isMissing() || file.isNoFile() ? file.whyNot()
                                                             : FrameHeader::tr("cannot be opened");
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

}  // namespace

FrameHeader frameHeader(const QString& fileName) {
    auto header = answerOf(fileName, [fileName] { return headerIn(fileName); });
    if (!header) {
        header.emplace();
        header->refusal = givenUpText();
    }
    return *std::move(header);
}
