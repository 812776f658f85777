#include "window/HelpMenu.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>

#include "window/GuideWindow.h"

namespace {

class HelpMenu {
    Q_DECLARE_TR_FUNCTIONS(BodyMenu)

  public:
    static QAction* add(QMenu* menu, const QString& name, const QString& text,
                        const QKeySequence& keys) {
        QAction* action = menu->addAction(text);
        action->setObjectName(name);
        action->setShortcut(keys);
        return action;
    }
    static void fill(QMenu* menu, QMainWindow* window);
    static void showAbout(QWidget* parent);
};

/// The chapter on a panel, by its class, wherever the panel is: in a window or in a dock.
QString chapterOn(const QWidget* widget) {
    static const QPair<const char*, const char*> chapters[] = {
        {"CalibCtrl", "calibration.md"},
        {"Analyzer", "fitting.md"},
        {"SpectrumFitWindow", "fitting.md"},
        {"XafsView", "spectra.md"},
        {"BatchCtrl", "batch.md"},
        {"SaveDataCfg", "saving.md"},
        {"MessagesWindow", "troubleshooting.md"}};
    for (; widget != nullptr; widget = widget->parentWidget()) {
        for (const auto& chapter : chapters) {
            if (widget->inherits(chapter.first)) {
                return QLatin1String(chapter.second);
            }
        }
    }
    return QString();
}

/// An open guide stays where it is when there is no page to go to.
void showGuide(QWidget* parent, const QString& page) {
    auto* guide = parent->findChild<GuideWindow*>();
    if (guide == nullptr) {
        guide = new GuideWindow(parent);
    }
    if (!page.isEmpty()) {
        guide->showPage(page);
    }
    guide->show();
    guide->raise();
    guide->activateWindow();
}

void HelpMenu::fill(QMenu* menu, QMainWindow* window) {
    if (!GuideWindow::firstPage().isEmpty()) {
        QAction* guide =
            add(menu, QStringLiteral("actionGuide"), tr("&User Guide"), QKeySequence::HelpContents);
        guide->setShortcutContext(Qt::ApplicationShortcut);
        QObject::connect(guide, &QAction::triggered, window, [window] {
            const QWidget* focus = QApplication::focusWidget();
            showGuide(window, chapterOn(focus != nullptr ? focus : QApplication::activeWindow()));
        });
        QAction* keys = add(menu, QStringLiteral("actionMouseAndKeys"), tr("&Mouse and Keys"),
                            QKeySequence(Qt::SHIFT + Qt::Key_F1));
        keys->setShortcutContext(Qt::ApplicationShortcut);
        QObject::connect(keys, &QAction::triggered, window,
                         [window] { showGuide(window, QStringLiteral("keyboard.md")); });
    }
    QAction* about =
        add(menu, QStringLiteral("actionAbout"), tr("&About Tarnwick"), QKeySequence());
    QObject::connect(about, &QAction::triggered, window, [window] { showAbout(window); });
}

void HelpMenu::showAbout(QWidget* parent) {
    QMessageBox::about(
        parent, tr("About Tarnwick"),
        QStringLiteral("<h3>Tarnwick %1</h3><p>%2</p>")
            .arg(QStringLiteral(TARNWICK_VERSION),
                 tr("Two-dimensional XAFS imaging: spectra, energy calibration and maps of "
                    "chemical states.")));
}

}  // namespace

void fillHelpMenu(QMenu* menu, QMainWindow* window) {
    HelpMenu::fill(menu, window);
}
