#pragma once

#include <QObject>
#include <memory>
#include <optional>

#include "absorption/AbsorptionSource.h"
#include "frames/DarkFrame.h"
#include "measurement/Measurement.h"

/// The mean spectrum of the selected area, of its bins with counts at all energies: mu-t at the
/// energies of the frames, with the mean of the bins' energy shifts as its correction. Without
/// points where no bin has counts or memory ran out.
struct AreaSpectrum {
    XafsSpectrum spectrum;
    int bins = 0;
    QString problem;          ///< names the file that could not be read
    QStringList aboutCounts;  ///< see SaturatedPixels
};

/// Failed: there are no frames, or no bin to form it of.
Outcome judgeAreaSpectrum(const Measurement& measurement);

/// Forms it at once, on all cores, with the present settings.
AreaSpectrum areaSpectrumOf(Measurement& measurement);

/// The same in the background. Frames that are about to change end it.
class AreaSpectrumJob : public QObject {
    Q_OBJECT

  public:
    explicit AreaSpectrumJob(Measurement& measurement, QObject* parent = nullptr);
    ~AreaSpectrumJob() override;

    /// formed() follows, later than this call, unless judgeAreaSpectrum() fails, which is returned.
    Outcome start();
    void stop();
    bool isRunning() const { return m_source != nullptr; }

  signals:
    void formed(const AreaSpectrum& spectrum);
    void stopped();

  private:
    void finished();

    Measurement& m_measurement;
    RowJob m_job;
    std::optional<DarkFrame> m_dark;  // those of the measurement may change meanwhile
    std::unique_ptr<AbsorptionSource> m_source;
    std::shared_ptr<RowSums> m_sums;
    Normalisation m_rule{0};
};
