#pragma once

#include <QFrame>
#include <QTimer>
#include <functional>

#include "measurement/SpectrumFit.h"

class DispA;
class MessageLine;
class QLabel;
class QPushButton;
class QTableWidget;
class SaveDialogs;

/// The window that fits a spectrum file with the references in use: what each has in it, with
/// errors, and the plot. While it is open it follows the references and the settings.
class SpectrumFitWindow : public QFrame {
    Q_OBJECT

  public:
    SpectrumFitWindow(Measurement& measurement, SaveDialogs* dialogs);

    /// Fits the file and shows how that ended.
    void fit(const QString& fileName);

  signals:
    void said(const Outcome& outcome, const QString& file);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    using Save = Outcome (*)(const Measurement& measurement, const SpectrumFit& fit,
                             const QString& fileName);

    void makeControls();
    void arrange();
    void askForSample();
    void fitAgain();
    void showFit();
    void showShares();
    void save(Save how, const QString& fileName);
    void paintPlot(QPainter* painter);

    Measurement& m_measurement;
    SaveDialogs* m_dialogs;
    SpectrumFit m_fit;
    SpectrumPlot m_plot;
    bool m_isOutdated = false;
    QTimer m_pace;
    QPushButton* m_choose;
    QLabel* m_name;
    QTableWidget* m_shares;
    QLabel* m_numbers;
    DispA* m_canvas;
    QPushButton* m_saveTable;
    QPushButton* m_savePlot;
    MessageLine* m_message;
};
