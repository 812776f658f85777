#include "measurement/WorkFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "files/InputFile.h"
#include "files/WholeFile.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(WorkFolder)
};

constexpr char FormatFile[] = "/tarnwick-work-folder";
constexpr int Format = 1;
constexpr int Digits = 32;  // of a digest, in a name

/// A small file that is not kept, and where `keep` names one, that, too. Empty, else why not.
QString tryToWrite(const QString& folder, const QString& keep) {
    const QString name = keep.isEmpty() ? folder + QStringLiteral("/probe") : keep;
    WholeFile whole(QFile::encodeName(name));
    const QByteArray text = QByteArray::number(Format) + '\n';
    const bool isWritten = whole.isMade() &&
                           whole.write(text.constData(), static_cast<std::size_t>(text.size())) &&
                           (keep.isEmpty() || whole.putInPlace());
    return isWritten ? QString() : whole.whyNot();
}

}  // namespace

Outcome WorkFolder::judgeFormat() const {
    InputFile file(m_path + QLatin1String(FormatFile));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    bool isNumber = false;
    const int format = file.read(Digits).trimmed().toInt(&isNumber);
    if (!isNumber) {
        return Outcome::failure(
            Texts::tr("the work folder does not tell its format: %1").arg(file.fileName()));
    }
    return format == Format
               ? Outcome()
               : Outcome::failure(
                     Texts::tr("the work folder is of another version of the program (format %2, "
                               "not %3): %1")
                         .arg(m_path, QString::number(format), QString::number(Format)));
}

Outcome WorkFolder::open(const QString& path) {
    m_path = QFileInfo(path).absoluteFilePath();
    const QFileInfo there(m_path);
    if (there.exists() && !there.isDir()) {
        return Outcome::failure(Texts::tr("the work folder is a file: %1").arg(m_path));
    }
    if (!QDir().mkpath(m_path)) {
        return Outcome::failure(
            Texts::tr("the work folder cannot be made: %1 (%2)").arg(m_path, qt_error_string()));
    }
    const Outcome judged = judgeFormat();
    if (judged.failed()) {
        return judged;
    }
    const QString format = m_path + QLatin1String(FormatFile);
    const QString why = tryToWrite(m_path, QFile::exists(format) ? QString() : format);
    return why.isEmpty()
               ? Outcome()
               : Outcome::failure(
                     Texts::tr("the work folder cannot be written to: %1 (%2)").arg(m_path, why));
}

std::shared_ptr<PartStore> WorkFolder::parts(const WorkKey& key, const PartCut& cut, int columns,
                                             int valuesPerBin) {
    const auto name = [&](const QByteArray& digest) {
        return QStringLiteral("%1/%2-%3")
            .arg(m_path, key.kind, QString::fromLatin1(digest.toHex().left(Digits)));
    };
    PartStore::Place place;
    place.folder = name(key.rows);
    place.manifest = QStringLiteral("%1-%2.inputs").arg(name(key.job)).arg(m_asked[key.job]++);
    place.shown = m_path;
    return std::make_shared<PartStore>(place, key, cut, columns, valuesPerBin, m_fault);
}
