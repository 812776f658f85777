#include "spectra/SpectrumFile.h"

#include <QTextStream>
#include <cmath>

#include "base/DebugLog.h"
#include "base/Limits.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "files/WholeDevice.h"
#include "spectra/Constants.h"
#include "spectra/XafsSpectrum.h"

namespace {

QStringList itemsOf(const QString& line) {
    return line.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

double valueOr0(const Spectrum& series, int i) {
    return i < series.size() ? series.value(i) : 0.0;
}

}  // namespace

bool isFirstLineOf9809(const QString& line) {
    return line.simplified().left(4) == QLatin1String("9809");
}

bool readSpectrumFile(const QString& fileName, XafsSpectrum* spectrum) {
    spectrum->clear();
    InputFile file(placeOf(fileName));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        debugFile("Can not open", fileName);
        spectrum->setNot9809(1);
        spectrum->setValid(false);
        return false;
    }
    readSpectrum(file, spectrum);
    return true;
}

void readSpectrum(QIODevice& file, XafsSpectrum* spectrum) {
    spectrum->clear();
    const bool is9809 = isFirstLineOf9809(QString::fromUtf8(file.readLine(Limits::LongestLine)));
    file.seek(0);
    QTextStream in(&file);
    in.setCodec("UTF-8");
    spectrum->setNot9809(is9809 ? 0 : 1);
    spectrum->setValid(true);
    if (is9809) {
        read9809(in, spectrum);
    } else {
        readPlain(in, spectrum);
    }
}

void readPlain(QTextStream& in, XafsSpectrum* spectrum) {
    while (!in.atEnd()) {
        const QStringList items = itemsOf(in.readLine(Limits::LongestLine));
        if (items.size() >= 2 && !items.first().startsWith(QLatin1Char('#'))) {
            spectrum->append(items.at(0).toDouble(), items.at(1).toDouble());
        }
    }
}

double readHeaderOf9809(QTextStream& in, bool* isWhole) {
    double d = 0.0;
    *isWhole = false;
    while (!in.atEnd() && !*isWhole) {
        const QStringList items = itemsOf(in.readLine(Limits::LongestLine));
        for (int i = 1; i < items.size(); ++i) {
            if (items.at(i - 1) == QLatin1String("D=")) {
                d = items.at(i).toDouble();
            }
        }
        *isWhole = !items.isEmpty() && items.first() == QLatin1String("Offset");
    }
    return d;
}

Row9809 rowOf9809(const QString& line, double d) {
    const QStringList items = itemsOf(line);
    if (items.size() < 5) {
        return {};
    }
    const double angle = items.at(1).toDouble();
    const double i0 = items.at(3).toDouble();
    const double i1 = items.at(4).toDouble();
    const double energy = Hc / (2.0 * d * std::sin(angle * PiTenDigits / 180.0));
    return {true, i0 > 0.0 && i1 > 0.0, {energy, i0 * i1 > 0.0 ? std::log(i0 / i1) : 1.0}};
}

void read9809(QTextStream& in, XafsSpectrum* spectrum) {
    bool isWhole = false;
    const double d = readHeaderOf9809(in, &isWhole);
    while (!in.atEnd()) {
        const Row9809 row = rowOf9809(in.readLine(Limits::LongestLine), d);
        if (row.isPoint) {
            spectrum->append(row.point.x, row.point.y);
        }
    }
}

bool writeSpectrumFile(const QString& fileName, const XafsSpectrum& spectrum, bool corrected) {
    WholeDevice file(fileName);
    return file.open() && writeSpectrum(file, spectrum, corrected) && file.putInPlace();
}

bool writeSpectrum(QIODevice& file, const XafsSpectrum& spectrum, bool corrected) {
    QTextStream out(&file);
    out.setCodec("UTF-8");
    out << "###Tarnwick::XafsSpectrum\n";
    out << "# x  double-normalized-pre-base y pre post\n";
    const Spectrum& normalised = spectrum.doubleNormalizedPreBase();
    for (int i = 0; i < spectrum.size(); ++i) {
        out << (corrected ? spectrum.correctedEnergy(i) : spectrum.energy(i)) << '\t'
            << valueOr0(normalised, i) << '\t' << spectrum.value(i) << '\t'
            << valueOr0(spectrum.preEdge(), i) << '\t' << valueOr0(spectrum.postEdge(), i) << '\n';
    }
    out.flush();
    return out.status() == QTextStream::Ok;
}
