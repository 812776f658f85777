#include "window/FrameStrip.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <QWheelEvent>
#include <algorithm>

#include "display/Availability.h"
#include "display/XafsView.h"
#include "measurement/Display.h"
#include "ui_FrameStrip.h"
#include "window/FramePlayer.h"

namespace {

constexpr int Speeds[] = {5, 10, 15, 20, 30};  // frames a second
constexpr int FirstSpeed = 1;
constexpr int RepeatDelay = 300;  // ms
constexpr int RepeatInterval = 60;

QString energyText(double energy) {
    return QString::number(energy, 'f', 2);
}

/// Shows a text, unless another is being typed.
void showText(QLineEdit* field, const QString& text) {
    if (!(field->hasFocus() && field->isModified()) && field->text() != text) {
        field->setText(text);
    }
}

}  // namespace

FrameStrip::FrameStrip(QWidget* parent)
    : QWidget(parent), m_ui(std::make_unique<Ui::FrameStrip>()) {
    m_ui->setupUi(this);
    m_ui->Prev->setIcon(style()->standardIcon(QStyle::SP_MediaSeekBackward));
    m_ui->Next->setIcon(style()->standardIcon(QStyle::SP_MediaSeekForward));
    m_ui->Play->setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
    for (QPushButton* button : {m_ui->Prev, m_ui->Next}) {
        button->setFixedWidth(3 * fontMetrics().height());
        button->setAutoRepeatDelay(RepeatDelay);
        button->setAutoRepeatInterval(RepeatInterval);
    }
    for (const int speed : Speeds) {
        m_ui->PlaySpeed->addItem(tr("%1/s").arg(speed), speed);
    }
    m_ui->PlaySpeed->setCurrentIndex(FirstSpeed);
    const int digits = fontMetrics().horizontalAdvance(QStringLiteral("00000.00"));
    for (QLineEdit* field : {m_ui->FrameEnergy, m_ui->E1, m_ui->E2}) {
        field->setFixedWidth(digits + fontMetrics().height());
    }
}

FrameStrip::~FrameStrip() {
    // A field that loses the focus now has nobody to tell.
    for (QLineEdit* field : {m_ui->FrameEnergy, m_ui->E1, m_ui->E2}) {
        field->disconnect(this);
    }
}

void FrameStrip::follow(Measurement& measurement, QWidget* view, const QVector<XafsView*>& plots) {
    m_measurement = &measurement;
    m_plots = plots;
    m_player = new FramePlayer(measurement, view, this);
    for (QWidget* each :
         {view, static_cast<QWidget*>(m_ui->SeekBar), static_cast<QWidget*>(m_ui->FrameEnergy),
          static_cast<QWidget*>(m_ui->E1), static_cast<QWidget*>(m_ui->E2)}) {
        each->installEventFilter(this);
    }
    connect(m_ui->Prev, &QPushButton::clicked, this, &FrameStrip::previousAsked);
    connect(m_ui->Next, &QPushButton::clicked, this, &FrameStrip::nextAsked);
    connect(m_ui->SeekBar, &QSlider::sliderMoved, this, &FrameStrip::frameAsked);
    connect(m_ui->SeekBar, &QSlider::actionTriggered, this,
            [this] { emit frameAsked(m_ui->SeekBar->sliderPosition()); });
    connect(m_ui->FrameEnergy, &QLineEdit::editingFinished, this, &FrameStrip::takeEnergy);
    connectView();
    for (XafsView* plot : plots) {
        connectPlot(plot);
    }
    connectPlayer();
    connect(&measurement, &Measurement::changed, this, &FrameStrip::changed);
    showFrame();
    showView();
    updateControls();
}

void FrameStrip::connectView() {
    const QPair<QToolButton*, FrameView::Kind> buttons[] = {
        {m_ui->ViewCounts, FrameView::Kind::Counts},
        {m_ui->ViewAbsorption, FrameView::Kind::Absorption},
        {m_ui->ViewDifference, FrameView::Kind::Difference}};
    for (const auto& button : buttons) {
        const FrameView::Kind kind = button.second;
        connect(button.first, &QToolButton::clicked, this, [this, kind] { chooseKind(kind); });
    }
    connect(m_ui->E1, &QLineEdit::editingFinished, this, &FrameStrip::takeDifference);
    connect(m_ui->E2, &QLineEdit::editingFinished, this, &FrameStrip::takeDifference);
    connect(m_ui->TakeE1, &QToolButton::clicked, this, [this] {
        FrameView view = m_measurement->settings().frameView;
        view.from = frame()->energy;
        setView(view);
    });
    connect(m_ui->TakeE2, &QToolButton::clicked, this, [this] {
        FrameView view = m_measurement->settings().frameView;
        view.to = frame()->energy;
        setView(view);
    });
}

