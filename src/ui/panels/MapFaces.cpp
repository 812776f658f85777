#include "panels/MapFaces.h"

#include <QPushButton>

#include "display/Availability.h"

namespace {

bool isOfWholeFit(ResultId id) {
    return id == ResultId::R || id == ResultId::Chi2Reduced;
}

}  // namespace

MapFaces::MapFaces(Measurement& measurement, const Controls& controls, QObject* parent)
    : QObject(parent), m_measurement(measurement), m_controls(controls) {
    connect(controls.value, &QPushButton::clicked, this, [this] { show(m_value); });
    connect(controls.error, &QPushButton::clicked, this, [this] { show(errorMap()); });
    connect(controls.r, &QPushButton::clicked, this, [this] { show({ResultId::R, -1}); });
    connect(controls.chi2, &QPushButton::clicked, this, [this] {
        show({ResultId::Chi2Reduced, -1});
    });
    update();
}

void MapFaces::show(const Map& map) {
    emit said(m_measurement.choose(map.id, map.reference));
    update();
}

/// That of the values; their own kind where there are no errors of them.
MapFaces::Map MapFaces::errorMap() const {
    return {errorOf(m_value.id).value_or(m_value.id), m_value.reference};
}

void MapFaces::update() {
    const Result* shown = m_measurement.shownResult();
    if (shown != nullptr && !isOfWholeFit(shown->id)) {
        m_value = {shown->kind().value, shown->reference};
    }
    const auto showsOne = [shown](ResultId id) { return shown != nullptr && shown->id == id; };
    m_controls.value->setChecked(showsOne(m_value.id));
    m_controls.error->setChecked(errorOf(m_value.id) && showsOne(errorMap().id));
    m_controls.r->setChecked(showsOne(ResultId::R));
    m_controls.chi2->setChecked(showsOne(ResultId::Chi2Reduced));
    setUsable(m_controls.value, whyNot(m_value));
    setUsable(m_controls.error, errorOf(m_value.id)
                                    ? whyNot(errorMap())
                                    : tr("There are no errors of the map on display."));
    setUsable(m_controls.r, whyNot({ResultId::R, -1}));
    setUsable(m_controls.chi2, whyNot({ResultId::Chi2Reduced, -1}));
}

QString MapFaces::whyNot(const Map& map) const {
    const Result* result = m_measurement.find(map.id, map.reference);
    if (result != nullptr && result->image.hasData() && result->tookPart()) {
        return QString();
    }
    return resultKind(map.id).needsErrors && !m_measurement.whyNotMask().isEmpty()
               ? tr("Run again with error maps.")
               : tr("Analyze the image first.");
}
