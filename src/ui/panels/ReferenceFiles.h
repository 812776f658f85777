#pragma once

#include <QObject>
#include <QStringList>

#include "measurement/Measurement.h"

class QFileDialog;

/// Takes spectrum files for references, several at once: chosen in a dialog or dropped on a panel.
/// Each file gets a reference that takes part in the fit, as with a line of a batch.
class ReferenceFiles : public QObject {
    Q_OBJECT

  public:
    /// Files may be dropped on the panel from now on.
    ReferenceFiles(Measurement& measurement, QWidget* panel);

    /// Asks for files; the first goes to the given reference, -1: to the first empty one.
    void ask(int reference);
    /// Empty references are filled first, then new ones are added. What is no spectrum leaves its
    /// reference empty for the next file.
    void take(const QStringList& files, int reference = -1);

  signals:
    void said(const Outcome& outcome, const QString& file);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    Outcome read(const QString& file, int reference);
    int firstEmpty() const;

    Measurement& m_measurement;
    QWidget* m_panel;
    QFileDialog* m_dialog = nullptr;  // made when it is first shown: making one takes long
    int m_asked = -1;                 // the reference that the dialog is for
};
