#include <QBuffer>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "Fuzz.h"
#include "spectra/SpectrumFile.h"
#include "spectra/UsableRows.h"

// Files of one spectrum, as they are read for a calculation (every line a point) and as references
// are taken (usable rows alone), and our own file of one.

namespace {

/// Whether both readers see the same numbers in a text: no decimal commas, no exponents with D.
bool isPlain(const QByteArray& input) {
    return std::all_of(input.begin(), input.end(), [](char sign) {
        return std::strchr("0123456789.+-eE #\t\n", sign) != nullptr && sign != '\0';
    });
}

void judgeTaken(const TakenSpectrum& taken) {
    const XafsSpectrum& spectrum = taken.spectrum;
    const auto size = static_cast<std::size_t>(spectrum.size());
    require(taken.whyNot.isEmpty() ? size >= FewestUsableEnergies : size == 0,
            "taken with at least five points, or none and a reason");
    for (int i = 0; i < spectrum.size(); ++i) {
        require(spectrum.energy(i) > 0.0 && std::isfinite(spectrum.energy(i)), "an energy");
        require(std::isfinite(spectrum.value(i)), "a value");
        require(i == 0 || spectrum.energy(i - 1) < spectrum.energy(i), "in order of energy");
    }
    require(taken.warnings.size() <= 1, "one warning");
}

/// A file whose rows are all usable and ascend gives the same bits both ways.
void compare(const XafsSpectrum& read, const XafsSpectrum& taken) {
    if (read.not9809() == 0 || read.size() != taken.size()) {
        return;
    }
    for (int i = 1; i < read.size(); ++i) {
        if (!(read.energy(i - 1) < read.energy(i))) {
            return;
        }
    }
    for (int i = 0; i < read.size(); ++i) {
        require(read.energy(i) == taken.energy(i) && read.value(i) == taken.value(i), "same bits");
    }
}

bool isClose(double written, double back) {
    return !std::isfinite(written) || std::abs(written - back) <= 1e-5 * std::abs(written);
}

void writeAndRead(XafsSpectrum* spectrum) {
    spectrum->normalise(XafsSpectrum::Victreen, XafsSpectrum::Quiet);
    QBuffer file;
    file.open(QIODevice::ReadWrite | QIODevice::Text);
    require(writeSpectrum(file, *spectrum, false), "written");
    file.seek(0);
    XafsSpectrum back;
    readSpectrum(file, &back);
    require(back.size() == spectrum->size(), "as many points as were written");
    for (int i = 0; i < back.size(); ++i) {
        require(isClose(spectrum->energy(i), back.energy(i)), "the energies that were written");
    }
}

}  // namespace

void fuzz(const QByteArray& input) {
    QBuffer file;
    file.setData(input);
    file.open(QIODevice::ReadOnly | QIODevice::Text);
    XafsSpectrum read;
    readSpectrum(file, &read);
    file.close();
    file.open(QIODevice::ReadOnly);
    const TakenSpectrum taken = takeSpectrum(file, QStringLiteral("name"));
    judgeTaken(taken);
    if (taken.warnings.isEmpty() && isPlain(input)) {
        compare(read, taken.spectrum);
    }
    writeAndRead(&read);
    require(logLines() == 0, "no line in the log");
}
