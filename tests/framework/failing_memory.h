/// An operator new of the test program's own that counts and can be told to fail.
///
/// A program that links failing_memory.cpp has its operator new replaced, in the shared libraries too, and so
/// is realloc() unless a sanitizer has replaced that already.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <limits>
#include <new>

namespace Zelk::Tests {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

/// Number of allocations of this thread so far.
std::size_t allocations() noexcept;

/// Pieces of memory that this thread has allocated and not given back.
std::ptrdiff_t livePieces() noexcept;

/// While alive, lets allocations of this thread fail: the one numbered `first` (from 0), and with it, if so
/// asked, all that follow.
class FailingMemory {
public:
    explicit FailingMemory(std::size_t first, bool andAllAfter = true) noexcept;
    FailingMemory(FailingMemory const&) = delete;
    FailingMemory& operator=(FailingMemory const&) = delete;
    ~FailingMemory();

    /// Whether an allocation has failed.
    bool failed() const noexcept;
};

/// Runs `attempt` with its k-th allocation failing, once and from there on, for every k until it succeeds,
/// with `prepare` before each run and `failed` after each failure. Gives the number of failures.
template <typename Prepare, typename Attempt, typename Failed>
std::size_t failEveryAllocation(Prepare prepare, Attempt attempt, Failed failed)
{
    std::size_t failures = 0;
    for (bool const andAllAfter : {false, true})
        for (std::size_t first = 0;; ++first) {
            prepare();
            bool done = false;
            {
                FailingMemory const memory(first, andAllAfter);
                try {
                    attempt();
                    done = !memory.failed();
                } catch (std::bad_alloc const&) {
                }
            }
            if (done)
                break;
            ++failures;
            failed();
        }
    return failures;
}

} // namespace Zelk::Tests
