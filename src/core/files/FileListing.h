#pragma once

#include <QStringList>

/// The files (no folders) of a directory whose names match one of the patterns (wild cards * and
/// ?), each with the directory's path before it; all files without a pattern. In order of name,
/// runs of digits compared as numbers, so that 9600eV comes before 10000eV; ties in plain order.
/// A directory that does not exist gives an empty list.
QStringList listImageFiles(const QString& directory, const QStringList& patterns);

/// The order of listImageFiles for two names.
bool comesBefore(const QString& a, const QString& b);

/// The files beside the last of @p listed (absolute paths) that have its suffix and are not in the
/// list, in the order of listImageFiles. Those changed within the last second are left out: they
/// may still be being written.
QStringList listNewFiles(const QStringList& listed);
