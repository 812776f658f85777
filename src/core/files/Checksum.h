#pragma once

#include <QByteArray>
#include <array>
#include <cstddef>
#include <memory>

struct XXH3_state_s;

/// A digest of 128 bits (XXH3) of many bytes, as fast as memory is read: it finds every damage, but
/// does not withstand somebody who means to deceive it.
class Checksum {
  public:
    using Value = std::array<unsigned char, 16>;

    Checksum();
    ~Checksum();
    Checksum(const Checksum&) = delete;
    Checksum& operator=(const Checksum&) = delete;

    void add(const void* bytes, std::size_t size);
    /// Of all that has been added so far; the same bytes on every machine.
    Value value() const;

    static Value of(const void* bytes, std::size_t size);

  private:
    struct Free {
        void operator()(XXH3_state_s* state) const;
    };
    std::unique_ptr<XXH3_state_s, Free> m_state;
};
