#include "panels/MapChoice.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFileInfo>
#include <QSignalBlocker>

#include "display/Availability.h"

namespace {

QString titleOf(const Result& result) {
    const QString kind = QCoreApplication::translate("ResultKind", result.kind().title);
    const ReferenceInput* reference = result.referenceInput();
    return reference == nullptr
               ? kind
               : kind + QStringLiteral("   ") + QFileInfo(reference->file.name).fileName();
}

}  // namespace

MapChoice::MapChoice(Measurement& measurement, QComboBox* list, QObject* parent)
    : QObject(parent), m_measurement(measurement), m_list(list) {
    m_list->setPlaceholderText(tr("none"));
    connect(m_list, QOverload<int>::of(&QComboBox::activated), this, &MapChoice::choose);
    update();
}

void MapChoice::choose(int index) {
    if (index >= 0 && index < m_maps.size()) {
        emit said(m_measurement.choose(m_maps.at(index).id, m_maps.at(index).reference));
    }
}

/// What is chosen, whether it holds values or not.
MapChoice::Map MapChoice::chosen() const {
    const Settings& settings = m_measurement.settings();
    const int references = m_measurement.referenceCount();
    const int selected = settings.selected;
    if (settings.shown == Shown::Map) {
        return {ResultId::Shift, -1};
    }
    if (settings.namedKind) {
        const bool ofOne = resultKind(*settings.namedKind).family == ResultFamily::Reference;
        return {*settings.namedKind, ofOne ? selected : -1};
    }
    return selected < references
               ? Map{static_cast<ResultId>(settings.resultType), selected}
               : Map{residualId(qBound(0, selected - references, ResidualCount - 1)), -1};
}

void MapChoice::update() {
    QVector<Map> maps;
    QStringList titles;
    for (const Result* result : m_measurement.results()) {
        if (result->tookPart()) {
            maps.append({result->id, result->reference});
            titles << titleOf(*result);
        }
    }
    QStringList listed;
    for (int i = 0; i < m_list->count(); ++i) {
        listed << m_list->itemText(i);
    }
    if (maps != m_maps || titles != listed) {
        m_maps = maps;
        m_list->clear();
        m_list->addItems(titles);
    }
    m_list->setCurrentIndex(m_maps.indexOf(chosen()));
    setUsable(m_list, maps.isEmpty() ? tr("Analyze the image first.") : QString());
}
