// The analyses of an area: their start, and what their results rest on.

#include <QDebug>
#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "absorption/AbsorptionSource.h"
#include "absorption/BandPlan.h"
#include "base/LargeMemory.h"
#include "base/Memory.h"
#include "calibration/EnergyShift.h"
#include "measurement/CalibrationJudgement.h"
#include "measurement/Display.h"
#include "measurement/FitJudgement.h"
#include "measurement/FrameJudgement.h"
#include "measurement/Measurement.h"
#include "measurement/Revision.h"
#include "measurement/Room.h"

AnalysisGrid Measurement::grid() const {
    return AnalysisGrid::ofArea(m_size.width(), m_size.height(), m_settings.halfWidth,
                                m_settings.halfHeight, area(), m_settings.area.pixels(m_size));
}

Inputs Measurement::inputs() const {
    Inputs now;
    now.i1 = {m_i1.files(), m_i1.revision()};
    now.i0 = {m_i0.files(), m_i0.revision()};
    now.size = m_size;
    now.dark = m_dark.files();
    now.darkStamps = m_dark.fileStamps();
    now.darkRevision = m_darkRevision;
    now.halfWidth = m_settings.halfWidth;
    now.halfHeight = m_settings.halfHeight;
    now.area = m_settings.area;
    now.background = m_settings.targetBackground;
    for (const auto& reference : m_references) {
        now.references.push_back(reference->input());
    }
    now.e0 = m_settings.e0;
    now.ranges = m_settings.ranges;
    now.method = m_settings.method;
    now.referenceScale = m_settings.referenceScale;
    now.constraints = m_settings.constraints;
    now.errorMaps = m_settings.errorMaps;
    now.differenceFrom = m_settings.differenceFrom;
    now.differenceTo = m_settings.differenceTo;
    now.raEnergy = m_settings.raEnergy;
    now.raFactor = m_settings.raFactor;
    now.standard = m_standard.file;
    now.standardBackground = m_settings.standardBackground;
    now.crystal = m_settings.crystal;
    now.edgeEnergy = m_settings.edgeEnergy;
    now.map = m_mapInput;
    return now;
}

Difference Measurement::differenceOf(const Result& result) const {
    // That what was to replace it failed tells more than what has changed since.
    if (result.isOfBefore) {
        return Difference::Before;
    }
    return result.run && result.run->state != Run::State::Running
               ? difference(result.run->inputs, inputs(), result.run->work)
               : Difference::None;
}

bool Measurement::isAtWork(Work work) const {
    switch (work) {
        case Work::None:
            return false;
        case Work::LoadI1:
            return m_i1.isLoading();
        case Work::LoadI0:
            return m_i0.isLoading();
        case Work::LoadDark:
            return m_loadsDark;
        case Work::LoadFolder:
            return !m_together.empty();
        default:
            return working() == work;
    }
}

/// What needs no counts: failed, it cannot begin; else the warnings are said at its end.
Outcome Measurement::judgeStart(Work work) {
    if (m_i1.frames().isEmpty()) {
        return Outcome::failure(tr("no images are loaded"));
    }
    if (work == Work::Fit && referenceCount() < 2) {
        return Outcome::failure(tr("fewer than two reference panels"));
    }
    const BinRaster raster = grid().raster();
    if (raster.rows <= 0 || raster.columns <= 0) {
        return Outcome::failure(tr("no bin of the area lies inside the image"));
    }
    if (raster.count() == 0) {
        return Outcome::failure(tr("no bin of the area has its centre inside the shape"));
    }
    Outcome outcome = judgeFrames(*this, work);
    outcome += judgeEdge(work);
    if (outcome.failed()) {
        return outcome;
    }
    outcome += judgeBefore(work, source().energies(), m_references, m_settings);
    if (!darkProblem().isEmpty()) {
        outcome.failures << darkProblem();
    }
    if (work == Work::Calibrate) {
        outcome += judgeStandard(standard(), m_i1.files());
    }
    if (work == Work::Fit && m_map->image.hasData() && !outcome.failed()) {
        outcome += judgeShiftedFit(source().energies(), m_references, m_settings.method, raster,
                                   shiftsOf(m_map->image));
    }
    if ((work == Work::Fit || hasCommonE0(inputs(), work)) && m_map->image.hasData() &&
        m_map->isOfBefore && !outcome.failed()) {
        outcome.warnings << tr("the energy map is an earlier one: what was to replace it failed");
    }
    return outcome;
}

