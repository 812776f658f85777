#include "frames/DecodedCounts.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <new>

#include "base/LargeMemory.h"
#include "base/Memory.h"
#include "files/InputFile.h"
#include "frames/FrameReader.h"
#include "frames/SpillFile.h"
#include "frames/TiffData.h"

namespace {

/// The memory of all decoded frames: an eighth of the limit is for what is kept, as much for the
/// decoding itself, but always for that of one frame.
class Share {
  public:
    bool keep(quint64 bytes) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_kept + bytes > most()) {
            return false;
        }
        m_kept += bytes;
        promise();
        return true;
    }
    void giveBack(quint64 bytes) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_kept -= bytes;
        promise();
    }
    /// Waits until there is memory to work in.
    void begin(quint64 bytes) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_ended.wait(lock, [&] { return m_working == 0 || m_working + bytes <= most(); });
        m_working += bytes;
    }
    void end(quint64 bytes) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_working -= bytes;
        m_ended.notify_all();
    }
    void expect(quint64 bytes, quint64 work) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_expected += bytes;
        m_greatest = std::max(m_greatest, work);
        promise();
    }
    void expectNoMore(quint64 bytes) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_expected -= bytes;
        m_greatest = m_expected == 0 ? 0 : m_greatest;
        promise();
    }
    quint64 toCome() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return coming();
    }

  private:
    static quint64 most() { return memoryLimit() / 8; }
    quint64 coming() const {
        return m_expected == 0 ? 0
                               : std::min(m_expected, most() - std::min(most(), m_kept)) +
                                     std::max(m_greatest, std::min(most(), m_expected));
    }
    /// So that nobody else plans with it.
    void promise() { m_promise.change(coming()); }

    mutable std::mutex m_mutex;
    std::condition_variable m_ended;
    quint64 m_kept = 0;
    quint64 m_working = 0;
    quint64 m_expected = 0;  // of frames that are not decoded yet
    quint64 m_greatest = 0;  // of the work on one of them
    PromisedMemory m_promise;
};

Share& share() {
    static Share all;
    return all;
}

/// Memory to decode in, for as long as this lives.
class Room {
  public:
    explicit Room(quint64 bytes) : m_bytes(bytes) { share().begin(bytes); }
    ~Room() { share().end(m_bytes); }
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

  private:
    quint64 m_bytes;
};

/// The file as it is read, and its counts.
quint64 workOn(const FileState& file, quint64 bytes) {
    return bytes + static_cast<quint64>(std::max<qint64>(0, file.size));
}

}  // namespace

quint64 memoryToDecode() {
    return share().toCome();
}

DecodedCounts::DecodedCounts(const QString& name, const FileState& state, const FrameHeader& header)
    : m_name(name), m_state(state), m_width(header.width), m_height(header.height) {
    share().expect(bytes(), workOn(m_state, bytes()));
}

DecodedCounts::~DecodedCounts() {
    if (!m_isDecoded) {
        share().expectNoMore(bytes());
    } else if (m_counts) {
        share().giveBack(bytes());
    } else {
        SpillFile::ofProcess().giveBack(m_offset, bytes());
    }
}

/// From an open file that is not mapped into memory: one that is cut meanwhile ends early.
QString DecodedCounts::decodeInto(TiffData* frame) const {
    InputFile file;
    if (!file.openAt({m_state.path}, QIODevice::ReadOnly)) {
        const QString changed = change();
        return changed.isEmpty()
                   ? FrameHeader::tr("%1: cannot be read: %2").arg(m_name, file.whyNot())
                   : changed;
    }
    const auto changed = [&] {
        return changeOf(m_name, m_state, stateOf(file.handle(), m_state.path));
    };
    if (const QString before = changed(); !before.isEmpty()) {
        return before;
    }
    const QString error = readFrame(file, frame);
    if (const QString since = changed(); !since.isEmpty()) {
        return since;
    }
    const QString why = error.isEmpty() ? frame->refusal : error;
    if (!why.isEmpty()) {
        return QStringLiteral("%1: %2").arg(m_name, why);
    }
    const bool isSame =
        frame->width == m_width && frame->height == m_height && frame->rows.size() == m_height;
    return isSame ? QString() : FrameHeader::tr("%1: has changed since it was loaded").arg(m_name);
}

QString DecodedCounts::decode() {
    const Room room(workOn(m_state, bytes()));
    TiffData frame;
    const QString error = decodeInto(&frame);
    return error.isEmpty() ? keep(frame) : error;
}

QString DecodedCounts::keep(const TiffData& frame) {
    if (share().keep(bytes())) {
        // Memory of its own: that of the frame is part of a greater piece.
        if (mayTakeMemory(bytes())) {
            m_counts.reset(new (std::nothrow) quint16[std::size_t(m_width) * m_height]);
        }
        quint16* to = m_counts.get();
        for (std::size_t y = 0; to != nullptr && y < m_height; ++y, to += m_width) {
            std::copy_n(frame.rows[y], m_width, to);
        }
        if (!m_counts) {
            share().giveBack(bytes());
        }
    }
    const QString error = m_counts ? QString() : spill(frame);
    if (error.isEmpty()) {
        m_isDecoded = true;
        share().expectNoMore(bytes());
    }
    return error;
}

QString DecodedCounts::spill(const TiffData& frame) {
    SpillFile& file = SpillFile::ofProcess();
    QString error = file.take(bytes(), &m_offset);
    if (!error.isEmpty()) {
        return QStringLiteral("%1: %2").arg(m_name, error);
    }
    const quint64 rowBytes = quint64(m_width) * sizeof(quint16);
    for (quint64 y = 0; error.isEmpty() && y < m_height; ++y) {
        error = file.write(m_offset + y * rowBytes, frame.rows[std::size_t(y)], rowBytes);
    }
    if (!error.isEmpty()) {
        file.giveBack(m_offset, bytes());
        return QStringLiteral("%1: %2").arg(m_name, error);
    }
    return QString();
}

QString DecodedCounts::read(quint32 first, quint32 rows, quint16* to) {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const QString error = m_isDecoded ? QString() : decode();
        if (!error.isEmpty()) {
            return error;
        }
    }
    const quint64 begin = quint64(first) * m_width;
    const quint64 counts = quint64(rows) * m_width;
    if (quint64(first) + rows > m_height) {
        return FrameHeader::tr("%1: cannot be read: %2").arg(m_name, qt_error_string(EINVAL));
    }
    if (m_counts) {
        std::copy_n(m_counts.get() + begin, counts, to);
        return QString();
    }
    const QString error = SpillFile::ofProcess().read(m_offset + begin * sizeof(quint16), to,
                                                      counts * sizeof(quint16));
    return error.isEmpty() ? error : QStringLiteral("%1: %2").arg(m_name, error);
}

QString DecodedCounts::change() const {
    return changeOf(m_name, m_state, stateNow(m_state));
}
