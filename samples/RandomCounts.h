#pragma once

#include <cstdint>
#include <random>

namespace samples {

// Random numbers that come out the same with every compiler and standard library: the engine is
// fixed by the language, its distributions are not, so the two we need are written here.
class RandomCounts {
  public:
    explicit RandomCounts(std::uint64_t seed) : m_engine(seed) {}

    // Uniform in [0, 1), 53 bits.
    double uniform();

    // A Poisson distributed count; 0 for a mean that is not above 0.
    std::int64_t poisson(double mean);

  private:
    std::int64_t poissonByProducts(double mean);
    std::int64_t poissonByRejection(double mean);

    std::mt19937_64 m_engine;
};

}  // namespace samples
