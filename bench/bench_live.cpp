// The main window at work, with all its windows open, against the same work without any; and how
// long an event waits meanwhile.
//
//   bench_live [SIZE [ENERGIES [TURNS [PARTS]]]]        512 100 5 all unless said
//
// PARTS: letters of what is measured, f fits, o other analyses, m what is done to maps, s stopping,
// p frames played.
//
// "ratio" is the time of the window by that of a Measurement without one, as tarnwick-batch has it:
// the shortest of all turns, which take turns; in brackets the same of the processor time of all
// cores, which other programs lengthen less. "wait" is the longest time that a posted event was
// not handled, in milliseconds by the clock; other programs lengthen it. "busy" is the processor
// time that the interface's thread used meanwhile, which they do not.

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMouseEvent>
#include <QSlider>
#include <QTimer>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <functional>
#include <optional>
#include <thread>

#include "SampleStacks.h"
#include "base/Globals.h"
#include "frames/TiffFile.h"
#include "measurement/Measurement.h"
#include "window/Body.h"

namespace {

qint64 processorTime(clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
    timespec time{};
    clock_gettime(clock, &time);
    return qint64{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

/// Posts an event to the interface's thread every millisecond once the one before was handled.
class Heartbeat : public QObject {
  public:
    Heartbeat() : m_sender([this] { send(); }) { m_before = processorTime(); }
    ~Heartbeat() override {
        m_ended = true;
        m_sender.join();
    }
    double worstWait() const { return static_cast<double>(m_worst) * 1e-6; }
    double worstBusy() const { return static_cast<double>(m_busy) * 1e-6; }

  protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        const qint64 now = processorTime();
        m_busy = std::max(m_busy, now - m_before);
        m_before = now;
        m_worst = std::max(m_worst, m_since.nsecsElapsed());
        m_waiting = false;
        return true;
    }

  private:
    void send() {
        while (!m_ended) {
            if (!m_waiting) {
                m_since.start();
                m_waiting = true;
                QCoreApplication::postEvent(this, new QEvent(QEvent::User));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    std::atomic<bool> m_ended{false};
    std::atomic<bool> m_waiting{false};
    QElapsedTimer m_since;
    qint64 m_worst = 0;
    qint64 m_busy = 0;
    qint64 m_before = 0;
    std::thread m_sender;
};

void must(const Outcome& outcome) {
    if (outcome.failed()) {
        qFatal("%s", qPrintable(outcome.failures.join("; ")));
    }
}

struct Took {
    double milliseconds = 0.0;
    double processor = 0.0;
    double wait = 0.0;
    double busy = 0.0;
};

void turnEvents(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/// From begin() to the end of the work; with a heartbeat till what follows has been shown.
Took timed(Measurement& measurement, Work work, bool watched, const std::function<void()>& begin) {
    Took took;
    std::optional<Heartbeat> heart;
    if (watched) {
        heart.emplace();
        turnEvents(20);
    }
    QEventLoop loop;
    QElapsedTimer clock;
    const qint64 before = processorTime(CLOCK_PROCESS_CPUTIME_ID);
    const auto done = QObject::connect(
        &measurement, &Measurement::ended, &loop, [&](Work ended, const Outcome& outcome) {
            if (ended == work) {
                took.milliseconds = static_cast<double>(clock.nsecsElapsed()) * 1e-6;
                took.processor =
                    static_cast<double>(processorTime(CLOCK_PROCESS_CPUTIME_ID) - before) * 1e-6;
                if (outcome.failed() && !outcome.stopped) {
                    std::fprintf(stderr, "%s\n", qPrintable(outcome.failures.join("; ")));
                }
                loop.quit();
            }
        });
    clock.start();
    begin();
    if (took.milliseconds == 0.0) {
        loop.exec();
    }
    QObject::disconnect(done);
    if (heart) {
        turnEvents(150);
        took.wait = heart->worstWait();
        took.busy = heart->worstBusy();
    }
    return took;
}

/// Something that ends at once or in the background.
Took atOnce(Measurement& measurement, const std::function<void()>& action) {
    Heartbeat heart;
    turnEvents(20);
    QElapsedTimer clock;
    clock.start();
    QTimer::singleShot(0, &heart, action);
    turnEvents(1);
    while (measurement.working() != Work::None) {
        turnEvents(1);
    }
    Took took;
    took.milliseconds = static_cast<double>(clock.nsecsElapsed()) * 1e-6;
    turnEvents(300);
    took.wait = heart.worstWait();
    took.busy = heart.worstBusy();
    return took;
}

void prepare(Measurement& measurement, const SampleStacks& stacks) {
    must(measurement.loadStandard(stacks.reference(0)));
    for (int i = 0; i < 3; ++i) {
        must(measurement.addReference());
        measurement.change(i, [&](Reference& reference) {
            must(reference.read(stacks.reference(i % 2)));
            reference.setDeltaE(i == 2 ? 1.0 : 0.0);
            reference.setUse(true);
        });
    }
    measurement.set(&Settings::halfWidth, 0);
    measurement.set(&Settings::halfHeight, 0);
    measurement.set(&Settings::raEnergy, 7112.0);
    measurement.set(&Settings::differenceFrom, 7050.0);
    measurement.set(&Settings::differenceTo, 7150.0);
}

Took load(Measurement& measurement, const SampleStacks& stacks, StackId id, bool watched) {
    return timed(measurement, id == StackId::I1 ? Work::LoadI1 : Work::LoadI0, watched, [&] {
        measurement.load(id, id == StackId::I1 ? stacks.i1() : stacks.i0(), true);
    });
}

void line(const char* name, const Took& took, double ratio = 0.0, double processor = 0.0) {
    std::printf("%-34s %9.1f ms", name, took.milliseconds);
    if (ratio > 0.0) {
        std::printf("  ratio %5.2f (%4.2f)", ratio, processor);
    } else {
        std::printf("                    ");
    }
    std::printf("  wait %7.1f  busy %7.1f\n", took.wait, took.busy);
    std::fflush(stdout);
}

Took worse(const Took& a, const Took& b) {
    return {std::min(a.milliseconds, b.milliseconds), std::min(a.processor, b.processor),
            std::min(a.wait, b.wait), std::min(a.busy, b.busy)};
}

class Live {
  public:
    Live(const SampleStacks& stacks, int turns) : m_stacks(stacks), m_turns(turns) {
        m_body.show();
        m_body.measurement().askForWindow(Measurement::Window::Analyzer);
        m_body.measurement().askForWindow(Measurement::Window::Calibration);
        turnEvents(300);
        line("load I1", load(window(), m_stacks, StackId::I1, true));
        line("load I0", load(window(), m_stacks, StackId::I0, true));
        load(m_plain, m_stacks, StackId::I1, false);
        load(m_plain, m_stacks, StackId::I0, false);
        prepare(window(), m_stacks);
        prepare(m_plain, m_stacks);
        window().setPosition(m_stacks.width() / 2, m_stacks.height() / 3);
        turnEvents(300);
    }

    Measurement& window() { return m_body.measurement(); }
    int turns() const { return m_turns; }

    /// Until what a step of the slider of the mask has changed has been painted.
    void dragMask(const char* name) {
        constexpr int Steps = 20;
        QSlider* const slider = findSlider();
        slider->setSliderDown(true);
        QElapsedTimer clock;
        clock.start();
        const qint64 before = processorTime();
        for (int i = 0; i < Steps; ++i) {
            slider->setValue(4 + i);
            turnEvents(0);
            QCoreApplication::processEvents();
            QCoreApplication::processEvents();
        }
        const double all = static_cast<double>(clock.nsecsElapsed()) * 1e-6;
        const double busy = static_cast<double>(processorTime() - before) * 1e-6;
        slider->setSliderDown(false);
        turnEvents(100);
        line(name, {all / Steps, 0.0, 0.0, busy / Steps});
    }

    void compare(const char* name, Work work) {
        Took with{1e300, 1e300, 1e300, 1e300};
        Took without{1e300, 1e300, 1e300, 1e300};
        for (int turn = 0; turn < m_turns; ++turn) {
            without = worse(without, timed(m_plain, work, false, [&] { start(m_plain, work); }));
            const Took took = timed(window(), work, false, [&] { start(window(), work); });
            with.milliseconds = std::min(with.milliseconds, took.milliseconds);
            with.processor = std::min(with.processor, took.processor);
            turnEvents(100);
            const Took watched = timed(window(), work, true, [&] { start(window(), work); });
            with.wait = std::min(with.wait, watched.wait);
            with.busy = std::min(with.busy, watched.busy);
        }
        line(name, with, with.milliseconds / without.milliseconds,
             with.processor / without.processor);
    }

    /// From the press of the button that stops it, by another thread, to the first event that is
    /// handled after the end of the work; the longest of all turns.
    void stop(const char* name, Work work, int after, const char* button) {
        Took worst;
        auto* const pressed = m_body.findChild<QAbstractButton*>(QString::fromLatin1(button));
        for (int turn = 0; turn < m_turns; ++turn) {
            QElapsedTimer clock;
            std::thread hand;
            const auto press = [&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(after * (turn + 1)));
                clock.start();
                for (const QEvent::Type type :
                     {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                    const bool isDown = type == QEvent::MouseButtonPress;
                    QCoreApplication::postEvent(
                        pressed,
                        new QMouseEvent(type, QPointF(5, 5), Qt::LeftButton,
                                        isDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier));
                }
            };
            QEventLoop loop;
            bool isStopped = false;
            double passed = 0.0;
            const auto done = QObject::connect(
                &window(), &Measurement::ended, &loop, [&](Work, const Outcome& outcome) {
                    isStopped = outcome.stopped;
                    QTimer::singleShot(0, &loop, [&] {
                        passed = static_cast<double>(clock.nsecsElapsed()) * 1e-6;
                        loop.quit();
                    });
                });
            if (work == Work::Deglitch) {
                must(window().deglitch(2.0, 0.1));
            } else {
                start(window(), work);
            }
            if (window().working() == Work::None) {
                std::printf("%s: ended at once\n", name);
                return;
            }
            hand = std::thread(press);
            loop.exec();
            hand.join();
            QObject::disconnect(done);
            turnEvents(300);
            window().stop();  // what a press that came too late has begun
            if (isStopped) {
                worst.milliseconds = std::max(worst.milliseconds, passed);
            } else {
                std::printf("%s: ended before the press\n", name);
            }
            turnEvents(200);
        }
        line(name, worst);
    }

    /// Frames that are seen in a second, of those asked for.
    void play(const char* name, const FrameView& view) {
        window().set(&Settings::shown, Shown::I1);
        window().set(&Settings::frameView, view);
        auto* const speed = m_body.findChild<QComboBox*>(QStringLiteral("PlaySpeed"));
        auto* const button = m_body.findChild<QAbstractButton*>(QStringLiteral("Play"));
        for (int i = 0; i < speed->count(); ++i) {
            speed->setCurrentIndex(i);
            int frames = 0;
            Heartbeat heart;
            turnEvents(300);
            const auto counted = QObject::connect(&window(), &Measurement::changed, &heart,
                                                  [&, last = -1]() mutable {
                                                      frames += window().frame() != last ? 1 : 0;
                                                      last = window().frame();
                                                  });
            QElapsedTimer clock;
            clock.start();
            button->click();
            turnEvents(3000);
            const double seconds = static_cast<double>(clock.nsecsElapsed()) * 1e-9;
            button->click();
            QObject::disconnect(counted);
            std::printf("%-34s %9s %5.1f frames a second            wait %7.1f  busy %7.1f\n", name,
                        qPrintable(speed->currentText()), frames / seconds, heart.worstWait(),
                        heart.worstBusy());
            std::fflush(stdout);
        }
    }

    void plays() {
        FrameView view;
        play("play, counts", view);
        view.kind = FrameView::Kind::Absorption;
        play("play, absorption", view);
        view.kind = FrameView::Kind::Difference;
        view.from = window().source().energies().front();
        play("play, difference", view);
        window().set(&Settings::frameView, FrameView());
    }

    void set(bool errors, bool eachRow, Shown shown) {
        for (Measurement* measurement : {&window(), &m_plain}) {
            measurement->set(&Settings::errorMaps, errors);
        }
        // What tarnwick-batch does unless it is told otherwise.
        window().set(&Settings::showsEachRow, eachRow);
        window().set(&Settings::shown, shown);
        turnEvents(50);
    }

    void fits() {
        for (const bool errors : {false, true}) {
            for (const bool eachRow : {false, true}) {
                set(errors, eachRow, Shown::Result);
                const QByteArray name = QByteArrayLiteral("LCF") + (errors ? ", errors" : "") +
                                        (eachRow ? ", each row" : "");
                compare(name.constData(), Work::Fit);
            }
        }
        set(true, true, Shown::I1);
        compare("LCF, errors, frame shown", Work::Fit);
    }

    void others() {
        set(true, true, Shown::Result);
        window().select(window().referenceCount() + 1);
        compare("residual absorption", Work::Residual);
        compare("difference", Work::Difference);
        window().set(&Settings::shown, Shown::Map);
        compare("calibration", Work::Calibrate);
        EdgeChoice mean;
        mean.kind = EdgeChoice::Kind::Mean;
        window().set(&Settings::e0, mean);
        m_plain.set(&Settings::e0, mean);
        window().set(&Settings::shown, Shown::Result);
        window().select(0);
        compare("LCF, errors, mean E0", Work::Fit);
        window().set(&Settings::e0, EdgeChoice());
        m_plain.set(&Settings::e0, EdgeChoice());
    }

    void stops() {
        set(true, true, Shown::Result);
        EdgeChoice mean;
        mean.kind = EdgeChoice::Kind::Mean;
        window().set(&Settings::e0, mean);
        stop("stop in the search of E0", Work::Fit, 5, "AskAnalyze");
        window().set(&Settings::e0, EdgeChoice());
        stop("stop in the LCF", Work::Fit, 40, "AskAnalyze");
        stop("stop in the residual absorption", Work::Residual, 40, "AskRAAnalyze");
        stop("stop in the calibration", Work::Calibrate, 40, "ExecCalib");
        window().set(&Settings::shown, Shown::Result);
        timed(window(), Work::Fit, false, [&] { start(window(), Work::Fit); });
        window().select(0);
        stop("stop in the deglitching", Work::Deglitch, 40, "DeGlitch");
    }

    void ofMaps() {
        set(true, true, Shown::Result);
        timed(window(), Work::Fit, false, [&] { start(window(), Work::Fit); });
        timed(window(), Work::Residual, false, [&] { start(window(), Work::Residual); });
        timed(window(), Work::Calibrate, false, [&] { start(window(), Work::Calibrate); });
        turnEvents(300);
        line("choose another map", atOnce(window(), [&] { window().select(1); }));
        line("fixed scale", atOnce(window(), [&] { window().set(&Settings::fixedScale, true); }));
        window().set(&Settings::fixedScale, false);
        line("set mask", atOnce(window(), [&] { must(window().setMask(3.0)); }));
        line("move mask", atOnce(window(), [&] { must(window().setMask(4.0)); }));
        dragMask("a step of the mask's slider");
        line("clear mask", atOnce(window(), [&] { must(window().setMask(0.0)); }));
        line("remake pictures", atOnce(window(), [&] { window().remakePictures(); }));
        line("remake residual absorption", atOnce(window(), [&] { window().remakeResidual(); }));
        line("deglitch", atOnce(window(), [&] { must(window().deglitch(2.0, 0.1)); }));
        line("show processed: no", atOnce(window(), [&] { must(window().showProcessed(false)); }));
        line("show processed: yes", atOnce(window(), [&] { must(window().showProcessed(true)); }));
        line("smooth map", atOnce(window(), [&] { must(window().smoothMap()); }));
    }

  private:
    static QSlider* findSlider() {
        for (QWidget* widget : QApplication::allWidgets()) {
            if (widget->objectName() == QLatin1String("MaskSlider")) {
                return qobject_cast<QSlider*>(widget);
            }
        }
        qFatal("no slider");
    }
    static void start(Measurement& measurement, Work work) {
        const Outcome outcome = measurement.start(work);
        if (outcome.failed()) {
            qFatal("%s", qPrintable(outcome.failures.join("; ")));
        }
    }

    const SampleStacks& m_stacks;
    int m_turns;
    Body m_body;
    Measurement m_plain;
};

void nowhere(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    initGlobals();
    silenceTiffMessages();
    qInstallMessageHandler(nowhere);
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const int size = arguments.value(1, QStringLiteral("512")).toInt();
    const int energies = arguments.value(2, QStringLiteral("100")).toInt();
    const SampleStacks stacks(size, size, energies);
    Live live(stacks, arguments.value(3, QStringLiteral("5")).toInt());
    const QString parts = arguments.value(4, QStringLiteral("fomsp"));
    const QPair<char, void (Live::*)()> all[] = {{'f', &Live::fits},
                                                 {'o', &Live::others},
                                                 {'m', &Live::ofMaps},
                                                 {'s', &Live::stops},
                                                 {'p', &Live::plays}};
    for (const auto& part : all) {
        if (parts.contains(QLatin1Char(part.first))) {
            (live.*part.second)();
        }
    }
    return 0;
}
