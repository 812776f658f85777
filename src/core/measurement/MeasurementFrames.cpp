// The frames of a measurement: their stacks, the size of the images and the area within it.

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "absorption/AbsorptionSource.h"
#include "base/DebugLog.h"
#include "base/Memory.h"
#include "files/FileListing.h"
#include "measurement/FolderLoad.h"
#include "measurement/Measurement.h"
#include "measurement/NewFrames.h"

void Measurement::connectStack(Stack& stack) {
    const StackId id = stack.id();
    const Work work = id == StackId::I1 ? Work::LoadI1 : Work::LoadI0;
    connect(&stack, &Stack::changing, this, [this] {
        stopRun(tr("frames were added"));
        m_frameImages.stop();
        m_source.reset();
    });
    connect(&stack, &Stack::changed, this, [this, id] { frameArrived(id); });
    connect(&stack, &Stack::progressed, this,
            [this, &stack, work] { emit progressed(work, stack.done(), stack.total()); });
    connect(&stack, &Stack::finished, this, [this, id] { loadEnded(id); });
}

void Measurement::frameArrived(StackId id) {
    const int count = stack(id).size();
    int& current = m_frame[static_cast<int>(id)];
    // The newest I1 frame is shown; of I0 the one that was.
    current = count == 0 ? -1 : id == StackId::I1 ? count - 1 : std::max(0, current);
    if (id == StackId::I1 && count == 1) {
        const TiffData& first = *m_i1.frames().at(0);
        setImageSize(QSize(static_cast<int>(first.width), static_cast<int>(first.height)));
    }
    inputsChanged(Changes(Frames) | Display);
}

void Measurement::setImageSize(const QSize& size) {
    m_size = size;
    m_dark.setImageSize(size.width(), size.height());
    // Between two stacks there is no image; the area waits for the next one.
    if (!size.isEmpty() && !m_settings.area.isWhole()) {
        m_aboutArea = judge(m_settings.area);
        if (m_aboutArea.failed()) {
            m_aboutArea.failures << tr("the whole image is taken instead");
        }
        if (m_settings.area.shape == AreaShape::Rectangle) {
            const QRect inside = selection().toRect();
            m_settings.area = {inside.left(), inside.top(), inside.left() + inside.width(),
                               inside.top() + inside.height()};
        } else if (m_aboutArea.failed()) {
            m_settings.area = Area();
        }
    }
}

Outcome Measurement::judge(const Area& area) const {
    constexpr int AnySize = 1 << 30;
    const bool isKnown = !m_size.isEmpty();
    const QSize size = isKnown ? m_size : QSize(AnySize, AnySize);
    if (area.isWhole()) {
        return {};
    }
    const bool hasPixels =
        isKnown ? area.hasPixels(size) : !area.within(size.width(), size.height()).isEmpty();
    if (!hasPixels) {
        return Outcome::failure(isKnown ? tr("no part of the region lies inside the image of %1 x "
                                             "%2 pixels")
                                              .arg(size.width())
                                              .arg(size.height())
                                        : tr("the region holds no pixel of any image"));
    }
    const Area inside = area.clipped(size);
    return inside == area ? Outcome()
                          : Outcome::warning(tr("the region reaches over the edge of the image: "
                                                "%1 %2 %3 %4 is left of it")
                                                 .arg(inside.x0)
                                                 .arg(inside.y0)
                                                 .arg(inside.x1)
                                                 .arg(inside.y1));
}

QStringList Measurement::list(const QString& folder, const QStringList& patterns) const {
    return m_rehearsal ? m_rehearsal->list(folder, patterns) : listImageFiles(folder, patterns);
}

/// Bytes of the counts that are in memory for a load that has been.
quint64 Measurement::countsHeld(Work load) const {
    return load == Work::LoadDark ? countBytes(m_size, m_dark.loaded())
           : load == Work::LoadI1 ? countBytes(m_i1.imageSize(), m_i1.size())
                                  : countBytes(m_i0.imageSize(), m_i0.size());
}

