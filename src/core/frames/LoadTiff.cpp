#include "frames/LoadTiff.h"

#include "files/FilePlaces.h"
#include "frames/CountFile.h"
#include "frames/FileState.h"
#include "frames/FrameHeader.h"

void LoadTiff::readHeader(const QString& fname, TiffData* data, What what) {
    if (data->width == 0 && data->refusal.isEmpty()) {
        const bool withCounts = what == What::CountFiles;
        const QString place = placeOf(fname);
        const FileState state = withCounts ? stateOfFile(place) : FileState();
        const FrameHeader header = frameHeader(place);
        data->width = header.width;
        data->height = header.height;
        data->refusal = header.refusal;
        data->remarks = header.remarks;
        if (withCounts && header.refusal.isEmpty()) {
            data->countFile = countFileOf(fname, state, header);
        }
    }
    data->fileName = fname;
    data->loaded = data->refusal.isEmpty();
}

void LoadTiff::read(const QString& fname, TiffData* data, What what) {
    if (what != What::Counts) {
        readHeader(fname, data, what);
    } else if (!data->load(placeOf(fname)) && data->refusal.isEmpty()) {
        const QString refusal = frameHeader(fname).refusal;
        data->refusal = refusal.isEmpty() ? FrameHeader::tr("cannot be read") : refusal;
    }
    if (!data->fileName.isEmpty()) {
        data->fileName = fname;
    }
}

void LoadTiff::loadTiff(const QString& fname, TiffData* data) {
    read(fname, data, m_what);
    emit loaded(data);
}

void LoadTiff::load(const QString& fname, const std::shared_ptr<TiffData>& data) {
    const auto tell = [this, data] { emit loaded(data.get()); };
    const bool isThread = m_thread.run([fname, data, tell, what = m_what, inbox = m_inbox.slit()] {
        read(fname, data.get(), what);
        inbox.post(tell);
    });
    if (!isThread) {
        m_inbox.post([this, fname, data] { loadTiff(fname, data.get()); });
    }
}
