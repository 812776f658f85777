#pragma once

#include <QTimer>
#include <QWidget>

#include "display/Panel.h"
#include "measurement/AreaSpectrum.h"

class HistogramView;
class MessageLine;
class QLabel;
class QLineEdit;
class QPushButton;

/// What the map on display holds inside the selected area: numbers, histogram, the mean spectrum of
/// the area, and an area of the bins whose value lies between two limits. It follows the
/// measurement while it is visible.
class AreaStatistics : public Panel<QWidget> {
    Q_OBJECT

  public:
    explicit AreaStatistics(Measurement& measurement, QWidget* parent = nullptr);

    HistogramView* histogram() const { return m_histogram; }
    void say(const Outcome& outcome);

  signals:
    void said(const Outcome& outcome, const QString& file = QString());
    /// The mean spectrum of the area, to be kept in a plot.
    void spectrumFormed(const XafsSpectrum& spectrum, const QString& name,
                        const QString& savedName);
    void saveSpectrumAsked();
    void saveStatisticsAsked();

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    QWidget* numbers();
    QWidget* threshold();
    QWidget* presses();
    void follow(Measurement::Changes what);
    void showValues();
    void showHead();
    void showRange(const Result& result);
    void offer();
    void takeThreshold();
    void formSpectrum();
    void spectrumDone(const AreaSpectrum& area);

    Measurement& m_measurement;
    AreaSpectrumJob m_job;
    QTimer m_timer;         // values follow at a pace, however often what is shown changes
    bool m_isSlow = false;  // there are so many that they follow when nothing changes any more
    const Result* m_shown = nullptr;  // whose values are
    Area m_area;                      // inside which they are
    QLabel* m_title;
    QLabel* m_numbers[6];
    HistogramView* m_histogram;
    QLineEdit* m_low;
    QLineEdit* m_high;
    QPushButton* m_select;
    QPushButton* m_spectrum;
    QPushButton* m_saveSpectrum;
    QPushButton* m_saveStatistics;
    MessageLine* m_message;
    const Result* m_limitsOf = nullptr;  // whose range the limits began with
};
