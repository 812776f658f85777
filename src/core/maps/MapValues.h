#pragma once

#include <QVector>
#include <cstddef>
#include <memory>

/// The values of a map, row by row. Copies share their memory until one of them is written to, and
/// memory is taken page by page as values other than 0 are put in: maps of any size are there, and
/// gone, at once. Copies may live on different threads, each on one.
class MapValues {
  public:
    MapValues() = default;
    /// That many zeros; throws std::bad_alloc.
    static MapValues zeros(int size);

    bool isEmpty() const { return m_size == 0; }
    int size() const { return m_size; }
    const double* constData() const { return m_memory.get(); }
    const double* begin() const { return m_memory.get(); }
    const double* end() const { return m_memory.get() + m_size; }
    double operator[](std::ptrdiff_t i) const { return m_memory.get()[i]; }
    /// To write to; the others that share the memory keep their values.
    double* data();
    QVector<double> toVector() const { return QVector<double>(begin(), end()); }

  private:
    std::shared_ptr<double> m_memory;
    int m_size = 0;
};
