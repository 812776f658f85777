#include "files/FileState.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <tuple>

#include "files/SystemPaths.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(FileState)
};

FileState stateFrom(const struct stat& found, const QByteArray& path) {
    return {path,
            static_cast<quint64>(found.st_dev),
            static_cast<quint64>(found.st_ino),
            static_cast<qint64>(found.st_size),
            static_cast<qint64>(found.st_mtim.tv_sec),
            static_cast<qint64>(found.st_mtim.tv_nsec)};
}

}  // namespace

bool FileState::operator==(const FileState& other) const {
    const auto all = [](const FileState& s) {
        return std::tie(s.device, s.number, s.size, s.seconds, s.nanoseconds);
    };
    return all(*this) == all(other);
}

FileState stateOfFile(const QString& name) {
    FileState state;
    for (const QByteArray& path : pathsOfFile(name)) {
        state.path = path;
        state = stateNow(state);
        if (state.size >= 0) {
            break;
        }
    }
    return state;
}

FileState stateNow(const FileState& before) {
    struct stat found {};
    FileState none;
    none.path = before.path;
    return ::stat(before.path.constData(), &found) == 0 ? stateFrom(found, before.path) : none;
}

FileState stateOf(int descriptor, const QByteArray& path) {
    struct stat found {};
    FileState none;
    none.path = path;
    return ::fstat(descriptor, &found) == 0 ? stateFrom(found, path) : none;
}

QString changeOf(const QString& name, const FileState& before, const FileState& now) {
    if (now == before) {
        return QString();
    }
    return now.size < 0 ? Texts::tr("%1: has gone since it was loaded").arg(name)
                        : Texts::tr("%1: has changed since it was loaded").arg(name);
}
