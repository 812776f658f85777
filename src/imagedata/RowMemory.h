#pragma once

#include <cstddef>

// Memory of frame rows. Every reader takes it from here, so that all rows are released alike.

void* allocateRow(std::size_t bytes);
void freeRow(void* row);
