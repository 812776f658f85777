#include "frames/LoadTiff.h"

#include "frames/FrameHeader.h"

void LoadTiff::loadTiff(const QString& fname, TiffData* data) {
    if (!data->load(fname) && data->refusal.isEmpty()) {
        const QString refusal = frameHeader(fname).refusal;
        data->refusal = refusal.isEmpty() ? FrameHeader::tr("cannot be read") : refusal;
    }
    emit loaded(data);
}
