#include "frames/DarkData.h"

#include <QDebug>
#include <QFileInfo>

#include "base/DebugLog.h"
#include "frames/FrameHeader.h"

DarkData::DarkData() {
    connect(&m_reader, &LoadTiff::loaded, this, &DarkData::arrived);
}

void DarkData::readHeadersOnly(const Describe& describe) {
    m_describe = describe;
    m_reader.readHeadersOnly();
}

void DarkData::readCountsWhenNeeded() {
    m_reader.readCountsWhenNeeded();
}

void DarkData::setImageSize(int width, int height) {
    if (width == m_imageWidth && height == m_imageHeight) {
        return;
    }
    m_imageWidth = width;
    m_imageHeight = height;
    const int unused = loaded() - fitting();
    if (unused > 0 && !m_saidUnused) {
        m_saidUnused = true;
        qDebug().noquote() << "Dark frames of another size than the images, not used :" << unused;
    }
    if (loaded() > 0 && !isLoading()) {
        changeMean();
    }
}

void DarkData::replace(const QStringList& files) {
    m_loader.clear();
    m_reader.drop();
    m_refused.clear();
    m_saidUnused = false;
    m_loader.enqueue(files);
    loadNext();
    emit progressed();
}

void DarkData::clear() {
    m_loader.clear();
    m_reader.drop();
    m_refused.clear();
    m_saidUnused = false;
    changeMean();
}

int DarkData::fitting() const {
    int count = 0;
    for (int i = 0; i < loaded(); ++i) {
        count += isRefused(*m_loader.frames().at(i)) ? 0 : 1;
    }
    return count;
}

QStringList DarkData::files() const {
    QStringList names;
    for (int i = 0; i < loaded(); ++i) {
        if (!isRefused(*m_loader.frames().at(i))) {
            names << QFileInfo(m_loader.frames().at(i)->fileName).absoluteFilePath();
        }
    }
    return names;
}

QVector<FileStamp> DarkData::fileStamps() const {
    QVector<FileStamp> stamps;
    for (int i = 0; i < loaded(); ++i) {
        if (!isRefused(*m_loader.frames().at(i))) {
            stamps << m_loader.frames().at(i)->stamp;
        }
    }
    return stamps;
}

QStringList DarkData::remarks() const {
    QStringList texts;
    for (int i = 0; i < loaded(); ++i) {
        const TiffData& frame = *m_loader.frames().at(i);
        for (const QString& remark : frame.remarks) {
            texts << QStringLiteral("%1: %2").arg(frame.fileName, remark);
        }
    }
    return texts;
}

const DarkFrame* DarkData::mean() {
    if (m_meanIsStale) {
        m_mean = DarkFrame(m_loader.frames(), m_imageWidth, m_imageHeight);
        m_meanIsStale = false;
    }
    // While other frames are being read, the mean may still be that of images before these.
    const bool fits = m_mean.width() == m_imageWidth && m_mean.height() == m_imageHeight;
    return m_mean.frameCount() > 0 && fits ? &m_mean : nullptr;
}

void DarkData::loadNext() {
    if (const auto request = m_loader.next()) {
        if (m_describe) {
            m_describe(request->fileName, request->frame.get());
        }
        emit load(request->fileName, request->frame.get());
        m_reader.load(request->fileName, request->frame);
    } else if (!m_loader.isLoading()) {
        changeMean();
    }
}

void DarkData::arrived(TiffData* data) {
    std::shared_ptr<TiffData> frame = m_loader.arrived(data);
    if (frame && isRefused(*frame)) {
        m_refused.append({frame->fileName, FrameHeader::tr("%1 x %2 pixels, the images %3 x %4")
                                               .arg(frame->width)
                                               .arg(frame->height)
                                               .arg(m_imageWidth)
                                               .arg(m_imageHeight)});
        debugFile("Dark frame of another size than the images", frame->fileName);
    } else if (frame) {
        m_loader.frames().append(std::move(frame));
    }
    m_refused += m_loader.takeRefused();
    loadNext();
    emit progressed();
}

bool DarkData::isRefused(const TiffData& frame) const {
    return m_imageWidth > 0 && m_imageHeight > 0 &&
           !DarkFrame::fits(frame, m_imageWidth, m_imageHeight);
}

void DarkData::changeMean() {
    m_meanIsStale = true;
    emit changed();
}
