#pragma once

#include <QColor>
#include <QFrame>
#include <QPolygonF>
#include <QVector>
#include <memory>
#include <optional>

#include "drawing/ChCoord.h"
#include "spectra/XafsSpectrum.h"

namespace Ui {
class XafsView;
}
class QAction;
class QFileDialog;
class QMenu;
struct PlotCurve;
class Units;

/// The spectrum plot: a position's spectrum or a sample, with the standard, the references and the
/// fitted curve. It keeps copies of what it shows.
///
/// Energies are those that fits use: less the energy correction, with the references' offsets. The
/// fitted curve is drawn as it stands, and only over the double normalized spectra; then the
/// residual (sample minus fit) lies under the plot with its R factor.
class XafsView : public QFrame {
    Q_OBJECT

  public:
    struct Reference {
        XafsSpectrum spectrum;
        QString name;
        bool shown;
        QColor color;
    };

    static constexpr int MostPinned = 8;

    explicit XafsView(QWidget* parent = nullptr);
    ~XafsView() override;

    void setSample(const XafsSpectrum& spectrum, const QString& name);
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

    /// Pins the spectrum; for the menus and shortcuts of other windows, too.
    QAction* pinAction() const { return m_pinAction; }

    /// Whether there is a spectrum that saveData() would write.
    bool hasCurves() const;
    /// Sum of squares of sample minus fit over that of the sample, at the fit's energies; nothing
    /// without a fit on display or when it is no number.
    std::optional<double> rFactor() const;

  signals:
    /// The data have been taken over and will be drawn.
    void updated();

  public slots:
    void draw(QPainter* painter);
    void onMouseMoved();
    void update();
    /// Writes the sample (else the first shown spectrum) to the file and every further shown
    /// spectrum, the fitted curve among them and the pinned ones last, to the name with "-1", "-2",
    /// ... before the suffix. True when all were written; false, and nothing written, for an empty
    /// plot.
    bool saveData(const QString& fname);
    /// Writes the plot as it is shown, on white paper: as vector drawing with the suffix "pdf",
    /// otherwise as picture. False, with a debug line, when it cannot be written.
    bool savePlot(const QString& fname);

    /// Keeps a copy of the sample in the plot, with a colour of its own, until it is removed.
    /// Nothing without a sample or when MostPinned are kept.
    void pinSpectrum();
    void removePinned(int index);
    void removeAllPinned();

  private:
    enum Ordinate { MuT, Normalized, DoubleNormalized, PostBased, PostBasedBySpan };

    struct Shown {
        const XafsSpectrum* spectrum;
        QString name;
        QColor color;
    };

    void makeMenu();
    void updateMenu();
    void listPinned();
    void showSaveDialog();
    QColor colorOfPinned() const;
    bool showsFit() const;
    QColor ink() const;
    QColor paper() const;
    QColor readable(const QColor& color) const;
    QPolygonF residual() const;  // energy, sample minus fit
    QVector<Shown> shownSpectra() const;
    QVector<PlotCurve> curves() const;
    void addCurve(QVector<PlotCurve>* list, const XafsSpectrum& spectrum, const Spectrum& series,
                  const QColor& color, Qt::PenStyle style, const QString& name) const;
    const Spectrum& seriesOf(const XafsSpectrum& spectrum) const;
    double abscissa(double energy) const;
    QRectF extent(const QVector<PlotCurve>& list) const;
    QRectF plotRect() const;
    QRectF residualRect() const;
    void paintAxes(QPainter& painter, const QRectF& plot) const;
    void paintCurve(QPainter& painter, const PlotCurve& curve) const;
    void paintResidual(QPainter& painter, const QRectF& plot) const;
    void paintMarks(QPainter& painter, const QRectF& plot) const;
    void newOrdinate();
    void startZoom();
    void endZoom();
    void resetZoom();

    std::unique_ptr<Ui::XafsView> m_ui;
    std::unique_ptr<Units> m_units;
    ChCoord m_coord;
    std::optional<XafsSpectrum> m_sample;
    QString m_sampleName;
    std::optional<XafsSpectrum> m_standard;
    QString m_standardName;
    std::optional<XafsSpectrum> m_fit;
    QVector<Reference> m_references;
    QVector<Reference> m_pinned;
    QMenu* m_menu = nullptr;
    QMenu* m_removeMenu = nullptr;
    QAction* m_pinAction = nullptr;
    QAction* m_removeAllAction = nullptr;
    QFileDialog* m_plotDialog = nullptr;  // from the first use on
    bool m_onPaper = false;               // black on white, whatever the desktop's colours
    double m_raEnergy = 0.0;
    std::optional<QRectF> m_zoom;  // real coordinates
    std::optional<QPoint> m_zoomStart;
};
