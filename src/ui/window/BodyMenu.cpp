#include "window/BodyMenu.h"

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include "window/HelpMenu.h"

namespace {

class BodyMenu {
    Q_DECLARE_TR_FUNCTIONS(BodyMenu)

  public:
    BodyMenu(QMainWindow* window, const QList<QAction*>& windows, const QList<QAction*>& saving,
             const QList<QAction*>& record)
        : m_window(window), m_windows(windows), m_saving(saving), m_record(record) {}

    void build() const {
        addFileMenu();
        addShowMenu();
        addProcessMenu();
        addWindowsMenu();
        fillHelpMenu(addMenu(tr("&Help")), m_window);
    }

  private:
    void addFileMenu() const;
    void addShowMenu() const;
    void addProcessMenu() const;
    void addWindowsMenu() const;
    QMenu* addMenu(const QString& title) const;
    QAbstractButton* buttonCalled(const QString& name, const QString& panel) const;
    QAction* press(QMenu* menu, const QString& text, const QString& button,
                   const QKeySequence& keys = QKeySequence(),
                   const QString& panel = QString()) const;

    QMainWindow* m_window;
    QList<QAction*> m_windows;
    QList<QAction*> m_saving;
    QList<QAction*> m_record;
};

QMenu* BodyMenu::addMenu(const QString& title) const {
    QMenu* menu = m_window->menuBar()->addMenu(title);
    menu->setToolTipsVisible(true);
    return menu;
}

QAbstractButton* BodyMenu::buttonCalled(const QString& name, const QString& panel) const {
    if (!panel.isEmpty()) {
        return m_window->findChild<QWidget*>(panel)->findChild<QAbstractButton*>(name);
    }
    return m_window->findChild<QAbstractButton*>(name);
}

/// An action that clicks the button of this object name; the name of a panel finds one of two
/// alike. The action does what the button does and, like it, nothing while that is disabled.
QAction* BodyMenu::press(QMenu* menu, const QString& text, const QString& button,
                         const QKeySequence& keys, const QString& panel) const {
    QAbstractButton* target = buttonCalled(button, panel);
    QAction* action = menu->addAction(text);
    action->setObjectName(QStringLiteral("action") + panel + button);
    action->setShortcut(keys);
    QObject::connect(action, &QAction::triggered, target, &QAbstractButton::click);
    QObject::connect(menu, &QMenu::aboutToShow, action, [=] {
        action->setEnabled(target->isEnabled());
        action->setToolTip(target->toolTip());
    });
    // A shortcut must work again when the button does, though the menu has not been opened since.
    QObject::connect(
        menu, &QMenu::aboutToHide, action, [=] { action->setEnabled(true); }, Qt::QueuedConnection);
    return action;
}

void BodyMenu::addFileMenu() const {
    QMenu* menu = addMenu(tr("&File"));
    press(menu, tr("Open F&older..."), QStringLiteral("OpenFolder"),
          QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_D));
    menu->addAction(m_window->findChild<QAction*>(QStringLiteral("actionOpenRecent")));
    menu->addSeparator();
    press(menu, tr("Open &I1 Files..."), QStringLiteral("Select"), QKeySequence::Open,
          QStringLiteral("SelectI1Files"));
    press(menu, tr("Open I&0 Files..."), QStringLiteral("Select"),
          QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_O), QStringLiteral("SelectI0Files"));
    press(menu, tr("&Dark Data..."), QStringLiteral("SelectDark"));
    menu->addAction(m_window->findChild<QAction*>(QStringLiteral("ClearDark")));
    menu->addSeparator();
    press(menu, tr("&Fit a Spectrum File..."), QStringLiteral("FitSpectrumFile"),
          QKeySequence(Qt::CTRL + Qt::Key_F));
    menu->addSeparator();
    press(menu, tr("&Save Image..."), QStringLiteral("SaveImage"), QKeySequence::Save);
    press(menu, tr("Save with Colour &Bar..."), QStringLiteral("SaveImageWithBar"),
          QKeySequence(Qt::CTRL + Qt::Key_B));
    press(menu, tr("Save &All Images..."), QStringLiteral("SaveAllImages"),
          QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_S));
    press(menu, tr("Save Da&ta..."), QStringLiteral("SaveData"),
          QKeySequence(Qt::CTRL + Qt::Key_D));
    press(menu, tr("Save All &Maps..."), QStringLiteral("SaveAllMaps"));
    menu->addAction(m_window->findChild<QAction*>(QStringLiteral("actionSaveMapImage")));
    press(menu, tr("Save S&pectra..."), QStringLiteral("SaveXAFSSpectra"),
          QKeySequence(Qt::CTRL + Qt::Key_E));
    menu->addActions(m_saving);
    menu->addSeparator();
    menu->addActions(m_record);
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
    menu->addAction(m_window->findChild<QAction*>(QStringLiteral("actionComposite")));
    menu->addSeparator();
    press(menu, tr("&Previous Frame"), QStringLiteral("Prev"),
          QKeySequence(Qt::CTRL + Qt::Key_Left));
    press(menu, tr("&Next Frame"), QStringLiteral("Next"), QKeySequence(Qt::CTRL + Qt::Key_Right));
    // No shortcut of the window: with the focus elsewhere Space presses buttons.
    press(menu,
          tr("Pl&ay the Frames, or Stop") + QLatin1Char('\t') +
              QKeySequence(Qt::Key_Space).toString(QKeySequence::NativeText),
          QStringLiteral("Play"));
    press(menu, tr("&Whole Image"), QStringLiteral("ResetScale"),
          QKeySequence(Qt::CTRL + Qt::Key_0));
}

