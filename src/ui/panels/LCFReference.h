#pragma once

#include <QFrame>
#include <memory>

#include "spectra/XafsSpectrum.h"

namespace Ui {
class LCFReference;
}
class Analyzed2DRes;

/// One reference of the analyzer panel: its spectrum with background and energy offset, what the
/// last fit found for it, and its result images.
///
/// The fitter's thread reads nothing but the frozen fit input and calls nothing but fitInput(),
/// setRatio() and setDMut().
class LCFReference : public QFrame {
    Q_OBJECT

  public:
    enum Kind { DMut = 0, Ratio = 1, KindCount = 2 };

    /// What a fit needs of a reference. The revision is another whenever anything but the stored
    /// ratio has changed, and never the same for two panels.
    struct FitInput {
        bool used = false;  ///< "Use" is checked and a spectrum is held
        XafsSpectrum spectrum;
        double storedRatio = 0.0;
        quint64 revision = 0;
    };

    explicit LCFReference(QWidget* parent = nullptr);
    ~LCFReference() override;

    /// At least one point has been read.
    bool hasSpectrum() const { return !m_spectrum.isEmpty(); }
    const XafsSpectrum& spectrum() const { return m_spectrum; }
    QString fileName() const;
    bool isUsed() const { return m_use; }
    void setUse(bool use);
    bool isShown() const;
    /// Whether the file can be chosen and cleared; empty: it can.
    void setFileChoiceUsable(const QString& whyNot);
    double deltaE() const { return m_deltaE; }
    double ratio() const { return m_ratio; }

    /// Result image of a kind; the first one for a kind that there is not.
    Analyzed2DRes* result(int kind) const;

    /// Keeps the present state for the next fit.
    void freezeFitInput();
    /// The frozen state; on the panel's own thread the present one.
    const FitInput& fitInput();

    /// Share and edge jump of the last fit: stored at once, shown by the panel's thread.
    void setRatio(double ratio);
    void setDMut(double dMut);

    /// Sets everything as a batch line does; an empty word, "VIC" in any case or an integer above
    /// 0 asks for the Victreen background.
    void setStd(const QString& fname, bool use, double deltaE, const QString& isVic);

  signals:
    void newFileSelected();
    void newDeltaE();
    /// Use box, Show box or background changed.
    void changed();

  public slots:
    void newFile(const QString& fname);
    void changedUse(bool use);
    void editedDeltaE();
    void toggledIsVictreen(bool on);
    /// As the longer form, with the use box checked and the DeltaE field as it is.
    void setStd(const QString& fname, const QString& isVic);

  private:
    void normalise();
    void showNormalisation();
    void inputChanged();

    std::unique_ptr<Ui::LCFReference> m_ui;
    XafsSpectrum m_spectrum;
    bool m_use = false;
    double m_deltaE = 0.0;
    int m_background = XafsSpectrum::Simple;
    double m_ratio = 0.0;
    std::unique_ptr<Analyzed2DRes> m_results[KindCount];
    quint64 m_revision = 0;
    FitInput m_frozen;
};
