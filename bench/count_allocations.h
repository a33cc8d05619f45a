/// Counts what a program takes from the heap, whoever asks: operator new ends in malloc too.
#pragma once

#include <cstddef>

namespace bench {

/// Number of blocks taken from the heap since the program began (malloc, calloc, realloc and the aligned
/// forms).
std::size_t allocationCount();

} // namespace bench
