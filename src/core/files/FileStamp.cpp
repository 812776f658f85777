#include "files/FileStamp.h"

#include <sys/stat.h>

#include <QFile>

FileStamp fileStamp(const QString& fileName) {
    struct stat found {};
    if (::stat(QFile::encodeName(fileName).constData(), &found) != 0) {
        return {};
    }
    constexpr qint64 Second = 1000000000;  // ns
    return {found.st_size, qint64(found.st_mtim.tv_sec) * Second + found.st_mtim.tv_nsec};
}
