#pragma once

#include <cstddef>

/// Memory that comes and goes with every spectrum, kept by each thread for its next one: after the
/// first few spectra of an analysis no further memory is asked of the system. A thread keeps a few
/// blocks of each size and gives back what is beyond that, and all of it when it ends.
namespace storagecache {

/// At least so many bytes, aligned for any number; throws std::bad_alloc as operator new does.
void* take(std::size_t bytes);
/// Gives memory back that take(bytes) has given, on any thread.
void give(void* memory, std::size_t bytes) noexcept;

}  // namespace storagecache
