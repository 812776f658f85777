#include "absorption/AbsorptionSource.h"

#include <algorithm>

#include "absorption/BinRowSpectra.h"
#include "absorption/CountBand.h"
#include "base/Numbers.h"
#include "frames/DarkFrame.h"
#include "frames/FrameSet.h"
#include "spectra/Logarithm.h"

namespace {

double muT(double s0, double s1) {
    return s0 > 0.0 && s1 > 0.0 ? logarithm(s0 / s1) : 1.0;
}

}  // namespace

AbsorptionSource::AbsorptionSource(const FrameSet& i1, const FrameSet& i0, int width, int height,
                                   const DarkFrame* dark)
    : m_width(width), m_height(height), m_dark(dark) {
    gatherI0(i0);
    for (int i : inOrderOfEnergy(i1)) {
        const TiffData* const frame = i1.at(i);
        m_i1.push_back(frame);
        m_energies.push_back(frame->energy);
        if (!m_i0.empty()) {
            m_brackets.push_back(bracketOf(frame->energy));
        }
    }
    placeFrames();
    shareI0();
}

void AbsorptionSource::placeFrames() {
    m_frames = m_i1;
    for (I0Energy& energy : m_i0) {
        energy.place = m_frames.size();
        m_frames.insert(m_frames.end(), energy.frames.begin(), energy.frames.end());
    }
    m_isStreamed = std::any_of(m_frames.begin(), m_frames.end(), CountBand::isRead);
}

/// How the counts of the I0 energies reach s0 at the energies of I1.
void AbsorptionSource::shareI0() {
    m_shares.resize(m_i1.size());
    std::vector<int> uses(m_i0.size() + 1);
    for (std::size_t i = 0; i < m_brackets.size(); ++i) {
        const Bracket& at = m_brackets[i];
        lanes::I0Share& share = m_shares[i];
        share.first = static_cast<int>(at.first);
        share.weight[1] = at.isInterpolated ? at.fromFirst / at.span : 0.0;
        share.weight[0] = 1.0 - share.weight[1];
        for (std::size_t side : {0, 1}) {
            uses[at.first + side] += share.weight[side] != 0.0 ? 1 : 0;
        }
    }
    for (const I0Energy& energy : m_i0) {
        m_i0PerFrame.push_back(1.0 / static_cast<double>(energy.frames.size()));
    }
    for (std::size_t i = 0; i < m_brackets.size(); ++i) {
        lanes::I0Share& share = m_shares[i];
        for (std::size_t side : {0, 1}) {
            const std::size_t energy = m_brackets[i].first + side;
            const double weight = share.weight[side];
            if (weight == 0.0) {
                continue;
            }
            const bool isShared = uses[energy] > 1;
            const double part = weight * weight * m_i0PerFrame[energy];
            share.shared[side] = isShared ? weight : 0.0;
            share.all[side] = m_i0.size() > 1 ? part : 0.0;
            share.own[side] = isShared ? 0.0 : part;
            share.hasOwn |= !isShared;
            m_haveSharedI0 |= isShared;
        }
        share.isPlain = share.all[0] == 1.0 && share.own[0] == 1.0 && share.weight[1] == 0.0;
    }
}

void AbsorptionSource::gatherI0(const FrameSet& i0) {
    for (int i : inOrderOfEnergy(i0)) {
        const TiffData* const frame = i0.at(i);
        if (m_i0.empty() || m_i0.back().energy != frame->energy) {
            m_i0.push_back({frame->energy, {}});
        }
        m_i0.back().frames.push_back(frame);
    }
}

AbsorptionSource::Bracket AbsorptionSource::bracketOf(double e) const {
    const int n = static_cast<int>(m_i0.size());
    if (n == 1) {
        return {};
    }
    const auto energyAt = [this](int i) { return m_i0[static_cast<std::size_t>(i)].energy; };
    const auto first = static_cast<std::size_t>(pairAround(n, e, energyAt));
    // A mean is the value at its energy to the bit; a line through it would round once more.
    for (std::size_t i : {first, first + 1}) {
        if (m_i0[i].energy == e && m_i0[i].frames.size() > 1) {
            return {i, false, 0.0, 0.0};
        }
    }
    const double e0 = m_i0[first].energy;
    return {first, true, e - e0, m_i0[first + 1].energy - e0};
}

int AbsorptionSource::indexOf(const TiffData* frame) const {
    const auto found = std::find(m_i1.begin(), m_i1.end(), frame);
    return found == m_i1.end() ? -1 : static_cast<int>(found - m_i1.begin());
}

AbsorptionSource AbsorptionSource::ofFrames(const std::vector<int>& places) const {
    AbsorptionSource few(m_width, m_height, m_dark);
    std::vector<bool> isTaken(m_i0.size() + 1);
    for (const int place : places) {
        const auto i = static_cast<std::size_t>(place);
        few.m_i1.push_back(m_i1[i]);
        few.m_energies.push_back(m_energies[i]);
        if (!m_brackets.empty()) {
            const Bracket& bracket = m_brackets[i];
            few.m_brackets.push_back(bracket);
            isTaken[bracket.first] = true;
            isTaken[bracket.first + 1] = isTaken[bracket.first + 1] || bracket.isInterpolated;
        }
    }
    std::vector<std::size_t> placeOf(m_i0.size());
    for (std::size_t i = 0; i < m_i0.size(); ++i) {
        placeOf[i] = few.m_i0.size();
        if (isTaken[i]) {
            few.m_i0.push_back(m_i0[i]);
        }
    }
    for (Bracket& bracket : few.m_brackets) {
        bracket.first = placeOf[bracket.first];
    }
    few.placeFrames();
    few.shareI0();
    return few;
}

double AbsorptionSource::darkSum(int x, int y, int halfWidth, int halfHeight) const {
    // Taking 0.0 off a sum leaves its bits as they are.
    return m_dark != nullptr ? m_dark->boxSum(x, y, halfWidth, halfHeight) : 0.0;
}

Spectrum AbsorptionSource::spectrumAt(int x, int y, int halfWidth, int halfHeight) const {
    Spectrum spectrum;
    if (!isInside(x, y)) {
        return spectrum;
    }
    if (m_isStreamed) {
        return BinRowSpectra(*this, x, 1, x + 1, halfWidth, halfHeight).at(x, y);
    }
    const auto boxSum = [&](const TiffData* frame) {
        return frame->boxSum(x, y, halfWidth, halfHeight);
    };
    const double dark = darkSum(x, y, halfWidth, halfHeight);
    // Neighbouring I1 energies share their I0 frames: each is summed once.
    std::vector<double> i0Sums;
    i0Sums.reserve(m_i0.size());
    for (const I0Energy& i0 : m_i0) {
        double sum = 0.0;
        for (const TiffData* frame : i0.frames) {
            sum += boxSum(frame);
        }
        i0Sums.push_back(sum / static_cast<double>(i0.frames.size()));
    }
    spectrum.assignWith(energyCount(), [&](Spoint* points) {
        for (std::size_t i = 0; i < m_energies.size(); ++i) {
            const double s1 = boxSum(m_i1[i]) - dark;
            double s0 = 1.0;
            if (!m_brackets.empty()) {
                const Bracket& at = m_brackets[i];
                s0 = i0Sums[at.first];
                if (at.isInterpolated) {
                    // lerp() with the differences taken beforehand.
                    s0 = at.fromFirst * ((i0Sums[at.first + 1] - s0) / at.span) + s0;
                }
                s0 -= dark;
            }
            points[i] = {m_energies[i], muT(s0, s1)};
        }
    });
    return spectrum;
}
