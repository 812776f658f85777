#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPair>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "base/TimeLeft.h"
#include "batch/BatchText.h"
#include "measurement/Inputs.h"

class Console;

/// Shows how far batches are, one after another: line, rows, per cent and the time left of the work
/// that is under way; on a terminal by a bar, where there is none by a line of the log now and
/// then. The lines come from a thread of their own, as a long save keeps the program's.
class Progress : public QObject {
    Q_OBJECT

  public:
    /// A batch while it runs.
    struct Batch {
        QString place;  ///< put in front: "folder 3 of 12"; may be empty
        BatchText text;
        std::function<int()> lineInWork;        ///< index in text.lines; asked from any thread
        std::function<QPair<int, int>()> rows;  ///< of bins done, of how many; 0 of 0: unknown
    };

    /// seconds: between the lines where there is no terminal; 0: none.
    Progress(Console* console, double seconds);
    ~Progress() override;

    void begin(const Batch& batch);

  public slots:
    void work(Work work, double done, double of);
    /// A line has been dealt with.
    void lineDone();
    /// The batch has ended: nothing is shown until another begins.
    void end();

  private:
    QString head() const;
    QString measure() const;
    void tellEvery(std::chrono::milliseconds interval);
    void tell();

    Console* m_console;
    std::thread m_thread;
    std::mutex m_mutex;  // of all below
    std::condition_variable m_wake;
    bool m_closes = false;
    Batch m_batch;
    bool m_runs = false;
    Work m_work = Work::None;  // None: the line has told nothing
    double m_done = 0.0;
    double m_of = 0.0;
    QPair<int, int> m_rows;
    QElapsedTimer m_clock;
    TimeLeft m_left;
};
