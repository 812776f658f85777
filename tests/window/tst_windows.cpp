#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTabBar>
#include <QTranslator>

#include "BatchRun.h"
#include "Controls.h"
#include "TestMain.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "panels/CalibCtrl.h"
#include "window/Layout.h"
#include "window/Translation.h"
#include "window/WindowGeometry.h"

namespace {

const QSize SmallScreen(1366, 728);  // less the title bar

/// All windows of the program, those in docks afloat, with three references in the analyzer.
class Windows {
  public:
    Windows() {
        m_body.resize(SmallScreen);
        m_body.show();
        for (int i = 0; i < 3; ++i) {
            analyzerWindow()->addNewRef();
        }
        m_windows << &m_body;
        const auto docks = m_body.findChildren<QDockWidget*>();
        for (QDockWidget* dock : docks) {
            dock->setFloating(true);
            m_windows << dock;
        }
        for (const char* name : {"SaveDataCfg", "SpectrumFit"}) {
            m_windows << control<QWidget>(name, &m_body);
        }
        for (QWidget* window : qAsConst(m_windows)) {
            window->show();
        }
        QCoreApplication::processEvents();
    }
    const QWidgetList& list() const { return m_windows; }
    Body& body() { return m_body; }

  private:
    Body m_body;
    QWidgetList m_windows;
};

/// Buttons, fields, lists, sliders and canvases of a window, without the inner parts of others.
QWidgetList controls(const QWidget* window) {
    QWidgetList found;
    const auto all = window->findChildren<QWidget*>();
    for (QWidget* w : all) {
        const bool control = qobject_cast<QAbstractButton*>(w) || qobject_cast<QLineEdit*>(w) ||
                             qobject_cast<QComboBox*>(w) || qobject_cast<QAbstractSlider*>(w) ||
                             qobject_cast<QPlainTextEdit*>(w) || qobject_cast<DispA*>(w);
        const bool inner = w->objectName().isEmpty() || w->objectName().startsWith("qt_") ||
                           w->parent()->objectName().startsWith("qt_") ||
                           qobject_cast<QScrollBar*>(w) || qobject_cast<QTabBar*>(w->parent());
        // A tip over the image would hide what one looks at; the help menu explains the mouse.
        if (qobject_cast<ImageView*>(w)) {
            continue;
        }
        if (control && !inner && w->window() == window) {
            found << w;
        }
    }
    return found;
}

QByteArray nameOf(const QWidget* w) {
    return (w->window()->objectName() + '/' + w->parentWidget()->objectName() + '/' +
            w->objectName())
        .toUtf8();
}

QString ownText(const QWidget* w) {
    return qobject_cast<const QAbstractButton*>(w) ? w->property("text").toString() : QString();
}

const QStringList StartDocks{"AnalyzerDock", "AnalyzingSpectrumDock", "SpectrumDock"};

QStringList openDocks(const Body& body) {
    QStringList open;
    const auto docks = body.findChildren<QDockWidget*>();
    for (const QDockWidget* dock : docks) {
        if (!dock->isHidden()) {
            open << dock->objectName();
        }
    }
    open.sort();
    return open;
}

bool isPlainWord(const QString& text) {
    return text == "Close" || text == "Simple";
}

}  // namespace

class TestWindows : public QObject {
    Q_OBJECT

  private slots:
    /// What is not plain is explained, and what can not be used says what is missing.
    void everyControlExplainsItself() {
        const Windows windows;
        QCOMPARE(windows.list().size(), 10);
        int disabled = 0;
        for (const QWidget* window : windows.list()) {
            for (const QWidget* w : controls(window)) {
                if (!isPlainWord(ownText(w))) {
                    QVERIFY2(!w->toolTip().isEmpty(), nameOf(w) + " is not explained");
                }
                const QString whyNot = w->property("whyNot").toString();
                QVERIFY2(whyNot.isEmpty() == w->isEnabled(), nameOf(w) + " does not say why");
                QVERIFY2(w->toolTip().endsWith(whyNot), nameOf(w) + " says something else");
                disabled += w->isEnabled() ? 0 : 1;
            }
        }
        QVERIFY(disabled > 10);
    }

