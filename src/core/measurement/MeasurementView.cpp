// What the frames of a measurement show in place of their counts.

#include <algorithm>
#include <cstring>

#include "absorption/AbsorptionSource.h"
#include "calibration/EnergyShift.h"
#include "measurement/FitJudgement.h"
#include "measurement/Measurement.h"

namespace {

quint64 bitsOf(double value) {
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

PixelPass differencePass(const AbsorptionSource& source, double from, double to,
                         const Analyzed2DRes& map) {
    double lowest = 0.0;  // outside of a map
    double highest = 0.0;
    for (const double shift : map.values()) {
        lowest = std::min(lowest, shift);
        highest = std::max(highest, shift);
    }
    return PixelPass::difference(source, from, to, shiftsOf(map), lowest, highest);
}

}  // namespace

FrameView::Kind Measurement::frameKind() const {
    return m_settings.shown == Shown::I1 && m_i1.size() > 0 ? m_settings.frameView.kind
                                                            : FrameView::Kind::Counts;
}

ViewRange Settings::*Measurement::frameRange() const {
    const bool isI1 = m_settings.shown == Shown::I1;
    switch (isI1 ? m_settings.frameView.kind : FrameView::Kind::Counts) {
        case FrameView::Kind::Absorption:
            return &Settings::absorptionRange;
        case FrameView::Kind::Difference:
            return &Settings::differenceRange;
        case FrameView::Kind::Counts:
            break;
    }
    return &Settings::viewRange;
}

QPair<double, double> Measurement::differenceEnergies() const {
    const FrameView& view = m_settings.frameView;
    const TiffData* frame = m_i1.frames().at(m_frame[static_cast<int>(StackId::I1)]);
    return {view.from, view.to.value_or(frame != nullptr ? frame->energy : view.from)};
}

QString Measurement::ofLoad(const QString& problem) const {
    for (const Stack* stack : {&m_i1, &m_i0}) {
        for (int i = 0; i < stack->size() && !problem.isEmpty(); ++i) {
            if (problem.startsWith(stack->frames().at(i)->fileName + QLatin1Char(':'))) {
                return QStringLiteral("%1: %2").arg(stack->name(), problem);
            }
        }
    }
    return problem;
}

QString Measurement::darkProblem() const {
    const QString& problem = m_dark.problem();
    return problem.isEmpty() ? problem : tr("dark: %1").arg(problem);
}

QString Measurement::frameProblem() const {
    return frameKind() == FrameView::Kind::Counts ? QString()
           : darkProblem().isEmpty()              ? ofLoad(m_frameImages.problem())
                                                  : darkProblem();
}

Outcome Measurement::judge(const FrameView& view) {
    if (view.kind != FrameView::Kind::Difference || m_i1.size() == 0) {
        return {};
    }
    const std::vector<double>& energies = source().energies();
    if (view.to) {
        return judgeDifference(energies, view.from, *view.to);
    }
    // The frame on display may be any: only the other energy can be wrong.
    const bool isLowest = view.from == energies.front();
    return judgeDifference(energies, view.from, isLowest ? energies.back() : energies.front());
}

const FrameImage* Measurement::frameImage(Wait wait) {
    const FrameView::Kind kind = frameKind();
    if (kind == FrameView::Kind::Counts || m_rehearsal) {
        m_frameImages.forget();
        return nullptr;
    }
    const bool isDifference = kind == FrameView::Kind::Difference;
    const TiffData* frame = m_i1.frames().at(m_frame[static_cast<int>(StackId::I1)]);
    const auto [from, to] = isDifference ? differenceEnergies() : qMakePair(0.0, frame->energy);
    const AbsorptionSource& frames = source();
    if (!m_dark.problem().isEmpty()) {
        return nullptr;
    }
    const FrameImages::Key key{
        static_cast<quint64>(kind),
        isDifference ? 0 : static_cast<quint64>(m_frame[static_cast<int>(StackId::I1)]),
        bitsOf(from),
        bitsOf(to),
        m_sourceRevision,
        isDifference && m_mapInput ? m_mapInput->revision : 0};
    // Structured bindings cannot be captured.
    const auto ask = [&, first = from, second = to] {
        return FrameImages::Request{
            kind, first, second,
            std::make_shared<const PixelPass>(
                isDifference ? differencePass(frames, first, second, m_map->image)
                             : PixelPass::absorption(frames, frame)),
            threads()};
    };
    const FrameImage* image =
        wait == Wait::UntilMade ? m_frameImages.now(key, ask) : m_frameImages.soon(key, ask);
    const bool fits =
        image != nullptr && QSize(image->pixels.width, image->pixels.height) == m_size;
    return fits ? image : nullptr;
}
