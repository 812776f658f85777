#include "files/WholeDevice.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <utility>

#include "files/FilePlaces.h"
#include "files/WholeFile.h"

namespace {

constexpr std::size_t BufferBytes = 64 * 1024;

}  // namespace

WholeDevice::WholeDevice(QString fileName) : m_fileName(std::move(fileName)) {}

WholeDevice::~WholeDevice() = default;

bool WholeDevice::open(OpenMode mode) {
    if (isOpen()) {
        return false;
    }
    m_file = std::make_unique<WholeFile>(QFile::encodeName(placeOf(m_fileName)));
    if (!m_file->isMade()) {
        setErrorString(m_file->whyNot());
        m_file.reset();
        return false;
    }
    m_buffer.clear();
    return QIODevice::open((mode & Text) | WriteOnly);
}

void WholeDevice::close() {
    QIODevice::close();
    m_file.reset();
}

qint64 WholeDevice::size() const {
    struct stat found {};
    if (!m_file || ::fstat(m_file->descriptor(), &found) != 0) {
        return 0;
    }
    const auto held = static_cast<qint64>(m_buffer.size());
    return std::max<qint64>(found.st_size,
                            held > 0 ? ::lseek(m_file->descriptor(), 0, SEEK_CUR) + held : 0);
}

bool WholeDevice::seek(qint64 place) {
    return m_file && flush() && ::lseek(m_file->descriptor(), place, SEEK_SET) == place &&
           QIODevice::seek(place);
}

qint64 WholeDevice::readData(char*, qint64) {
    return -1;
}

qint64 WholeDevice::writeData(const char* data, qint64 size) {
    if (m_buffer.size() + static_cast<std::size_t>(size) > BufferBytes && !flush()) {
        return -1;
    }
    if (static_cast<std::size_t>(size) >= BufferBytes) {
        return m_file->write(data, static_cast<std::size_t>(size)) ? size : -1;
    }
    m_buffer.insert(m_buffer.end(), data, data + size);
    return size;
}

bool WholeDevice::flush() {
    const bool isWritten = m_file->write(m_buffer.data(), m_buffer.size());
    m_buffer.clear();
    if (!isWritten) {
        setErrorString(m_file->whyNot());
    }
    return isWritten;
}

bool WholeDevice::putInPlace() {
    const bool isInPlace = m_file && flush() && m_file->putInPlace();
    close();
    return isInPlace;
}

bool WholeDevice::putInPlace(QTextStream& text) {
    text.flush();
    const bool isWhole = text.status() == QTextStream::Ok;
    return isWhole ? putInPlace() : (close(), false);
}
