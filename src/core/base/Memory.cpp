#include "base/Memory.h"

#include <unistd.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <QByteArray>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>

#include "base/AddressSpace.h"

namespace {

constexpr quint64 Unit = 1024;
constexpr char Units[] = "KMGT";
constexpr quint64 Unknown = std::numeric_limits<quint64>::max();

std::atomic<quint64> chosenLimit{0};
std::atomic<quint64> promised{0};

QByteArray contentOf(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A cgroup's limit; the greatest number where there is none ("max", or no such file).
quint64 limitIn(const QString& name) {
    bool isNumber = false;
    const quint64 bytes = contentOf(name).trimmed().toULongLong(&isNumber);
    return isNumber && bytes > 0 ? bytes : std::numeric_limits<quint64>::max();
}

/// The least limit of a group and of all that it lies in.
quint64 limitAlong(const QString& root, QString group, const QString& file) {
    quint64 least = limitIn(root + QLatin1Char('/') + file);
    while (group.size() > 1) {
        least = std::min(least, limitIn(root + group + QLatin1Char('/') + file));
        group.truncate(group.lastIndexOf(QLatin1Char('/')));
    }
    return least;
}

quint64 cgroupLimit() {
    quint64 least = std::numeric_limits<quint64>::max();
    for (const QByteArray& line : contentOf(QStringLiteral("/proc/self/cgroup")).split('\n')) {
        const QList<QByteArray> parts = line.split(':');  // number:controllers:group
        if (parts.size() < 3) {
            continue;
        }
        const QString group = QString::fromLocal8Bit(line).section(QLatin1Char(':'), 2);
        if (parts[1].isEmpty()) {
            least = std::min(least, limitAlong(QStringLiteral("/sys/fs/cgroup"), group,
                                               QStringLiteral("memory.max")));
        } else if (parts[1].split(',').contains("memory")) {
            least = std::min(least, limitAlong(QStringLiteral("/sys/fs/cgroup/memory"), group,
                                               QStringLiteral("memory.limit_in_bytes")));
        }
    }
    return least;
}

quint64 machineMemory() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long bytes = sysconf(_SC_PAGESIZE);
    return pages > 0 && bytes > 0 ? static_cast<quint64>(pages) * static_cast<quint64>(bytes)
                                  : quint64(1) << 32;
}

/// "MemAvailable:    1234 kB"
quint64 machineAvailable() {
    for (const QByteArray& line : contentOf(QStringLiteral("/proc/meminfo")).split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() > 1 && words[0] == "MemAvailable:") {
            return words[1].toULongLong() * Unit;
        }
    }
    return Unknown;
}

quint64 difference(quint64 all, quint64 taken) {
    return all > taken ? all - taken : 0;
}

quint64 addressSpaceForArrays() {
    const quint64 left = addressSpaceLeft();
    return left == Unknown ? Unknown : difference(left, HeadRoom);
}

}  // namespace

quint64 availableMemory() {
    const quint64 chosen = chosenLimit;
    const quint64 limit = std::min(cgroupLimit(), chosen > 0 ? chosen : Unknown);
    // A cgroup is taken for the program's own.
    return std::min({machineAvailable(), addressSpaceForArrays(),
                     limit == Unknown ? Unknown : difference(limit, residentMemory())});
}

quint64 defaultMemoryLimit() {
    return std::min(machineMemory(), cgroupLimit()) / 2;
}

quint64 memoryLimit() {
    const quint64 chosen = chosenLimit;
    if (chosen > 0) {
        return chosen;
    }
    static const quint64 limit = defaultMemoryLimit();
    return limit;
}

void setMemoryLimit(quint64 bytes) {
    chosenLimit = bytes;
}

quint64 residentMemory() {
    const QList<QByteArray> pages = contentOf(QStringLiteral("/proc/self/statm")).split(' ');
    const long bytes = sysconf(_SC_PAGESIZE);
    return pages.size() > 1 && bytes > 0 ? pages[1].toULongLong() * static_cast<quint64>(bytes) : 0;
}

quint64 memoryLeft() {
    // What is promised has its addresses already.
    return std::min(addressSpaceForArrays(),
                    difference(memoryLimit(), residentMemory() + promised));
}

void PromisedMemory::change(quint64 bytes) {
    promised += bytes - m_bytes;
    m_bytes = bytes;
}

void keepNoFreeMemory() {
#ifdef __GLIBC__
    constexpr int Large = 1 << 20;                             // bytes
    const int parts = addressSpaceLimit() == Unknown ? 2 : 1;  // each reserves 64 MB of addresses
    mallopt(M_MMAP_THRESHOLD, Large);
    mallopt(M_TRIM_THRESHOLD, Large);
    mallopt(M_ARENA_MAX, parts);
#endif
}

void giveBackFreeMemory() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

std::optional<quint64> sizeFromText(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral("^([0-9]{1,15}(?:\\.[0-9]{1,9})?)\\s*(?:([KMGT])(?:i?B)?|B)?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    double bytes = match.captured(1).toDouble();
    const QString unit = match.captured(2).toUpper();
    if (!unit.isEmpty()) {
        bytes *= std::pow(Unit, QLatin1String(Units).indexOf(unit) + 1);
    }
    constexpr double Most = 9e18;
    return bytes >= 1.0 && bytes <= Most ? std::optional(static_cast<quint64>(bytes))
                                         : std::nullopt;
}

QString sizeText(quint64 bytes) {
    double value = static_cast<double>(bytes);
    int unit = -1;
    while (value >= 1000.0 && unit < 3) {
        value /= static_cast<double>(Unit);
        ++unit;
    }
    const QString number = QString::number(value, 'f', unit >= 0 && value < 10.0 ? 1 : 0);
    return unit < 0 ? QStringLiteral("%1 bytes").arg(number)
                    : QStringLiteral("%1 %2B").arg(number, QString(QLatin1Char(Units[unit])));
}
