#include "measurement/Reference.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include "measurement/Revision.h"
#include "spectra/SpectrumFile.h"

namespace {

QByteArray digestOf(const QString& fileName) {
    QFile file(fileName);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex()
                                                                 : QByteArray();
}

}  // namespace

FileInput fileInput(const QString& fileName) {
    return {fileName, QFileInfo(fileName).absoluteFilePath(), digestOf(fileName), nextRevision()};
}

bool NormalisedFile::read(const QString& fileName, int background) {
    forget();
    if (!readSpectrumFile(fileName, &spectrum)) {
        return false;
    }
    file = fileInput(fileName);
    spectrum.normalise(background);
    return true;
}

void NormalisedFile::forget() {
    spectrum = XafsSpectrum();
    file = FileInput();
    file.revision = nextRevision();
}

Reference::Reference(int index) : m_revision(nextRevision()) {
    for (int kind = 0; kind < KindCount; ++kind) {
        m_results[indexOf(kind)] = std::make_unique<Result>(static_cast<ResultId>(kind), index);
    }
}

ReferenceInput Reference::input() const {
    return {m_file.file, m_use, takesPart(), m_deltaE, m_background};
}

bool Reference::read(const QString& fileName) {
    const bool read = m_file.read(fileName, m_background);
    applyShift();
    return read;
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
    // Series that already carried the offset would be moved by it a second time in the fit.
    m_file.spectrum.setShiftOn(false);
    m_file.spectrum.normalise(background);
    applyShift();
}

void Reference::applyShift() {
    m_file.spectrum.setShift(m_deltaE);
    m_file.spectrum.setShiftOn(true);
    m_revision = nextRevision();
}
