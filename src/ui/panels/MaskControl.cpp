#include "panels/MaskControl.h"

#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>
#include <cmath>

#include "display/Availability.h"
#include "panels/NumberField.h"

namespace {

constexpr int StepsPerUnit = 2;
constexpr int Highest = 50;  // of the slider; the field takes any factor

struct Blanks {
    qint64 bins = 0;
    qint64 blank = 0;
};

/// Of an image with a mask.
Blanks blanksOf(const Analyzed2DRes& image) {
    Blanks found;
    const BinRaster raster = image.grid().raster();
    const unsigned char* const mask = image.mask()->data();
    const auto width = static_cast<std::ptrdiff_t>(image.grid().width);
    for (int row = 0; row < raster.rows; ++row) {
        const unsigned char* const line = mask + raster.y(row) * width;
        for (int column = 0; column < raster.columns; ++column) {
            const bool isBin = raster.holds(column, row);
            found.bins += isBin ? 1 : 0;
            found.blank += isBin && line[raster.x(column)] != 0 ? 1 : 0;
        }
    }
    return found;
}

}  // namespace

MaskControl::MaskControl(Measurement& measurement, const Controls& controls, QObject* parent)
    : QObject(parent), m_measurement(measurement), m_controls(controls) {
    m_controls.slider->setRange(0, Highest * StepsPerUnit);
    m_controls.slider->setPageStep(5 * StepsPerUnit);
    m_controls.field->setFixedWidth(
        m_controls.field->fontMetrics().horizontalAdvance(QStringLiteral("0000.00M")));
    m_pace.setSingleShot(true);
    m_pace.setInterval(0);
    connect(&m_pace, &QTimer::timeout, this,
            [this] { set(m_controls.slider->value() / static_cast<double>(StepsPerUnit)); });
    connect(m_controls.slider, &QSlider::valueChanged, &m_pace, QOverload<>::of(&QTimer::start));
    connect(m_controls.press, &QPushButton::clicked, this,
            [this](bool on) { set(on ? m_factor : 0.0); });
    connect(m_controls.field, &QLineEdit::editingFinished, this, &MaskControl::takeField);
    update();
}

void MaskControl::set(double factor) {
    m_pace.stop();
    const Outcome outcome = m_measurement.setMask(factor);
    if (outcome.failed()) {
        emit said(outcome);  // else the count says it
    }
    update();
}

void MaskControl::takeField() {
    const bool isTyped = m_controls.field->isModified();
    const double typed = std::max(0.0, numberIn(m_controls.field));
    noteTaken(m_controls.field);
    if (isTyped) {
        set(typed);
    }
    finishNumber(m_controls.field, m_factor);
}

void MaskControl::update() {
    const double factor = m_measurement.settings().mask;
    const bool isOn = factor > 0.0;
    m_factor = isOn ? factor : m_factor;
    m_controls.press->setChecked(isOn);
    showNumber(m_controls.field, m_factor);
    if (!m_pace.isActive()) {
        const QSignalBlocker blocked(m_controls.slider);
        m_controls.slider->setValue(static_cast<int>(
            std::lround(std::min(factor, static_cast<double>(Highest)) * StepsPerUnit)));
    }
    showCount();
    // A mask that is on can be taken off whatever there is.
    const bool lacksErrors = !isOn && !m_measurement.whyNotMask().isEmpty();
    const QString whyNot = lacksErrors ? tr("Run again with error maps.") : QString();
    setUsable(m_controls.press, whyNot);
    setUsable(m_controls.field, whyNot);
    setUsable(m_controls.slider, whyNot);
}

void MaskControl::showCount() {
    const Result* jump = m_measurement.find(ResultId::TotalJump);
    const Counted now{m_measurement.settings().mask, jump->run, jump->image.isMasked()};
    if (now == m_counted) {
        return;
    }
    m_counted = now;
    if (!(now.factor > 0.0) || !now.isMasked) {
        m_controls.count->setText(now.factor > 0.0 ? tr("no map to mask") : tr("no mask"));
        return;
    }
    const Blanks found = blanksOf(jump->image);
    const double share =
        static_cast<double>(found.blank) / static_cast<double>(std::max<qint64>(1, found.bins));
    const QLocale locale;
    m_controls.count->setText(tr("%1 of %2 bins blank (%3 %)")
                                  .arg(locale.toString(found.blank), locale.toString(found.bins),
                                       QString::number(100.0 * share, 'f', 1)));
}
