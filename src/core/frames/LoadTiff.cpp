#include "frames/LoadTiff.h"

#include "files/FilePlaces.h"
#include "frames/CountFile.h"
#include "frames/FileState.h"
#include "frames/FrameHeader.h"

void LoadTiff::loadHeader(const QString& fname, TiffData* data) const {
    if (data->width == 0 && data->refusal.isEmpty()) {
        const QString place = placeOf(fname);
        const FileState state = m_countsWhenNeeded ? stateOfFile(place) : FileState();
        const FrameHeader header = frameHeader(place);
        data->width = header.width;
        data->height = header.height;
        data->refusal = header.refusal;
        data->remarks = header.remarks;
        if (m_countsWhenNeeded && header.refusal.isEmpty()) {
            data->countFile = countFileOf(fname, state, header);
        }
    }
    data->fileName = fname;
    data->loaded = data->refusal.isEmpty();
}

void LoadTiff::loadTiff(const QString& fname, TiffData* data) {
    if (m_headersOnly || m_countsWhenNeeded) {
        loadHeader(fname, data);
    } else if (!data->load(placeOf(fname)) && data->refusal.isEmpty()) {
        const QString refusal = frameHeader(fname).refusal;
        data->refusal = refusal.isEmpty() ? FrameHeader::tr("cannot be read") : refusal;
    }
    if (!data->fileName.isEmpty()) {
        data->fileName = fname;
    }
    emit loaded(data);
}
