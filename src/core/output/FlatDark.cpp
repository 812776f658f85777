#include "output/FlatDark.h"

#include "files/WholeFile.h"

bool writeFlatDark(const FlatDark& file, int width, int height) {
    const QString name = QLatin1String(file.name);
    return file.write(name, quint32(qMax(0, width)), quint32(qMax(0, height))) && noteSaved(name);
}
