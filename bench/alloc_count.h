// SPDX-License-Identifier: MIT
// What the process takes from the heap.
#pragma once

#include <cstddef>

namespace bench {

/// Calls to malloc, calloc, realloc and aligned_alloc since the start, by any library.
std::size_t allocations();

/// Bytes of heap in use, the allocator's own share of each block included.
std::size_t heapBytes();

} // namespace bench
