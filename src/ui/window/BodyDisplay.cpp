// What the main window shows: the picture, its colour bar, cross sections and read-outs.

#include <QAbstractButton>
#include <QAction>
#include <QButtonGroup>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QStatusBar>
#include <QToolButton>
#include <cmath>

#include "base/Globals.h"
#include "display/ColorBar.h"
#include "display/CrossSection.h"
#include "display/ImageView.h"
#include "drawing/FramePicture.h"
#include "drawing/Profiles.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "ui_Body.h"
#include "window/Body.h"
#include "window/BodyStack.h"

namespace {
/// While a stack loads, what is shown follows at this pace: a frame takes less time to read than to
/// show.
constexpr int RedisplayMs = 40;
}  // namespace

int Body::shown() const {
    return m_showGroup == nullptr ? ShownData : m_showGroup->checkedId();
}

TiffData* Body::shownFrame() const {
    switch (shown()) {
        case ShownData:
            return m_i1->loader.frames().at(m_frame);
        case ShownI0:
            return m_i0->loader.frames().at(m_frame);
        default:
            return nullptr;
    }
}

Analyzed2DRes* Body::shownResult() const {
    switch (shown()) {
        case ShownShift:
            return m_shiftMap->grid().width > 0 ? m_shiftMap.get() : nullptr;
        case ShownResult:
            return m_analyzer->selectedResult();
        default:
            return nullptr;
    }
}

QImage Body::shownPicture() const {
    if (TiffData* frame = shownFrame()) {
        return m_ui->CBar->isAuto() && frame->picture() != nullptr
                   ? *frame->picture()
                   : framePicture(*frame, m_ui->CBar->rangeMin(), m_ui->CBar->rangeMax());
    }
    const Analyzed2DRes* result = shownResult();
    return result != nullptr && result->img() != nullptr ? *result->img() : QImage();
}

/// The shown picture as it is painted. What had to be made for that is kept, for it is painted anew
/// with every move of the mouse.
QImage Body::markedPicture() {
    if (const TiffData* frame = shownFrame()) {
        if (m_ui->CBar->isAuto()) {
            return shownPicture();
        }
        if (m_painted.isNull()) {
            m_painted = framePicture(*frame, m_ui->CBar->rangeMin(), m_ui->CBar->rangeMax());
        }
        return m_painted;
    }
    const QImage picture = shownPicture();
    const Analyzed2DRes* result = shownResult();
    if (picture.isNull()) {
        return picture;
    }
    if (m_paintedOf != picture.cacheKey()) {
        m_paintedOf = picture.cacheKey();
        m_painted = withGapsMarked(picture, result->showsProc() ? result->proc() : result->data(),
                                   result->grid().width, result->grid().height);
        if (m_painted.cacheKey() == picture.cacheKey()) {
            m_painted = QImage();  // no gaps; the memory of the picture is the result's
        }
    }
    return m_painted.isNull() ? picture : m_painted;
}

void Body::forgetPainted() {
    m_painted = QImage();
    m_paintedOf = 0;
}

void Body::draw(QPainter* p) {
    const QImage picture = markedPicture();
    if (!picture.isNull()) {
        m_ui->dispA->paintImage(p, picture);
    }
}

void Body::newCBar() {
    forgetPainted();
    updateValueAndCrossSections();
    m_ui->dispA->QWidget::update();
}

void Body::fixPercentiles() {
    if (const TiffData* frame = shownFrame()) {
        const auto [low, high] = countPercentiles(*frame, 0.01);
        m_ui->CBar->fix(low, high);
    }
}

void Body::redisplaySoon() {
    if (!m_redisplayed.isValid() || m_redisplayed.hasExpired(RedisplayMs)) {
        redisplay();
    } else if (!m_redisplayTimer.isActive()) {
        m_redisplayTimer.start(RedisplayMs);
    }
}

void Body::redisplay() {
    m_redisplayTimer.stop();
    forgetPainted();
    const TiffData* frame = shownFrame();
    const Analyzed2DRes* result = shownResult();
    m_ui->dispA->setResultDisplayed(shown() == ShownShift || shown() == ShownResult);
    if (frame != nullptr) {
        m_ui->CBar->showFrames(frameColors());
        m_ui->CBar->setDataRange(frame->min, frame->max);
    } else if (result != nullptr) {
        m_ui->CBar->showResult(resultColors());
        m_ui->CBar->setRange(result->rangeMin(), result->rangeMax());
    }
    updateStatus();
    updateValueAndCrossSections();
    m_ui->dispA->QWidget::update();
    m_redisplayed.start();
}

void Body::updateSeekBar() {
    const int count = shownStack().loader.frames().size();
    m_ui->SeekBar->setMaximum(count > 0 ? count - 1 : 0);
    m_ui->SeekBar->setValue(m_frame);
}

