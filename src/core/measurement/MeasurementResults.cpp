// The results of a measurement: which there are, which is chosen, and what is done with their
// values.

#include <QDebug>
#include <algorithm>

#include "measurement/Measurement.h"

namespace {
/// A total jump below this times its error is noise.
constexpr double NoiseFactor = 5.0;
}  // namespace

void Measurement::applyScales() {
    const auto apply = [this](Result& result) {
        const ResultScale scale = result.kind().scale;
        if (scale == ResultScale::Own) {
            return;
        }
        const bool isDMut = scale == ResultScale::DMut;
        result.image.setScale(isDMut ? m_settings.dMutMin : m_settings.ratioMin,
                              isDMut ? m_settings.dMutMax : m_settings.ratioMax);
        result.image.setFixedScale(m_settings.fixedScale);
    };
    for (const Work work : {Work::Fit, Work::Residual}) {
        for (Result* result : resultsOf(work)) {
            apply(*result);
        }
    }
}

void Measurement::select(int id) {
    if (id >= 0 && id < referenceCount() + ResidualCount) {
        m_settings.selected = id;
        m_settings.namedKind.reset();
        m_settings.composite = {};
    }
    emit changed(Changes(Display) | Setting);
}

Result* Measurement::selectedResult() const {
    const int id = m_settings.selected;
    const int n = referenceCount();
    const bool ofReference = id >= 0 && id < n;
    if (ofReference && !m_settings.namedKind) {
        return &m_references[static_cast<std::size_t>(id)]->result(m_settings.resultType);
    }
    Result* made = nullptr;
    if (m_settings.namedKind) {
        made = find(*m_settings.namedKind, id);
    } else if (id >= n && id < n + ResidualCount) {
        made = m_results.find(residualId(id - n));
    }
    return made != nullptr && made->image.isValid() ? made : nullptr;
}

Result* Measurement::find(ResultId id, int reference) const {
    if (id == ResultId::Shift) {
        return m_map.get();
    }
    if (resultKind(id).family != ResultFamily::Reference) {
        return m_results.find(id);
    }
    return reference >= 0 && reference < referenceCount()
               ? m_references[static_cast<std::size_t>(reference)]->results().find(id)
               : nullptr;
}

Outcome Measurement::judgeMap(ResultId id, int reference) const {
    const ResultKind& kind = resultKind(id);
    const Result* result = find(id, reference);
    if (result == nullptr) {
        return Outcome::failure(tr("no reference panel %1").arg(reference));
    }
    if (!result->image.hasData()) {
        return Outcome::failure(
            kind.needsErrors && hasFitWithoutErrors()
                ? tr("run again with error maps")
                : tr("there is no map of this name yet: %1").arg(QString::fromLatin1(kind.name)));
    }
    if (!result->tookPart()) {
        return Outcome::failure(
            tr("the reference took no part in the fit: its map holds no values"));
    }
    return {};
}

Outcome Measurement::choose(ResultId id, int reference) {
    const Outcome judged = judgeMap(id, reference);
    if (judged.failed()) {
        return judged;
    }
    const ResultKind& kind = resultKind(id);
    m_settings.shown = id == ResultId::Shift ? Shown::Map : Shown::Result;
    m_settings.namedKind.reset();
    m_settings.composite = {};
    if (kind.family == ResultFamily::Reference) {
        m_settings.selected = reference;
    }
    if (static_cast<int>(id) < ReferenceKindCount) {
        m_settings.resultType = static_cast<int>(id);
    } else if (kind.family == ResultFamily::Residual) {
        m_settings.selected = referenceCount() + static_cast<int>(id) - ReferenceKindCount;
    } else if (id != ResultId::Shift) {
        m_settings.namedKind = id;
    }
    emit changed(Changes(Display) | Setting);
    return {};
}

bool Measurement::hasFitWithoutErrors() const {
    const std::vector<Result*> all = resultsOf(Work::Fit);
    return std::any_of(all.begin(), all.end(), [](const Result* result) {
        return result->image.hasData() && result->run && !result->run->inputs.errorMaps;
    });
}

QString Measurement::whyNotMask() const {
    return hasFitWithoutErrors() ? tr("run again with error maps") : QString();
}

Outcome Measurement::setMask(double factor) {
    const QString whyNot = factor > 0.0 ? whyNotMask() : QString();
    if (!whyNot.isEmpty()) {
        return Outcome::failure(whyNot);
    }
    set(&Settings::mask, inField(factor));
    return {};
}

