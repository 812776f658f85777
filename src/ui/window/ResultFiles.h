#pragma once

#include <QList>
#include <QObject>
#include <functional>

#include "measurement/Measurement.h"

class QAction;
class SaveDialogs;

/// Saving all results at once, in the main window's menu.
class ResultFiles : public QObject {
    Q_OBJECT

  public:
    ResultFiles(Measurement& measurement, SaveDialogs* dialogs, QObject* parent);

    /// Entries of the File menu.
    QList<QAction*> actions() const { return {m_results, m_table}; }

  signals:
    void said(const Outcome& outcome, const QString& file);

  private:
    using Save = std::function<Outcome(Measurement& measurement, const QString& fileName)>;

    QAction* add(const QString& name, const QString& text, const QString& title,
                 const QString& filter, const QString& suffix, const Save& save);
    void update();

    Measurement& m_measurement;
    SaveDialogs* m_dialogs;
    QAction* m_results;
    QAction* m_table;
};
