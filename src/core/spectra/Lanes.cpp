#include "spectra/Lanes.h"
#include "spectra/LaneBases.h"
#include "spectra/LaneErrors.h"

#ifdef __x86_64__
#include <immintrin.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "spectra/Logarithm.h"

// The same source for every width of vector. No unit for fused multiplication and addition is
// named: it would round otherwise than the two one after the other.

namespace lanes {

namespace baseline {
constexpr int Width = 2;
template <typename Mask>
[[gnu::always_inline]] inline bool any(const Mask& mask) {
    return (mask[0] | mask[1]) != 0;
}
#include "spectra/LaneKernels.inl"
// After the kernels whose helpers it uses.
#include "spectra/LaneNoise.inl"
// And these after both.
#include "spectra/LaneBases.inl"
#include "spectra/LaneErrors.inl"
}  // namespace baseline

#ifdef __x86_64__

#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
namespace wide4 {
constexpr int Width = 4;
template <typename Mask>
[[gnu::always_inline]] inline bool any(const Mask& mask) {
    __m256d bits;
    std::memcpy(&bits, &mask, sizeof bits);
    return _mm256_movemask_pd(bits) != 0;
}
#include "spectra/LaneKernels.inl"
// After the kernels whose helpers it uses.
#include "spectra/LaneNoise.inl"
// And these after both.
#include "spectra/LaneBases.inl"
#include "spectra/LaneErrors.inl"
}  // namespace wide4
#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx512f,avx512dq,avx512vl"))), \
                             apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512dq,avx512vl")
#endif
namespace wide8 {
constexpr int Width = 8;
template <typename Mask>
[[gnu::always_inline]] inline bool any(const Mask& mask) {
    __m512i bits;
    std::memcpy(&bits, &mask, sizeof bits);
    return _mm512_movepi64_mask(bits) != 0;
}
#include "spectra/LaneKernels.inl"
// After the kernels whose helpers it uses.
#include "spectra/LaneNoise.inl"
// And these after both.
#include "spectra/LaneBases.inl"
#include "spectra/LaneErrors.inl"
}  // namespace wide8
#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

Units bestUnits() {
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl")) {
        return Units::Wide8;
    }
    return __builtin_cpu_supports("avx2") ? Units::Wide4 : Units::Baseline;
}

const Kernels& kernels(Units units) {
    // Units that the processor does not have would end the program.
    switch (std::min(units, bestUnits())) {
        case Units::Wide8:
            return wide8::All;
        case Units::Wide4:
            return wide4::All;
        default:
            return baseline::All;
    }
}

ErrorKernel errorKernel(Units units) {
    switch (std::min(units, bestUnits())) {
        case Units::Wide8:
            return wide8::fitErrors;
        case Units::Wide4:
            return wide4::fitErrors;
        default:
            return baseline::fitErrors;
    }
}

const BasisKernels& basisKernels(Units units) {
    switch (std::min(units, bestUnits())) {
        case Units::Wide8:
            return wide8::Bases;
        case Units::Wide4:
            return wide4::Bases;
        default:
            return baseline::Bases;
    }
}

#else

Units bestUnits() {
    return Units::Baseline;
}

const Kernels& kernels(Units) {
    return baseline::All;
}

ErrorKernel errorKernel(Units) {
    return baseline::fitErrors;
}

const BasisKernels& basisKernels(Units) {
    return baseline::Bases;
}

#endif

}  // namespace lanes
