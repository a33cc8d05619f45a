#include "bench/count_allocations.h"

#include <atomic>
#include <cerrno>

namespace {
std::atomic<std::size_t> count = 0;

void countOne()
{
    count.fetch_add(1, std::memory_order_relaxed);
}
} // namespace

namespace bench {
std::size_t allocationCount()
{
    return count.load(std::memory_order_relaxed);
}
} // namespace bench

// The C library's own names for its heap; defining malloc and its kin here replaces them for the whole
// program.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t items, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size)
{
    countOne();
    return __libc_malloc(size);
}

void* calloc(std::size_t items, std::size_t size)
{
    countOne();
    return __libc_calloc(items, size);
}

void* realloc(void* block, std::size_t size)
{
    countOne();
    return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    countOne();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    countOne();
    *block = __libc_memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}
}
