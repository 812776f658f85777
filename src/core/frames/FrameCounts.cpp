#include "frames/FrameCounts.h"

#include "base/LargeMemory.h"
#include "frames/CountFile.h"
#include "frames/FrameHeader.h"

FrameCounts::FrameCounts(TiffData* frame) : m_frame(frame) {
    if (!frame->isInFile()) {
        return;
    }
    m_copy = std::make_unique<TiffData>(frame->format);
    m_frame = m_copy.get();
    m_copy->fileName = frame->fileName;
    m_copy->width = frame->width;
    m_copy->height = frame->height;
    m_copy->energy = frame->energy;
    m_copy->makeRows(std::size_t(frame->width) * sizeof(quint16));
    if (m_copy->rows.size() < m_copy->height) {
        m_problem = QStringLiteral("%1: %2").arg(frame->fileName, lackOfMemory());
        return;
    }
    m_problem = frame->countFile->read(0, frame->height, m_copy->rows.front());
    if (!m_problem.isEmpty()) {
        m_copy->clearRows();
        return;
    }
    m_copy->startCounts();
    for (const quint16* row : m_copy->rows) {
        m_copy->foldIn(row);
    }
}
