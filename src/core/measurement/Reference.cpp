#include "measurement/Reference.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFileInfo>
#include <algorithm>

#include "files/Answer.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "measurement/Revision.h"
#include "spectra/UsableRows.h"

namespace {

QByteArray digestOf(const QString& fileName) {
    const auto read = [fileName] {
        InputFile file(placeOf(fileName));
        QCryptographicHash hash(QCryptographicHash::Sha256);
        return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex()
                                                                     : QByteArray();
    };
    return answerOf(fileName, read).value_or(QByteArray());
}

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Reference)
};

/// Takes a file, or what a rehearsal says that it would hold by then.
TakenSpectrum take(const QString& fileName, const Rehearsal* rehearsal) {
    const Rehearsal::Written* written = rehearsal != nullptr ? rehearsal->find(fileName) : nullptr;
    if (written == nullptr) {
        return takeSpectrumFile(fileName);
    }
    TakenSpectrum taken;
    std::vector<double> energies = written->energies;
    energies.erase(std::remove_if(energies.begin(), energies.end(),
                                  [](double energy) { return !(energy > 0.0); }),
                   energies.end());
    if (energies.size() >= FewestUsableEnergies) {
        const Spectrum points = Rehearsal::spectrumOf(energies);
        for (int i = 0; i < points.size(); ++i) {
            taken.spectrum.append(points.energy(i), points.value(i));
        }
    } else {
        taken.whyNot = Texts::tr("no spectrum: %1").arg(fileName);
    }
    return taken;
}

int pointsIn(const XafsSpectrum& spectrum, double start, double end) {
    int count = 0;
    for (int i = 0; i < spectrum.size(); ++i) {
        count += spectrum.energy(i) >= start && spectrum.energy(i) < end;
    }
    return count;
}

}  // namespace

FileInput fileInput(const QString& fileName) {
    return {fileName, QFileInfo(fileName).absoluteFilePath(), digestOf(fileName), nextRevision()};
}

Outcome NormalisedFile::read(const QString& fileName, int background) {
    const TakenSpectrum taken = take(fileName, rehearsal);
    const bool standsIn = rehearsal != nullptr && rehearsal->find(fileName) != nullptr;
    FileInput input;
    QString why = taken.whyNot;
    if (why.isEmpty()) {
        input = fileInput(fileName);
        // It has been there a moment ago.
        why = input.sha256.isEmpty() && !standsIn ? Texts::tr("cannot be read: %1").arg(fileName)
                                                  : QString();
    }
    forget();
    whyNot = why;
    if (!why.isEmpty()) {
        return Outcome::failure(why);
    }
    spectrum = taken.spectrum;
    file = input;
    isStandIn = standsIn;
    warnings = taken.warnings;
    normalise(background);
    Outcome outcome;
    outcome.warnings = warnings;
    const QString fault = edgeFault();
    if (!fault.isEmpty()) {
        outcome.warnings << fault;
    }
    return outcome;
}

void NormalisedFile::normalise(int background) {
    spectrum.setRanges(ranges);
    spectrum.normalise(background);
}

void NormalisedFile::forget() {
    spectrum = XafsSpectrum();
    file = FileInput();
    file.revision = nextRevision();
    isStandIn = false;
    whyNot.clear();
    warnings.clear();
}

QString NormalisedFile::edgeFault() const {
    if (spectrum.isEmpty() || isStandIn || !needsLines) {
        return {};
    }
    return spectrum.midE() == 0.0 ? Texts::tr("no edge: %1").arg(file.name) : lineFault();
}

QString NormalisedFile::lineFault() const {
    if (spectrum.isEmpty() || isStandIn || !needsLines) {
        return {};
    }
    const double e0 = spectrum.findE(0.5, 0);
    const int pre = pointsIn(spectrum, e0 + spectrum.preStart(), e0 + spectrum.preEnd());
    if (pre < BackgroundRanges::FewestPoints) {
        return Texts::tr("pre-edge line on %n point(s): %1", nullptr, pre).arg(file.name);
    }
    const int post = pointsIn(spectrum, e0 + spectrum.postStart(), e0 + spectrum.postEnd());
    return post < BackgroundRanges::FewestPoints
               ? Texts::tr("post-edge line on %n point(s): %1", nullptr, post).arg(file.name)
               : QString();
}

Reference::Reference(int index, const Rehearsal* rehearsal)
    : m_revision(nextRevision()), m_results({ResultFamily::Reference}, index) {
    m_file.rehearsal = rehearsal;
}

ReferenceInput Reference::input() const {
    return {m_file.file, m_use, takesPart(), m_deltaE, m_background};
}

Outcome Reference::read(const QString& fileName) {
    Outcome outcome = m_file.read(fileName, m_background);
    applyShift();
    return outcome;
}

void Reference::forget() {
    m_file.forget();
    applyShift();
}

QStringList Reference::warnings() const {
    QStringList all = m_file.warnings;
    const QString fault = edgeFault();
    return fault.isEmpty() ? all : all << fault;
}

void Reference::setUse(bool use) {
    m_use = use;
    m_revision = nextRevision();
}

void Reference::setDeltaE(double deltaE) {
    m_deltaE = deltaE;
    applyShift();
}

void Reference::setBackground(int background) {
    m_background = background;
    normalise();
}

void Reference::setRanges(const BackgroundRanges& ranges) {
    m_file.ranges = ranges;
    normalise();
}

void Reference::setNeedsLines(bool needsLines) {
    m_file.needsLines = needsLines;
    m_revision = nextRevision();
}

void Reference::normalise() {
    // Series that already carried the offset would be moved by it a second time in the fit.
    m_file.spectrum.setShiftOn(false);
    m_file.normalise(m_background);
    applyShift();
}

void Reference::applyShift() {
    m_file.spectrum.setShift(m_deltaE);
    m_file.spectrum.setShiftOn(true);
    m_revision = nextRevision();
}
