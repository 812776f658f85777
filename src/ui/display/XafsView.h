#pragma once

#include <QFrame>
#include <functional>
#include <memory>
#include <optional>

#include "display/Panel.h"
#include "drawing/ChCoord.h"
#include "drawing/SpectrumPlot.h"
#include "measurement/Outcome.h"

namespace Ui {
class XafsView;
}
class QAction;
class QFileDialog;
class QMenu;
class MessageLine;

/// The window of a spectrum plot: shows the value and lets the user choose what of it is seen,
/// magnify, read out, pin spectra and save.
class XafsView : public Panel<QFrame> {
    Q_OBJECT

  public:
    using Reference = SpectrumPlot::Named;

    static constexpr int MostPinned = 8;

    explicit XafsView(QWidget* parent = nullptr);
    ~XafsView() override;

    /// The plot as it is seen, with the texts and colours of this window.
    const SpectrumPlot& plot() const { return m_plot; }

    /// The name in saved plots, which are in English, is that of the window unless told.
    void setSample(const XafsSpectrum& spectrum, const QString& name,
                   const QString& savedName = QString());
    void clearSample();
    void setStandard(const XafsSpectrum& spectrum, const QString& name);
    void clearStandard();
    void setFit(const XafsSpectrum& spectrum);
    void clearFit();
    void setReferences(const QVector<Reference>& references);

    /// Spacing in angstrom for the abscissa in degrees.
    void setCrystalSpacing(double d);
    /// Energy (eV) marked by a line; none when not above 0.
    void setRaEnergy(double energy);
    /// Energy (eV) of the frame on display, marked by a line.
    void setFrameEnergy(const std::optional<double>& energy);

    /// Ordinate as SpectrumPlot::Ordinate, abscissa as in UnitTable.
    void setAxes(int ordinate, int abscissa);
    /// Whether saved energies are less the energy correction.
    void setCorrected(bool on);
    /// The spectra that are kept.
    QVector<XafsSpectrum> pinned() const;

    /// Pins the spectrum; for the menus and shortcuts of other windows, too.
    QAction* pinAction() const { return m_pinAction; }

    /// What writes files: calls a writer for a name, or says why not. Without one the writers are
    /// called as they are.
    using Write = std::function<Outcome(const QString& name, const std::function<bool()>& writer)>;
    void setWriter(const Write& write) { m_write = write; }

    /// Whether there is a spectrum that saveData() would write.
    bool hasCurves() const;
    bool hasSample() const { return m_plot.hasSample(); }
    std::optional<double> rFactor() const { return m_plot.rFactor(); }

  signals:
    /// The data have been taken over and will be drawn.
    void updated();
    void axesChosen(int ordinate, int abscissa);
    void correctedChosen(bool on);
    /// A click on the plot: the energy (eV) of frames there, before any correction.
    void energyChosen(double energy);
    /// The click was the first of a double click.
    void choiceTakenBack();
    /// How the saving of the plot ended.
    void said(const Outcome& outcome, const QString& file);

  public slots:
    void draw(QPainter* painter);
    void onMouseMoved();
    void update();
    /// Writes the sample (else the first shown spectrum) to the file and every further shown
    /// spectrum, the fitted curve among them and the pinned ones last, to the name with "-1", "-2",
    /// ... before the suffix. True when all were written; false, and nothing written, for an empty
    /// plot.
    bool saveData(const QString& fname);
    /// Writes the plot with what is shown of it, as writePlot() does, and says how it ended. False,
    /// with a debug line, when it cannot be written.
    bool savePlot(const QString& fname);

    /// Keeps a copy of the sample in the plot, with a colour of its own, until it is removed.
    /// Nothing without a sample or when MostPinned are kept.
    void pinSpectrum();
    /// The same for another spectrum.
    void pin(const XafsSpectrum& spectrum, const QString& name, const QString& savedName);
    void removePinned(int index);
    void removeAllPinned();

  private:
    Outcome write(const QString& fname, const std::function<bool()>& writer);
    void makeMenu();
    void updateMenu();
    void listPinned();
    void showSaveDialog();
    QColor colorOfPinned() const;
    void takeColors();
    QRectF axes() const;
    void newOrdinate();
    void newAbscissa();
    void startZoom();
    void endZoom();
    void resetZoom();
    void onDoubleClick();

    std::unique_ptr<Ui::XafsView> m_ui;
    SpectrumPlot m_plot;
    Write m_write;
    MessageLine* m_message;  // hidden while there is nothing to say
    ChCoord m_coord;         // of the plot as it was last painted
    QMenu* m_menu = nullptr;
    QMenu* m_removeMenu = nullptr;
    QAction* m_pinAction = nullptr;
    QAction* m_removeAllAction = nullptr;
    QFileDialog* m_plotDialog = nullptr;  // from the first use on
    std::optional<QPoint> m_zoomStart;
    bool m_chose = false;  // by the last click
};
