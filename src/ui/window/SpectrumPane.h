#pragma once

#include <QObject>

#include "measurement/Measurement.h"

namespace Ui {
class Body;
}
class Analyzer;
class XafsView;

/// What the main window says of the spectrum at the position: its labels, the spectrum window, and
/// the analyzer while it is open.
class SpectrumPane : public QObject {
    Q_OBJECT

  public:
    SpectrumPane(Measurement& measurement, Ui::Body& ui, XafsView& view, Analyzer& analyzer,
                 QObject* parent);

    void show();
    void showStandard();

  private:
    void changed(Measurement::Changes what);
    void showSettings();
    void showLabels(const XafsSpectrum& sample);

    Measurement& m_measurement;
    Ui::Body& m_ui;
    XafsView& m_view;
    Analyzer& m_analyzer;
};
