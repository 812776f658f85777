#include "measurement/Share.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <cstdio>
#include <utility>

#include "files/FilePlaces.h"
#include "files/FilesTogether.h"
#include "files/InputFile.h"
#include "files/WholeFile.h"

namespace {

/// Of a name and the bytes behind it; empty when they cannot be read.
QByteArray digestOf(const QString& identity, const QString& place) {
    InputFile file(place);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(identity.toUtf8() + '\0');
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex()
                                                                 : QByteArray();
}

/// The same time in whatever run the file was written: who looks whether it has changed meanwhile
/// goes by that.
bool setKeptTime(const QString& place) {
    QFile file(place);
    return file.open(QIODevice::ReadWrite) &&
           file.setFileTime(QDateTime::fromSecsSinceEpoch(0, Qt::UTC),
                            QFileDevice::FileModificationTime);
}

/// Puts a file in its place for good. Another share may have put the same there at this moment and
/// read it by now: a link does not take its place as a renaming would.
/// @param isThere whether what stands in its place is this
bool settle(const QByteArray& part, const QByteArray& place, const std::function<bool()>& isThere) {
    return ::link(part.constData(), place.constData()) == 0 || isThere() ||
           std::rename(part.constData(), place.constData()) == 0;
}

}  // namespace

Share::Share(int number, int of, QString folder, QSet<QString> readBack)
    : m_number(number), m_of(of), m_folder(std::move(folder)), m_readBack(std::move(readBack)) {}

Share::Parts Share::partsOf(int count) const {
    const auto border = [&](int number) {
        return static_cast<int>(static_cast<long long>(count) * number / m_of);
    };
    return {border(m_number - 1), border(m_number)};
}

bool Share::keeps(const QString& fileName) const {
    return m_readBack.contains(identityOf(fileName));
}

bool Share::keep(const QString& fileName, const std::function<bool()>& writer) {
    const QString identity = identityOf(fileName);
    const QString before = isPlaced(identity) ? placeOf(identity) : QString();
    const QByteArray stem =
        QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha256).toHex();
    QDir().mkpath(m_folder);
    const WholeFile fresh(QFile::encodeName(QDir(m_folder).filePath(QString::fromLatin1(stem))));
    const QString written = QFile::decodeName(fresh.part());
    m_kept.put(identity, written);
    FilesTogether now;  // not with the others of a line: what it holds gives the name
    const bool isWritten = fresh.isMade() && writer() && now.finish();
    const QByteArray digest = isWritten ? digestOf(identity, written) : QByteArray();
    const QString place = QDir(m_folder).filePath(QString::fromLatin1(digest));
    // One that is there already may be read at this moment.
    const bool isKept =
        !digest.isEmpty() && setKeptTime(written) &&
        (digestOf(identity, place) == digest || settle(fresh.part(), QFile::encodeName(place), [&] {
             return digestOf(identity, place) == digest;
         }));
    m_kept.put(identity, isKept ? place : before);
    return isKept;
}

void Share::endPass(int made, bool ownsAny) {
    m_made = made;
    m_end = made > 0 || !ownsAny ? End::Made : End::Waits;
}
