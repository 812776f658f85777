#include "window/StatusLine.h"

#include <QAction>
#include <QMainWindow>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>

#include "display/MessageLine.h"
#include "measurement/CompositeDisplay.h"
#include "measurement/Display.h"
#include "measurement/MeasurementName.h"
#include "window/Messages.h"
#include "window/WorkBar.h"

namespace {
constexpr int NoticeMs = 8000;
constexpr int RefreshMs = 40;  // the pace of the image
const QString Gap = QStringLiteral("   ");
}  // namespace

StatusLine::StatusLine(Measurement& measurement, const Messages& messages, QMainWindow* window)
    : QObject(window),
      m_measurement(measurement),
      m_state(new MessageLine(window)),
      m_notice(new MessageLine(window)),
      m_bar(new WorkBar(window)),
      m_stopLoading(new QToolButton(window)),
      m_count(new QPushButton(window)) {
    m_state->setObjectName(QStringLiteral("State"));
    m_notice->setObjectName(QStringLiteral("Notice"));
    makeStop(window);
    window->statusBar()->addWidget(m_state, 1);
    window->statusBar()->addWidget(m_notice, 1);
    m_notice->hide();
    window->statusBar()->addPermanentWidget(m_bar);
    window->statusBar()->addPermanentWidget(m_stopLoading);
    window->statusBar()->addPermanentWidget(m_count);
    followMessages(messages);
    connect(&measurement, &Measurement::changed, this, [this](Measurement::Changes what) {
        if (what & ~Measurement::Changes(Measurement::Position)) {
            showSoon();
        }
    });
    m_pace.setSingleShot(true);
    connect(&m_pace, &QTimer::timeout, this, &StatusLine::show);
    m_noticeEnds.setSingleShot(true);
    connect(&m_noticeEnds, &QTimer::timeout, this, &StatusLine::endNotice);
    connect(&measurement, &Measurement::progressed, this, &StatusLine::showProgress);
    show();
}

void StatusLine::followMessages(const Messages& messages) {
    m_count->setObjectName(QStringLiteral("ShowMessages"));
    m_count->setToolTip(tr("Show the failures and warnings that nobody has looked at yet"));
    m_count->setAccessibleName(tr("Messages that nobody has looked at"));
    m_count->setFlat(true);
    m_count->hide();
    connect(&messages, &Messages::counted, this, [this, &messages] {
        const int n = messages.unseen();
        m_count->setText(n == 1 ? tr("1 message") : tr("%1 messages").arg(n));
        m_count->setVisible(n > 0);
    });
}

void StatusLine::makeStop(QMainWindow* window) {
    m_stopLoading->setObjectName(QStringLiteral("StopLoading"));
    auto* stop = new QAction(tr("Stop Loading"), m_stopLoading);
    stop->setToolTip(
        tr("Frames that have been read stay, the files still to be read are left out (Esc)"));
    stop->setShortcut(Qt::Key_Escape);  // the button's, so only while it is there
    m_stopLoading->setDefaultAction(stop);
    m_stopLoading->hide();
    connect(stop, &QAction::triggered, window, [this] { m_measurement.stopLoading(); });
}

void StatusLine::say(const QString& notice) {
    if (!notice.isEmpty()) {
        m_notice->setText(notice);
        m_state->hide();
        m_notice->show();
        m_noticeEnds.start(NoticeMs);
    }
}

void StatusLine::endNotice() {
    m_noticeEnds.stop();
    m_notice->clear();
    m_notice->hide();
    m_state->show();
}

bool StatusLine::isLoading() const {
    return m_measurement.stack(StackId::I1).isLoading() ||
           m_measurement.stack(StackId::I0).isLoading();
}

/// The beginning and the end of a load are shown at once. While frames come in, the rest waits: a
/// bar that moves takes longer to paint than a frame to read.
void StatusLine::showSoon() {
    if (!isLoading()) {
        show();
    } else if (!m_pace.isActive() || m_stopLoading->isHidden()) {
        show();
        m_pace.start(RefreshMs);
    }
}

void StatusLine::show() {
    showLoads();
    QStringList parts{measurementName(m_measurement), display()};
    parts.removeAll(QString());
    QString text = (parts + m_measurement.lastingWarnings()).join(Gap);
    int left = 0;
    for (const StackId id : {StackId::I1, StackId::I0}) {
        const Stack& stack = m_measurement.stack(id);
        left += stack.total() - stack.done();
    }
    if (left > 0) {
        text += Gap + tr("%n file(s) to read", nullptr, left);
    }
    const QString dark = darkState(m_measurement.dark());
    m_state->setText(dark.isEmpty() ? text : text + Gap + dark);
}

QString StatusLine::display() const {
    if (const TiffData* frame = shownFrame(m_measurement)) {
        const Stack& stack = m_measurement.shownStack();
        return tr("%1 frame %2 of %3   %4 eV")
            .arg(stack.name())
            .arg(m_measurement.frame() + 1)
            .arg(stack.size())
            .arg(QString::asprintf("% 8.2f", frame->energy));
    }
    const Result* result = m_measurement.shownResult();
    switch (m_measurement.settings().shown) {
        case Shown::Map:
            return result != nullptr && result->image.hasData()
                       ? withState(tr("Energy-shift map"), *result)
                       : tr("No energy-shift map yet");
        case Shown::Result:
            if (showsComposite(m_measurement)) {
                return tr("Composite of the fractions of the references");
            }
            return result != nullptr && result->image.hasData()
                       ? tr("Result image") + Gap + describe(m_measurement, *result)
                       : tr("No result yet: analyze the image and select a result in the Analyzer");
        default:
            return tr("No frames yet: open a folder, or select the files of I1 and I0");
    }
}

QString StatusLine::withState(const QString& title, const Result& result) const {
    const QString state = stateText(m_measurement, result);
    return state.isEmpty() ? title : title + Gap + state;
}

void StatusLine::showProgress(Work work, double done, double of) {
    if (work == Work::LoadI1 || work == Work::LoadI0) {
        showSoon();
        return;
    }
    if (work == Work::LoadDark) {
        return;  // the line says how many there are
    }
    const QString name = nameOfWork(work, m_measurement.settings().method);
    m_bar->showWork(work, name, 100.0 * done / of);
}

void StatusLine::showLoads() {
    int done = 0;
    int total = 0;
    for (const StackId id : {StackId::I1, StackId::I0}) {
        const Stack& stack = m_measurement.stack(id);
        if (stack.isLoading()) {
            done += stack.done();
            total += stack.total();
        }
    }
    m_bar->showFiles(done, total);
    // The bar is also that of analyses.
    if (total > 0 || !m_stopLoading->isHidden()) {
        m_bar->setVisible(total > 0);
        m_stopLoading->setVisible(total > 0);
    }
}

QString darkState(const DarkData& dark) {
    QStringList parts;
    if (dark.isLoading()) {
        parts << StatusLine::tr("%n dark file(s) to read", nullptr, dark.filesLeft());
    } else if (dark.loaded() > dark.fitting()) {
        parts << StatusLine::tr(
                     "%1 of %2 dark frames in use, the others are "
                     "not of the image's size")
                     .arg(dark.fitting())
                     .arg(dark.loaded());
    } else if (dark.loaded() > 0) {
        parts << StatusLine::tr("%n dark frame(s)", nullptr, dark.loaded());
    }
    if (dark.refused() > 0) {
        parts << StatusLine::tr("%n dark file(s) unreadable or not of the image's size", nullptr,
                                dark.refused());
    }
    return parts.join(Gap);
}