void FrameStrip::connectPlot(XafsView* plot) {
    connect(plot, &XafsView::energyChosen, this, [this](double energy) {
        m_before = Place{m_measurement->settings().shown, m_measurement->frame()};
        goTo(energy);
    });
    connect(plot, &XafsView::choiceTakenBack, this, [this] {
        if (m_before) {
            m_measurement->set(&Settings::shown, m_before->shown);
            emit frameAsked(m_before->frame);
            m_before.reset();
        }
    });
}

void FrameStrip::connectPlayer() {
    m_player->setPerSecond(Speeds[FirstSpeed]);
    connect(m_ui->Play, &QToolButton::clicked, this, &FrameStrip::togglePlay);
    connect(m_ui->PlaySpeed, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this] { m_player->setPerSecond(m_ui->PlaySpeed->currentData().toInt()); });
    connect(m_player, &FramePlayer::playing, this, [this](bool on) {
        m_ui->Play->setChecked(on);
        m_ui->Play->setIcon(
            style()->standardIcon(on ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    });
}

void FrameStrip::togglePlay() {
    if (m_player->isPlaying()) {
        m_player->stop();
    } else {
        m_player->start();
    }
    m_ui->Play->setChecked(m_player->isPlaying());
}

/// A notch goes one frame on, with Ctrl ten; a touchpad's small turns add up to notches.
void FrameStrip::turn(const QWheelEvent& event) {
    constexpr int Notch = 120;
    constexpr int Coarse = 10;
    const QPoint delta = event.angleDelta();
    m_turned += delta.y() != 0 ? delta.y() : delta.x();
    const int notches = m_turned / Notch;
    m_turned -= notches * Notch;
    const int step = event.modifiers() & Qt::ControlModifier ? Coarse : 1;
    const int to = std::clamp(m_ui->SeekBar->value() + notches * step, 0, m_ui->SeekBar->maximum());
    if (to != m_ui->SeekBar->value()) {
        emit frameAsked(to);
    }
}

bool FrameStrip::eventFilter(QObject* object, QEvent* event) {
    if (object == m_ui->SeekBar && event->type() == QEvent::Wheel) {
        turn(*static_cast<QWheelEvent*>(event));
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Space && key->modifiers() == Qt::NoModifier) {
            if (!key->isAutoRepeat()) {
                togglePlay();
            }
            return true;
        }
    }
    return QWidget::eventFilter(object, event);
}

const TiffData* FrameStrip::frame() const {
    return m_measurement->shownStack().frames().at(m_measurement->frame());
}

void FrameStrip::changed(Measurement::Changes what) {
    if (what & (Measurement::Changes(Measurement::Frames) | Measurement::Display)) {
        showFrame();
        updateControls();
    }
    if (what & (Measurement::Changes(Measurement::Setting) | Measurement::Frames)) {
        showView();
    }
}

/// The slider is in step with the frames at any time.
void FrameStrip::showFrame() {
    const TiffData* shown = frame();
    m_ui->SeekBar->setMaximum(std::max(0, m_measurement->shownStack().size() - 1));
    m_ui->SeekBar->setValue(m_measurement->frame());
    showText(m_ui->FrameEnergy, shown != nullptr ? energyText(shown->energy) : QString());
    for (XafsView* plot : qAsConst(m_plots)) {
        plot->setFrameEnergy(shown != nullptr && shownFrame(*m_measurement) != nullptr
                                 ? std::optional<double>(shown->energy)
                                 : std::nullopt);
    }
}

