#include "failing_memory.h"

#include <cstdlib>

#if defined(__has_feature) // clang's way to tell
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define ZELK_SANITIZED
#endif
#endif

namespace {

thread_local std::size_t made = 0;
thread_local std::ptrdiff_t live = 0;
thread_local std::size_t failAt = Zelk::Tests::never; // counted as `made` is
thread_local bool failAfter = false;
thread_local bool hasFailed = false;

/// Counts one more allocation and tells whether it is to fail.
bool nextFails() noexcept
{
    std::size_t const number = made++;
    bool const fails = failAfter ? number >= failAt : number == failAt;
    hasFailed = hasFailed || fails;
    return fails;
}

} // namespace

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(ZELK_SANITIZED)
extern "C" void* __libc_realloc(void*, std::size_t); // NOLINT: glibc's own name for what is replaced here

extern "C" void* realloc(void* piece, std::size_t size)
{
    return nextFails() ? nullptr : __libc_realloc(piece, size);
}
#endif

void* operator new(std::size_t size)
{
    void* const piece = nextFails() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (piece == nullptr)
        throw std::bad_alloc();
    ++live;
    return piece;
}

void operator delete(void* piece) noexcept
{
    if (piece != nullptr)
        --live;
    std::free(piece);
}

void operator delete(void* piece, std::size_t) noexcept
{
    operator delete(piece);
}

namespace Zelk::Tests {

std::size_t allocations() noexcept
{
    return made;
}

std::ptrdiff_t livePieces() noexcept
{
    return live;
}

FailingMemory::FailingMemory(std::size_t first, bool andAllAfter) noexcept
{
    failAt = first == never ? never : made + first;
    failAfter = andAllAfter;
    hasFailed = false;
}

FailingMemory::~FailingMemory()
{
    failAt = never;
    failAfter = false;
}

bool FailingMemory::failed() const noexcept
{
    return hasFailed;
}

} // namespace Zelk::Tests
