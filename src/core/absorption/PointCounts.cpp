#include "absorption/PointCounts.h"

#include "absorption/AbsorptionSource.h"

PointCounts::PointCounts(const AbsorptionSource& source, int x, int y, int halfWidth,
                         int halfHeight)
    : m_row(source, x, 1, x + 1, halfWidth, halfHeight) {
    m_row.sum(y, 0, 1);
    m_counts = m_row.counts(0);
    m_shares.assign(m_counts.shares, m_counts.shares + source.energyCount());
    m_i0PerFrame.assign(m_counts.i0PerFrame, m_counts.i0PerFrame + m_counts.i0Energies);
    m_counts.shares = m_shares.data();
    m_counts.i0PerFrame = m_i0PerFrame.data();
}
