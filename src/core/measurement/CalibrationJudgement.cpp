#include "measurement/CalibrationJudgement.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "calibration/EnergyMapTiff.h"
#include "calibration/EnergyShift.h"
#include "maps/Analyzed2DRes.h"
#include "spectra/XafsSpectrum.h"

namespace {

class Calibration {
    Q_DECLARE_TR_FUNCTIONS(Calibration)
};

constexpr double MostUsualShift = 40.0;  // eV
constexpr double MostWithoutEdge = 0.3;

QString inEv(double energy) {
    return QString::number(energy, 'f', 2);
}

}  // namespace

Outcome judgeStandard(const XafsSpectrum* standard, const QVector<Stack::File>& frames) {
    if (standard == nullptr || standard->isEmpty()) {
        return Outcome::warning(
            Calibration::tr("no standard: the map holds edge energies, not shifts"));
    }
    if (!hasCalibrationEdge(*standard)) {
        return Outcome::warning(Calibration::tr("the standard has no rising edge to compare with"));
    }
    const auto [low, high] = std::minmax_element(
        frames.begin(), frames.end(),
        [](const Stack::File& a, const Stack::File& b) { return a.energy < b.energy; });
    const double edge = calibrationEdge(standard);
    if (low == frames.end() || (edge >= low->energy && edge <= high->energy)) {
        return {};
    }
    return Outcome::warning(
        Calibration::tr("the standard's edge at %1 eV lies outside the frames' energies, "
                        "%2 to %3 eV")
            .arg(inEv(edge), inEv(low->energy), inEv(high->energy)));
}

void ShiftCount::add(double shift) {
    ++m_all;
    if (shift == m_edges.none - m_edges.standard || !std::isfinite(shift)) {
        return;
    }
    ++m_withEdge;
    m_farOff += std::abs(shift) > MostUsualShift ? 1 : 0;
    m_lowest = std::min(m_lowest, shift);
    m_highest = std::max(m_highest, shift);
    m_sum += shift;
}

QString ShiftCount::summary() const {
    const QString without =
        Calibration::tr("%1 of %2 bins without an edge").arg(m_all - m_withEdge).arg(m_all);
    if (m_withEdge == 0) {
        return without;
    }
    const QString range = m_edges.standard != 0.0
                              ? Calibration::tr("Energy shifts from %1 to %2 eV, mean %3 eV; %4")
                              : Calibration::tr("Edge energies from %1 to %2 eV, mean %3 eV; %4");
    return range.arg(inEv(m_lowest), inEv(m_highest), inEv(m_sum / static_cast<double>(m_withEdge)),
                     without);
}

Outcome ShiftCount::judgement() const {
    Outcome outcome = Outcome::note(summary());
    const qint64 without = m_all - m_withEdge;
    if (static_cast<double>(without) > MostWithoutEdge * static_cast<double>(m_all)) {
        outcome.warnings << Calibration::tr("%1 of %2 bins have no edge").arg(without).arg(m_all);
    }
    if (m_edges.standard != 0.0 && 2 * m_farOff > m_withEdge) {
        outcome.warnings
            << Calibration::tr("most shifts are above %1 eV: the standard may be another element's")
                   .arg(MostUsualShift);
    }
    return outcome;
}

namespace {

QString whyRefused(const EMapReading& reading, const QSize& images) {
    switch (reading.refusal) {
        case EMapRefusal::NoFile:
            return Calibration::tr("cannot be read: %1");
        case EMapRefusal::NoMap:
            return Calibration::tr("not an energy map: %1");
        case EMapRefusal::OtherSize:
            if (!reading.ofAnyShape && images.width() != images.height()) {
                return Calibration::tr("only maps of square images load from .emp: %1");
            }
            return Calibration::tr("not of the images' size: %1");
        case EMapRefusal::EdgeEnergy:
            return Calibration::tr("spacing or edge energy missing or absurd: %1");
        case EMapRefusal::Shift:
            return Calibration::tr("holds a shift that is no number or above 1000 eV: %1");
        case EMapRefusal::None:
            break;
    }
    return QString();
}

}  // namespace

Outcome judgeMapFile(const EMapReading& reading, const QString& fileName, const QSize& size) {
    if (reading.refusal != EMapRefusal::None) {
        const QString text = whyRefused(reading, size).arg(fileName);
        return Outcome::failure(
            reading.why.isEmpty() ? text : text + QStringLiteral(" (%1)").arg(reading.why));
    }
    Outcome outcome =
        Outcome::note(Calibration::tr("Loaded %1").arg(QFileInfo(fileName).fileName()));
    const qint64 pixels = qint64(size.width()) * size.height();
    if (reading.missing > 0) {
        outcome.warnings << Calibration::tr("%1 of %2 values are missing and count as no shift: %3")
                                .arg(reading.missing)
                                .arg(pixels)
                                .arg(fileName);
    }
    if (reading.noNumbers > 0) {
        outcome.warnings << Calibration::tr("%1 values are no numbers and count as no shift: %2")
                                .arg(reading.noNumbers)
                                .arg(fileName);
    }
    if (reading.goesOn) {
        outcome.warnings
            << Calibration::tr("more values than the %1 of the map: %2").arg(pixels).arg(fileName);
    }
    return outcome;
}

Outcome judgeMapToSave(const Analyzed2DRes& map, const EMapInfo& info) {
    if (info.imageSize.isEmpty()) {
        return Outcome::failure(Calibration::tr("no images are loaded"));
    }
    switch (refusalOf(map, info)) {
        case EMapRefusal::EdgeEnergy:
            return Outcome::failure(Calibration::tr(
                "no program could load the map: no standard and no edge energy that the crystal "
                "reflects"));
        case EMapRefusal::Shift:
            return Outcome::failure(Calibration::tr(
                "no program could load the map: it holds shifts above 1000 eV, or beyond what the "
                "crystal reflects"));
        default:
            break;
    }
    return info.imageSize.width() == info.imageSize.height()
               ? Outcome()
               : Outcome::warning(
                     Calibration::tr("only maps of square images load from .emp; a float TIFF "
                                     "takes any shape"));
}

Outcome judgeTiffMapToSave(const Analyzed2DRes& map) {
    if (!map.hasData()) {
        return Outcome::failure(Calibration::tr("there is no energy map"));
    }
    return refusalOfTiff(map) == EMapRefusal::None
               ? Outcome()
               : Outcome::failure(Calibration::tr(
                     "no program could load the map: it holds shifts above 1000 eV"));
}
