#include "measurement/Stack.h"

#include <QDebug>
#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "files/FilePlaces.h"
#include "frames/EnergyFromName.h"
#include "measurement/FrameJudgement.h"
#include "measurement/Rehearsal.h"
#include "measurement/Revision.h"

namespace {

QSize sizeOf(const TiffData& frame) {
    return QSize(static_cast<int>(frame.width), static_cast<int>(frame.height));
}

bool hasEnergy(const QString& fileName, const NamePattern& names) {
    return numberFromName(fileName, expressionOf(names.pattern)).has_value();
}

}  // namespace

double frameEnergy(const QString& fileName, const NamePattern& names, int before) {
    QString matched;
    const std::optional<double> found =
        numberFromName(fileName, expressionOf(names.pattern), &matched);
    if (found) {
        qDebug().noquote() << "match captured" << matched;
    }
    const double number = found.value_or(before - 1);
    const double energy = number * names.factor();
    qDebug().noquote() << "energy from file name" << fileName << ":" << energy;
    return energy;
}

Stack::Stack(StackId id) : m_id(id), m_revision(nextRevision()) {
    connect(&m_reader, &LoadTiff::loaded, this, &Stack::loaded);
}

void Stack::rehearse(const Rehearsal* rehearsal) {
    m_rehearsal = rehearsal;
    m_reader.readHeadersOnly();
}

QString Stack::name() const {
    return m_id == StackId::I1 ? QStringLiteral("I1") : QStringLiteral("I0");
}

bool Stack::isInFiles() const {
    return size() > 0 && frames().at(0)->isInFile();
}

void Stack::clear() {
    emit changing();
    m_loader.clear();
    m_reader.drop();
    m_files.clear();
    m_leftOut.clear();
    m_before = 0;
    m_energies = false;
    m_revision = nextRevision();
    emit changed();
}

void Stack::read(const QStringList& files) {
    if (!isLoading()) {
        m_before = size();
        m_asked = false;
        m_energies = std::any_of(m_files.begin(), m_files.end(),
                                 [](const File& file) { return !file.isNumbered; });
    }
    m_asked = m_asked || !files.isEmpty();
    m_loadNames = m_names;
    m_loader.enqueue(withEnergies(files));
    emit progressed();
    loadNext();
}

/// Decided before the first is read: a file without an energy among others that have one would
/// stand at an energy of its own making.
QStringList Stack::withEnergies(const QStringList& files) {
    // Of a file that is not there the reader says more.
    const auto isThere = [this](const QString& file) {
        return QFileInfo::exists(placeOf(file)) ||
               (m_rehearsal != nullptr && m_rehearsal->find(file) != nullptr);
    };
    const auto isNamed = [this](const QString& file) { return hasEnergy(file, m_loadNames); };
    m_energies = m_energies || std::any_of(files.begin(), files.end(), isNamed);
    if (!m_energies) {
        return files;
    }
    QStringList named;
    for (const QString& file : files) {
        if (isNamed(file) || !isThere(file)) {
            named << file;
        } else {
            leaveOut(file, tr("no energy in its name, while others have one"));
        }
    }
    return named;
}

void Stack::leaveOut(const QString& fileName, const QString& why) {
    m_leftOut << QStringLiteral("%1: %2").arg(fileName, why);
}

QSize Stack::imageSize() const {
    const TiffData* first = frames().at(0);
    return first == nullptr ? QSize(-1, -1) : sizeOf(*first);
}

Outcome Stack::takeOutcome() {
    for (const StackLoader::Refused& file : m_loader.takeRefused()) {
        leaveOut(file.fileName, file.why);
    }
    m_refused = m_leftOut.size();
    Outcome outcome;
    if (size() == m_before && m_asked) {
        outcome.failures << tr("%1: no frame was taken").arg(name());
    }
    outcome.failures += std::exchange(m_leftOut, {});
    outcome.warnings = warningsOf(*this, m_before);
    return outcome;
}

void Stack::stop() {
    m_loader.stop();
    m_reader.drop();
}

bool Stack::request() {
    bool requested = false;
    while (const auto next = m_loader.next()) {
        requested = true;
        if (m_rehearsal != nullptr) {
            m_rehearsal->describe(next->fileName, next->frame.get());
        }
        emit load(next->fileName, next->frame.get());
        m_reader.load(next->fileName, next->frame);
    }
    return requested;
}

void Stack::loadNext() {
    if (!request() && !isLoading()) {
        emit finished();
    }
}

void Stack::loaded(TiffData* data) {
    std::shared_ptr<TiffData> frame = m_loader.arrived(data);
    request();  // the reader goes on while this frame is taken in and shown
    const QSize wanted = imageSize();
    const QSize size = frame ? sizeOf(*frame) : wanted;
    if (frame && !wanted.isEmpty() && size != wanted) {
        leaveOut(frame->fileName, tr("%1 x %2 pixels, the first frame %3 x %4")
                                      .arg(size.width())
                                      .arg(size.height())
                                      .arg(wanted.width())
                                      .arg(wanted.height()));
    } else if (frame) {
        emit changing();
        frame->energy = frameEnergy(frame->fileName, m_loadNames, frames().size());
        m_files.append({QFileInfo(frame->fileName).absoluteFilePath(), frame->energy, m_loadNames,
                        !hasEnergy(frame->fileName, m_loadNames), frame->stamp});
        frames().append(std::move(frame));
        m_revision = nextRevision();
        emit changed();
    }
    emit progressed();
    loadNext();
}
