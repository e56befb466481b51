// SPDX-License-Identifier: MIT
// What the process takes from the heap: the allocator's names are taken over and counted.
#include "alloc_count.h"

#include <malloc.h>

namespace {

// Not atomic: nothing is counted while a second thread runs.
std::size_t calls = 0;

} // namespace

extern "C" {

void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);

__attribute__((visibility("default"))) void *malloc(std::size_t size)
{
    ++calls;
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void *calloc(std::size_t count, std::size_t size)
{
    ++calls;
    return __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void *realloc(void *block, std::size_t size)
{
    ++calls;
    return __libc_realloc(block, size);
}

__attribute__((visibility("default"))) void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    ++calls;
    return __libc_memalign(alignment, size);
}

} // extern "C"

std::size_t bench::allocations()
{
    return calls;
}

std::size_t bench::heapBytes()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}
