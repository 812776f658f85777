#pragma once

#include <QEventLoop>
#include <QSignalSpy>
#include <QStringList>
#include <QTimer>

#include "Controls.h"
#include "batch/BatchDispatcher.h"
#include "panels/Analyzer.h"
#include "panels/BatchCtrl.h"
#include "window/Body.h"

inline Analyzer* analyzerWindow() {
    return topLevel<Analyzer>();
}

/// Runs batch lines in a main window to their end.
class BatchRun {
  public:
    explicit BatchRun(Body& body) : m_body(body) {}

    /// Whether the batch reached its end. A batch that hangs is a failure, not a slow machine.
    bool run(const QStringList& lines, int timeout = 120000) {
        m_done = 0;
        m_problems.clear();
        QEventLoop loop;
        QObject context;
        bool ended = false;
        QObject::connect(&m_body, &Body::commandDone, &context,
                         [this](const CmdLine& cmd, const QStringList& problems) {
                             ++m_done;
                             for (const QString& problem : problems) {
                                 m_problems << cmd.text + ": " + problem;
                             }
                         });
        QObject::connect(m_body.dispatcher(), &BatchDispatcher::ended, &loop, [&] {
            ended = true;
            loop.quit();
        });
        QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
        QTimer::singleShot(0, &loop, [&] { m_body.batchCtrl()->dispatchLines(lines); });
        loop.exec();
        return ended;
    }

    /// Whether every line of the batch did its work.
    bool succeeds(const QStringList& lines) {
        const bool ended = run(lines);
        for (const QString& problem : m_problems) {
            qWarning("%s", qPrintable(problem));
        }
        return ended && m_problems.isEmpty();
    }

    int done() const { return m_done; }
    QStringList problems() const { return m_problems; }

  private:
    Body& m_body;
    int m_done = 0;
    QStringList m_problems;
};