    /// An entry of the menu presses the button of its own name, in whichever window that is, and no
    /// other; each of the buttons is pressed by one entry.
    void menuEntriesPressTheirButtons() {
        Windows windows;
        QHash<QString, QAbstractButton*> buttons;
        QStringList pressed;
        for (const QWidget* window : windows.list()) {
            for (auto* button : window->findChildren<QAbstractButton*>()) {
                const QString panel = button->parentWidget()->objectName();
                const bool oneOfTwo = panel == "SelectI1Files" || panel == "SelectI0Files";
                const QString name = (oneOfTwo ? panel : QString()) + button->objectName();
                button->disconnect();  // what a click does is not looked at here
                button->setEnabled(true);
                connect(button, &QAbstractButton::clicked, this, [&, name] { pressed << name; });
                buttons.insert(name, button);
            }
        }
        QSet<QString> named;
        for (QAction* action : windows.body().menuBar()->findChildren<QAction*>()) {
            const QString name = action->objectName().mid(int(qstrlen("action")));
            if (!action->objectName().startsWith("action") || !buttons.contains(name)) {
                continue;
            }
            QVERIFY2(!named.contains(name), qPrintable(name + " twice"));
            named << name;
            pressed.clear();
            action->trigger();
            QCOMPARE(pressed, QStringList(name));
        }
        QVERIFY2(named.size() >= 25, qPrintable(QStringList(named.values()).join(' ')));
    }

    /// From each control Tab goes to the right or down.
    void tabFollowsTheLayout() {
        const Windows windows;
        for (QWidget* window : windows.list()) {
            window->resize(SmallScreen);  // nothing is scrolled away, as it is without a display
            QCoreApplication::processEvents();
            QWidgetList chain;
            for (QWidget* w = window->nextInFocusChain(); w != window; w = w->nextInFocusChain()) {
                if ((w->focusPolicy() & Qt::TabFocus) != 0 && w->focusProxy() == nullptr &&
                    w->isVisibleTo(window) && w->window() == window && !w->objectName().isEmpty() &&
                    !w->objectName().startsWith("qt_")) {
                    chain << w;
                }
            }
            QVERIFY2(chain.size() > 1, window->objectName().toUtf8());
            for (int i = 1; i < chain.size(); ++i) {
                const auto rect = [window](const QWidget* w) {
                    return QRect(w->mapTo(window, QPoint()), w->size());
                };
                const QRect from = rect(chain[i - 1]);
                const QRect to = rect(chain[i]);
                QVERIFY2(to.left() >= from.right() || to.top() >= from.bottom(),
                         nameOf(chain[i - 1]) + " goes back to " + nameOf(chain[i]));
            }
        }
    }

