#include "frames/TiffData.h"

#include <QImage>
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

#include "base/ColorMap.h"
#include "base/DebugLog.h"
#include "base/LargeMemory.h"
#include "base/Numbers.h"
#include "files/InputFile.h"
#include "frames/FrameReader.h"
#include "frames/RowMemory.h"

TiffData::TiffData(int pictureFormat) : format(pictureFormat) {}

TiffData::~TiffData() {
    clearRows();
    dropPicture();
}

bool TiffData::load(const QString& name) {
    loaded = false;
    refusal.clear();
    remarks.clear();
    InputFile file(name);
    // Unbuffered: two bytes do not need the first 16 KB.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        debugFile("Can not open (1)", name);
        return false;
    }
    char mark[FrameMagicBytes];
    if (file.read(mark, FrameMagicBytes) < FrameMagicBytes) {
        debugFile("Error on reading file (1)", name);
        return false;
    }
    file.close();
    const FrameReader* const reader = frameReaderOf(QByteArray(mark, FrameMagicBytes));
    if (reader == nullptr) {
        return false;
    }
    try {
        loaded = reader->readFile != nullptr ? (this->*reader->readFile)(name)
                                             : readThrough(*reader, name);
    } catch (const std::bad_alloc&) {
        clearRows();
        dropPicture();
        refusal = lackOfMemory();
    }
    return loaded;
}

bool TiffData::readThrough(const FrameReader& reader, const QString& name) {
    InputFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        debugFile("Can not open", name);
        return false;
    }
    fileName = name;
    const QString error = reader.read(file, this);
    if (!error.isEmpty()) {
        debugFile(qPrintable(error), name);
    }
    return error.isEmpty();
}

void TiffData::clearRows() {
    for (std::size_t y = m_blockRows; y < rows.size(); ++y) {
        freeRow(rows[y]);
    }
    rows.clear();
    m_block.reset();
    m_blockRows = 0;
}

void TiffData::makeRows(std::size_t bytes) {
    clearRows();
    m_block = allocateFrame(bytes * height);
    if (m_block != nullptr) {
        rows.reserve(height);
        for (quint32 y = 0; y < height; ++y) {
            rows.push_back(m_block.get() + y * (bytes / sizeof(quint16)));
        }
        m_blockRows = height;
    }
}

quint16* TiffData::appendRow(std::size_t bytes) {
    auto* row = mayTakeMemory(bytes) ? static_cast<quint16*>(allocateRow(bytes)) : nullptr;
    if (row != nullptr) {
        std::memset(row, 0, bytes);
        rows.push_back(row);
    }
    return row;
}

void TiffData::startCounts() {
    min = 0xFFFFFFFFu;
    max = 0;
    saturated = 0;
}

void TiffData::foldIn(const quint16* counts, std::size_t n) {
    // In signed numbers of the same order, whose extremes every processor finds eight at a time.
    constexpr int Sign = 0x8000;
    qint16 low = std::numeric_limits<qint16>::max();
    qint16 high = std::numeric_limits<qint16>::min();
    for (std::size_t i = 0; i < n; ++i) {
        const auto count = static_cast<qint16>(counts[i] ^ Sign);
        low = std::min(low, count);
        high = std::max(high, count);
    }
    if (n > 0) {
        min = std::min(min, static_cast<quint32>(low - std::numeric_limits<qint16>::min()));
        max = std::max(max, static_cast<quint32>(high - std::numeric_limits<qint16>::min()));
    }
    if (n > 0 && high == std::numeric_limits<qint16>::max()) {
        saturated += static_cast<quint64>(
            std::count(counts, counts + n, std::numeric_limits<quint16>::max()));
    }
}

void TiffData::dropPicture() {
    delete image;
    image = nullptr;
    delete[] pixels;
    pixels = nullptr;
}

const QImage* TiffData::picture() {
    if (image == nullptr) {
        makeImage();
    }
    return image;
}

void TiffData::makeImage() {
    dropPicture();
    const std::size_t bytesPerPixel = format == QImage::Format_RGB888 ? 3 : 1;
    const std::size_t count = static_cast<std::size_t>(width) * height;
    if (count == 0) {
        return;
    }
    pixels = mayTakeMemory(count * bytesPerPixel) ? new (std::nothrow) uchar[count * bytesPerPixel]
                                                  : nullptr;
    if (pixels == nullptr) {
        return;
    }
    // One entry a count value that occurs, looked up once: the same pixels as one look-up each.
    const double low = static_cast<double>(min);
    const double span = static_cast<double>(max) - low;
    const ColorScale& colors = bytesPerPixel == 3 ? heatScale() : greyScale();
    const auto pictureOf = [&](quint32 c) {
        const double v = (static_cast<double>(c) - low) / span;
        return colors.at(v);
    };
    std::vector<uchar> table;
    if (max >= min && count > max - min) {
        table.resize((static_cast<std::size_t>(max - min) + 1) * bytesPerPixel);
        for (quint32 c = min; c <= max; ++c) {
            std::memcpy(&table[(c - min) * bytesPerPixel], pictureOf(c), bytesPerPixel);
        }
    }
    const quint32 tableSize = static_cast<quint32>(table.size() / bytesPerPixel);
    uchar* out = pixels;
    const std::size_t shown = std::min<std::size_t>(rows.size(), height);
    const std::size_t drawn = shown * width * bytesPerPixel;
    std::memset(pixels + drawn, 0, count * bytesPerPixel - drawn);
    for (std::size_t y = 0; y < shown; ++y) {
        const quint16* row = rows[y];
        for (quint32 x = 0; x < width; ++x, out += bytesPerPixel) {
            // Unsigned: a count outside min .. max, should the two be out of date, is never in it.
            const quint32 place = row[x] - min;
            const uchar* in = place < tableSize ? &table[place * bytesPerPixel] : pictureOf(row[x]);
            if (bytesPerPixel == 1) {
                *out = *in;
            } else {
                std::memcpy(out, in, 3);
            }
        }
    }
    image =
        new QImage(pixels, static_cast<int>(width), static_cast<int>(height),
                   static_cast<int>(width * bytesPerPixel), static_cast<QImage::Format>(format));
}

double TiffData::boxSum(int x, int y, int halfWidth, int halfHeight) const {
    const PixelRange columns = clippedAround(x, halfWidth, width);
    const PixelRange lines = clippedAround(y, halfHeight, static_cast<qint64>(rows.size()));
    // Whole numbers below 2^53: the sum is the same in any order, and in a double.
    quint64 sum = 0;
    for (qint64 r = lines.first; r <= lines.last; ++r) {
        const quint16* row = rows[static_cast<std::size_t>(r)];
        for (qint64 c = columns.first; c <= columns.last; ++c) {
            sum += row[c];
        }
    }
    return static_cast<double>(sum);
}
