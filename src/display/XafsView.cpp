#include "display/XafsView.h"

#include <QDir>
#include <QFileInfo>
#include <QPainter>

#include "app/Globals.h"
#include "display/DispA.h"
#include "imagedata/Units.h"
#include "spectra/SpectrumFile.h"
#include "ui_XafsView.h"

namespace {

/// The name with "-number" before its suffix.
QString numberedName(const QString& fname, int number) {
    const QFileInfo info(fname);
    return info.dir().absoluteFilePath(info.completeBaseName() + QLatin1Char('-') +
                                       QString::number(number) + QLatin1Char('.') + info.suffix());
}

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
    connect(m_ui->Canvas, &DispA::drawImage1, this, &XafsView::draw);
    connect(m_ui->Canvas, &DispA::mouseMoved0, this, &XafsView::onMouseMoved);
    connect(m_ui->Canvas, &DispA::mousePressed0, this, &XafsView::startZoom);
    connect(m_ui->Canvas, &DispA::mouseReleased0, this, &XafsView::endZoom);
    connect(m_ui->Canvas, &DispA::mouseDoubleClicked0, this, &XafsView::resetZoom);
    connect(m_ui->Ordinate, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &XafsView::resetZoom);
    connect(m_ui->Backgrounds, &QCheckBox::toggled, m_ui->Canvas, qOverload<>(&QWidget::update));
    connect(m_ui->Abscissa, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &XafsView::resetZoom);
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
    m_ui->Canvas->QWidget::update();
    emit updated();
}

QVector<XafsView::Shown> XafsView::shownSpectra() const {
    QVector<Shown> shown;
    if (m_sample && !m_sample->isEmpty()) {
        shown.append({&*m_sample, m_sampleName, palette().color(QPalette::WindowText)});
    }
    if (m_standard && !m_standard->isEmpty()) {
        shown.append({&*m_standard, m_standardName, getColor(2)});
    }
    for (const Reference& reference : m_references) {
        if (reference.shown && !reference.spectrum.isEmpty()) {
            shown.append({&reference.spectrum, reference.name, reference.color});
        }
    }
    return shown;
}

bool XafsView::saveData(const QString& fname) {
    bool written = true;
    const bool corrected = m_ui->Corrected->isChecked();
    int number = 0;
    for (const Shown& shown : shownSpectra()) {
        const QString name = number == 0 ? fname : numberedName(fname, number);
        written = writeSpectrumFile(name, *shown.spectrum, corrected) && written;
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
    const QRect drawn = QRect(*m_zoomStart, m_ui->Canvas->mouse().current()).normalized();
    m_zoomStart.reset();
    if (drawn.width() > 4 && drawn.height() > 4) {
        m_zoom = QRectF(QPointF(m_coord.s2rX(drawn.left()), m_coord.s2rY(drawn.bottom())),
                        QPointF(m_coord.s2rX(drawn.right()), m_coord.s2rY(drawn.top())));
    }
    m_ui->Canvas->QWidget::update();
}

void XafsView::resetZoom() {
    m_zoom.reset();
    m_zoomStart.reset();
    m_ui->Canvas->QWidget::update();
}

void XafsView::onMouseMoved() {
    const QPoint at = m_ui->Canvas->mouse().current();
    const Unit& unit = UnitTable[static_cast<std::size_t>(m_ui->Abscissa->currentIndex())];
    m_ui->ReadOut->setText(hasCurves() ? QString::asprintf(unit.format, m_coord.s2rX(at.x())) +
                                             QStringLiteral(" %1   %2")
                                                 .arg(QString::fromLatin1(unit.name))
                                                 .arg(m_coord.s2rY(at.y()), 0, 'f', 4)
                                       : QString());
}
