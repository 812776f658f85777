#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

/// The names under which a frame's file is tried: as Latin-1 where that can hold it, then in the
/// system's own encoding, which reaches what the first does not (a folder named in UTF-8).
std::vector<QByteArray> pathsOfFile(const QString& name);