/// Bytes of what a load under way will add.
quint64 Measurement::countsToCome(Work load) const {
    return load == Work::LoadDark ? countBytes(m_size, m_dark.filesLeft())
           : load == Work::LoadI1 ? countBytes(m_i1.imageSize(), m_i1.toCome())
                                  : countBytes(m_i0.imageSize(), m_i0.toCome());
}

/// Failed: the counts do not fit into memory beside those of loads that they do not replace.
Outcome Measurement::judgeMemory(const QVector<FramesToRead>& loads,
                                 const std::set<Work>& replaced) const {
    if (!m_countsInMemory || m_rehearsal) {
        return {};
    }
    quint64 available = availableMemory();
    for (const Work load : {Work::LoadI1, Work::LoadI0, Work::LoadDark}) {
        if (replaced.count(load) > 0) {
            available += countsHeld(load);
        } else {
            available -= std::min(available, countsToCome(load));
        }
    }
    return ::judgeMemory(loads, available);
}

void Measurement::load(StackId id, const QStringList& files, bool replace) {
    const Work work = id == StackId::I1 ? Work::LoadI1 : Work::LoadI0;
    const QSize size = replace ? QSize() : stack(id).imageSize();
    const Outcome judged = judgeMemory({{stack(id).name(), files, size}},
                                       replace ? std::set<Work>{work} : std::set<Work>{});
    if (judged.failed()) {
        emit ended(work, judged);
        return;
    }
    beginLoad(id, files, replace);
}

void Measurement::beginLoad(StackId id, const QStringList& files, bool replace) {
    if (replace) {
        stopRun(tr("frames were replaced"));
        clear(id);
    }
    stack(id).setNames(m_settings.names[static_cast<int>(id)]);
    stack(id).read(files);
    emit changed(AtWork);
}

Outcome Measurement::loadNew(StackId id) {
    const QString name = stack(id).name();
    if (stack(id).files().isEmpty()) {
        return Outcome::failure(tr("no %1 frames are loaded yet").arg(name));
    }
    const NewFrames fresh =
        newFramesOf(stack(id), stack(id == StackId::I1 ? StackId::I0 : StackId::I1));
    Outcome outcome;
    if (!fresh.otherwise.isEmpty()) {
        outcome.warnings << tr("%1: not taken, a number besides the energy differs: %2")
                                .arg(name, QFileInfo(fresh.otherwise.first()).fileName());
    }
    if (fresh.files.isEmpty()) {
        outcome.notes << tr("no new %1 frames").arg(name);
    } else {
        load(id, fresh.files, false);
    }
    return outcome;
}

void Measurement::clear(StackId id) {
    stopRun(tr("frames were cleared"));
    if (id == StackId::I1) {
        setImageSize(QSize(-1, -1));
    }
    stack(id).clear();
}

void Measurement::loadEnded(StackId id) {
    Outcome outcome = stack(id).takeOutcome();
    if (id == StackId::I1) {
        outcome += std::exchange(m_aboutArea, {});
    }
    emit changed(AtWork);
    tellLoaded(id == StackId::I1 ? Work::LoadI1 : Work::LoadI0, outcome);
}

void Measurement::stopLoading() {
    for (Stack* stack : {&m_i1, &m_i0}) {
        if (!stack->isLoading()) {
            continue;
        }
        const QString what = QStringLiteral("loading stopped by the user after %1 of %2 files")
                                 .arg(stack->done())
                                 .arg(stack->total());
        debugTimed(what);
        Outcome stopped = Outcome::failure(tr("%1: loading stopped after %2 of %3 files")
                                               .arg(stack->name())
                                               .arg(stack->done())
                                               .arg(stack->total()));
        stack->stop();
        stopped += stack->takeOutcome();
        emit progressed(stack == &m_i1 ? Work::LoadI1 : Work::LoadI0, stack->done(),
                        stack->total());
        emit changed(Changes(AtWork) | Display);
        tellLoaded(stack == &m_i1 ? Work::LoadI1 : Work::LoadI0, stopped);
    }
}

