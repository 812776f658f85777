#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QString>

// What stands where a file is to be written. Only a regular file that the user may write is ever
// replaced: no device, pipe, socket or folder. Paths are those of the file system.

/// Whether a file could be put under a name, as far as can be told without writing it.
enum class Target { Fine, NoFolder, FolderNotWritable, Taken };
Target targetAt(const QString& fileName);

/// What stands under a path that is no link.
enum class Standing { Nothing, File, Taken };
/// @param mode takes the permissions of a file
Standing whatStandsAt(const QByteArray& path, mode_t* mode = nullptr);

/// The absolute path that a link points to, also when nothing is there yet; other paths made
/// absolute. Of links in a circle one of them.
QByteArray behindLinks(const QByteArray& path);

/// With the slash at its end.
QByteArray folderOf(const QByteArray& path);

/// Gives an open file the permissions of the one that it is to replace, with its access list; its
/// owner and group as far as the user may. Where the group cannot stay, its members get no more
/// than everybody. False where the permissions cannot be set; nothing to do where `path` is not
/// there.
bool takeRightsFrom(const QByteArray& path, int descriptor);

/// Renames a finished file to its target, in the place of the old file if there is one, or fails
/// with errno.
bool replaceFile(const QByteArray& from, const QByteArray& target);
