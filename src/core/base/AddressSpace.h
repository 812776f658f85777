#pragma once

#include <QtGlobal>

// Address space that the system lets the program have (RLIMIT_AS, RLIMIT_DATA: "ulimit -v" of a
// shell, many queues of clusters). Where it is used up an allocation fails, whatever memory the
// machine has. Sizes are in bytes; none of these takes memory itself.

/// The lesser of the limits; the greatest number where there is none.
quint64 addressSpaceLimit();
bool isAddressSpaceLimited();

/// What is left of it now; the greatest number where there is no limit.
quint64 addressSpaceLeft();

/// Left to what asks nobody: Qt, the libraries, texts. Who asks for more than the rest is refused.
constexpr quint64 HeadRoom = quint64(8) << 20;

/// Where there is a limit, has threads and the heap take less of it than they would, and gives the
/// stack of the calling thread what it may need. Before there are other threads.
void prepareForLimit();

/// Whether a thread could have its stack now and leave HeadRoom.
bool hasRoomForThread();
