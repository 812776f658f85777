// From a move of the mouse to the finished repaint of the main window, its cross sections, the
// spectrum plot and the plot of the fit, at 2048 x 2048 pixels and half widths of 10.
//
// Milliseconds to read: MouseMove for what is on display (0 a frame with its own range, 1 a frame
// with a fixed range, 2 a result with values that are no numbers) and whether the picture is
// magnified; an eye wants less than 16. BurstOfMoves is the time of 20 moves that come at once,
// for one repaint: less than 20 single ones, as no repaint is made for each of them.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDockWidget>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPushButton>
#include <QSet>
#include <QWheelEvent>
#include <cstdio>
#include <limits>

#include "SampleStacks.h"
#include "base/Globals.h"
#include "display/ColorBar.h"
#include "display/CrossSection.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "frames/TiffFile.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/BatchCtrl.h"
#include "window/Body.h"

namespace {

constexpr int Side = 2048;
constexpr int Frames = 100;
constexpr int HalfWidth = 10;

enum Display { FrameOwnRange, FrameFixedRange, ResultWithGaps };

QMouseEvent* moveTo(const QWidget* widget, const QPointF& at) {
    return new QMouseEvent(QEvent::MouseMove, at, at, widget->mapToGlobal(at.toPoint()),
                           Qt::NoButton, Qt::NoButton, Qt::NoModifier,
                           Qt::MouseEventNotSynthesized);
}

template <typename Type>
QList<Type*> windowsOfType() {
    QList<Type*> found;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<Type*>(widget)) {
            found << window;
        }
        found << widget->findChildren<Type*>();
    }
    return found;
}

/// A loaded window with all that has to be painted after a move.
class Window : public QObject {
  public:
    Window();

    void display(Display what, bool magnified);
    /// To another place than the one before: a move to where the mouse is paints nothing.
    void postMove();
    /// Until what posted moves ask for is formed, fitted and painted.
    void finish();

    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void load();
    void runBatch(const QStringList& lines);

    SampleStacks m_stacks;
    Body m_body;
    ImageView* m_view;
    ColorBar* m_bar;
    Analyzer* m_analyzer;
    QSet<QObject*> m_toPaint;
    QSet<QObject*> m_unpainted;
    int m_moves = 0;
};

Window::Window()
    : m_stacks(Side, Side, Frames),
      m_view(m_body.findChild<ImageView*>(QStringLiteral("dispA"))),
      m_bar(m_body.findChild<ColorBar*>(QStringLiteral("CBar"))),
      m_analyzer(windowsOfType<Analyzer>().first()) {
    load();
    const QString half = QString::number(HalfWidth);
    runBatch({"set_band_w " + half, "set_band_h " + half,
              "analyzer_set_LCF_std 0 1 0.0 " + m_stacks.reference(0) + " 0",
              "analyzer_set_LCF_std 1 1 0.0 " + m_stacks.reference(1) + " 0",
              "calib_load_std " + m_stacks.reference(0), "analyzer_show_window",
              "analyzer_exec_LCF", "analyzer_select_image 0"});
    Analyzed2DRes* result = m_analyzer->selectedResult();
    result->setData(1000, 1000, 200, 100, std::numeric_limits<double>::quiet_NaN());
    result->genImg();
    m_body.resize(1400, 1000);
    m_body.show();
    m_toPaint << m_view;
    for (CrossSection* section : m_body.findChildren<CrossSection*>()) {
        m_toPaint << section;
    }
    for (auto* dock : m_body.findChildren<QDockWidget*>()) {  // no plot behind a tab
        dock->setFloating(true);
        dock->resize(720, 500);
    }
    for (XafsView* plot : windowsOfType<XafsView>()) {
        auto* canvas = plot->findChild<QWidget*>(QStringLiteral("Canvas"));
        m_toPaint << canvas;
        plot->show();
        // A plot that shows something else meanwhile has not been painted yet.
        connect(plot, &XafsView::updated, this, [this, canvas] { m_unpainted << canvas; });
    }
    for (QObject* widget : qAsConst(m_toPaint)) {
        widget->installEventFilter(this);
    }
}

void Window::load() {
    QEventLoop loop;
    bool ready[2] = {false, false};
    connect(&m_body, &Body::loadProgress, &loop, [&](int stack, int done, int total) {
        ready[stack] = ready[stack] || (total > 0 && done == total);
        if (ready[0] && ready[1]) {
            loop.quit();
        }
    });
    m_body.readI1Files(m_stacks.i1(), true);
    m_body.readI0Files(m_stacks.i0(), true);
    loop.exec();
}

void Window::runBatch(const QStringList& lines) {
    QEventLoop loop;
    int left = lines.size();
    connect(&m_body, &Body::commandDone, &loop,
            [&](const CmdLine& line, const QStringList& problems) {
                if (!problems.isEmpty()) {
                    qFatal("%s: %s", qPrintable(line.text), qPrintable(problems.join("; ")));
                }
                if (--left == 0) {
                    loop.quit();
                }
            });
    m_body.batchCtrl()->dispatchLines(lines);
    loop.exec();
}

void Window::display(Display what, bool magnified) {
    const char* button = what == ResultWithGaps ? "ShowResAnalysis" : "ShowData";
    m_body.findChild<QPushButton*>(QLatin1String(button))->click();
    m_bar->setAuto(what != FrameFixedRange);
    m_view->resetImageViewWindow();
    if (magnified) {
        const QPointF at(m_view->rect().center());
        QWheelEvent wheel(at, m_view->mapToGlobal(at.toPoint()), QPoint(), QPoint(0, 1200),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_view, &wheel);
    }
    QApplication::processEvents();
}

bool Window::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Paint) {
        m_unpainted.remove(object);
    }
    return false;
}

void Window::postMove() {
    const int i = ++m_moves;
    const QPointF at(m_view->rect().center() + QPoint(i * 7 % 101 - 50, i * 3 % 89 - 44));
    QApplication::postEvent(m_view, moveTo(m_view, at));
}

void Window::finish() {
    m_unpainted = m_toPaint;
    while (m_analyzer->fitsOut() > 0 || !m_unpainted.isEmpty()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

Window* window = nullptr;

void moves(benchmark::State& state, int atOnce) {
    window->display(static_cast<Display>(state.range(0)), state.range(1) != 0);
    for (auto _ : state) {
        for (int n = 0; n < atOnce; ++n) {
            window->postMove();
        }
        window->finish();
    }
}

void MouseMove(benchmark::State& state) {
    moves(state, 1);
}
BENCHMARK(MouseMove)
    ->ArgsProduct({{FrameOwnRange, FrameFixedRange, ResultWithGaps}, {0, 1}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void BurstOfMoves(benchmark::State& state) {
    moves(state, 20);
}
BENCHMARK(BurstOfMoves)->Args({FrameOwnRange, 0})->UseRealTime()->Unit(benchmark::kMillisecond);

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
    benchmark::Initialize(&argc, argv);
    Window loaded;
    window = &loaded;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
