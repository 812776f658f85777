#pragma once

#include <QString>
#include <QStringList>

/// A name as somebody typed it, so that it means the same file to Qt as to the system: a colon at
/// its beginning would name what is built into the program. Other names stay as they are.
QString typedFileName(const QString& name);

/// The path of a file or folder of this name, which has no folder of its own, in @p folder.
QString fileIn(const QString& folder, const QString& name);

/// The name of one file out of several that are saved together: directory of @p base (made
/// absolute), its complete base name, "-", @p tag, "." and its suffix. "/d/res.png" with tag "1-0"
/// gives "/d/res-1-0.png"; a base without a suffix gives a name that ends in ".".
QString taggedName(const QString& base, const QString& tag);

/// @p base (made absolute) with @p defaultSuffix, given without its dot, if it has no suffix of its
/// own; otherwise its own suffix stays.
QString withSuffix(const QString& base, const QString& defaultSuffix);

/// The deepest folder that holds all of the files, absolute and cleaned; empty without a file, or
/// where they have none in common.
QString deepestFolder(const QStringList& files);

/// The name of @p file seen from @p folder, with "../" where it lies outside and '/' between the
/// parts; opened in that folder it is that file.
QString relativeTo(const QString& folder, const QString& file);
