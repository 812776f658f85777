#include "files/FileTarget.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <QFile>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>

namespace {

constexpr int MostLinks = 40;
constexpr int MostTries = 100;
constexpr mode_t AllRights = 07777;
constexpr char AccessList[] = "system.posix_acl_access";

QByteArray absolute(const QByteArray& path) {
    std::array<char, PATH_MAX> here{};
    const bool isAbsolute = path.startsWith('/');
    return isAbsolute || ::getcwd(here.data(), here.size()) == nullptr
               ? path
               : QByteArray(here.data()) + '/' + path;
}

/// The access list of the old file, or none where the folder's own has been inherited.
void takeAccessList(const QByteArray& path, int descriptor) {
    std::array<char, 4096> list{};
    const ssize_t size = ::getxattr(path.constData(), AccessList, list.data(), list.size());
    if (size > 0) {
        ::fsetxattr(descriptor, AccessList, list.data(), static_cast<std::size_t>(size), 0);
    } else if (errno == ENODATA) {
        ::fremovexattr(descriptor, AccessList);
    }
}

/// The permissions that a file of `now` may have in the place of `old`.
mode_t rightsOf(const struct stat& old, const struct stat& now) {
    mode_t mode = old.st_mode & AllRights;
    if (now.st_uid != old.st_uid || now.st_gid != old.st_gid) {
        mode &= ~mode_t(S_ISUID | S_ISGID);
    }
    if (now.st_gid != old.st_gid) {
        mode &= ~mode_t(S_IRWXG) | ((mode & S_IRWXO) << 3);
    }
    return mode;
}

}  // namespace

QByteArray folderOf(const QByteArray& path) {
    return path.left(path.lastIndexOf('/') + 1);
}

QByteArray behindLinks(const QByteArray& path) {
    QByteArray behind = absolute(path);
    std::array<char, PATH_MAX> target{};
    for (int i = 0; i < MostLinks && !behind.contains('\0'); ++i) {
        const ssize_t size = ::readlink(behind.constData(), target.data(), target.size());
        if (size <= 0) {
            break;
        }
        const QByteArray next(target.data(), static_cast<int>(size));
        behind = next.startsWith('/') ? next : folderOf(behind) + next;
    }
    return behind;
}

Standing whatStandsAt(const QByteArray& path, mode_t* mode) {
    if (path.contains('\0')) {
        return Standing::Taken;  // the system would take what is before it for the name
    }
    struct stat old {};
    if (::lstat(path.constData(), &old) != 0) {
        return errno == ENOENT || errno == ENOTDIR ? Standing::Nothing : Standing::Taken;
    }
    if (mode != nullptr) {
        *mode = old.st_mode & AllRights;
    }
    const bool isOurs =
        S_ISREG(old.st_mode) && ::faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS) == 0;
    return isOurs ? Standing::File : Standing::Taken;
}

Target targetAt(const QString& fileName) {
    const QByteArray path = behindLinks(QFile::encodeName(fileName));
    const QByteArray folder = folderOf(path);
    struct stat found {};
    if (::stat(folder.constData(), &found) != 0 || !S_ISDIR(found.st_mode)) {
        return Target::NoFolder;
    }
    if (path == folder || whatStandsAt(path) == Standing::Taken) {
        return Target::Taken;
    }
    return ::faccessat(AT_FDCWD, folder.constData(), W_OK, AT_EACCESS) == 0
               ? Target::Fine
               : Target::FolderNotWritable;
}

bool takeRightsFrom(const QByteArray& path, int descriptor) {
    struct stat old {};
    struct stat now {};
    if (::lstat(path.constData(), &old) != 0) {
        return errno == ENOENT;
    }
    if (::fstat(descriptor, &now) != 0) {
        return false;
    }
    const bool isOthers = now.st_uid != old.st_uid || now.st_gid != old.st_gid;
    // Together, else at least the group, which its members may give.
    if (isOthers) {
        static_cast<void>(::fchown(descriptor, old.st_uid, old.st_gid) == 0 ||
                          ::fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) == 0);
        if (::fstat(descriptor, &now) != 0) {
            return false;
        }
    }
    const mode_t mode = rightsOf(old, now);
    // Not every file system lets them be set, those that it has are fine.
    if ((now.st_mode & AllRights) != mode && ::fchmod(descriptor, mode) != 0) {
        return false;
    }
    if (now.st_gid == old.st_gid) {
        takeAccessList(path, descriptor);
    }
    return true;
}

bool replaceFile(const QByteArray& from, const QByteArray& target) {
    for (int i = 0; i < MostTries; ++i) {
        const Standing standing = whatStandsAt(target);
        if (standing == Standing::Taken) {
            errno = EEXIST;
            return false;
        }
        if (standing == Standing::File) {
            return std::rename(from.constData(), target.constData()) == 0;
        }
        // What has come there since is looked at again.
        if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, target.constData(),
                        RENAME_NOREPLACE) == 0) {
            return true;
        }
        if (errno == EINVAL || errno == ENOSYS) {  // not every file system can
            return std::rename(from.constData(), target.constData()) == 0;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
    return false;
}