/// Values of one fit have one mask.
/// Without a mask, too, colours are those of the values that mean something: beside the sample a
/// fraction is any number.
void Measurement::applyMask() {
    const Analyzed2DRes& jump = m_results.find(ResultId::TotalJump)->image;
    const Analyzed2DRes& error = m_results.find(ResultId::TotalJumpError)->image;
    const bool isMasked = m_settings.mask > 0.0;
    const Mask mask = isMasked ? maskBelow(jump, error, m_settings.mask) : nullptr;
    const Mask noise = isMasked ? nullptr : maskBelow(jump, error, NoiseFactor);
    for (Result* result : resultsOf(Work::Fit)) {
        result->image.setMask(mask);
        result->image.setNoise(noise);
    }
}

Result* Measurement::shownResult() const {
    switch (m_settings.shown) {
        case Shown::Map:
            return m_map->image.grid().width > 0 ? m_map.get() : nullptr;
        case Shown::Result:
            return selectedResult();
        default:
            return nullptr;
    }
}

Result* Measurement::deglitchTarget() const {
    Result* shown = shownResult();
    return shown != nullptr ? shown : selectedResult();
}

std::vector<Result*> Measurement::results() const {
    std::vector<Result*> all{m_map.get()};
    for (const Work work : {Work::Fit, Work::Residual, Work::Difference}) {
        const std::vector<Result*> made = resultsOf(work);
        all.insert(all.end(), made.begin(), made.end());
    }
    all.erase(std::remove_if(all.begin(), all.end(),
                             [](const Result* result) { return !result->image.hasData(); }),
              all.end());
    return all;
}

bool Measurement::hasUnsavedResults() const {
    const std::vector<Result*> all = results();
    return std::any_of(all.begin(), all.end(),
                       [](const Result* result) { return result->run && !result->run->saved; });
}

ResidualResults Measurement::residualResults() const {
    ResidualResults results{};
    for (int i = 0; i < ResidualCount; ++i) {
        results[static_cast<std::size_t>(i)] = m_results.find(residualId(i));
    }
    return results;
}

/// Those that an analysis makes.
std::vector<Result*> Measurement::resultsOf(Work work) const {
    switch (work) {
        case Work::Calibrate:
            return {m_map.get()};
        case Work::Residual:
            return m_results.of(ResultFamily::Residual);
        case Work::Difference:
            return m_results.of(ResultFamily::Difference);
        case Work::Fit:
            break;
        default:
            return {};
    }
    std::vector<Result*> made;
    for (const ResultKind& kind : ResultKinds) {
        for (const auto& reference : m_references) {
            if (Result* result = reference->results().find(kind.id)) {
                made.push_back(result);
            }
        }
    }
    const std::vector<Result*> ofAll = m_results.of(ResultFamily::Fit);
    made.insert(made.end(), ofAll.begin(), ofAll.end());
    return made;
}

void Measurement::markOfBefore(Work work) {
    for (Result* result : resultsOf(work)) {
        result->isOfBefore = result->image.hasData();
    }
    emit changed(Changes(Results) | Display);
}

void Measurement::forget(Work work) {
    if (work == working() || work == Work::Calibrate) {
        return;
    }
    for (Result* result : resultsOf(work)) {
        AreaAnalysis::empty(result);
    }
    emit changed(Changes(Results) | Display);
}

void Measurement::remakePictures() {
    if (working() == Work::Fit) {
        m_analysis->remakePictures();
    } else {
        qDebug() << "generate res images" << Reference::KindCount * referenceCount();
        for (const auto& reference : m_references) {
            for (int kind = 0; kind < Reference::KindCount; ++kind) {
                reference->result(kind).image.genImg();
            }
        }
    }
    emit changed(Changes(Results) | Display);
}

void Measurement::remakeResidual() {
    makeResidualRatio(residualResults());
    emit changed(Changes(Results) | Display);
}

RecordLines Measurement::recordOf(const Result& result, const QString& savedBy) const {
    if (result.run && result.run->state != Run::State::Complete) {
        return RecordLines::none(QT_TRANSLATE_NOOP("Record", "the run was stopped before its end"));
    }
    return m_recorder ? m_recorder(*this, &result, savedBy) : RecordLines();
}

RecordLines Measurement::recordOfResults(const QString& savedBy) const {
    return m_recorder ? m_recorder(*this, nullptr, savedBy) : RecordLines();
}
