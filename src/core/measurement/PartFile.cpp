#include "measurement/PartFile.h"

#include <QFile>
#include <algorithm>
#include <cstring>

#include "files/Checksum.h"
#include "files/InputFile.h"
#include "files/WholeFile.h"

namespace {

constexpr char Magic[8] = {'T', 'W', 'P', 'A', 'R', 'T', '\r', '\n'};
constexpr quint32 Version = 1;
constexpr quint32 ByteOrder = 0x01020304;  // as the machine that wrote it puts a number
constexpr int KeySize = 32;

struct Header {
    char magic[sizeof Magic];
    quint32 version;
    quint32 byteOrder;
    char key[KeySize];
    qint32 first;
    qint32 end;
    qint32 columns;
    qint32 valuesPerBin;
};
static_assert(sizeof(Header) == 64, "no gaps");
static_assert(sizeof(RasterPass::Tally) == 16 && sizeof(RasterPass::Saturated) == 8, "no gaps");

Header headerOf(const Part::Form& form) {
    Header header{};
    std::memcpy(header.magic, Magic, sizeof Magic);
    header.version = Version;
    header.byteOrder = ByteOrder;
    std::memcpy(header.key, form.key.constData(),
                static_cast<std::size_t>(std::min(KeySize, form.key.size())));
    header.first = form.rows.first;
    header.end = form.rows.end;
    header.columns = form.columns;
    header.valuesPerBin = form.valuesPerBin;
    return header;
}

template <typename T>
void put(std::vector<char>* bytes, const T* from, std::size_t count) {
    const auto* const first = reinterpret_cast<const char*>(from);
    bytes->insert(bytes->end(), first, first + count * sizeof(T));
}

/// Takes numbers from the front of some bytes.
class Taker {
  public:
    Taker(const char* bytes, std::size_t size) : m_at(bytes), m_left(size) {}

    template <typename T>
    bool take(T* to, std::size_t count) {
        if (count > m_left / sizeof(T)) {
            return false;
        }
        if (count > 0) {
            std::memcpy(to, m_at, count * sizeof(T));
        }
        m_at += count * sizeof(T);
        m_left -= count * sizeof(T);
        return true;
    }
    std::size_t left() const { return m_left; }

  private:
    const char* m_at;
    std::size_t m_left;
};

}  // namespace

void Part::add(const RasterPass::Row& row, const double* values) {
    if (m_values.empty()) {
        m_values.reserve(m_form.valuesPerRow() *
                         static_cast<std::size_t>(m_form.rows.end - m_form.rows.first));
    }
    m_values.insert(m_values.end(), values, values + m_form.valuesPerRow());
    m_tallies.push_back(row.tally);
    m_saturated.push_back(row.saturated);
}

RasterPass::Row Part::row(int row) const {
    const auto at = static_cast<std::size_t>(row - m_form.rows.first);
    return {row, m_values.data() + at * m_form.valuesPerRow(), m_tallies[at], m_saturated[at]};
}

/// All but the values.
std::vector<char> Part::rest() const {
    std::vector<char> bytes;
    put(&bytes, m_tallies.data(), m_tallies.size());
    for (const auto& frames : m_saturated) {
        const auto count = static_cast<quint32>(frames.size());
        put(&bytes, &count, 1);
        put(&bytes, frames.data(), frames.size());
    }
    return bytes;
}

bool Part::takeRest(const std::vector<char>& bytes) {
    const auto rows = static_cast<std::size_t>(m_form.rows.end - m_form.rows.first);
    Taker taker(bytes.data(), bytes.size());
    m_tallies.resize(rows);
    m_saturated.resize(rows);
    if (!taker.take(m_tallies.data(), rows)) {
        return false;
    }
    for (auto& frames : m_saturated) {
        quint32 count = 0;
        if (!taker.take(&count, 1) || count > taker.left() / sizeof(RasterPass::Saturated)) {
            return false;
        }
        frames.resize(count);
        taker.take(frames.data(), count);
    }
    return taker.left() == 0;
}

QString Part::write(const QString& fileName) const {
    WholeFile whole(QFile::encodeName(fileName));
    const Header header = headerOf(m_form);
    const std::vector<char> behind = rest();
    Checksum checksum;
    const auto put = [&](const void* bytes, std::size_t size) {
        checksum.add(bytes, size);
        return whole.write(bytes, size);
    };
    bool ok = whole.isMade() && put(&header, sizeof header) &&
              put(m_values.data(), m_values.size() * sizeof(double)) &&
              put(behind.data(), behind.size());
    const Checksum::Value sum = checksum.value();
    // Not synced: the checksum tells whether it is whole.
    ok = ok && put(sum.data(), sum.size()) && whole.putInPlaceUnsynced();
    return ok ? QString() : whole.whyNot();
}

std::optional<Part> Part::read(const QString& fileName, const Form& form, Fault* fault) {
    InputFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        *fault = file.isMissing() ? Fault::Missing : Fault::Damaged;
        return std::nullopt;
    }
    *fault = Fault::Damaged;
    const Header wanted = headerOf(form);
    Header header{};
    Checksum checksum;
    const auto take = [&](void* to, std::size_t size) {
        const auto bytes = static_cast<qint64>(size);
        const bool ok = file.read(static_cast<char*>(to), bytes) == bytes;
        checksum.add(to, ok ? size : 0);
        return ok;
    };
    if (!take(&header, sizeof header) || std::memcmp(&header, &wanted, sizeof header) != 0) {
        return std::nullopt;
    }
    Part part(form);
    const auto rows = static_cast<std::size_t>(form.rows.end - form.rows.first);
    const std::size_t values = rows * form.valuesPerRow() * sizeof(double);
    Checksum::Value sum;
    const auto size = static_cast<std::size_t>(file.size());
    if (size < sizeof header + values + sum.size()) {
        return std::nullopt;
    }
    part.m_values.resize(rows * form.valuesPerRow());
    std::vector<char> rest(size - sizeof header - values - sum.size());
    if (!take(part.m_values.data(), values) || !take(rest.data(), rest.size())) {
        return std::nullopt;
    }
    const Checksum::Value made = checksum.value();
    if (!take(sum.data(), sum.size()) || sum != made || !part.takeRest(rest)) {
        return std::nullopt;
    }
    *fault = Fault::None;
    return part;
}
