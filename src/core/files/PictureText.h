#pragma once

#include <QString>

class QIODevice;

/// The text chunk of a key in a PNG file that is open for reading; empty where there is none, or
/// where the file is damaged before it. No pixel is read, and never more than the chunk itself and
/// a few bytes of each chunk before it.
QString pngText(QIODevice& file, const QString& key);
