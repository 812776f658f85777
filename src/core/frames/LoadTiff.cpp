#include "frames/LoadTiff.h"

void LoadTiff::loadTiff(const QString& fname, TiffData* data) {
    data->load(fname);
    emit loaded(data);
}
