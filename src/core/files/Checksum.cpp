#include "files/Checksum.h"

#include <xxhash.h>

#include <algorithm>
#include <iterator>
#include <new>

namespace {

Checksum::Value canonical(const XXH128_hash_t& hash) {
    XXH128_canonical_t bytes;
    XXH128_canonicalFromHash(&bytes, hash);
    Checksum::Value value;
    std::copy(std::begin(bytes.digest), std::end(bytes.digest), value.begin());
    return value;
}

}  // namespace

void Checksum::Free::operator()(XXH3_state_s* state) const {
    XXH3_freeState(state);
}

Checksum::Checksum() : m_state(XXH3_createState()) {
    if (!m_state) {
        throw std::bad_alloc();
    }
    XXH3_128bits_reset(m_state.get());
}

Checksum::~Checksum() = default;

void Checksum::add(const void* bytes, std::size_t size) {
    XXH3_128bits_update(m_state.get(), bytes, size);
}

Checksum::Value Checksum::value() const {
    return canonical(XXH3_128bits_digest(m_state.get()));
}

Checksum::Value Checksum::of(const void* bytes, std::size_t size) {
    return canonical(XXH3_128bits(bytes, size));
}
