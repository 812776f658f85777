#include "panels/AreaStatistics.h"

#include <QDoubleValidator>
#include <QElapsedTimer>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <cmath>

#include "display/Availability.h"
#include "display/HistogramView.h"
#include "display/MessageLine.h"
#include "measurement/AreaValues.h"
#include "measurement/Display.h"
#include "measurement/MapDisplay.h"
#include "panels/WhyNot.h"

namespace {

constexpr int FollowMs = 60;
constexpr int SlowMs = 10;
constexpr int Classes = 64;

QString text(double value) {
    return std::isnan(value) ? QStringLiteral("-") : QString::number(value, 'g', 5);
}

QPushButton* button(const char* name, const QString& text, const QString& tip) {
    auto* made = new QPushButton(text);
    made->setObjectName(QString::fromLatin1(name));
    setOwnToolTip(made, tip);
    return made;
}

}  // namespace

AreaStatistics::AreaStatistics(Measurement& measurement, QWidget* parent)
    : Panel(parent),
      m_measurement(measurement),
      m_job(measurement),
      m_title(new QLabel),
      m_histogram(new HistogramView),
      m_message(new MessageLine) {
    setObjectName(QStringLiteral("AreaStatistics"));
    setWindowTitle(tr("Statistics"));
    m_title->setWordWrap(true);
    m_histogram->setObjectName(QStringLiteral("Histogram"));
    m_message->setObjectName(QStringLiteral("Message"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addWidget(numbers());
    layout->addWidget(m_histogram, 1);
    layout->addWidget(threshold());
    layout->addWidget(presses());
    layout->addWidget(m_message);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &AreaStatistics::showValues);
    connect(&measurement, &Measurement::changed, this, &AreaStatistics::follow);
    connect(&m_job, &AreaSpectrumJob::formed, this, &AreaStatistics::spectrumDone);
    connect(&m_job, &AreaSpectrumJob::stopped, this, &AreaStatistics::offer);
}

QWidget* AreaStatistics::numbers() {
    auto* box = new QWidget;
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    const QString names[] = {tr("Bins:"),   tr("Mean:"),    tr("Standard deviation:"),
                             tr("Median:"), tr("Minimum:"), tr("Maximum:")};
    const char* const objects[] = {"Count", "Mean", "Deviation", "Median", "Minimum", "Maximum"};
    QFormLayout* form = nullptr;
    for (int i = 0; i < 6; ++i) {
        if (i % 3 == 0) {
            form = new QFormLayout;
            layout->addLayout(form);
        }
        m_numbers[i] = new QLabel;
        m_numbers[i]->setObjectName(QString::fromLatin1(objects[i]));
        m_numbers[i]->setTextInteractionFlags(Qt::TextSelectableByMouse);
        form->addRow(names[i], m_numbers[i]);
    }
    return box;
}

QWidget* AreaStatistics::threshold() {
    auto* box = new QGroupBox(tr("Area by threshold"));
    auto* layout = new QHBoxLayout(box);
    m_low = new QLineEdit;
    m_high = new QLineEdit;
    m_low->setObjectName(QStringLiteral("ThresholdLow"));
    m_high->setObjectName(QStringLiteral("ThresholdHigh"));
    m_low->setToolTip(tr("Lower limit, included"));
    m_high->setToolTip(tr("Upper limit, included"));
    const auto label = [](const QString& name, QLineEdit* field) {
        field->setValidator(new QDoubleValidator(field));
        field->setMinimumWidth(field->fontMetrics().horizontalAdvance(QStringLiteral("-0.00000")));
        auto* made = new QLabel(name);
        made->setBuddy(field);
        return made;
    };
    m_select = button("SelectThreshold", tr("Select"),
                      tr("Select the bins of the map on display whose value lies from the one "
                         "limit to the other, as they are now"));
    layout->addWidget(label(tr("From"), m_low));
    layout->addWidget(m_low, 1);
    layout->addWidget(label(tr("to"), m_high));
    layout->addWidget(m_high, 1);
    layout->addWidget(m_select);
    connect(m_select, &QPushButton::clicked, this, &AreaStatistics::takeThreshold);
    return box;
}

QWidget* AreaStatistics::presses() {
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    m_spectrum = button("MeanSpectrum", tr("Mean Spectrum of the Area"),
                        tr("Form the mean spectrum of the area and keep it in the spectrum plot; "
                           "again stops it"));
    m_saveSpectrum = button("SaveAreaSpectrum", tr("Save Mean Spectrum..."),
                            tr("Save the mean spectrum of the area as a spectrum file"));
    m_saveStatistics = button("SaveStatistics", tr("Save Statistics..."),
                              tr("Save the numbers of all maps inside the area as a table"));
    layout->addWidget(m_spectrum);
    auto* saving = new QHBoxLayout;
    saving->addWidget(m_saveSpectrum);
    saving->addWidget(m_saveStatistics);
    layout->addLayout(saving);
    connect(m_spectrum, &QPushButton::clicked, this, &AreaStatistics::formSpectrum);
    connect(m_saveSpectrum, &QPushButton::clicked, this, &AreaStatistics::saveSpectrumAsked);
    connect(m_saveStatistics, &QPushButton::clicked, this, &AreaStatistics::saveStatisticsAsked);
    return box;
}

void AreaStatistics::say(const Outcome& outcome) {
    m_message->say(outcome);
    emit said(outcome);
}

void AreaStatistics::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    showValues();
}

