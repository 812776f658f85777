#include "display/XafsView.h"

#include <QFileInfo>
#include <QPainter>
#include <cmath>

#include "base/Globals.h"
#include "display/Availability.h"
#include "display/DispA.h"
#include "display/MessageLine.h"
#include "drawing/Letters.h"
#include "drawing/PlotPicture.h"
#include "files/FileNames.h"
#include "files/WholeFile.h"
#include "spectra/SpectrumFile.h"
#include "spectra/Units.h"
#include "ui_XafsView.h"

namespace {
constexpr int ClickDistance = 3;  // pixels that a hand may move between press and release
}

XafsView::XafsView(QWidget* parent)
    : Panel(parent), m_ui(std::make_unique<Ui::XafsView>()), m_message(new MessageLine(this)) {
    m_ui->setupUi(this);
    m_message->setObjectName(QStringLiteral("Message"));
    m_message->hide();
    m_ui->viewLayout->addWidget(m_message);
    m_plot.texts = {
        {QStringLiteral("mu-t"), tr("Normalized"), tr("Double normalized"), tr("Post based"),
         tr("Post based by span")},
        {tr("Energy [eV]"), tr("Energy [keV]"), tr("Wavelength [A]"), tr("Bragg angle [deg]")},
        tr("Fit"),
        tr("Residual"),
        tr("No spectrum")};
    for (const QString& ordinate : m_plot.texts.ordinates) {
        m_ui->Ordinate->addItem(ordinate);
    }
    m_ui->Ordinate->setCurrentIndex(m_plot.ordinate);
    for (const Unit& unit : UnitTable) {
        m_ui->Abscissa->addItem(QString::fromLatin1(unit.name));
    }
    m_ui->ReadOut->setAttribute(Qt::WA_TransparentForMouseEvents);
    makeMenu();
    connect(m_ui->Canvas, &DispA::drawImage1, this, &XafsView::draw);
    connect(m_ui->Canvas, &DispA::mouseMoved0, this, &XafsView::onMouseMoved);
    connect(m_ui->Canvas, &DispA::mousePressed0, this, &XafsView::startZoom);
    connect(m_ui->Canvas, &DispA::mouseReleased0, this, &XafsView::endZoom);
    connect(m_ui->Canvas, &DispA::mouseDoubleClicked0, this, &XafsView::onDoubleClick);
    connect(m_ui->Ordinate, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &XafsView::newOrdinate);
    connect(m_ui->Abscissa, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &XafsView::newAbscissa);
    connect(m_ui->Backgrounds, &QCheckBox::toggled, this, [this](bool on) {
        m_plot.backgrounds = on;
        m_ui->Canvas->QWidget::update();
    });
    connect(m_ui->Corrected, &QCheckBox::toggled, this, &XafsView::correctedChosen);
    newOrdinate();
}

XafsView::~XafsView() = default;

void XafsView::setAxes(int ordinate, int abscissa) {
    m_ui->Ordinate->setCurrentIndex(ordinate);
    m_ui->Abscissa->setCurrentIndex(abscissa);
}

void XafsView::setCorrected(bool on) {
    m_ui->Corrected->setChecked(on);
}

QVector<XafsSpectrum> XafsView::pinned() const {
    QVector<XafsSpectrum> spectra;
    for (const Reference& kept : m_plot.pinned) {
        spectra << kept.spectrum;
    }
    return spectra;
}

void XafsView::setSample(const XafsSpectrum& spectrum, const QString& name,
                         const QString& savedName) {
    m_plot.sample = Reference{spectrum, name, true, QColor(), savedName};
    update();
}

void XafsView::clearSample() {
    m_plot.sample.reset();
    m_plot.fit.reset();
    update();
}

void XafsView::setStandard(const XafsSpectrum& spectrum, const QString& name) {
    m_plot.standard = Reference{spectrum, QFileInfo(name).fileName()};
    update();
}

void XafsView::clearStandard() {
    m_plot.standard.reset();
    update();
}

void XafsView::setFit(const XafsSpectrum& spectrum) {
    m_plot.fit = spectrum;
    update();
}

void XafsView::clearFit() {
    m_plot.fit.reset();
    update();
}

void XafsView::setReferences(const QVector<Reference>& references) {
    m_plot.references = references;
    update();
}

void XafsView::setCrystalSpacing(double d) {
    if (m_plot.spacing != d && m_plot.abscissa == SpectrumPlot::Degrees) {
        resetZoom();
    }
    m_plot.spacing = d;
    m_ui->Canvas->QWidget::update();
}

void XafsView::setRaEnergy(double energy) {
    m_plot.raEnergy = energy;
    m_ui->Canvas->QWidget::update();
}