std::unique_ptr<AreaAnalysis> Measurement::makeAnalysis(Work work) {
    auto run = std::make_shared<Run>();
    run->work = work;
    run->inputs = inputs();
    if (work == Work::Calibrate) {
        m_newMap = std::make_unique<Result>(ResultId::Shift);
        return makeCalibration(grid(), run, m_newMap.get(),
                               {calibrationEdge(standard()), source().energies().front()});
    }
    if (work == Work::Fit) {
        return makeFit(grid(), run, m_references, m_results, m_map->image);
    }
    if (work == Work::Difference) {
        return makeDifference(grid(), run, find(ResultId::Difference), m_map->image);
    }
    return makeResidual(grid(), run, residualResults(), m_map->image);
}

Outcome Measurement::start(Work work) {
    if (working() != Work::None) {
        return Outcome::failure(tr("not while an analysis of the image runs"));
    }
    const Outcome judged = judgeStart(work);
    if (judged.failed()) {
        markOfBefore(work);
        return judged;
    }
    const Outcome begun = begin(work, judged);
    if (begun.failed()) {
        m_promised.change(0);
        m_analysis.reset();
        m_newMap.reset();
        markOfBefore(work);
        return begun;
    }
    // Who is told may stop it at once.
    emit changed(Changes(AtWork) | Results | Display);
    if (working() == work) {
        emit progressed(work, 0.0, 100.0);
    }
    return begun;  // its warnings come with its end
}

/// Failed: there is not enough memory for it.
Outcome Measurement::begin(Work work, const Outcome& judged) try {
    source();  // with the dark frames of now
    m_analysis = makeAnalysis(work);
    const Outcome room = judgeRoom();
    if (room.failed()) {
        return room;
    }
    m_parts.begin();
    Run& run = *m_analysis->run();
    run.warnings = judged.warnings;
    if (run.inputs.e0.kind == EdgeChoice::Kind::Mean && hasCommonE0(run.inputs, work)) {
        beginMean();
    } else {
        beginPass();
    }
    Outcome begun;
    begun.notes = judged.notes;
    return begun;
} catch (const std::bad_alloc&) {
    return Outcome::failure(lackOfMemory());
}

/// Maps of the whole image that the run under way fills, and what it leaves behind of the fit's;
/// parts that are on their way into a work folder.
quint64 Measurement::bytesToFill() const {
    const Run& run = *m_analysis->run();
    const auto isFilled = [&](const Result* result) {
        return (run.inputs.errorMaps || !result->kind().needsErrors) &&
               (result->reference < 0 || m_analysis->grid().inside ||
                m_references[static_cast<std::size_t>(result->reference)]->takesPart());
    };
    const std::vector<Result*> results = resultsOf(run.work);
    const auto maps = static_cast<quint64>(std::count_if(results.begin(), results.end(), isFilled));
    const bool isMasked = run.work == Work::Fit && run.inputs.errorMaps;
    const quint64 parts = m_parts.folder() && !m_rehearsal
                              ? PartStore::bytesInMemory(PartCut(m_analysis->grid().raster()),
                                                         m_analysis->grid().raster().columns,
                                                         m_analysis->valuesPerBin())
                              : 0;
    return parts + (maps * sizeof(double) + (isMasked ? 2 : 0)) * quint64(m_size.width()) *
                       quint64(m_size.height());
}

