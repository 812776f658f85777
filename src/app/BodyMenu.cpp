#include "app/BodyMenu.h"

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QUrl>

#include "app/GuideWindow.h"

namespace {

class BodyMenu {
    Q_DECLARE_TR_FUNCTIONS(BodyMenu)

  public:
    explicit BodyMenu(QMainWindow* window) : m_window(window) {}

    void build() const {
        addFileMenu();
        addShowMenu();
        addWindowsMenu();
        addHelpMenu();
    }

  private:
    void addFileMenu() const;
    void addShowMenu() const;
    void addWindowsMenu() const;
    void addHelpMenu() const;
    QMenu* addMenu(const QString& title) const { return m_window->menuBar()->addMenu(title); }
    void press(QMenu* menu, const QString& text, const QString& button,
               const QKeySequence& keys = QKeySequence(), const QString& panel = QString()) const;
    static void showGuide(QWidget* parent);
    static void showAbout(QWidget* parent);

    QMainWindow* m_window;
};

/// An action that clicks the button of this object name; the name of a panel finds one of two
/// alike. The action does what the button does and, like it, nothing while that is disabled.
void BodyMenu::press(QMenu* menu, const QString& text, const QString& button,
                     const QKeySequence& keys, const QString& panel) const {
    const QWidget* parent = panel.isEmpty() ? m_window : m_window->findChild<QWidget*>(panel);
    auto* target = parent->findChild<QAbstractButton*>(button);
    QAction* action = menu->addAction(text);
    action->setObjectName(QStringLiteral("action") + panel + button);
    action->setShortcut(keys);
    QObject::connect(action, &QAction::triggered, target, &QAbstractButton::click);
    QObject::connect(menu, &QMenu::aboutToShow, action,
                     [=] { action->setEnabled(target->isEnabled()); });
    // A shortcut must work again when the button does, though the menu has not been opened since.
    QObject::connect(
        menu, &QMenu::aboutToHide, action, [=] { action->setEnabled(true); }, Qt::QueuedConnection);
}

void BodyMenu::addFileMenu() const {
    QMenu* menu = addMenu(tr("&File"));
    press(menu, tr("Open &I1 Files..."), QStringLiteral("Select"), QKeySequence::Open,
          QStringLiteral("SelectI1Files"));
    press(menu, tr("Open I&0 Files..."), QStringLiteral("Select"),
          QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_O), QStringLiteral("SelectI0Files"));
    press(menu, tr("&Dark Data..."), QStringLiteral("SelectDark"));
    menu->addSeparator();
    press(menu, tr("&Save Image..."), QStringLiteral("SaveImage"), QKeySequence::Save);
    press(menu, tr("Save &All Images..."), QStringLiteral("SaveAllImages"),
          QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_S));
    press(menu, tr("Save Da&ta..."), QStringLiteral("SaveData"),
          QKeySequence(Qt::CTRL + Qt::Key_D));
    press(menu, tr("Save S&pectra..."), QStringLiteral("SaveXAFSSpectra"),
          QKeySequence(Qt::CTRL + Qt::Key_E));
    press(menu, tr("&Form of Saved Data..."), QStringLiteral("SaveDataCfgB"));
    menu->addSeparator();
    QAction* quit = menu->addAction(tr("&Quit"));
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QKeySequence(Qt::CTRL + Qt::Key_Q));
    QObject::connect(quit, &QAction::triggered, m_window, &QWidget::close);
}

void BodyMenu::addShowMenu() const {
    QMenu* menu = addMenu(tr("&Show"));
    press(menu, tr("&Data"), QStringLiteral("ShowData"), QKeySequence(Qt::Key_F5));
    press(menu, tr("&I0"), QStringLiteral("ShowI0"), QKeySequence(Qt::Key_F6));
    press(menu, tr("Energy &Shift"), QStringLiteral("ShowShiftMap"), QKeySequence(Qt::Key_F7));
    press(menu, tr("&Result of Analysis"), QStringLiteral("ShowResAnalysis"),
          QKeySequence(Qt::Key_F8));
    menu->addSeparator();
    press(menu, tr("&Previous Frame"), QStringLiteral("Prev"),
          QKeySequence(Qt::CTRL + Qt::Key_Left));
    press(menu, tr("&Next Frame"), QStringLiteral("Next"), QKeySequence(Qt::CTRL + Qt::Key_Right));
    press(menu, tr("&Whole Image"), QStringLiteral("ResetScale"),
          QKeySequence(Qt::CTRL + Qt::Key_0));
}

void BodyMenu::addWindowsMenu() const {
    QMenu* menu = addMenu(tr("&Windows"));
    press(menu, tr("&Spectrum"), QStringLiteral("ShowXafsView"),
          QKeySequence(Qt::CTRL + Qt::Key_1));
    press(menu, tr("&Calibration"), QStringLiteral("OpenCalibCtrl"),
          QKeySequence(Qt::CTRL + Qt::Key_2));
    press(menu, tr("&Analyzer"), QStringLiteral("ShowAnalyzer"),
          QKeySequence(Qt::CTRL + Qt::Key_3));
    press(menu, tr("&Batch"), QStringLiteral("BatchCtrlB"), QKeySequence(Qt::CTRL + Qt::Key_4));
}

void BodyMenu::addHelpMenu() const {
    QMenu* menu = addMenu(tr("&Help"));
    if (!GuideWindow::firstPage().isEmpty()) {
        QAction* guide = menu->addAction(tr("&User Guide"));
        guide->setObjectName(QStringLiteral("actionGuide"));
        guide->setShortcut(QKeySequence::HelpContents);
        QObject::connect(guide, &QAction::triggered, m_window,
                         [window = m_window] { showGuide(window); });
    }
    QAction* about = menu->addAction(tr("&About Tarnwick"));
    about->setObjectName(QStringLiteral("actionAbout"));
    QObject::connect(about, &QAction::triggered, m_window,
                     [window = m_window] { showAbout(window); });
}

void BodyMenu::showGuide(QWidget* parent) {
    auto* window = parent->findChild<GuideWindow*>();
    if (window == nullptr) {
        window = new GuideWindow(parent);
        window->setSource(QUrl::fromLocalFile(GuideWindow::firstPage()));
    }
    window->show();
    window->raise();
    window->activateWindow();
}

void BodyMenu::showAbout(QWidget* parent) {
    QMessageBox::about(
        parent, tr("About Tarnwick"),
        QStringLiteral("<h3>Tarnwick %1</h3><p>%2</p>")
            .arg(QStringLiteral(TARNWICK_VERSION),
                 tr("Two-dimensional XAFS imaging: spectra, energy calibration and maps of "
                    "chemical states.")));
}

}  // namespace

void buildBodyMenu(QMainWindow* window) {
    BodyMenu(window).build();
}
