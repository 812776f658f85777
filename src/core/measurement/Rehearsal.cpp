#include "measurement/Rehearsal.h"

#include <QDir>
#include <QFileInfo>
#include <QRectF>
#include <algorithm>

#include "files/FileListing.h"
#include "files/FileNames.h"
#include "files/FilePlaces.h"
#include "frames/FrameHeader.h"
#include "frames/TiffData.h"
#include "maps/Analyzed2DRes.h"

void Rehearsal::write(const QString& fileName, const Written& file) {
    m_written.insert(identityOf(fileName), file);
}

const Rehearsal::Written* Rehearsal::find(const QString& fileName) const {
    if (m_written.isEmpty()) {
        return nullptr;
    }
    const auto found = m_written.constFind(identityOf(fileName));
    if (found == m_written.constEnd()) {
        return nullptr;
    }
    m_readBack.insert(found.key());
    return &*found;
}

QStringList Rehearsal::list(const QString& folder, const QStringList& patterns) const {
    QStringList files = listImageFiles(folder, patterns);
    const QString path = identityOf(folder);
    for (auto it = m_written.begin(); it != m_written.end(); ++it) {
        const QFileInfo info(it.key());
        const QString name = fileIn(folder, info.fileName());
        if (info.path() != path ||
            !(patterns.isEmpty() || QDir::match(patterns, info.fileName()))) {
            continue;
        }
        m_readBack.insert(it.key());
        if (!files.contains(name)) {
            files << name;
        }
    }
    std::sort(files.begin(), files.end(), comesBefore);
    return files;
}

QString Rehearsal::whyNoFrame(const Written& file) {
    switch (file.kind) {
        case Kind::Frame:
            return QString();
        case Kind::TiffMap:
        case Kind::FloatTiff:
            return FrameHeader::tr("%1-bit float, not 16-bit counts").arg(32);
        default:
            return FrameHeader::tr("neither TIFF nor IMG");
    }
}

void Rehearsal::describe(const QString& fileName, TiffData* frame) const {
    const Written* written = find(fileName);
    if (written != nullptr && written->kind == Kind::Frame) {
        frame->width = static_cast<quint32>(written->size.width());
        frame->height = static_cast<quint32>(written->size.height());
    } else if (written != nullptr) {
        frame->refusal = whyNoFrame(*written);
    }
}

EMapReading Rehearsal::readMap(const Written& file, QSize* imageSize, Analyzed2DRes* map) {
    EMapReading reading;
    reading.ofAnyShape = file.kind == Kind::TiffMap;
    // The header of the other kind has one size.
    const bool isTaken = reading.ofAnyShape || file.size.width() == file.size.height();
    if (file.kind != Kind::Map && file.kind != Kind::TiffMap) {
        reading.refusal = EMapRefusal::NoMap;
    } else if (!isTaken || (imageSize->width() >= 0 && *imageSize != file.size)) {
        reading.refusal = EMapRefusal::OtherSize;
    } else {
        *imageSize = file.size;
        map->startOver(AnalysisGrid::ofArea(file.size.width(), file.size.height(), 0, 0,
                                            QRectF(QPointF(), file.size)));
    }
    return reading;
}

Spectrum Rehearsal::spectrumOf(const std::vector<double>& energies) {
    Spectrum spectrum;
    const double edge = energies.empty() ? 0.0 : energies[energies.size() / 2];
    for (const double energy : energies) {
        spectrum.append(energy, energy < edge ? 0.0 : 1.0);
    }
    return spectrum;
}
