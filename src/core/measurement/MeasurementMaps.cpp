// What is made of the values of one map: deglitching, smoothing.

#include <utility>

#include "calibration/EnergyShift.h"
#include "maps/ChangedBins.h"
#include "measurement/Display.h"
#include "measurement/Measurement.h"
#include "measurement/Revision.h"
#include "measurement/Room.h"

QString Measurement::whyNotDeglitch() const {
    if (working() != Work::None) {
        return tr("not while an analysis of the image runs");
    }
    const Result* target = deglitchTarget();
    if (target == nullptr || !target->image.hasData()) {
        return tr("there is no map to work on");
    }
    if (!target->tookPart()) {
        return tr("the reference took no part in the fit: its map holds no values");
    }
    // What values there are a rehearsal does not know.
    return m_rehearsal || target->image.dataMin() <= target->image.dataMax()
               ? QString()
               : tr("the map holds no values");
}

QString Measurement::whyNotShowProcessed() const {
    const QString whyNot = whyNotDeglitch();
    if (!whyNot.isEmpty()) {
        return whyNot;
    }
    const Result* target = deglitchTarget();
    // Smoothing leaves what it made in the processed values, too.
    const bool isSmoothed = target == m_map.get() && m_mapInput && m_mapInput->smoothed > 0;
    return target->deglitched || isSmoothed
               ? QString()
               : tr("nothing has been deglitched: the processed values are 0");
}

Outcome Measurement::deglitch(double factor, double ratio) {
    const QString whyNot = whyNotDeglitch();
    if (!whyNot.isEmpty()) {
        return Outcome::failure(whyNot);
    }
    if (const Outcome room = judgeRoomForPixels(*this, sizeof(double)); room.failed()) {
        return room;
    }
    Result* target = deglitchTarget();
    m_settings.deglitchFactor = inField(factor);
    m_settings.deglitchRatio = inField(ratio);
    const Result::Deglitched how{m_settings.deglitchFactor, m_settings.deglitchRatio};
    target->image.setDeglitchConds(how.factor, how.ratio);
    const MapToProcess map = target->image.toProcess();
    process(
        target,
        [map, how](const GoOn& goOn) { return deglitched(map, how.factor, how.ratio, goOn); },
        [this, target, how](const Processed& made) {
            target->image.takeProcessed(made);
            target->image.selectProcImg(true);
            target->deglitched = how;
            emit changed(Changes(Results) | Display | Setting);
        });
    return {};
}

Outcome Measurement::smoothMap() {
    if (m_map->image.grid().width <= 0) {
        return Outcome::failure(tr("there is no energy-shift map"));
    }
    if (const Outcome room = judgeRoomForPixels(*this, sizeof(double)); room.failed()) {
        return room;
    }
    stopCalibration();
    const auto take = [this](const Processed& made) {
        takeSmoothed(&m_map->image, made);
        m_map->deglitched.reset();  // the processed values are those of the smoothing now
        if (m_mapInput) {
            MapInput input = *m_mapInput;
            ++input.smoothed;
            input.revision = nextRevision();
            m_mapInput = std::make_shared<const MapInput>(input);
        }
        inputsChanged(Changes(Map) | Results | Display);
    };
    if (m_map->image.hasData()) {
        const MapToProcess map = m_map->image.toProcess();
        process(
            m_map.get(), [map](const GoOn& goOn) { return smoothedShifts(map, goOn); }, take);
    }
    return {};
}

/// At once, where nobody would notice; else in the background, and ended() follows.
void Measurement::process(Result* target, const MapJob::Make& make,
                          const std::function<void(const Processed&)>& take) {
    stopMapWork({});
    constexpr qint64 Noticed = 300000;  // points
    const MapToProcess map = target->image.toProcess();
    if (m_rehearsal || m_analysis || map.grid.pointCount() < Noticed) {
        const Processed made = *make({});
        countReplaced(map.grid, map.values, made.values);
        take(made);
        return;
    }
    m_mapWork = MapWork{target, map.values, take, 0.0};
    m_mapJob.start(make);
    emit changed(Changes(AtWork) | Results | Display);
    if (m_mapWork) {
        emit progressed(Work::Deglitch, 0.0, 100.0);
    }
}

void Measurement::countReplaced(const AnalysisGrid& grid, const MapValues& before,
                                const MapValues& after) {
    const BinRaster raster = grid.raster();
    m_replacedBins = {changedBins(grid, before.constData(), after.constData()),
                      qint64(raster.rows) * raster.columns};
}

void Measurement::mapProcessed(const std::optional<Processed>& made) {
    const MapWork work = *std::exchange(m_mapWork, std::nullopt);
    Outcome outcome;
    if (!made) {
        outcome = Outcome::failure(lackOfMemory());
    } else if (work.target->image.data() != work.values.constData()) {
        outcome = Outcome::failure(tr("the map has changed meanwhile"));
    } else {
        countReplaced(work.target->image.grid(), work.values, made->values);
        work.take(*made);
    }
    endMapWork(outcome);
}

void Measurement::stopMapWork(const QString& why) {
    if (!m_mapWork) {
        return;
    }
    m_mapJob.stop();
    const MapWork work = *std::exchange(m_mapWork, std::nullopt);
    Run stopped;
    stopped.percent = work.percent;
    QStringList text{stoppedText(stopped)};
    if (!why.isEmpty()) {
        text << why;
    }
    Outcome outcome = Outcome::failure(text.join(QStringLiteral(": ")));
    outcome.stopped = true;
    endMapWork(outcome);
}

void Measurement::endMapWork(const Outcome& outcome) {
    emit changed(Changes(AtWork) | Results | Display);
    emit progressed(Work::Deglitch, 100.0, 100.0);
    emit ended(Work::Deglitch, outcome);
}

Outcome Measurement::showProcessed(bool on) {
    const QString whyNot = on ? whyNotShowProcessed() : whyNotDeglitch();
    if (!whyNot.isEmpty()) {
        return Outcome::failure(whyNot);
    }
    deglitchTarget()->image.selectProcImg(on);
    emit changed(Changes(Results) | Display);
    return {};
}
