#pragma once

#include <QCoreApplication>
#include <QThread>

#include "panels/AnalyzeProc.h"
#include "panels/LCFReference.h"
#include "panels/PromptLoop.h"

/// The other side: answers at once, in a thread of its own.
class Answerer : public QObject {
    Q_OBJECT

  public:
    unsigned answers() const { return m_answers.load(std::memory_order_acquire); }

  signals:
    void finished();

  public slots:
    void analyzeSpectrum0(const XafsSpectrum&, const QVector<LCFReference*>&, XafsSpectrum*, bool) {
        emit finished();
        m_answers.fetch_add(1, std::memory_order_release);
    }

  private:
    std::atomic<unsigned> m_answers{0};
};

/// The signals between window and fitter, with their arguments and nothing behind them.
class RoundTrips : public QObject {
    Q_OBJECT

  public:
    /// Prompt: with both loops of the analyzer panel; else with Qt's own, as they come.
    explicit RoundTrips(bool prompt) : m_isPrompt(prompt) {
        qRegisterMetaType<QVector<LCFReference*>>("QVector<LCFReference*>");
        if (prompt) {
            m_thread.setEventDispatcher(new PromptDispatcher);
        }
        m_answerer.moveToThread(&m_thread);
        connect(this, &RoundTrips::analyzeSpectrum0, &m_answerer, &Answerer::analyzeSpectrum0);
        connect(&m_answerer, &Answerer::finished, this, &RoundTrips::next);
        m_thread.start(QThread::InheritPriority);
    }
    ~RoundTrips() override {
        m_thread.quit();
        m_thread.wait();
    }

    void run(const XafsSpectrum& spectrum, int trips) {
        m_spectrum = spectrum;
        m_left = trips;
        ask();
        while (m_left > 0) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

  signals:
    void analyzeSpectrum0(const XafsSpectrum&, const QVector<LCFReference*>&, XafsSpectrum*, bool);

  public slots:
    void next() {
        if (--m_left > 0) {
            ask();
        }
        if (m_isPrompt) {
            m_prompt.run(
                this, [this] { return m_left > 0; },
                [this] { return m_answerer.answers() == m_asked; });
        }
    }

  private:
    void ask() {
        ++m_asked;
        emit analyzeSpectrum0(m_spectrum, m_panels, &m_spectrum, false);
    }

    bool m_isPrompt;
    QThread m_thread;
    Answerer m_answerer;
    PromptDelivery m_prompt;
    XafsSpectrum m_spectrum;
    QVector<LCFReference*> m_panels{nullptr, nullptr};
    unsigned m_asked = 0;
    int m_left = 0;
};
