#include "files/FileStamp.h"

#include <cstring>

#include "files/Checksum.h"
#include "files/FilePlaces.h"
#include "files/FileState.h"
#include "files/InputFile.h"

namespace {

qint64 checksumOf(const QString& place) {
    constexpr qint64 Piece = 1 << 20;
    Checksum checksum;
    InputFile file(place);
    file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    for (QByteArray bytes = file.read(Piece); !bytes.isEmpty(); bytes = file.read(Piece)) {
        checksum.add(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    const Checksum::Value sum = checksum.value();
    qint64 first = 0;
    std::memcpy(&first, sum.data(), sizeof first);
    return first;
}

}  // namespace

FileStamp fileStamp(const QString& fileName) {
    const QString place = placeOf(fileName);
    const FileState state = stateOfFile(place);
    if (state.size < 0) {
        return {};
    }
    if (isPlaced(fileName)) {
        return {state.size, checksumOf(place)};
    }
    constexpr qint64 Second = 1000000000;  // ns
    return {state.size, state.seconds * Second + state.nanoseconds};
}