void Measurement::loadDark(const QStringList& files) {
    const Outcome judged = judgeMemory({{tr("dark"), files}}, {Work::LoadDark});
    if (judged.failed()) {
        emit ended(Work::LoadDark, judged);
        return;
    }
    beginLoadDark(files);
}

void Measurement::beginLoadDark(const QStringList& files) {
    m_loadsDark = true;
    m_dark.replace(files);
}

namespace {

std::set<Work> worksOf(const QStringList& i0, const QStringList& dark) {
    std::set<Work> works;
    if (!i0.isEmpty()) {
        works.insert(Work::LoadI0);
    }
    if (!dark.isEmpty()) {
        works.insert(Work::LoadDark);
    }
    return works;
}

}  // namespace

void Measurement::loadTogether(const QStringList& i1, const QStringList& i0,
                               const QStringList& dark, const Outcome& begun) {
    const std::set<Work> replaced =
        i1.isEmpty() ? worksOf(i0, dark)
                     : std::set<Work>{Work::LoadI1, Work::LoadI0, Work::LoadDark};
    const Outcome judged =
        judgeMemory({{m_i1.name(), i1}, {m_i0.name(), i0}, {tr("dark"), dark}}, replaced);
    if (judged.failed()) {
        emit ended(Work::LoadFolder, judged);
        return;
    }
    // Who waits for a load that is overtaken waits for the one in its place.
    for (const Work work : {Work::LoadI1, Work::LoadI0, Work::LoadDark}) {
        if (isAtWork(work) && m_together.count(work) == 0) {
            m_overtaken.insert(work);
        }
    }
    // Frames before and after them are not to be held against each other.
    if (!i1.isEmpty()) {
        clear(StackId::I1);
        clear(StackId::I0);
        m_dark.clear();
    }
    m_together[Work::LoadFolder].reset();
    const QPair<Work, const QStringList*> parts[] = {
        {Work::LoadI1, &i1}, {Work::LoadI0, &i0}, {Work::LoadDark, &dark}};
    for (const auto& [work, files] : parts) {
        if (!files->isEmpty()) {
            m_together[work].reset();
        }
    }
    if (!dark.isEmpty()) {
        beginLoadDark(dark);
    }
    if (!i0.isEmpty()) {
        beginLoad(StackId::I0, i0, true);
    }
    if (!i1.isEmpty()) {
        beginLoad(StackId::I1, i1, true);
    }
    tellLoaded(Work::LoadFolder, begun);
}

/// At once, or with the others of the loads that began together.
void Measurement::tellLoaded(Work work, const Outcome& outcome) {
    const bool isAwaited = m_overtaken.erase(work) > 0;
    const auto part = m_together.find(work);
    if (part == m_together.end()) {
        emit ended(work, outcome);
        return;
    }
    part->second = isAwaited ? Outcome() : outcome;
    if (isAwaited) {
        emit ended(work, outcome);
    }
    Outcome all;
    for (const Work one : {Work::LoadFolder, Work::LoadI1, Work::LoadI0, Work::LoadDark}) {
        const auto told = m_together.find(one);
        if (told != m_together.end() && !told->second) {
            return;
        }
        all += told == m_together.end() ? Outcome() : *told->second;
    }
    QStringList loaded;
    for (const Stack* stack : {&m_i1, &m_i0}) {
        const Work load = stack->id() == StackId::I1 ? Work::LoadI1 : Work::LoadI0;
        loaded << (m_together.count(load) > 0 ? loadedText(*stack) : QString());
    }
    loaded.removeAll(QString());
    all.notes = loaded + all.notes;
    m_together.clear();
    emit ended(Work::LoadFolder, all);
}
