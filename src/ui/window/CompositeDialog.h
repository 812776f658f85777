#pragma once

#include <QDialog>
#include <array>

#include "measurement/Measurement.h"

class QAction;
class QComboBox;
class QLabel;
class QMainWindow;

/// Chooses which references are shown as red, green and blue in one picture. A view of the
/// measurement: what is chosen is on display at once.
class CompositeDialog : public QDialog {
    Q_OBJECT

  public:
    CompositeDialog(Measurement& measurement, QWidget* parent);

    /// Opens it with the composite that is on display, else one of the first references.
    void open() override;

  private:
    void fillIn();
    void choose();
    void changed(Measurement::Changes what);
    Composite firstReferences() const;

    Measurement& m_measurement;
    std::array<QComboBox*, 3> m_colors{};
    QLabel* m_message;
    bool m_showing = false;
};

/// The action that opens it, "actionComposite".
QAction* addCompositeAction(QMainWindow* window, Measurement& measurement);