    /// A window beside the docks opens on the screen and comes back where it was left; keys act.
    void toolWindowsKeepTheirPlace() {
        Body body;
        body.show();
        auto* open = control<QPushButton>("SaveDataCfgB");
        open->setFocus();
        QTest::keyClick(open, Qt::Key_Return);
        auto* window = control<QWidget>("SaveDataCfg", &body);
        QVERIFY(window->isVisible());
        QVERIFY(window->screen()->availableGeometry().contains(window->geometry()));
        window->move(7, 11);
        QApplication::setActiveWindow(window);
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!window->isVisible());
        open->click();
        QCOMPARE(window->pos(), QPoint(7, 11));
    }

    /// Without a remembered layout nothing is open but what a batch asks for, and nothing is kept.
    void aBatchShowsWhatItWants() {
        windowSettings().clear();
        Body body;
        body.show();
        QCOMPARE(openDocks(body), QStringList());
        QVERIFY(BatchRun(body).succeeds({"calib_show_window", "analyzer_show_window"}));
        QCOMPARE(openDocks(body),
                 (QStringList{"AnalyzerDock", "AnalyzingSpectrumDock", "CalibCtrlDock"}));
        body.close();
        QCOMPARE(windowSettings().allKeys(), QStringList());
    }

    /// What is shown comes to the front of its tabs, what is behind stays open, and the plot that
    /// one looks at is not covered by a fit that ends.
    void tabs() {
        Body body;
        body.layoutOfWindows()->start();
        body.show();
        QCoreApplication::processEvents();
        const auto isSeen = [&body](const char* name) {
            QCoreApplication::processEvents();
            return !control<QWidget>(name, &body)->visibleRegion().isEmpty();
        };
        QVERIFY(isSeen("Spectrum") && !isSeen("AnalyzingSpectrum") && isSeen("Analyzer"));
        auto* analyzer = analyzerWindow();
        analyzer->view()->open();
        QVERIFY(isSeen("Spectrum") && !isSeen("AnalyzingSpectrum"));
        auto* calibration = topLevel<CalibCtrl>();
        calibration->show();
        QVERIFY(isSeen("CalibCtrl") && !isSeen("Analyzer") && isSeen("Spectrum"));
        QVERIFY(analyzer->isOpen());
        analyzer->QWidget::show();
        QVERIFY(isSeen("Analyzer") && !isSeen("CalibCtrl"));
        control<QAction>("toggleCalibCtrlDock", &body)->trigger();
        QVERIFY(!calibration->isOpen());
        QApplication::setActiveWindow(&body);
        control<QPushButton>("AddRef", analyzer)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!analyzer->isOpen());
        control<QAction>("actionStartLayout", &body)->trigger();
        QCOMPARE(openDocks(body), StartDocks);
    }

    void theLayoutComesBack_data() {
        columns<QByteArray, bool>("spoiled", "returns");
        QTest::newRow("as it was") << QByteArray() << true;
        QTest::newRow("garbage") << QByteArray("\xff\x01garbage") << false;
        QTest::newRow("cut") << QByteArray("cut") << false;
    }

    /// Also when what was kept fits no more, and on the screen that there is.
    void theLayoutComesBack() {
        QFETCH(QByteArray, spoiled);
        QFETCH(bool, returns);
        windowSettings().clear();
        const auto start = [](Body& body) {
            body.layoutOfWindows()->restore();
            body.show();
            QTest::qWait(1);
        };
        {
            Body body;
            start(body);
            QCOMPARE(openDocks(body), StartDocks);
            press("BatchCtrlB");
            auto* spectrum = control<QDockWidget>("SpectrumDock", &body);
            spectrum->setFloating(true);
            QCoreApplication::processEvents();
            spectrum->setGeometry(9000, -5000, 400, 300);
            press("SaveDataCfgB");
            control<QWidget>("SaveDataCfg", &body)->move(-3000, 8000);
            body.move(4000, -300);
            body.close();
        }
        const QString key = "Body/docks";
        const QByteArray state = windowSettings().value(key).toByteArray();
        QVERIFY(!state.isEmpty());
        if (!spoiled.isEmpty()) {
            windowSettings().setValue(key,
                                      spoiled == "cut" ? state.left(state.size() / 2) : spoiled);
        }
        Body body;
        start(body);
        auto* spectrum = control<QDockWidget>("SpectrumDock", &body);
        QCOMPARE(spectrum->isFloating(), returns);
        QStringList expected = StartDocks;
        expected.insert(2, "BatchCtrlDock");
        QCOMPARE(openDocks(body), returns ? expected : StartDocks);
        const QRect screen = body.screen()->availableGeometry();
        QVERIFY(screen.contains(spectrum->frameGeometry()) || !returns);
        QVERIFY(screen.contains(control<QWidget>("SaveDataCfg", &body)->frameGeometry()));
        QVERIFY(screen.contains(body.frameGeometry().topLeft()));
    }

    void theSmallestWindow_data() {
        QTest::addColumn<bool>("japanese");
        QTest::newRow("en") << false;
        QTest::newRow("ja") << true;
    }
    void theSmallestWindow() {
        QFETCH(bool, japanese);
        QTranslator translator;
        if (japanese) {
            installJapanese(&translator);
        }
        QFont font("Sans Serif");
        font.setPointSizeF(10.0);
        QApplication::setFont(font);
        Body body;
        body.layoutOfWindows()->start();
        body.show();
        const QSize smallest(900, 600);
        body.resize(smallest);
        QCoreApplication::processEvents();
        QCOMPARE(body.size(), smallest);
        for (const char* name : {"SelectI1Files", "dispA", "SeekBar", "Position", "Value"}) {
            const auto* w = control<QWidget>(name, &body);
            QVERIFY2(w->visibleRegion().boundingRect() == w->rect(), name);
        }
    }

    void windowsFitASmallScreen_data() {
        columns<bool, double>("japanese", "points");
        for (const bool japanese : {false, true}) {
            for (const double points : {10.0, 15.0}) {
                QTest::addRow("%s, %g points", japanese ? "ja" : "en", points)
                    << japanese << points;
            }
        }
    }
    void windowsFitASmallScreen() {
        QFETCH(bool, japanese);
        QFETCH(double, points);
        QTranslator translator;
        if (japanese) {
            installJapanese(&translator);
        }
        QFont font("Sans Serif");
        font.setPointSizeF(points);
        QApplication::setFont(font);
        const Windows windows;
        for (const QWidget* window : windows.list()) {
            const QSize size = window->size().expandedTo(window->minimumSizeHint());
            QVERIFY2(size.boundedTo(SmallScreen) == size, window->objectName().toUtf8());
            const auto buttons = window->findChildren<QAbstractButton*>();
            for (const QAbstractButton* w : buttons) {
                const bool shown = !w->objectName().isEmpty() && w->isVisible();
                QVERIFY2(!shown || w->width() >= w->minimumSizeHint().width(),
                         nameOf(w) + " is clipped");
            }
            const auto labels = window->findChildren<QLabel*>();
            for (const QLabel* w : labels) {
                QVERIFY2(!w->isVisible() || w->width() >= w->minimumSizeHint().width(),
                         nameOf(w) + " is clipped");
            }
        }
    }
};

TARNWICK_TEST_MAIN(QApplication, TestWindows)
#include "tst_windows.moc"
