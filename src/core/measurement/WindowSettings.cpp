#include "measurement/WindowSettings.h"

#include <utility>

#include "measurement/Measurement.h"

void WindowSettings::start(Measurement& measurement) {
    measurement.set(&Settings::errorMaps, true);
    MapViews views;
    for (MapView& view : views.of) {
        view.range.kind = MapRange::Kind::Robust;
    }
    measurement.set(&Settings::views, views);
}

void WindowSettings::setAside(Measurement& measurement) {
    const Settings& now = measurement.settings();
    if (!m_before) {
        m_before = Own{now.errorMaps, now.views};
    }
    measurement.set(&Settings::errorMaps, Settings().errorMaps);
    measurement.set(&Settings::views, MapViews());
    measurement.set(&Settings::composite, Composite());
}

void WindowSettings::giveBack(Measurement& measurement) {
    const std::optional<Own> before = std::exchange(m_before, std::nullopt);
    if (!before) {
        return;
    }
    MapViews views = measurement.settings().views;
    for (std::size_t i = 0; i < views.of.size(); ++i) {
        MapView& view = views.of[i];
        view.range = view.range == MapRange() ? before->views.of[i].range : view.range;
        view.colors = view.colors.isStated() ? before->views.of[i].colors : view.colors;
    }
    views.frames = views.frames.isStated() ? before->views.frames : views.frames;
    measurement.set(&Settings::errorMaps, before->errorMaps);
    measurement.set(&Settings::views, views);
}