/// Ranges and colours change no value.
void AreaStatistics::follow(Measurement::Changes what) {
    constexpr auto Looks =
        Measurement::Changes(Measurement::Setting) | Measurement::Display | Measurement::Position;
    if (!isVisible() || what == Measurement::Changes(Measurement::Position)) {
        return;
    }
    const bool isSame = !(what & ~Looks) && m_shown == m_measurement.shownResult() &&
                        m_area == m_measurement.settings().area;
    if (isSame) {
        showHead();
    } else if (m_isSlow || !m_timer.isActive()) {
        m_timer.start(FollowMs);
    }
}

void AreaStatistics::showHead() {
    const Result* result = m_measurement.shownResult();
    if (result != nullptr) {
        showRange(*result);
    } else {
        m_histogram->setRange(0.0, 0.0);
        m_limitsOf = nullptr;
    }
    m_title->setText(result != nullptr ? describe(m_measurement, *result)
                                       : tr("No map is on display."));
}

void AreaStatistics::showValues() {
    QElapsedTimer clock;
    clock.start();
    const Result* result = m_measurement.shownResult();
    m_shown = result;
    m_area = m_measurement.settings().area;
    std::vector<double> values;
    if (result != nullptr) {
        values = valuesInArea(*result, m_area);
    }
    showHead();
    m_histogram->setHistogram(histogramOf(values, Classes));
    const Statistics s = statisticsOf(std::move(values));
    m_numbers[0]->setText(result != nullptr ? QString::number(s.n) : QStringLiteral("-"));
    const double shown[] = {s.mean, s.sd, s.median, s.min, s.max};
    for (int i = 0; i < 5; ++i) {
        m_numbers[i + 1]->setText(text(shown[i]));
    }
    m_isSlow = clock.hasExpired(SlowMs);
    offer();
}

/// The limits begin as the range of the map's colours.
void AreaStatistics::showRange(const Result& result) {
    const auto coloring = coloringOf(m_measurement, result);
    const double low = coloring.low;
    const double high = coloring.high;
    m_histogram->setAboutZero(coloring.colors->isDiverging);
    m_histogram->setRange(low, high);
    if (m_limitsOf != &result && low <= high) {
        m_limitsOf = &result;
        m_low->setText(fieldText(low));
        m_high->setText(fieldText(high));
    }
}

void AreaStatistics::offer() {
    const Result* result = m_measurement.shownResult();
    const bool hasMap = result != nullptr && result->image.hasData() && result->tookPart();
    const QString noMap = hasMap ? QString() : tr("Put a map on display first.");
    setUsable(m_select, noMap);
    setUsable(m_low, noMap);
    setUsable(m_high, noMap);
    const QString noImages = whyNoImages(m_measurement);
    setUsable(m_spectrum, noImages);
    m_spectrum->setText(m_job.isRunning() ? tr("Stop") : tr("Mean Spectrum of the Area"));
    setUsable(m_saveSpectrum, noImages);
    setUsable(m_saveStatistics,
              m_measurement.results().empty() ? tr("Analyze the image first.") : QString());
}

void AreaStatistics::takeThreshold() {
    const Result* result = m_measurement.shownResult();
    if (result == nullptr) {
        return;
    }
    Area area;
    Outcome outcome = thresholdArea(m_measurement, result->id, result->reference,
                                    m_low->text().toDouble(), m_high->text().toDouble(), &area);
    if (!outcome.failed()) {
        outcome += m_measurement.judge(area);
    }
    if (!outcome.failed()) {
        m_measurement.set(&Settings::area, area);
    }
    say(outcome);
}

void AreaStatistics::formSpectrum() {
    if (m_job.isRunning()) {
        m_job.stop();
        return;
    }
    const Outcome outcome = m_job.start();
    if (outcome.failed()) {
        say(outcome);
    }
    offer();
}

void AreaStatistics::spectrumDone(const AreaSpectrum& area) {
    offer();
    if (area.spectrum.isEmpty()) {
        say(Outcome::failure(
            tr("no bin of the area has counts at all energies: there is no mean spectrum")));
        return;
    }
    emit spectrumFormed(area.spectrum, tr("Mean of %1 bins").arg(area.bins),
                        QStringLiteral("Mean of %1 bins").arg(area.bins));
    say(Outcome::note(tr("the mean spectrum of %1 bins is in the spectrum plot").arg(area.bins)));
}
