#pragma once

#include "spectra/PointBuffer.h"

/// A curve: points in the order in which they were added (ascending energies are expected, nothing
/// sorts them), the running extremes, and an optional energy offset.
///
/// A value type: copies share their points until one of them changes, also between threads.
class Spectrum {
  public:
    Spectrum();
    Spectrum(const Spectrum& other);
    Spectrum& operator=(const Spectrum& other) = default;
    ~Spectrum();

    /// False after a failed read; nothing depends on it.
    bool valid() const { return m_valid; }
    void setValid(bool valid) { m_valid = valid; }

    int size() const { return m_points.size(); }
    bool isEmpty() const { return size() == 0; }
    /// All points as stored, side by side; null without points.
    const Spoint* points() const { return m_points.data(); }
    const Spoint& point(int i) const { return points()[i]; }
    double energy(int i) const { return point(i).x - offset(); }
    double value(int i) const { return point(i).y; }

    void reserve(int n);
    void append(double x, double y);
    void clear();
    /// The same as clear() and n append()s.
    void assign(const double* x, const double* y, int n);
    /// Takes n points that fill(Spoint*) writes; the extremes are those that append() would find,
    /// worked out whenever somebody asks for them.
    template <typename Fill>
    void assignWith(int n, Fill fill) {
        fill(m_points.overwrite(n));
        m_extremesHeld = false;
    }
    /// The same for several spectra that one pass fills: fill(Spoint* const*), in their order.
    template <std::size_t Count, typename Fill>
    static void assignTogether(Spectrum* const (&spectra)[Count], int n, Fill fill) {
        Spoint* points[Count];
        for (std::size_t i = 0; i < Count; ++i) {
            points[i] = spectra[i]->m_points.overwrite(n);
        }
        fill(points);
        for (Spectrum* spectrum : spectra) {
            spectrum->m_extremesHeld = false;
        }
    }

    /// Smallest energy and smallest value, as stored; (1e300, 1e300) without points.
    Spoint minimum() const { return extremes().minimum; }
    /// Largest energy and largest value, as stored; (-1e300, -1e300) without points.
    Spoint maximum() const { return extremes().maximum; }
    /// Index of the first point with the smallest (largest) value. Out of any range until a value
    /// has been found: check before use.
    qint32 minIndex() const { return extremes().minIndex; }
    qint32 maxIndex() const { return extremes().maxIndex; }

    bool shiftOn() const { return m_shiftOn; }
    double shift() const { return m_shift; }
    void setShiftOn(bool on) { m_shiftOn = on; }
    void setShift(double shift) { m_shift = shift; }
    /// What energy() takes off: the shift when it is on, else 0.
    double offset() const { return m_shiftOn ? m_shift : 0.0; }

    /// Energy at which the values cross minimum + fraction (maximum - minimum): upwards (mode 0),
    /// downwards (1) or either way (2); the first crossing, interpolated linearly. The first
    /// point's energy when there is none, 0.0 without points.
    double findE(double fraction, int mode) const;
    /// Index of the point before that crossing, -1 when there is none.
    int findIndex(double fraction, int mode) const;

    /// Value at an energy: linear between the two neighbours, beyond the ends through the two
    /// outermost points; the only value of one point, 0.0 without points.
    double valueAt(double e) const;
    /// Index of the first of the two points that valueAt() takes; there must be two.
    int pairAt(double e) const;

  private:
    struct Extremes {
        // Starting values far outside any index, kept as they have always been.
        Spoint minimum{1e300, 1e300};
        Spoint maximum{-1e300, -1e300};
        qint32 minIndex = -1879048193;  // 0x8FFFFFFF
        qint32 maxIndex = 1879048193;   // 0x70000001
    };

    Extremes extremes() const { return m_extremesHeld ? m_extremes : findExtremes(); }
    Extremes findExtremes() const;
    void widen(int i);
    double levelAt(double fraction) const;
    int firstCrossing(double level, int mode) const;

    bool m_valid = true;
    bool m_extremesHeld = true;
    PointBuffer m_points;
    Extremes m_extremes;
    bool m_shiftOn = false;
    double m_shift = 0.0;
};
