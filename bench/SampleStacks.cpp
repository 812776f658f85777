#include "SampleStacks.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "frames/TiffFile.h"

namespace {

constexpr double Beam = 40000.0;

/// mu-t of a species: 0 where the edge begins, a white line of its own height.
double muT(double e, double whiteLine) {
    const double t = 1.0 / (1.0 + std::exp((7112.0 - e) / 2.0));
    return 0.4 - 2e-4 * (e - 7000.0) + 0.8 * (t + whiteLine * t * (1.0 - t));
}

}  // namespace

SampleStacks::SampleStacks(int width, int height, int frames)
    : m_width(width), m_height(height), m_frames(frames) {
    std::mt19937 random(1);
    std::vector<quint16> frame(static_cast<std::size_t>(pixels()));
    const auto write = [&](const QString& name, QStringList* names) {
        if (!writeTiff(name, static_cast<quint32>(width), height, frame.data())) {
            qFatal("can not write the sample stacks");
        }
        *names << name;
    };
    for (int i = 0; i < frames; ++i) {
        const QString name = QString::number(energy(i), 'f', 4).replace('.', '_') + "eV.tif";
        const double a = muT(energy(i), 2.0);
        const double b = muT(energy(i), 0.5);
        std::size_t p = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double share = static_cast<double>(x) / width;
                const double i1 = Beam * std::exp(-share * a - (1.0 - share) * b);
                frame[p++] = static_cast<quint16>(i1 + static_cast<double>(random() % 200));
            }
        }
        write(m_dir.filePath("i1-" + name), &m_i1);
        for (quint16& count : frame) {
            count = static_cast<quint16>(Beam + static_cast<double>(random() % 200));
        }
        write(m_dir.filePath("i0-" + name), &m_i0);
    }
    writeReferences();
}

void SampleStacks::writeReferences() const {
    for (int i = 0; i < 2; ++i) {
        QFile file(reference(i));
        file.open(QIODevice::WriteOnly | QIODevice::Text);
        QTextStream out(&file);
        for (double e = 6990.0; e <= 7310.0; e += 0.5) {
            out << e << ' ' << muT(e, i == 0 ? 2.0 : 0.5) << '\n';
        }
    }
}

FrameSet SampleStacks::load(const QStringList& files) const {
    FrameSet set;
    for (const QString& file : files) {
        auto frame = std::make_unique<TiffData>();
        frame->load(file);
        frame->energy = energy(set.size());
        set.append(std::move(frame));
    }
    return set;
}

qint64 residentBytes() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').value(0).toLongLong() * 1024;
        }
    }
    return 0;
}
