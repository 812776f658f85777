#pragma once

#include <QVector>
#include <QWidget>
#include <memory>
#include <optional>

#include "measurement/Measurement.h"

namespace Ui {
class FrameStrip;
}
class FramePlayer;
class QWheelEvent;
class XafsView;

/// The strip under the image: which frame is on display, by slider, keys, its energy or a click on
/// the spectrum plot; what of it is shown, counts, absorption or the difference of two energies;
/// and the frames played one after another.
class FrameStrip : public QWidget {
    Q_OBJECT

  public:
    explicit FrameStrip(QWidget* parent = nullptr);
    ~FrameStrip() override;

    /// Works on a measurement from now on. Space plays in the view, too; the plots mark the frame,
    /// and a click on one goes to another.
    void follow(Measurement& measurement, QWidget* view, const QVector<XafsView*>& plots);

  signals:
    void previousAsked();
    void nextAsked();
    void frameAsked(int n);
    void said(const Outcome& outcome, const QString& file = QString());

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    /// What was on display, to go back to.
    struct Place {
        Shown shown;
        int frame;
    };

    void connectView();
    void connectPlot(XafsView* plot);
    void connectPlayer();
    void changed(Measurement::Changes what);
    void showFrame();
    void showView();
    void updateControls();
    void goTo(double energy);
    void takeEnergy();
    void chooseKind(FrameView::Kind kind);
    void setView(const FrameView& view);
    void takeDifference();
    void togglePlay();
    void turn(const QWheelEvent& event);
    const TiffData* frame() const;

    std::unique_ptr<Ui::FrameStrip> m_ui;
    Measurement* m_measurement = nullptr;
    QVector<XafsView*> m_plots;
    FramePlayer* m_player = nullptr;
    int m_turned = 0;               // of the wheel, in eighths of a degree
    std::optional<Place> m_before;  // the last click on a plot
};