/// That of results that the run under way is about to empty.
quint64 Measurement::bytesToFree() const {
    quint64 bytes = 0;
    for (const Result* result : resultsOf(m_analysis->run()->work)) {
        bytes +=
            result != m_map.get() ? quint64(result->image.values().size()) * sizeof(double) : 0;
    }
    return bytes;
}

/// Whether counts that are read when they are needed fit into the memory that there is.
Outcome Measurement::judgeRoom() {
    const quint64 counts =
        BandPlan::least(source(), m_analysis->grid().raster(), m_analysis->valuesPerBin());
    const quint64 all = bytesToFill() + counts;
    const Outcome addresses = judgeAddresses(all - std::min(all, bytesToFree()));
    if (counts == 0 || addresses.failed()) {
        return addresses;
    }
    giveBackFreeMemory();
    const quint64 held = residentMemory();
    const quint64 freed = bytesToFree();
    const quint64 rest = held > freed ? held - freed : 0;
    const quint64 needed = rest + bytesToFill() + counts;
    return needed <= memoryLimit()
               ? Outcome()
               : Outcome::failure(
                     tr("%1 of memory are needed, the limit is %2 (results: %3, counts: %4, the "
                        "program and what it holds: %5)")
                         .arg(sizeText(needed), sizeText(memoryLimit()), sizeText(bytesToFill()),
                              sizeText(counts), sizeText(rest)));
}

void Measurement::beginPass() {
    if (working() == Work::Fit) {
        m_point = m_analysis->grid();
    }
    m_eachRow.start();
    m_analysis->begin();
    BinRaster raster = m_analysis->grid().raster();
    if (m_rehearsal) {
        m_rehearsal->passOver();
        standIn();
        raster.rows = 0;
    }
    const AbsorptionSource& frames = source();
    m_saturated.begin();
    m_promised.change(bytesToFill());
    giveBackFreeMemory();
    const KeptRows kept = keptRows(&raster);
    m_job.start(frames, raster, m_analysis->valuesPerBin(),
                m_analysis->evaluators(std::max(1, m_threads), frames), kept);
}

/// Values in the place of those that a rehearsal does not work out.
void Measurement::standIn() {
    const std::vector<double>& energies = source().energies();
    const double standardEdge = calibrationEdge(standard());
    const double edge = standardEdge > 0.0 ? standardEdge : energies[energies.size() / 2];
    const BinRaster raster = m_analysis->grid().raster();
    const int each = m_analysis->valuesPerBin();
    std::vector<double> values(static_cast<std::size_t>(raster.columns * each));
    for (int row = 0; row < raster.rows; ++row) {
        const double inner = working() == Work::Calibrate ? edge : 1.0;
        for (int column = 0; column < raster.columns; ++column) {
            std::fill_n(values.begin() + column * each, each,
                        raster.holds(column, row) ? inner : std::nan(""));
        }
        m_analysis->take({row, values.data(), {}}, raster);
    }
}

void Measurement::recordPoint(const std::vector<int>& references, const std::vector<double>& dMuts,
                              const std::vector<double>& ratios) {
    const std::size_t n = std::min({references.size(), dMuts.size(), ratios.size()});
    for (std::size_t u = 0; working() == Work::None && u < n; ++u) {
        if (references[u] < 0 || references[u] >= referenceCount()) {
            continue;
        }
        Reference& reference = *m_references[static_cast<std::size_t>(references[u])];
        reference.result(Reference::DMut)
            .image.setData(m_point.x, m_point.y, m_point.halfW, m_point.halfH, dMuts[u]);
        reference.result(Reference::Ratio)
            .image.setData(m_point.x, m_point.y, m_point.halfW, m_point.halfH, ratios[u]);
    }
}

void Measurement::stepPoint() {
    bool newRow = false;
    if (working() == Work::None && m_point.step(&newRow) && newRow) {
        emit progressed(Work::Fit, m_point.percent(), 100.0);
    }
}
