#include "Phantom.h"

#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <vector>

#include "frames/TiffFile.h"

namespace {

constexpr double FirstEnergy = 7000.0;
constexpr double LastEnergy = 7300.0;
constexpr double Beam = 60000.0;

double energyOf(int i, int count) {
    return FirstEnergy + (LastEnergy - FirstEnergy) * i / (count - 1);
}

/// 0 up to e0 - 6, 1 from e0 + 6 on, in between a cosine ramp with a hump of the given height.
double step(double e, double e0, double hump) {
    const double t = std::clamp((e - e0 + 6.0) / 12.0, 0.0, 1.0);
    const double pi = std::acos(-1.0);
    return 0.5 * (1.0 - std::cos(pi * t)) + hump * std::sin(pi * t) * std::sin(pi * t);
}

double background(double e) {
    return 0.3 - 2e-4 * (e - FirstEnergy);
}

}  // namespace

double Phantom::muA(double e) {
    return background(e) + 0.8 * step(e, 7110.0, 0.10);
}
double Phantom::muB(double e) {
    return background(e) + 0.8 * step(e, 7113.0, 0.45);
}

Phantom::Phantom(const Options& options) {
    m_valid = m_dir.isValid();
    writeStacks(options);
    writeReference(QStringLiteral("a.dat"), muA);
    writeReference(QStringLiteral("b.dat"), muB);
}

void Phantom::writeStacks(const Options& options) {
    const std::size_t pixels =
        static_cast<std::size_t>(options.width) * static_cast<std::size_t>(options.height);
    std::vector<quint16> frame(pixels);
    const auto write = [&](const QString& stem, double e) {
        const QString name = stem + QString::number(e, 'f', 3).replace('.', '_') + "eV.tif";
        m_valid = m_valid && writeTiff(file(name), static_cast<quint32>(options.width),
                                       options.height, frame.data());
    };
    for (int i = 0; i < options.i0Energies; ++i) {
        for (std::size_t p = 0; p < pixels; ++p) {
            const int x = static_cast<int>(p) % options.width;
            const int y = static_cast<int>(p) / options.width;
            frame[p] = static_cast<quint16>(Beam + (options.dark ? options.dark(x, y) : 0));
        }
        write(QStringLiteral("i0-"), energyOf(i, options.i0Energies));
    }
    for (int i = 0; i < options.energies; ++i) {
        const double e = energyOf(i, options.energies);
        std::size_t pixel = 0;
        for (int y = 0; y < options.height; ++y) {
            for (int x = 0; x < options.width; ++x) {
                const double shifted = options.energyShift ? e - options.energyShift(x, y) : e;
                const double a = options.fractionOfA(x, y);
                const double mu = a * muA(shifted) + (1.0 - a) * muB(shifted);
                frame[pixel++] = static_cast<quint16>(std::lround(Beam * std::exp(-mu)) +
                                                      (options.dark ? options.dark(x, y) : 0));
            }
        }
        write(QStringLiteral("i1-"), e);
    }
}

QStringList Phantom::writeDarkFrames(int width, int height,
                                     const std::function<int(int x, int y)>& dark) const {
    QStringList files;
    std::vector<quint16> frame;
    for (const int offset : {-30, 10, 20}) {
        frame.clear();
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                frame.push_back(static_cast<quint16>(dark(x, y) + offset));
            }
        }
        files << file(QStringLiteral("dark%1-%2.tif").arg(width).arg(offset));
        if (!writeTiff(files.last(), static_cast<quint32>(width), height, frame.data())) {
            return {};
        }
    }
    return files;
}

void Phantom::writeReference(const QString& name, double (*mu)(double)) {
    QFile out(file(name));
    m_valid = m_valid && out.open(QIODevice::WriteOnly | QIODevice::Text);
    QTextStream text(&out);
    text.setRealNumberPrecision(12);
    text << "# energy mu\n";
    for (double e = FirstEnergy - 20.0; e <= LastEnergy + 20.0; e += 0.5) {
        text << e << ' ' << mu(e) << '\n';
    }
}

QStringList Phantom::loadAndSetReferences() const {
    return {"load_I1_files_of_pattern NEW " + dir() + " i1-*.tif",
            "load_I0_files_of_pattern NEW " + dir() + " i0-*.tif",
            "set_band_w 0",
            "set_band_h 0",
            "analyzer_set_LCF_std 0 1 0.0 " + file("a.dat") + " 0",
            "analyzer_set_LCF_std 1 1 0.0 " + file("b.dat") + " 0"};
}