void FrameStrip::showView() {
    const FrameView& view = m_measurement->settings().frameView;
    QToolButton* const buttons[] = {m_ui->ViewCounts, m_ui->ViewAbsorption, m_ui->ViewDifference};
    buttons[static_cast<int>(view.kind)]->setChecked(true);
    const bool isDifference = view.kind == FrameView::Kind::Difference;
    for (QWidget* each : {static_cast<QWidget*>(m_ui->TakeE1), static_cast<QWidget*>(m_ui->E1),
                          static_cast<QWidget*>(m_ui->TakeE2), static_cast<QWidget*>(m_ui->E2)}) {
        each->setVisible(isDifference);
    }
    showText(m_ui->E1, energyText(view.from));
    showText(m_ui->E2, view.to ? energyText(*view.to) : QString());
}

void FrameStrip::updateControls() {
    const int frames = m_measurement->shownStack().size();
    const QString noFrames = frames > 0 ? QString() : tr("Load some frames first.");
    for (QWidget* each :
         {static_cast<QWidget*>(m_ui->Prev), static_cast<QWidget*>(m_ui->Next),
          static_cast<QWidget*>(m_ui->SeekBar), static_cast<QWidget*>(m_ui->FrameEnergy)}) {
        setUsable(each, noFrames);
    }
    const Shown shown = m_measurement->settings().shown;
    const bool showsFrames = shown == Shown::I1 || shown == Shown::I0;
    const QString noStack = frames > 1 ? QString() : tr("Load some frames first.");
    setUsable(m_ui->Play, showsFrames ? noStack : tr("Show the data or I0 first."));
    const QString noI1 = frames > 0 ? tr("Show the data first: I0 has counts only.") : noFrames;
    for (QWidget* each :
         {static_cast<QWidget*>(m_ui->ViewCounts), static_cast<QWidget*>(m_ui->ViewAbsorption),
          static_cast<QWidget*>(m_ui->ViewDifference), static_cast<QWidget*>(m_ui->TakeE1),
          static_cast<QWidget*>(m_ui->TakeE2), static_cast<QWidget*>(m_ui->E1),
          static_cast<QWidget*>(m_ui->E2)}) {
        setUsable(each, shown == Shown::I1 && frames > 0 ? QString() : noI1);
    }
}

/// A map makes room for the frame.
void FrameStrip::goTo(double energy) {
    const Shown shown = m_measurement->settings().shown;
    if (shown == Shown::Map || shown == Shown::Result) {
        m_measurement->set(&Settings::shown, Shown::I1);
    }
    const int nearest = nearestFrame(m_measurement->shownStack().frames(), energy);
    if (nearest >= 0) {
        emit frameAsked(nearest);
    }
}

void FrameStrip::takeEnergy() {
    bool isNumber = false;
    const double energy = m_ui->FrameEnergy->text().trimmed().toDouble(&isNumber);
    const bool isTyped = m_ui->FrameEnergy->isModified();
    m_ui->FrameEnergy->setModified(false);
    if (isTyped && isNumber) {
        goTo(energy);
    }
    showFrame();
}

void FrameStrip::chooseKind(FrameView::Kind kind) {
    FrameView view = m_measurement->settings().frameView;
    view.kind = kind;
    if (kind == FrameView::Kind::Difference && m_measurement->judge(view).failed()) {
        // The first energy of all, and the frame on display whichever it is.
        view.from = m_measurement->source().energies().front();
        view.to.reset();
    }
    setView(view);
}

void FrameStrip::setView(const FrameView& view) {
    const Outcome outcome = m_measurement->judge(view);
    if (!outcome.failed()) {
        m_measurement->set(&Settings::frameView, view);
    }
    emit said(outcome);
    showView();
}

void FrameStrip::takeDifference() {
    if (!m_ui->E1->isModified() && !m_ui->E2->isModified()) {
        return;
    }
    FrameView view = m_measurement->settings().frameView;
    bool isNumber = false;
    const double from = m_ui->E1->text().trimmed().toDouble(&isNumber);
    if (m_ui->E1->isModified() && isNumber) {
        view.from = from;
    }
    const QString text = m_ui->E2->text().trimmed();
    const double to = text.toDouble(&isNumber);
    if (m_ui->E2->isModified() && (isNumber || text.isEmpty())) {
        view.to = isNumber ? std::optional<double>(to) : std::nullopt;
    }
    m_ui->E1->setModified(false);
    m_ui->E2->setModified(false);
    setView(view);
}
