#include "files/FileStamp.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "files/Checksum.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "files/SystemPaths.h"

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
    const std::vector<QByteArray> paths = pathsOfFile(place);
    struct stat found {};
    const bool isThere = std::any_of(paths.begin(), paths.end(), [&](const QByteArray& path) {
        return ::stat(path.constData(), &found) == 0;
    });
    if (!isThere) {
        return {};
    }
    if (isPlaced(fileName)) {
        return {found.st_size, checksumOf(place)};
    }
    constexpr qint64 Second = 1000000000;  // ns
    return {found.st_size, qint64(found.st_mtim.tv_sec) * Second + found.st_mtim.tv_nsec};
}