void Body::updateStatus() {
    Stack& stack = shownStack();
    const int count = stack.loader.frames().size();
    updateSeekBar();
    showLoadProgress();

    QString text;
    if (const TiffData* frame = shownFrame()) {
        text = tr("%1 frame %2 of %3   %4 eV")
                   .arg(stack.id == Stack::I0 ? QStringLiteral("I0") : QStringLiteral("I1"))
                   .arg(m_frame + 1)
                   .arg(count)
                   .arg(QString::asprintf("% 8.2f", frame->energy));
    } else if (shown() == ShownShift) {
        text = m_shiftMap->hasData() ? tr("Energy-shift map") : tr("No energy-shift map yet");
    } else if (shown() == ShownResult) {
        text = shownResult() != nullptr && shownResult()->hasData()
                   ? tr("Result image") + QStringLiteral("   ") + m_analyzer->selectedTitle()
                   : tr("No result yet: analyze the image and select a result in the Analyzer");
    } else {
        text = tr("No frames yet: select the files of I1 and I0");
    }
    const int left =
        m_i1->loader.total() - m_i1->loader.done() + m_i0->loader.total() - m_i0->loader.done();
    if (left > 0) {
        text += QStringLiteral("   ") + tr("%n file(s) to read", nullptr, left);
    }
    const QString dark = darkState();
    m_state->setText(dark.isEmpty() ? text : text + QStringLiteral("   ") + dark);

    updateControls();
}

void Body::onMouseMovedInDispA() {
    updateValueAndCrossSections();
}

void Body::updateValueAndCrossSections() {
    const QPointF position = m_ui->dispA->realPosition();
    const int x = toPixel(position.x());
    const int y = toPixel(position.y());

    int width = 0;
    int height = 0;
    PixelValue valueAt;
    const TiffData* frame = shownFrame();
    const Analyzed2DRes* result = shownResult();
    if (frame != nullptr) {
        width = static_cast<int>(frame->width);
        height = static_cast<int>(frame->rows.size());
        valueAt = [frame](int column, int row) {
            return static_cast<double>(frame->rows[static_cast<std::size_t>(row)][column]);
        };
    } else if (result != nullptr) {
        width = result->grid().width;
        height = result->grid().height;
        valueAt = [result](int column, int row) { return result->shownValueAt(column, row); };
    }
    const bool inside = x >= 0 && y >= 0 && x < width && y < height;
    const QString nothing = width > 0 ? QString() : QStringLiteral("0.0");
    m_ui->Value->setText(inside ? QString::number(valueAt(x, y), 'g', 6) : nothing);
    m_hCross->setProfile(rowProfile(width, height, valueAt, y, halfHeight()), 0);
    m_vCross->setProfile(columnProfile(width, height, valueAt, x, halfWidth()), 0);
    const bool isFixed =
        frame != nullptr ? !m_ui->CBar->isAuto() : result != nullptr && result->isFixedScale();
    for (CrossSection* section : {m_hCross, m_vCross}) {
        section->setValueRange(isFixed ? m_ui->CBar->rangeMin() : 0.0,
                               isFixed ? m_ui->CBar->rangeMax() : 0.0);
    }
    m_hCross->setMarker(position.x());
    m_vCross->setMarker(position.y());
}

void Body::showProgress(double percent) {
    // Painted at once and nothing else: a blocking analysis must not take events in between.
    m_progressBar->setVisible(percent < 100.0);
    m_progressBar->setRange(0, 100);
    m_progressBar->setValue(toClampedInt(percent, 0, 100));
    m_progressBar->repaint();
    emit analysisProgress(percent);
}

void Body::makeLoadingControls() {
    m_progressBar = new QProgressBar(this);
    m_progressBar->setMaximumWidth(240);
    m_progressBar->hide();
    m_stopLoading = new QToolButton(this);
    m_stopLoading->setObjectName(QStringLiteral("StopLoading"));
    auto* stop = new QAction(tr("Stop Loading"), m_stopLoading);
    stop->setToolTip(
        tr("Frames that have been read stay, the files still to be read are left out (Esc)"));
    stop->setShortcut(Qt::Key_Escape);  // the button's, so only while it is there
    m_stopLoading->setDefaultAction(stop);
    m_stopLoading->hide();
    m_ui->statusbar->addPermanentWidget(m_progressBar);
    m_ui->statusbar->addPermanentWidget(m_stopLoading);
    connect(stop, &QAction::triggered, this, qOverload<>(&Body::stopLoading));
    m_redisplayTimer.setSingleShot(true);
    connect(&m_redisplayTimer, &QTimer::timeout, this, &Body::redisplay);
}

void Body::showLoadProgress() {
    int done = 0;
    int total = 0;
    for (const StackLoader* loader : {&m_i1->loader, &m_i0->loader}) {
        if (loader->isLoading()) {
            done += loader->done();
            total += loader->total();
        }
    }
    if (total > 0) {
        m_progressBar->setRange(0, total);
        m_progressBar->setValue(done);
    }
    // The bar is also that of analyses.
    if (total > 0 || !m_stopLoading->isHidden()) {
        m_progressBar->setVisible(total > 0);
        m_stopLoading->setVisible(total > 0);
    }
}

void Body::showResAnalysis(bool) {
    redisplay();
}

void Body::showShiftMap() {
    redisplay();
}

void Body::setupResAnalysisImage() {
    if (Analyzed2DRes* selected = m_analyzer->selectedResult()) {
        selected->genImg();
    }
}

void Body::selectedNewRef() {
    redisplay();
}
