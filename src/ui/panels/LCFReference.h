#pragma once

#include <QFrame>
#include <memory>
#include <thread>

#include "measurement/Measurement.h"

namespace Ui {
class LCFReference;
}

/// One row of the analyzer panel: a reference of a measurement, with its background and energy
/// offset, and what the last fit under the cursor has found for it.
///
/// The fitter's thread calls nothing but fitInput().
class LCFReference : public QFrame {
    Q_OBJECT

  public:
    enum Kind { DMut = Reference::DMut, Ratio = Reference::Ratio, KindCount };

    /// What a fit needs of a reference. The revision is another whenever anything but the stored
    /// ratio has changed, and never the same for two references.
    struct FitInput {
        bool used = false;  ///< "Use" is checked and a spectrum is held
        XafsSpectrum spectrum;
        double storedRatio = 0.0;
        quint64 revision = 0;
    };

    /// @param index of the reference, which must be there
    LCFReference(Measurement& measurement, int index, QWidget* parent = nullptr);
    ~LCFReference() override;

    const Reference& reference() const;
    bool hasSpectrum() const { return reference().hasSpectrum(); }
    const XafsSpectrum& spectrum() const { return reference().spectrum(); }
    QString fileName() const { return reference().file().name; }
    bool isUsed() const { return reference().isUsed(); }
    void setUse(bool use) { changedUse(use); }
    double deltaE() const { return reference().deltaE(); }
    bool isShown() const;
    /// Whether the file can be chosen and cleared; empty: it can.
    void setFileChoiceUsable(const QString& whyNot);
    double ratio() const { return m_ratio; }
    /// Puts the button that chooses this reference's result image at the start of the row.
    void setChoice(QWidget* button);
    /// The controls that Tab goes to, in their order.
    QWidgetList inTabOrder() const;

    /// Result image of a kind; the first one for a kind that there is not.
    Analyzed2DRes* result(int kind) const;

    /// Keeps the present state for the next fit.
    void freezeFitInput();
    /// The frozen state; on the panel's own thread the present one.
    const FitInput& fitInput();

    /// Share and edge jump of the last fit.
    void setRatio(double ratio);
    void setDMut(double dMut);
    /// Shows the errors of the last fit, one sigma; NaN: not known.
    void setErrors(double ratio, double dMut);
    /// Shows none of these: there is no fit of which it is a part.
    void clearFit();

    /// Sets everything as a batch line does; an empty word, "VIC" in any case or an integer above
    /// 0 asks for the Victreen background.
    void setStd(const QString& fname, bool use, double deltaE, const QString& isVic);

  signals:
    void newFileSelected();
    void newDeltaE();
    void shownToggled();
    /// Files are to be chosen, the first of them for this reference.
    void filesAsked();
    /// How the choice of a file ended.
    void said(const Outcome& outcome, const QString& file);

  public slots:
    void newFile(const QString& fname);
    void changedUse(bool use);
    void editedDeltaE();
    void toggledIsVictreen(bool on);
    /// As the longer form, with the use box checked and the offset as it is.
    void setStd(const QString& fname, const QString& isVic);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void arrangeFields();
    void connectControls();
    void showReference();

    Measurement& m_measurement;
    int m_index;
    std::unique_ptr<Ui::LCFReference> m_ui;
    QWidget* m_choice = nullptr;
    QString m_toolTipOfR;
    QString m_toolTipOfT;
    quint64 m_shown = 0;  // revision of what the controls show
    double m_ratio = 0.0;
    double m_dMut = 0.0;  // all digits of what its field shows
    const std::thread::id m_home = std::this_thread::get_id();
    FitInput m_frozen;
};
