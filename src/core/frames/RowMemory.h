#pragma once

#include <QtGlobal>
#include <cstddef>
#include <memory>

// Memory of frame rows. Every reader takes it from here, so that all rows are released alike.

void* allocateRow(std::size_t bytes);
void freeRow(void* row);

/// Memory for all rows of a frame, released with the last copy of the pointer, on any thread; null
/// when there is none left. Not cleared.
///
/// Frames that a thread reads one after another lie side by side in large pages: handing out a
/// stack in the system's small pages takes longer than reading it from the cache of the disk. What
/// is handed out but not in use is less than one large page a thread.
std::shared_ptr<quint16> allocateFrame(std::size_t bytes);
