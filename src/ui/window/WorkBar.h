#pragma once

#include <QElapsedTimer>
#include <QProgressBar>

#include "base/TimeLeft.h"
#include "measurement/Inputs.h"

/// How far an analysis is and how long it still takes, in words on a bar; hidden while there is
/// none.
class WorkBar : public QProgressBar {
    Q_OBJECT

  public:
    explicit WorkBar(QWidget* parent);

    /// Per cent of a work that has this name, 100 with its end.
    void showWork(Work work, const QString& name, double percent);
    /// Files of a load, of 0 while there is none.
    void showFiles(int done, int total);

  private:
    QString withLeft(const QString& text) const;

    int m_files = 0;  // of the load shown
    Work m_work = Work::None;
    QElapsedTimer m_clock;
    TimeLeft m_left;
};

/// What an analysis is called, in the language of the interface.
QString nameOfWork(Work work, int method);
