#include "drawing/MapPicture.h"

#include <limits>

#include "base/LargeMemory.h"
#include "base/RowShares.h"
#include "files/PictureResolution.h"

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

QRgb packed(const ColorScale::Rgb& rgb) {
    return qRgb(rgb[0], rgb[1], rgb[2]);
}

/// Which colour a value has.
class Lookup {
  public:
    explicit Lookup(const MapColoring& c)
        : m_low(c.low),
          m_high(c.high),
          m_span(c.high - c.low),
          m_steps(c.colors->steps),
          m_last(c.colors->last),
          m_marks(c.marksOutside && c.high > c.low),
          m_blank(packed(c.colors->blank)) {
        for (int i = 0; i <= c.colors->last; ++i) {
            m_table.push_back(packed(c.colors->table[i]));
        }
        m_table.insert(m_table.end(), {packed(c.colors->below), packed(c.colors->above), m_blank});
    }

    QRgb blank() const { return m_blank; }

    /// The colours of values side by side. Numbers of entries first, without a branch that the
    /// values decide: they are wild.
    void colour(const double* values, int count, QRgb* to) const {
        const QRgb* const table = m_table.data();
        const double low = m_low;
        const double span = m_span;
        const double steps = m_steps;
        const double last = m_last;
        // Without marks nothing lies outside.
        const double least = m_marks ? m_low : -Infinity;
        const double most = m_marks ? m_high : Infinity;
        const int end = static_cast<int>(last);
        for (int i = 0; i < count; ++i) {
            const double v = values[i];
            const double step = (v - low) / span * steps;  // no number without a range
            const double inside = step > 0.0 ? (step < last ? step : last) : 0.0;
            int entry = static_cast<int>(inside);
            entry = v < least ? end + 1 : entry;
            entry = v > most ? end + 2 : entry;
            entry = v != v ? end + 3 : entry;
            to[i] = table[entry];
        }
    }

    void leaveOut(const unsigned char* isBlank, int count, QRgb* to) const {
        for (int i = 0; i < count; ++i) {
            to[i] = isBlank[i] != 0 ? m_blank : to[i];
        }
    }

  private:
    double m_low;
    double m_high;
    double m_span;
    double m_steps;
    double m_last;
    bool m_marks;
    QRgb m_blank;
    std::vector<QRgb> m_table;  // behind the colours: below, above, blank
};

}  // namespace

QImage mapPicture(const ShownValues& map, const MapColoring& coloring, int threads) {
    QImage picture = newPicture({map.width, map.height}, QImage::Format_RGB32);
    if (picture.isNull()) {
        return picture;
    }
    setPictureResolution(&picture);
    const Lookup lookup(coloring);
    const QRect filled = map.filled.intersected(picture.rect());
    if (filled != picture.rect() || map.values == nullptr) {
        picture.fill(lookup.blank());
    }
    if (map.values == nullptr || filled.isEmpty()) {
        return picture;
    }
    uchar* const pixels = picture.bits();
    const auto bytes = static_cast<std::size_t>(picture.bytesPerLine());
    RowShares rows(filled.height());
    inThreads(threads, [&] {
        int row = 0;
        int end = 0;
        while (rows.take(&row, &end)) {
            for (; row < end; ++row) {
                const auto y = static_cast<std::size_t>(filled.top() + row);
                auto* line = reinterpret_cast<QRgb*>(pixels + y * bytes) + filled.left();
                const std::size_t first = y * static_cast<std::size_t>(map.width) +
                                          static_cast<std::size_t>(filled.left());
                lookup.colour(map.values + first, filled.width(), line);
                if (map.blank != nullptr) {
                    lookup.leaveOut(map.blank->data() + first, filled.width(), line);
                }
            }
        }
    });
    return picture;
}
