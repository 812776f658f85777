#include "output/FlatDark.h"

#include <QString>

#include "base/DebugLog.h"
#include "frames/TiffFile.h"

bool writeFlatDark(int width, int height) {
    const QString flat = QStringLiteral("flat.dat");
    const QString dark = QStringLiteral("dark.dat");
    const auto w = quint32(qMax(0, width));
    const auto h = quint32(qMax(0, height));
    const bool flatWritten = writeOnesTiff(flat, w, h);
    if (flatWritten) {
        debugFile("Saved", flat);
    }
    const bool darkWritten = writeZerosTiff(dark, w, h);
    if (darkWritten) {
        debugFile("Saved", dark);
    }
    return flatWritten && darkWritten;
}
