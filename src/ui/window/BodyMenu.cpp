#include "window/BodyMenu.h"

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QUrl>

#include "window/GuideWindow.h"

namespace {

class BodyMenu {
    Q_DECLARE_TR_FUNCTIONS(BodyMenu)

  public:
    BodyMenu(QMainWindow* window, const QWidgetList& toolWindows, const QList<QAction*>& saving,
             const QList<QAction*>& record)
        : m_window(window), m_toolWindows(toolWindows), m_saving(saving), m_record(record) {}

    void build() const {
        addFileMenu();
        addShowMenu();
        addProcessMenu();
        addWindowsMenu();
        addHelpMenu();
    }

  private:
    void addFileMenu() const;
    void addShowMenu() const;
    void addProcessMenu() const;
    void addWindowsMenu() const;
    void addHelpMenu() const;
    QMenu* addMenu(const QString& title) const;
    QAbstractButton* buttonCalled(const QString& name, const QString& panel) const;
    QAction* press(QMenu* menu, const QString& text, const QString& button,
                   const QKeySequence& keys = QKeySequence(),
                   const QString& panel = QString()) const;
    static void showGuide(QWidget* parent);
    static void showAbout(QWidget* parent);
    static void showMouseAndKeys(QWidget* parent);

    QMainWindow* m_window;
    QWidgetList m_toolWindows;
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
    auto* found = m_window->findChild<QAbstractButton*>(name);
    for (const QWidget* tool : m_toolWindows) {
        found = found != nullptr ? found : tool->findChild<QAbstractButton*>(name);
    }
    return found;
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
    menu->addSeparator();
    press(menu, tr("&Previous Frame"), QStringLiteral("Prev"),
          QKeySequence(Qt::CTRL + Qt::Key_Left));
    press(menu, tr("&Next Frame"), QStringLiteral("Next"), QKeySequence(Qt::CTRL + Qt::Key_Right));
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
              QKeySequence(Qt::CTRL + Qt::Key_6))};
    // They work in every window, to go from one to the next without the mouse.
    for (QAction* action : actions) {
        action->setShortcutContext(Qt::ApplicationShortcut);
    }
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
    QAction* keys = menu->addAction(tr("&Mouse and Keys"));
    keys->setObjectName(QStringLiteral("actionMouseAndKeys"));
    keys->setShortcut(QKeySequence(Qt::SHIFT + Qt::Key_F1));
    QObject::connect(keys, &QAction::triggered, m_window,
                     [window = m_window] { showMouseAndKeys(window); });
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

/// Not modal: it can stand beside the windows that it explains.
void BodyMenu::showMouseAndKeys(QWidget* parent) {
    const QVector<QPair<QString, QString>> lines{
        {tr("Wheel"), tr("zooms the image about the cursor")},
        {tr("Middle drag, Shift + left drag"), tr("moves the image")},
        {tr("Left drag"), tr("selects an area; a right click or Esc removes it")},
        {tr("Click"), tr("pins the cursor, so that its spectrum stays; again frees it")},
        {tr("Arrow keys"), tr("move the cursor by one bin")},
        {tr("Double click"),
         tr("shows the whole image, the whole plot, or each frame's own range")},
        {tr("Drag in a plot"), tr("magnifies it")},
        {tr("Drag an end of the colour bar"), tr("fixes the range of the frames")},
        {tr("Tab, Space, Enter"), tr("go to the next control and press it")},
        {tr("Ctrl+T"), tr("keeps the spectrum of the cursor in the spectrum plot")},
        {tr("Ctrl+W"), tr("closes a tool window")}};
    QString rows;
    for (const auto& line : lines) {
        rows += QStringLiteral(
                    "<tr><td><p style='white-space:pre'><b>%1</b></p></td><td><p "
                    "style='white-space:pre'>%2</p></td></tr>")
                    .arg(line.first, line.second);
    }
    auto* box = new QMessageBox(QMessageBox::NoIcon, tr("Mouse and Keys"),
                                QStringLiteral("<table cellpadding='4'>%1</table>").arg(rows),
                                QMessageBox::Close, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->show();
}

}  // namespace

void buildBodyMenu(QMainWindow* window, const QWidgetList& toolWindows,
                   const QList<QAction*>& saving, const QList<QAction*>& record) {
    BodyMenu(window, toolWindows, saving, record).build();
}
