#include "measurement/Measurement.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

#include "absorption/AbsorptionSource.h"
#include "absorption/CountBand.h"
#include "base/Globals.h"
#include "calibration/EnergyMapTiff.h"
#include "calibration/EnergyShift.h"
#include "measurement/CalibrationJudgement.h"
#include "measurement/Revision.h"
#include "spectra/Units.h"

Measurement::Measurement()
    : m_map(std::make_unique<Result>(ResultId::Shift)),
      m_results({ResultFamily::Fit, ResultFamily::Residual, ResultFamily::Difference}),
      m_threads(static_cast<int>(std::thread::hardware_concurrency())),
      m_job([this](const KeptPass::Row& row, const BinRaster& raster) { takeRow(row, raster); }) {
    connectStack(m_i1);
    connectStack(m_i0);
    connect(&m_dark, &DarkData::changed, this, [this] {
        m_frameImages.stop();
        m_darkRevision = nextRevision();
        m_darkIsNew = true;
        inputsChanged(Dark);
        if (m_loadsDark && !m_dark.isLoading()) {
            m_loadsDark = false;
            Outcome outcome;
            for (const StackLoader::Refused& file : m_dark.refusals()) {
                outcome.failures << QStringLiteral("%1: %2").arg(file.fileName, file.why);
            }
            outcome.warnings = m_dark.remarks();
            tellLoaded(Work::LoadDark, outcome);
        }
    });
    connect(&m_dark, &DarkData::progressed, this, [this] {
        emit changed(AtWork);
        const int done = m_dark.filesDone();
        emit progressed(Work::LoadDark, done, done + m_dark.filesLeft());
    });
    connect(&m_job, &RowJob::progressed, this, &Measurement::rowsTaken);
    connect(&m_job, &RowJob::finished, this, &Measurement::passEnded);
    connect(&m_mapJob, &MapJob::finished, this, &Measurement::mapProcessed);
    connect(&m_mapJob, &MapJob::progressed, this, [this](double done) {
        m_mapWork->percent = 100.0 * done;
        emit progressed(Work::Deglitch, m_mapWork->percent, 100.0);
    });
    applyScales();
}

Measurement::~Measurement() {
    m_job.stop();
    m_mapJob.stop();
    m_frameImages.stop();
    for (QObject* part : {static_cast<QObject*>(&m_i1), static_cast<QObject*>(&m_i0),
                          static_cast<QObject*>(&m_dark)}) {
        part->disconnect(this);
    }
}

void Measurement::rehearse() {
    m_rehearsal = std::make_unique<Rehearsal>();
    m_standard.rehearsal = rehearsal();
    m_i1.rehearse(rehearsal());
    m_i0.rehearse(rehearsal());
    m_dark.readHeadersOnly([this](const QString& fileName, TiffData* frame) {
        m_rehearsal->describe(fileName, frame);
    });
}

void Measurement::readCountsWhenNeeded() {
    m_countsInMemory = false;
    m_i1.readCountsWhenNeeded();
    m_i0.readCountsWhenNeeded();
    m_dark.readCountsWhenNeeded();
}

void Measurement::inputsChanged(Changes what) {
    m_sample.reset();
    emit changed(what | Position);
}

void Measurement::setNames(StackId id, const NamePattern& names) {
    NamePattern& present = m_settings.names[static_cast<int>(id)];
    if (!(present == names)) {
        present = names;
        emit changed(Setting);
    }
}

void Measurement::settingChanged(const Settings& before) {
    Changes what = Setting;
    const Settings& now = m_settings;
    if (!(before.area == now.area) || before.halfWidth != now.halfWidth ||
        before.halfHeight != now.halfHeight || before.targetBackground != now.targetBackground) {
        m_sample.reset();
        what |= Position;
    }
    if (before.standardBackground != now.standardBackground && m_hasStandard) {
        m_standard.normalise(now.standardBackground);
        what |= Standard;
    }
    followSampleRule(before, &what);
    if (before.fixedScale != now.fixedScale || before.dMutMin != now.dMutMin ||
        before.dMutMax != now.dMutMax || before.ratioMin != now.ratioMin ||
        before.ratioMax != now.ratioMax) {
        applyScales();
        what |= Changes(Results) | Display;
    }
    if (before.mask != now.mask) {
        applyMask();
        what |= Changes(Results) | Display;
    }
    if (before.resultType != now.resultType) {
        m_settings.namedKind.reset();
    }
    if (before.selected != now.selected || before.resultType != now.resultType ||
        before.namedKind != now.namedKind) {
        m_settings.composite = {};
    }
    if (before.shown != now.shown || before.selected != now.selected ||
        before.resultType != now.resultType || before.namedKind != now.namedKind ||
        !(before.viewRange == now.viewRange) || !(before.frameView == now.frameView) ||
        !(before.absorptionRange == now.absorptionRange) ||
        !(before.differenceRange == now.differenceRange) || !(before.views == now.views) ||
        !(before.composite == now.composite) || before.plotOrdinate != now.plotOrdinate ||
        before.plotAbscissa != now.plotAbscissa) {
        what |= Display;
    }
    emit changed(what);
}

double Measurement::spacing() const {
    const auto last = static_cast<int>(CrystalTable.size()) - 1;
    return CrystalTable[static_cast<std::size_t>(std::clamp(m_settings.crystal, 0, last))].spacing;
}

double Measurement::edgeEnergy() const {
    const double energy = m_settings.edgeEnergy.toDouble();
    return std::isfinite(energy) ? energy : 0.0;
}

