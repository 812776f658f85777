#include "display/XafsView.h"

#include <QFileInfo>
#include <QPainter>
#include <cmath>

#include "base/DebugLog.h"
#include "base/Globals.h"
#include "display/Availability.h"
#include "display/DispA.h"
#include "files/FileNames.h"
#include "spectra/SpectrumFile.h"
#include "spectra/Units.h"
#include "ui_XafsView.h"

namespace {

constexpr int DegreesIndex = 3;  // in UnitTable

}  // namespace

XafsView::XafsView(QWidget* parent)
    : QFrame(parent), m_ui(std::make_unique<Ui::XafsView>()), m_units(std::make_unique<Units>()) {
    m_ui->setupUi(this);
    m_ui->Ordinate->addItems({QStringLiteral("mu-t"), tr("Normalized"), tr("Double normalized"),
                              tr("Post based"), tr("Post based by span")});
    m_ui->Ordinate->setCurrentIndex(DoubleNormalized);
    for (const Unit& unit : UnitTable) {
        m_ui->Abscissa->addItem(QString::fromLatin1(unit.name));
    }
    m_ui->ReadOut->setAttribute(Qt::WA_TransparentForMouseEvents);
    makeMenu();
    connect(m_ui->Canvas, &DispA::drawImage1, this, &XafsView::draw);
    connect(m_ui->Canvas, &DispA::mouseMoved0, this, &XafsView::onMouseMoved);
    connect(m_ui->Canvas, &DispA::mousePressed0, this, &XafsView::startZoom);
    connect(m_ui->Canvas, &DispA::mouseReleased0, this, &XafsView::endZoom);
    connect(m_ui->Canvas, &DispA::mouseDoubleClicked0, this, &XafsView::resetZoom);
    connect(m_ui->Ordinate, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &XafsView::newOrdinate);
    connect(m_ui->Abscissa, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &XafsView::resetZoom);
    newOrdinate();
}

XafsView::~XafsView() = default;

void XafsView::setSample(const XafsSpectrum& spectrum, const QString& name) {
    m_sample = spectrum;
    m_sampleName = name;
    update();
}

void XafsView::clearSample() {
    m_sample.reset();
    m_fit.reset();
    update();
}

void XafsView::setStandard(const XafsSpectrum& spectrum, const QString& name) {
    m_standard = spectrum;
    m_standardName = QFileInfo(name).fileName();
    update();
}

void XafsView::clearStandard() {
    m_standard.reset();
    update();
}

void XafsView::setFit(const XafsSpectrum& spectrum) {
    m_fit = spectrum;
    update();
}

void XafsView::clearFit() {
    m_fit.reset();
    update();
}

void XafsView::setReferences(const QVector<Reference>& references) {
    m_references = references;
    update();
}

void XafsView::setCrystalSpacing(double d) {
    if (m_units->d() != d && m_ui->Abscissa->currentIndex() == DegreesIndex) {
        resetZoom();
    }
    m_units->setD(d);
    m_ui->Canvas->QWidget::update();
}

void XafsView::setRaEnergy(double energy) {
    m_raEnergy = energy;
    m_ui->Canvas->QWidget::update();
}

bool XafsView::hasCurves() const {
    return !shownSpectra().isEmpty();
}

void XafsView::update() {
    updateMenu();
    m_ui->ReadOut->clear();  // what is under the mouse has changed
    m_ui->Canvas->QWidget::update();
    emit updated();
}

bool XafsView::showsFit() const {
    return m_fit && !m_fit->isEmpty() && m_sample && !m_sample->isEmpty() &&
           m_ui->Ordinate->currentIndex() == DoubleNormalized;
}

QPolygonF XafsView::residual() const {
    QPolygonF points;
    if (!showsFit()) {
        return points;
    }
    points.reserve(m_fit->size());
    for (int i = 0; i < m_fit->size(); ++i) {
        const double e = m_fit->correctedEnergy(i);
        const double sample = m_sample->doubleNormalizedPreBase(e + m_sample->energyCorrection());
        points.append(QPointF(e, sample - m_fit->value(i)));
    }
    return points;
}

