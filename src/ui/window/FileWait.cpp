#include "window/FileWait.h"

#include <QApplication>
#include <QKeyEvent>
#include <QStatusBar>
#include <QToolButton>

#include "base/DebugLog.h"
#include "display/MessageLine.h"

namespace {

/// What the user does, and what would go on by itself. Windows get what is theirs, and hand on what
/// is a widget's.
bool isHeldBack(const QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::HoverMove:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::ShortcutOverride:
        case QEvent::InputMethod:
        case QEvent::ContextMenu:
        case QEvent::FocusIn:
        case QEvent::FocusOut:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::Timer:
        case QEvent::Close:
            return true;
        default:
            return false;
    }
}

/// Of what is held back: whether whoever asks is told no.
bool isLeftAlone(QEvent::Type type) {
    return type == QEvent::Close || type == QEvent::DragEnter || type == QEvent::DragMove ||
           type == QEvent::Drop;
}

bool isEscape(const QEvent* event) {
    const bool isKey =
        event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    return isKey && static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape;
}

}  // namespace

FileWait::FileWait(QMainWindow* window, QAbstractButton* batchStop)
    : QObject(window),
      m_window(window),
      m_batchStop(batchStop),
      m_text(new MessageLine(window)),
      m_button(new QToolButton(window)),
      m_answers([this](const QString& fileName, const std::function<bool()>& hasAnswered) {
          return wait(fileName, hasAnswered);
      }) {
    m_text->setObjectName(QStringLiteral("FileWait"));
    m_button->setObjectName(QStringLiteral("GiveUp"));
    m_button->setText(tr("Give Up"));
    m_button->setToolTip(tr("Go on without the file (Esc)"));
    window->statusBar()->addPermanentWidget(m_text, 1);
    window->statusBar()->addPermanentWidget(m_button);
    hide();
}

void FileWait::show(const QString& fileName) {
    debugFile("Does not answer: ", fileName);
    m_text->setText(tr("Waiting for %1").arg(fileName));
    m_text->show();
    m_button->show();
    QApplication::setOverrideCursor(Qt::BusyCursor);
}

void FileWait::hide() {
    m_text->hide();
    m_button->hide();
}

bool FileWait::wait(const QString& fileName, const std::function<bool()>& hasAnswered) {
    constexpr qint64 LongMs = 1000;  // so long a file may be large, or its disk asleep
    bool isThere = false;
    bool isShown = false;
    QElapsedTimer time;
    time.start();
    {
        const InboxPause pause;
        qApp->installEventFilter(this);
        while (!m_isGivenUp && !(isThere = hasAnswered())) {
            if (!isShown && time.elapsed() > LongMs) {
                show(fileName);
                isShown = true;
            }
            QCoreApplication::processEvents();
        }
        qApp->removeEventFilter(this);
    }
    if (isShown) {
        hide();
        QApplication::restoreOverrideCursor();
    }
    return isThere;
}

void FileWait::giveUp(const std::function<void()>& then) {
    m_isGivenUp = true;
    m_inbox.post([this, then] {  // behind the pause, and thereby the action
        m_isGivenUp = false;
        if (then) {
            then();
        }
    });
}

bool FileWait::eventFilter(QObject* watched, QEvent* event) {
    const bool isOurs =
        watched->isWidgetType() || (event->type() == QEvent::Timer && !watched->isWindowType());
    if (!isOurs || !isHeldBack(*event)) {
        return false;
    }
    const bool isPress = event->type() == QEvent::MouseButtonPress;
    if (watched == m_window && event->type() == QEvent::Close) {
        giveUp([this] { m_window->close(); });
    } else if (isEscape(event) || (isPress && (watched == m_button || watched == m_batchStop))) {
        giveUp({});
    }
    if (isPress && watched == m_batchStop) {
        m_batchStop->click();  // tells the interpreter, no more, before it hands out a line
    }
    event->setAccepted(!isLeftAlone(event->type()));
    return true;
}
