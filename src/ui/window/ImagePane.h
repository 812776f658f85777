#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QTimer>
#include <memory>

#include "measurement/Measurement.h"

namespace Ui {
class Body;
}
class CrossSection;
class CursorNumbers;
class QButtonGroup;
class QLineEdit;
class QPainter;

/// The image of the main window with what belongs to it: colour bar, cross sections, the value
/// under the mouse, the choice of stack and frame, bins and the selected area. A view of a
/// measurement; zoom and the position of the mouse are the image view's own.
class ImagePane : public QObject {
    Q_OBJECT

  public:
    ImagePane(Measurement& measurement, Ui::Body& ui, QObject* parent);
    ~ImagePane() override;

    /// Paints the picture on display into the image view.
    void draw(QPainter* painter);
    /// The colour bar's range has been changed by the user.
    void newBar();
    void updateValueAndCrossSections();
    /// Shows everything again.
    void refresh();

  signals:
    void said(const Outcome& outcome, const QString& file = QString());

  private:
    void connectControls();
    void connectBins();
    void changed(Measurement::Changes what);
    void showSettings();
    void showArea();
    void refreshSoon();
    void showBar();
    void showMark();
    QImage markedPicture();
    QImage framePictureMade();
    void changeView(const std::function<void(MapView&)>& change);
    QString sharesText(int x, int y) const;
    const Result* mapInSections() const;
    QPair<double, double> sectionRange() const;
    bool isLoading() const;

    Measurement& m_measurement;
    Ui::Body& m_ui;
    QButtonGroup* m_choice;
    CrossSection* m_hCross = nullptr;
    CrossSection* m_vCross = nullptr;
    std::unique_ptr<CursorNumbers> m_numbers;
    QImage m_painted;        // when it is not the frame's or the result's own picture
    qint64 m_paintedOf = 0;  // key of the result's picture, or serial of the frame's
    QTimer m_timer;
    QElapsedTimer m_refreshed;
    bool m_showing = false;  // what the controls tell meanwhile is no wish
};