std::optional<double> XafsView::rFactor() const {
    double differences = 0.0;
    double samples = 0.0;
    const QPolygonF points = residual();
    for (int i = 0; i < points.size(); ++i) {
        const double sample = points[i].y() + m_fit->value(i);
        differences += points[i].y() * points[i].y();
        samples += sample * sample;
    }
    const double ratio = differences / samples;
    return std::isfinite(ratio) ? std::optional<double>(ratio) : std::nullopt;
}

QVector<XafsView::Shown> XafsView::shownSpectra() const {
    QVector<Shown> shown;
    if (m_sample && !m_sample->isEmpty()) {
        shown.append({&*m_sample, m_sampleName, ink()});
    }
    if (showsFit()) {
        shown.append({&*m_fit, tr("Fit"), getColor(0)});
    }
    if (m_standard && !m_standard->isEmpty()) {
        shown.append({&*m_standard, m_standardName, getColor(2)});
    }
    for (const Reference& reference : m_references) {
        if (reference.shown && !reference.spectrum.isEmpty()) {
            shown.append({&reference.spectrum, reference.name, reference.color});
        }
    }
    for (const Reference& pinned : m_pinned) {
        shown.append({&pinned.spectrum, pinned.name, pinned.color});
    }
    return shown;
}

bool XafsView::saveData(const QString& fname) {
    bool written = true;
    const bool corrected = m_ui->Corrected->isChecked();
    int number = 0;
    for (const Shown& shown : shownSpectra()) {
        const QString name = number == 0 ? fname : taggedName(fname, QString::number(number));
        const bool saved = writeSpectrumFile(name, *shown.spectrum, corrected);
        if (saved) {
            debugFile("Saved", name);
        }
        written = saved && written;
        ++number;
    }
    return written && number > 0;
}

void XafsView::startZoom() {
    if (hasCurves() && m_ui->Canvas->mouse().buttons() & Qt::LeftButton) {
        m_zoomStart = m_ui->Canvas->mouse().current();
    }
}

void XafsView::endZoom() {
    if (!m_zoomStart) {
        return;
    }
    const QPoint from = *m_zoomStart;
    const QPoint to = m_ui->Canvas->mouse().current();
    m_zoomStart.reset();
    if (std::abs(from.x() - to.x()) > 4 && std::abs(from.y() - to.y()) > 4) {
        const QRectF area(QPointF(m_coord.s2rClampedX(from.x()), m_coord.s2rClampedY(from.y())),
                          QPointF(m_coord.s2rClampedX(to.x()), m_coord.s2rClampedY(to.y())));
        // Below what doubles tell apart there is nothing more to see.
        const QRectF zoom = area.normalized();
        if (zoom.width() > 1e-9 * std::abs(zoom.right()) &&
            zoom.height() > 1e-9 * std::abs(zoom.bottom())) {
            m_zoom = zoom;
            m_ui->ReadOut->clear();
        }
    }
    m_ui->Canvas->QWidget::update();
}

void XafsView::resetZoom() {
    m_zoom.reset();
    m_zoomStart.reset();
    m_ui->ReadOut->clear();
    m_ui->Canvas->QWidget::update();
}

void XafsView::newOrdinate() {
    setUsable(m_ui->Backgrounds,
              m_ui->Ordinate->currentIndex() == MuT ? QString() : tr("Choose mu-t first."));
    resetZoom();
}

void XafsView::onMouseMoved() {
    const QPoint at = m_ui->Canvas->mouse().current();
    if (!hasCurves() || !plotRect().contains(at)) {
        m_ui->ReadOut->clear();
        return;
    }
    const Unit& unit = UnitTable[static_cast<std::size_t>(m_ui->Abscissa->currentIndex())];
    m_ui->ReadOut->setText(QString::asprintf(unit.format, m_coord.s2rX(at.x())).trimmed() + ' ' +
                           QString::fromLatin1(unit.name) + QStringLiteral("   ") +
                           QString::number(m_coord.s2rY(at.y()), 'f', 4));
}
