#pragma once

#include <QSharedData>
#include <QSharedDataPointer>
#include <vector>

/// One point of a curve: energy in eV and value.
struct Spoint {
    double x = 0.0;
    double y = 0.0;
};

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

    int size() const { return static_cast<int>(m_points->list.size()); }
    bool isEmpty() const { return m_points->list.empty(); }
    const Spoint& point(int i) const { return m_points->list[static_cast<std::size_t>(i)]; }
    double energy(int i) const { return m_shiftOn ? point(i).x - m_shift : point(i).x; }
    double value(int i) const { return point(i).y; }

    void reserve(int n);
    void append(double x, double y);
    void clear();
    /// The same as clear() and n append()s.
    void assign(const double* x, const double* y, int n);
    /// Takes n points that fill(Spoint*) writes; the extremes follow as with append().
    template <typename Fill>
    void assignWith(int n, Fill fill) {
        fill(beginAssign(n));
        endAssign();
    }

    /// Smallest energy and smallest value, as stored; (1e300, 1e300) without points.
    const Spoint& minimum() const { return m_minimum; }
    /// Largest energy and largest value, as stored; (-1e300, -1e300) without points.
    const Spoint& maximum() const { return m_maximum; }
    /// Index of the first point with the smallest (largest) value. Out of any range until a value
    /// has been found: check before use.
    qint32 minIndex() const { return m_minIndex; }
    qint32 maxIndex() const { return m_maxIndex; }

    bool shiftOn() const { return m_shiftOn; }
    double shift() const { return m_shift; }
    void setShiftOn(bool on) { m_shiftOn = on; }
    void setShift(double shift) { m_shift = shift; }

    /// Energy at which the values cross minimum + fraction (maximum - minimum): upwards (mode 0),
    /// downwards (1) or either way (2); the first crossing, interpolated linearly. The first
    /// point's energy when there is none, 0.0 without points.
    double findE(double fraction, int mode) const;
    /// Index of the point before that crossing, -1 when there is none.
    int findIndex(double fraction, int mode) const;

    /// Value at an energy: linear between the two neighbours, beyond the ends through the two
    /// outermost points; the only value of one point, 0.0 without points.
    double valueAt(double e) const;

  private:
    struct Points : QSharedData {
        Points() = default;
        Points(const Points& other);
        ~Points();
        std::vector<Spoint> list;
    };

    void widen(int i);
    void resetExtremes();
    Spoint* beginAssign(int n);
    void endAssign();
    static QSharedDataPointer<Points> noPoints();

    bool m_valid = true;
    QSharedDataPointer<Points> m_points;
    Spoint m_minimum;
    Spoint m_maximum;
    qint32 m_minIndex;
    qint32 m_maxIndex;
    bool m_shiftOn = false;
    double m_shift = 0.0;
};
