#include "window/SpectrumPane.h"

#include "base/Numbers.h"
#include "calibration/EnergyShift.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "panels/Analyzer.h"
#include "ui_Body.h"

SpectrumPane::SpectrumPane(Measurement& measurement, Ui::Body& ui, XafsView& view,
                           Analyzer& analyzer, QObject* parent)
    : QObject(parent), m_measurement(measurement), m_ui(ui), m_view(view), m_analyzer(analyzer) {
    connect(&measurement, &Measurement::changed, this, &SpectrumPane::changed);
    connect(&view, &XafsView::axesChosen, this, [this](int ordinate, int abscissa) {
        m_measurement.set(&Settings::plotOrdinate, ordinate);
        m_measurement.set(&Settings::plotAbscissa, abscissa);
    });
    connect(&view, &XafsView::correctedChosen, this,
            [this](bool on) { m_measurement.set(&Settings::correctedSpectra, on); });
    showSettings();
}

void SpectrumPane::changed(Measurement::Changes what) {
    if (what & Measurement::Setting) {
        showSettings();
    }
    if (what & Measurement::Standard) {
        showStandard();
    }
    const bool loading =
        m_measurement.isAtWork(Work::LoadI1) || m_measurement.isAtWork(Work::LoadI0);
    const QPointF position = m_measurement.position();
    const bool isNew = what & (Measurement::Position | Measurement::Standard |
                               (loading ? 0 : Measurement::AtWork));
    const bool isPointed = position.x() >= 0.0 && position.y() >= 0.0;
    // Beside the image there is no spectrum, and the one before must go.
    if (isNew && !loading && (isPointed || m_view.hasSample())) {
        show();
    }
}

void SpectrumPane::showSettings() {
    const Settings& settings = m_measurement.settings();
    m_view.setAxes(settings.plotOrdinate, settings.plotAbscissa);
    m_view.setCorrected(settings.correctedSpectra);
    m_view.setRaEnergy(settings.raEnergy);
    m_view.setCrystalSpacing(m_measurement.spacing());
    m_analyzer.view()->setCrystalSpacing(m_measurement.spacing());
}

void SpectrumPane::showStandard() {
    const XafsSpectrum* standard = m_measurement.standard();
    if (standard != nullptr && !standard->isEmpty()) {
        m_view.setStandard(*standard, m_measurement.standardFile());
    } else {
        m_view.clearStandard();
    }
}

void SpectrumPane::show() {
    const QPointF position = m_measurement.position();
    if (m_ui.dispA->realPosition() != position) {
        m_ui.dispA->setRealMousePos(position.x(), position.y());  // a batch has moved it
    }
    const XafsSpectrum& sample = m_measurement.sample();
    if (sample.isEmpty()) {
        m_view.clearSample();
    } else {
        const int x = toPixel(position.x());
        const int y = toPixel(position.y());
        m_view.setSample(sample, tr("Position (%1, %2)").arg(x).arg(y),
                         QStringLiteral("Position (%1, %2)").arg(x).arg(y));
    }
    if (m_analyzer.isOpen()) {
        m_analyzer.analyzeAndShowPoint();
    }
    showLabels(sample);
}

void SpectrumPane::showLabels(const XafsSpectrum& sample) {
    const XafsSpectrum* standard = m_measurement.standard();
    const bool comparable = standard != nullptr && !standard->isEmpty() && !sample.isEmpty();
    const double fromStd = comparable ? calibrationEdge(&sample) - calibrationEdge(standard) : 0.0;
    const int x = toPixel(m_measurement.position().x());
    const int y = toPixel(m_measurement.position().y());
    m_ui.Position->setText(QString::asprintf("(% 4d, % 4d)", x, y));
    m_ui.EShiftOnTbl->setText(
        QString::asprintf("%5.2f", shiftAt(&m_measurement.map().image, x, y)));
    m_ui.EShiftFromStd->setText(QString::asprintf("%5.2f", fromStd));
}
