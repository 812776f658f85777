#include "frames/LoadTiff.h"

#include "files/FilePlaces.h"
#include "files/FileState.h"
#include "frames/CountFile.h"
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
    ++m_underWay;
    const auto tell = [this, data, wanted = m_wanted] {
        if (*wanted) {
            --m_underWay;
            emit loaded(data.get());
        }
    };
    const auto work = [=, wanted = m_wanted, what = m_what, inbox = m_inbox.slit()] {
        if (*wanted) {
            read(fname, data.get(), what);
            inbox.post(tell);
        }
    };
    if (!m_thread->run(work)) {
        m_inbox.post(work);
    }
}

void LoadTiff::drop() {
    constexpr std::chrono::milliseconds ForAFrame{100};
    if (m_underWay == 0) {
        return;
    }
    m_underWay = 0;
    *m_wanted = false;
    m_wanted = std::make_shared<std::atomic<bool>>(true);
    m_thread->end(ForAFrame);
    m_thread = std::make_unique<Worker>();
    m_inbox.post([this] { emit loaded(nullptr); });
}
