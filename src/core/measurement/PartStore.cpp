#include "measurement/PartStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSet>
#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

#include "base/AddressSpace.h"
#include "base/Limits.h"
#include "files/InputFile.h"
#include "files/LeftOver.h"
#include "files/WholeFile.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PartStore)
};

QByteArray lineOf(const WorkKey::File& file) {
    QByteArray path = file.path.toUtf8();
    return file.state.toUtf8() + '\t' + path.replace('\n', ' ') + '\n';
}

QByteArray manifestOf(const WorkKey& key) {
    QByteArray text;
    for (const WorkKey::File& file : key.files) {
        text += lineOf(file);
    }
    return text;
}

/// The first file whose state is another than a manifest says.
QString changedSince(const QByteArray& manifest, const WorkKey& key) {
    const QList<QByteArray> lines = manifest.split('\n');
    const QSet<QByteArray> known(lines.begin(), lines.end());
    for (const WorkKey::File& file : key.files) {
        if (!known.contains(lineOf(file).chopped(1))) {
            return file.path;
        }
    }
    return QString();
}

/// Empty, else why not.
QString writeWhole(const QString& fileName, const QByteArray& bytes) {
    WholeFile whole(QFile::encodeName(fileName));
    const bool isWritten = whole.write(bytes.constData(), static_cast<std::size_t>(bytes.size())) &&
                           whole.putInPlace();
    return isWritten ? QString() : whole.whyNot();
}

QString writePart(const Part& part, const QString& fileName, bool isDamaged) {
    if (isDamaged) {
        QFile::remove(fileName);
    } else if (QFile::exists(fileName)) {
        return QString();  // another run has been faster
    }
    return part.write(fileName);
}

}  // namespace

PartStore::PartStore(const Place& place, const WorkKey& key, const PartCut& cut, int columns,
                     int valuesPerBin, std::shared_ptr<WritingFault> fault)
    : m_place(place),
      m_key(key),
      m_cut(cut),
      m_columns(columns),
      m_valuesPerBin(valuesPerBin),
      m_fault(std::move(fault)) {
    InputFile manifest(m_place.manifest);
    if (manifest.open(QIODevice::ReadOnly)) {
        m_changed = changedSince(manifest.read(Limits::LargestText), m_key);
    }
}

PartStore::~PartStore() {
    finishWriting();
}

Part::Form PartStore::form(int part) const {
    return {m_key.rows, {m_cut.first(part), m_cut.end(part)}, m_columns, m_valuesPerBin};
}

QString PartStore::fileOf(int part) const {
    return QStringLiteral("%1/%2.rows").arg(m_place.folder).arg(part, 5, 10, QLatin1Char('0'));
}

bool PartStore::has(int part) const {
    return QFile::exists(fileOf(part)) && m_damaged.count(part) == 0;
}

bool PartStore::isComplete() const {
    for (int part = 0; part < m_cut.parts(); ++part) {
        if (!has(part)) {
            return false;
        }
    }
    return true;
}

void PartStore::begin() {
    removeLeftOver(QFile::encodeName(m_place.folder));
    InputFile file(m_place.manifest);
    const QByteArray text = manifestOf(m_key);
    const bool isThere =
        file.open(QIODevice::ReadOnly) && file.size() == text.size() && file.readAll() == text;
    if (isThere || !m_fault->why.isEmpty()) {
        return;
    }
    m_fault->why = writeWhole(m_place.manifest, text);
}

std::optional<Part> PartStore::read(int part) {
    if (m_damaged.count(part) > 0) {
        return std::nullopt;
    }
    Part::Fault fault = Part::Fault::None;
    std::optional<Part> found;
    try {
        found = Part::read(fileOf(part), form(part), &fault);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    m_taken += found ? 1 : 0;
    if (fault == Part::Fault::Damaged) {
        m_damaged.insert(part);
    }
    return found;
}

void PartStore::giveUp(const QString& why) {
    if (m_fault->why.isEmpty()) {
        m_fault->why = why;
    }
}

quint64 PartStore::bytesInMemory(const PartCut& cut, int columns, int valuesPerBin) {
    int rows = 0;
    for (int part = 0; part < cut.parts(); ++part) {
        rows = std::max(rows, cut.end(part) - cut.first(part));
    }
    return 2 * static_cast<quint64>(rows) * static_cast<quint64>(columns) *
           static_cast<quint64>(valuesPerBin) * sizeof(double);
}

void PartStore::write(Part part) {
    finishWriting();
    ++m_made;
    if (!m_fault->why.isEmpty()) {
        return;
    }
    if (!QDir().mkpath(m_place.folder)) {
        giveUp(qt_error_string());
        return;
    }
    const int number = m_cut.partOf(part.form().rows.first);
    const auto work = [part = std::make_shared<Part>(std::move(part)), file = fileOf(number),
                       isDamaged = m_damaged.count(number) > 0] {
        return writePart(*part, file, isDamaged);
    };
    try {
        m_writing =
            std::async(hasRoomForThread() ? std::launch::async : std::launch::deferred, work);
    } catch (const std::exception&) {
        giveUp(work());  // no thread to be had
    }
}

void PartStore::finishWriting() {
    if (m_writing.valid()) {
        giveUp(m_writing.get());
    }
}

Outcome PartStore::told() const {
    Outcome outcome;
    if (!m_changed.isEmpty()) {
        outcome.notes
            << Texts::tr("changed since parts were kept in %1: %2").arg(m_place.shown, m_changed);
    }
    for (const int part : m_damaged) {
        outcome.notes << Texts::tr("damaged and made again: %1").arg(fileOf(part));
    }
    outcome.notes << Texts::tr("%1 of %2 parts taken from %3")
                         .arg(m_taken)
                         .arg(m_cut.parts())
                         .arg(m_place.shown);
    if (!m_fault->why.isEmpty() && !std::exchange(m_fault->isSaid, true)) {
        outcome.warnings
            << Texts::tr("no parts are kept in %1 any more (%2)").arg(m_place.shown, m_fault->why);
    }
    return outcome;
}