QRectF Measurement::area() const {
    const QRectF selected = selection();
    return selected.isEmpty()
               ? QRectF(0, 0, std::max(0, m_size.width()), std::max(0, m_size.height()))
               : selected;
}

Outcome Measurement::loadStandard(const QString& fileName) {
    Outcome outcome = m_standard.read(fileName, m_settings.standardBackground);
    m_hasStandard = true;
    if (!outcome.failed()) {
        m_settings.edgeEnergy = fieldText(m_standard.spectrum.midE());
    }
    emit changed(Changes(Standard) | Setting | Position);
    return outcome;
}

void Measurement::clearStandard() {
    m_standard.forget();
    emit changed(Changes(Standard) | Position);
}

/// A fit under way has the shifts that it began with; a calibration would replace the map asked
/// for.
void Measurement::stopCalibration() {
    if (working() == Work::Calibrate) {
        stopRun(tr("the energy map has changed"));
    }
    if (m_mapWork && m_mapWork->target == m_map.get()) {
        stopMapWork(tr("the energy map has changed"));
    }
}

Outcome Measurement::loadMap(const QString& fileName) {
    QSize size = m_size;
    auto loaded = std::make_unique<Result>(ResultId::Shift);
    const Rehearsal::Written* written = m_rehearsal ? m_rehearsal->find(fileName) : nullptr;
    EMapReading reading = written != nullptr ? Rehearsal::readMap(*written, &size, &loaded->image)
                          : isTiffMap(fileName)
                              ? readTiffMap(fileName, &size, &loaded->image)
                              : readEMap(fileName, edgeEnergy(), &size, &loaded->image);
    MapInput input;
    if (reading.refusal == EMapRefusal::None) {
        input.file = fileInput(fileName);
        const bool isThere = written != nullptr || !input.file.sha256.isEmpty();
        reading.refusal = isThere ? EMapRefusal::None : EMapRefusal::NoFile;
    }
    if (reading.refusal == EMapRefusal::None) {
        stopCalibration();
        input.edgeEnergy = m_settings.edgeEnergy;
        input.revision = nextRevision();
        m_map = std::move(loaded);
        m_mapInput = std::make_shared<const MapInput>(input);
    } else {
        m_map->isOfBefore = m_map->image.hasData();
    }
    if (size != m_size) {
        setImageSize(size);
    }
    inputsChanged(Changes(Map) | Frames | Results | Display);
    Outcome outcome = judgeMapFile(reading, fileName, size);
    return outcome += std::exchange(m_aboutArea, {});
}

void Measurement::clearMap() {
    stopCalibration();
    m_map = std::make_unique<Result>(ResultId::Shift);
    m_mapInput.reset();
    inputsChanged(Changes(Map) | Results | Display);
}

Outcome Measurement::addReference() {
    if (working() != Work::None) {
        return Outcome::failure(tr("not while an analysis of the image runs"));
    }
    constexpr int UsedFromTheStart = 2;
    const int index = referenceCount();
    // Ids of the residual-absorption results follow those of the references.
    if (m_settings.selected >= index) {
        ++m_settings.selected;
    }
    m_references.push_back(std::make_unique<Reference>(index, rehearsal()));
    m_references.back()->setRanges(m_settings.ranges);
    m_references.back()->setNeedsLines(m_settings.referenceScale == FitRule::ReferenceScale::Jump);
    m_references.back()->setUse(referenceCount() <= UsedFromTheStart);
    applyScales();
    emit changed(Changes(References) | Setting);
    return {};
}

void Measurement::change(int reference, const std::function<void(Reference&)>& how) {
    how(*m_references[static_cast<std::size_t>(reference)]);
    emit changed(References);
}

void Measurement::setFrame(StackId id, int n) {
    int& current = m_frame[static_cast<int>(id)];
    if (n >= 0 && n < stack(id).size() && n != current) {
        current = n;
        emit changed(Display);
    }
}

void Measurement::setPosition(double x, double y) {
    m_position = QPointF(x, y);
    m_sample.reset();
    emit changed(Position);
}

const AbsorptionSource& Measurement::source() {
    // A run under way ends with the dark frames with which it began.
    if (m_darkIsNew && working() == Work::None) {
        m_darkIsNew = false;
        m_source.reset();
    }
    if (!m_source) {
        m_sourceRevision = nextRevision();
        m_source = std::make_unique<AbsorptionSource>(m_i1.frames(), m_i0.frames(), m_size.width(),
                                                      m_size.height(),
                                                      m_rehearsal ? nullptr : m_dark.mean());
    }
    return *m_source;
}

Spectrum Measurement::spectrumAt(int x, int y) {
    m_sampleProblem.clear();
    try {
        const AbsorptionSource& frames = source();
        m_sampleProblem = darkProblem();
        return m_sampleProblem.isEmpty()
                   ? frames.spectrumAt(x, y, m_settings.halfWidth, m_settings.halfHeight)
                   : Spectrum();
    } catch (const UnreadCounts& unread) {
        m_sampleProblem = ofLoad(unread.problem);
        return {};
    }
}

const XafsSpectrum& Measurement::sample() {
    if (!m_sample) {
        const int x = toPixel(m_position.x());
        const int y = toPixel(m_position.y());
        const Spectrum raw = m_rehearsal
                                 ? Rehearsal::spectrumOf(QRect(QPoint(), m_size).contains(x, y)
                                                             ? source().energies()
                                                             : std::vector<double>())
                                 : spectrumAt(x, y);
        m_sample = std::make_unique<XafsSpectrum>(raw, sampleRule(), shiftAt(&m_map->image, x, y));
    }
    return *m_sample;
}
