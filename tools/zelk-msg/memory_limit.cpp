#include "tools/zelk-msg/memory_limit.h"

#include "tools/zelk-msg/trouble.h"

#include <algorithm>
#include <cerrno>
#include <malloc.h>
#include <sys/resource.h>
#include <system_error>

namespace ZelkMsg {

namespace {

std::uint64_t limit = defaultMemoryLimit;
rlimit before = {};
bool limited = false;

// Sanitizers reserve more address space for themselves than any limit would leave them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool canLimit = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool canLimit = false;
#else
constexpr bool canLimit = true;
#endif
#else
constexpr bool canLimit = true;
#endif

} // namespace

void limitMemory(std::uint64_t bytes)
{
    limit = bytes;
    if (!canLimit)
        return;
    ::getrlimit(RLIMIT_AS, &before);
    rlimit current = before;
    if (current.rlim_cur != RLIM_INFINITY && current.rlim_cur < bytes)
        limit = current.rlim_cur; // whoever started the program set a tighter one
    current.rlim_cur = static_cast<rlim_t>(limit);
    if (::setrlimit(RLIMIT_AS, &current) != 0)
        throw Trouble("cannot limit the memory: " + std::generic_category().message(errno));
    limited = true;
}

void liftMemoryLimit()
{
    if (limited)
        ::setrlimit(RLIMIT_AS, &before);
}

std::string memoryLimitText()
{
    constexpr std::uint64_t kib = 1024;
    if (limit % (kib * kib * kib) == 0)
        return std::to_string(limit / (kib * kib * kib)) + " GiB";
    if (limit % (kib * kib) == 0)
        return std::to_string(limit / (kib * kib)) + " MiB";
    return std::to_string(limit / kib) + " KiB";
}

std::size_t longestText()
{
    // The buffer doubles while a text comes in, and what is read of it has to fit beside it.
    return static_cast<std::size_t>(limit / 8);
}

unsigned int makeRoomForThreads(unsigned int wanted)
{
    constexpr std::uint64_t stack = std::uint64_t{8} << 20;
    // Threads may get heaps of their own, and each reserves 64 MiB of address space: together they are to
    // leave most of the limit for messages.
    constexpr std::uint64_t heap = std::uint64_t{64} << 20;
    ::mallopt(M_ARENA_MAX, static_cast<int>(std::min<std::uint64_t>(1 + limit / (8 * heap), 256)));
    if (!limited)
        return wanted;
    rlimit current = before;
    std::uint64_t const room = limit + wanted * stack;
    if (before.rlim_cur == RLIM_INFINITY || before.rlim_cur >= room) {
        current.rlim_cur = static_cast<rlim_t>(room);
        if (::setrlimit(RLIMIT_AS, &current) == 0)
            return wanted;
    }
    auto const affordable = static_cast<unsigned int>(std::min<std::uint64_t>(limit / (4 * stack), wanted));
    return std::max(1U, affordable);
}

} // namespace ZelkMsg
