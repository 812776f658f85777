#include "window/AreaPane.h"

#include <QToolButton>

#include "display/HistogramView.h"
#include "display/XafsView.h"
#include "measurement/AreaSaving.h"
#include "panels/AreaStatistics.h"
#include "ui_Body.h"
#include "window/AreaTools.h"
#include "window/Docks.h"
#include "window/SaveDialogs.h"

AreaPane::AreaPane(Measurement& measurement, Ui::Body& ui, const Panels& panels,
                   SaveDialogs* dialogs, QObject* parent)
    : QObject(parent), m_measurement(measurement) {
    AreaStatistics* const panel = panels.statistics.get();
    XafsView* const plot = panels.spectrum.get();
    auto* tools = new AreaTools(ui.dispA);
    ui.binColumn->insertWidget(1, tools);
    QWidget* last = ui.VWidth;
    for (QToolButton* tool : tools->findChildren<QToolButton*>()) {
        QWidget::setTabOrder(last, tool);
        last = tool;
    }
    connect(tools, &AreaTools::statisticsAsked, panel, &QWidget::show);
    connect(panel, &AreaStatistics::said, this, &AreaPane::said);
    connect(panel, &AreaStatistics::spectrumFormed, plot,
            [plot](const XafsSpectrum& spectrum, const QString& name, const QString& savedName) {
                plot->pin(spectrum, name, savedName);
                plot->show();
            });
    connect(panel->histogram(), &HistogramView::rangeDragged, this,
            [this](double low, double high) {
                if (const Result* result = m_measurement.shownResult()) {
                    MapViews views = m_measurement.settings().views;
                    views[result->id].range = {MapRange::Kind::Fixed, low, high};
                    m_measurement.set(&Settings::views, views);
                }
            });
    connectSaving(panel, dialogs);
}

void AreaPane::connectSaving(AreaStatistics* panel, SaveDialogs* dialogs) {
    connect(panel, &AreaStatistics::saveSpectrumAsked, this, [this, panel, dialogs] {
        dialogs->askForTarget(tr("Save Mean Spectrum"),
                              {tr("XAFS Spectra (*.dat)"), tr("Any Files (* *.*)")},
                              QStringLiteral("dat"), [this, panel](const QString& name) {
                                  panel->say(saveAreaSpectrum(m_measurement, name));
                              });
    });
    connect(panel, &AreaStatistics::saveStatisticsAsked, this, [this, panel, dialogs] {
        dialogs->askForTarget(tr("Save Statistics"), {tr("Table (*.csv)"), tr("Any Files (* *.*)")},
                              QStringLiteral("csv"), [this, panel](const QString& name) {
                                  panel->say(saveStatistics(m_measurement, name));
                              });
    });
}