void XafsView::setFrameEnergy(const std::optional<double>& energy) {
    if (m_plot.frameEnergy != energy) {
        m_plot.frameEnergy = energy;
        m_ui->Canvas->QWidget::update();
    }
}

bool XafsView::hasCurves() const {
    return !m_plot.shown().isEmpty();
}

void XafsView::update() {
    updateMenu();
    m_ui->ReadOut->clear();  // what is under the mouse has changed
    m_ui->Canvas->QWidget::update();
    emit updated();
}

void XafsView::takeColors() {
    m_plot.colors = {palette().color(QPalette::WindowText), palette().color(QPalette::Base),
                     palette().color(QPalette::Disabled, QPalette::WindowText)};
}

QRectF XafsView::axes() const {
    return PlotLayout::axesIn(QRectF(m_ui->Canvas->rect()),
                              plotLettersOf(Letters(m_ui->Canvas->font())), m_plot.showsFit());
}

void XafsView::draw(QPainter* painter) {
    takeColors();
    const PlotLayout layout =
        paintPlot(*painter, m_plot, QRectF(m_ui->Canvas->rect()), Letters(m_ui->Canvas->font()));
    if (layout.curves.isEmpty()) {
        return;
    }
    m_coord = layout.coord;
    if (m_zoomStart) {
        painter->setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DashLine));
        painter->drawRect(QRect(*m_zoomStart, m_ui->Canvas->mouse().current()).normalized());
    }
}

Outcome XafsView::write(const QString& fname, const std::function<bool()>& writer) {
    if (m_write) {
        return m_write(fname, writer);
    }
    return writer() ? Outcome() : Outcome::failure(tr("cannot be written: %1").arg(fname));
}

bool XafsView::saveData(const QString& fname) {
    Outcome outcome;
    const bool corrected = m_ui->Corrected->isChecked();
    int number = 0;
    for (const SpectrumPlot::Shown& shown : m_plot.shown()) {
        const QString name = number == 0 ? fname : taggedName(fname, QString::number(number));
        outcome += write(name, [&] {
            return writeSpectrumFile(name, *shown.spectrum, corrected) && noteSaved(name);
        });
        ++number;
    }
    return number > 0 && !outcome.failed();
}

void XafsView::startZoom() {
    m_chose = false;
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
    if ((from - to).manhattanLength() <= ClickDistance) {
        if (axes().contains(to)) {
            m_chose = true;
            emit energyChosen(m_plot.energyOf(m_coord.s2rX(to.x())) + m_plot.correction());
        }
    } else if (std::abs(from.x() - to.x()) > 4 && std::abs(from.y() - to.y()) > 4) {
        const QRectF area(QPointF(m_coord.s2rClampedX(from.x()), m_coord.s2rClampedY(from.y())),
                          QPointF(m_coord.s2rClampedX(to.x()), m_coord.s2rClampedY(to.y())));
        // Below what doubles tell apart there is nothing more to see.
        const QRectF zoom = area.normalized();
        if (zoom.width() > 1e-9 * std::abs(zoom.right()) &&
            zoom.height() > 1e-9 * std::abs(zoom.bottom())) {
            m_plot.zoom = zoom;
            m_ui->ReadOut->clear();
        }
    }
    m_ui->Canvas->QWidget::update();
}

void XafsView::onDoubleClick() {
    if (m_chose) {
        m_chose = false;
        emit choiceTakenBack();
    }
    resetZoom();
}

void XafsView::resetZoom() {
    m_plot.zoom.reset();
    m_zoomStart.reset();
    m_ui->ReadOut->clear();
    m_ui->Canvas->QWidget::update();
}

void XafsView::newOrdinate() {
    m_plot.ordinate = static_cast<SpectrumPlot::Ordinate>(m_ui->Ordinate->currentIndex());
    setUsable(m_ui->Backgrounds,
              m_plot.ordinate == SpectrumPlot::MuT ? QString() : tr("Choose mu-t first."));
    resetZoom();
    emit axesChosen(m_plot.ordinate, m_plot.abscissa);
}

void XafsView::newAbscissa() {
    m_plot.abscissa = static_cast<SpectrumPlot::Abscissa>(m_ui->Abscissa->currentIndex());
    resetZoom();
    emit axesChosen(m_plot.ordinate, m_plot.abscissa);
}

void XafsView::onMouseMoved() {
    const QPoint at = m_ui->Canvas->mouse().current();
    if (!hasCurves() || !axes().contains(at)) {
        m_ui->ReadOut->clear();
        return;
    }
    const Unit& unit = UnitTable[m_plot.abscissa];
    m_ui->ReadOut->setText(QString::asprintf(unit.format, m_coord.s2rX(at.x())).trimmed() + ' ' +
                           QString::fromLatin1(unit.name) + QStringLiteral("   ") +
                           QString::number(m_coord.s2rY(at.y()), 'f', 4));
}
