// The two stacks of the main window: loading, clearing, and the frame on display.

#include <QFileInfo>
#include <QSlider>

#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "base/DebugLog.h"
#include "display/ImageView.h"
#include "frames/DarkData.h"
#include "panels/SelectDataFiles.h"
#include "ui_Body.h"
#include "window/Body.h"
#include "window/BodyStack.h"

void Body::clearI1Files() {
    stop2DAnalysis();
    m_imageWidth = -1;
    m_imageHeight = -1;
    m_dark->setImageSize(-1, -1);
    clear(*m_i1);
}

void Body::clearI0Files() {
    clear(*m_i0);
}

void Body::readI1Files(const QStringList& files, bool newFile) {
    if (newFile) {
        clearI1Files();
    }
    read(*m_i1, files);
}

void Body::readI0Files(const QStringList& files, bool newFile) {
    if (newFile) {
        clearI0Files();
    }
    read(*m_i0, files);
}

void Body::loadNextI1() {
    loadNext(*m_i1);
}
void Body::loadNextI0() {
    loadNext(*m_i0);
}

void Body::loadedI1(TiffData* loaded) {
    if (arrived(*m_i1, loaded)) {
        showNewest(*loaded);
    }
    tellProgress(*m_i1);
    loadNextI1();
}

void Body::showNewest(const TiffData& frame) {
    const int newest = m_i1->loader.frames().size() - 1;
    if (newest == 0) {
        m_imageWidth = static_cast<int>(frame.width);
        m_imageHeight = static_cast<int>(frame.height);
        m_ui->dispA->setImageSize(m_imageWidth, m_imageHeight);
        m_dark->setImageSize(m_imageWidth, m_imageHeight);
    }
    m_takingIn = true;
    m_i1->panel->select(newest);
    m_takingIn = false;
    if (newest == 0) {
        redisplay();
    } else {
        redisplaySoon();
    }
}

void Body::loadedI0(TiffData* loaded) {
    if (arrived(*m_i0, loaded)) {
        redisplaySoon();
    }
    tellProgress(*m_i0);
    loadNextI0();
}

void Body::selectedDataI0(bool) {
    showData(shownStack().panel->currentIndex());
}

void Body::showData(int n) {
    // Both panels tell of their choice; that of the stack which is not on display must not
    // blank the other.
    const auto* panel = qobject_cast<SelectDataFiles*>(sender());
    if (panel == nullptr || panel == shownStack().panel) {
        m_frame = n;
        if (m_takingIn) {
            redisplaySoon();
        } else {
            redisplay();
        }
    }
}

void Body::prev() {
    shownStack().panel->prev();
}
void Body::next() {
    shownStack().panel->next();
}
void Body::sliderMoved(int n) {
    shownStack().panel->select(n);
}

void Body::clear(Stack& stack) {
    if (&stack == &shownStack()) {
        m_frame = -1;
    }
    stack.panel->clearFiles();
    stopFittingRows();
    stack.loader.clear();
    stacksChanged();
    if (stack.id == Stack::I1) {
        m_ui->dispA->setImageSize(0, 0);
    }
    redisplay();
}

void Body::read(Stack& stack, const QStringList& files) {
    stack.loader.enqueue(files);
    stack.panel->setLoading(stack.loader.isLoading());
    showLoadProgress();
    loadNext(stack);
}

bool Body::requestNext(Stack& stack) {
    bool requested = false;
    while (const auto request = stack.loader.next()) {
        requested = true;
        if (stack.id == Stack::I1) {
            emit loadI1(request->fileName, request->frame);
        } else {
            emit loadI0(request->fileName, request->frame);
        }
    }
    return requested;
}

void Body::loadNext(Stack& stack) {
    if (requestNext(stack) || stack.loader.isLoading()) {
        return;
    }
    stack.panel->setLoading(false);
    redisplay();
    const QStringList unread = stack.loader.takeFailures();
    QStringList problems;
    for (const QString& file : unread) {
        problems << QStringLiteral("cannot be read: ") + file;
    }
    if (!unread.isEmpty()) {
        note(tr("%n file(s) could not be read: %1", nullptr, unread.size())
                 .arg(QFileInfo(unread.first()).fileName()));
    }
    answerWaiting(stack.work(), problems);
}

void Body::stopLoading() {
    QStringList said;
    for (Stack* stack : {m_i1.get(), m_i0.get()}) {
        if (stack->loader.isLoading()) {
            said << tr("%1: loading stopped after %2 of %3 files")
                        .arg(stack->id == Stack::I1 ? QStringLiteral("I1") : QStringLiteral("I0"))
                        .arg(stack->loader.done())
                        .arg(stack->loader.total());
            stopLoading(*stack);
        }
    }
    if (!said.isEmpty()) {
        note(said.join(QStringLiteral("   ")));
    }
}

void Body::stopLoading(Stack& stack) {
    StackLoader& loader = stack.loader;
    const QString what = QStringLiteral("loading stopped by the user after %1 of %2 files")
                             .arg(loader.done())
                             .arg(loader.total());
    loader.stop();
    loader.takeFailures();
    stack.panel->setLoading(false);
    tellProgress(stack);
    redisplay();
    debugTimed(what);
    answerWaiting(stack.work(), {what});
}

bool Body::arrived(Stack& stack, TiffData* loaded) {
    std::unique_ptr<TiffData> frame = stack.loader.arrived(loaded);
    requestNext(stack);  // the reader goes on while this frame is taken in and shown
    if (!frame) {
        return false;
    }
    stopFittingRows();
    // The panel's list and the stack hold the same files in the same order.
    m_takingIn = true;
    frame->energy = stack.panel->newFile(frame->fileName);
    m_takingIn = false;
    stack.loader.frames().append(std::move(frame));
    stacksChanged();
    updateSeekBar();
    return true;
}

void Body::tellProgress(const Stack& stack) {
    emit loadProgress(stack.id, stack.loader.done(), stack.loader.total());
}

void Body::stacksChanged() {
    stopFittingRows();
    m_rows.reset();
    m_source.reset();
}

Body::Stack& Body::shownStack() {
    return shown() == ShownI0 ? *m_i0 : *m_i1;
}

const AbsorptionSource& Body::source() {
    takeNewDark();
    if (!m_source) {
        m_source = std::make_unique<AbsorptionSource>(m_i1->loader.frames(), m_i0->loader.frames(),
                                                      m_imageWidth, m_imageHeight, m_dark->mean());
    }
    return *m_source;
}