void BodyMenu::addProcessMenu() const {
    QMenu* menu = addMenu(tr("&Process"));
    press(menu, tr("&Calibrate the Area, or Stop"), QStringLiteral("ExecCalib"),
          QKeySequence(Qt::CTRL + Qt::Key_K));
    press(menu, tr("&Fit the Area (LCF, MLCF), or Stop"), QStringLiteral("AskAnalyze"),
          QKeySequence(Qt::CTRL + Qt::Key_L));
    press(menu, tr("&Residual Absorption of the Area, or Stop"), QStringLiteral("AskRAAnalyze"),
          QKeySequence(Qt::CTRL + Qt::Key_R));
    press(menu, tr("D&ifference of Two Energies, or Stop"), QStringLiteral("AskDifference"));
    menu->addSeparator();
    press(menu, tr("&Deglitch the Map"), QStringLiteral("DeGlitch"),
          QKeySequence(Qt::CTRL + Qt::Key_G));
    press(menu, tr("Show &Processed or Original Values"), QStringLiteral("ShowProcImg"),
          QKeySequence(Qt::CTRL + Qt::Key_P));
    press(menu, tr("&Mask the Maps of a Fit, or Not"), QStringLiteral("Mask"),
          QKeySequence(Qt::CTRL + Qt::Key_M));
    press(menu, tr("Deglitch the Energy &Shifts"), QStringLiteral("NormalizeEShift"));
}

void BodyMenu::addWindowsMenu() const {
    QMenu* menu = addMenu(tr("&Windows"));
    const QList<QAction*> actions{
        press(menu, tr("&Spectrum"), QStringLiteral("ShowXafsView"),
              QKeySequence(Qt::CTRL + Qt::Key_1)),
        press(menu, tr("&Calibration"), QStringLiteral("OpenCalibCtrl"),
              QKeySequence(Qt::CTRL + Qt::Key_2)),
        press(menu, tr("&Analyzer"), QStringLiteral("ShowAnalyzer"),
              QKeySequence(Qt::CTRL + Qt::Key_3)),
        press(menu, tr("&Batch"), QStringLiteral("BatchCtrlB"), QKeySequence(Qt::CTRL + Qt::Key_4)),
        press(menu, tr("&Form of Saved Data"), QStringLiteral("SaveDataCfgB"),
              QKeySequence(Qt::CTRL + Qt::Key_5)),
        press(menu, tr("&Messages"), QStringLiteral("ShowMessages"),
              QKeySequence(Qt::CTRL + Qt::Key_6)),
        press(menu, tr("S&tatistics of the Area"), QStringLiteral("ShowStatistics"),
              QKeySequence(Qt::CTRL + Qt::Key_7))};
    // They work in every window, to go from one to the next without the mouse.
    for (QAction* action : actions) {
        action->setShortcutContext(Qt::ApplicationShortcut);
    }
    menu->addSeparator();
    menu->addActions(m_windows);
}

}  // namespace

void buildBodyMenu(QMainWindow* window, const QList<QAction*>& windows,
                   const QList<QAction*>& saving, const QList<QAction*>& record) {
    BodyMenu(window, windows, saving, record).build();
}
