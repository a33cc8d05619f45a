/// Memory that runs out at will: the test program that links this has an operator new that counts what is in
/// use and fails when it is told to.
#pragma once

namespace Zelk::Testing {

/// Which allocations fail.
enum class Failing {
    once,   ///< the one at the given index
    onwards ///< that one and all after it
};

/// While it lives, allocations of this thread fail; nothing of the test framework may run meanwhile.
class MemoryShortage {
public:
    /// The first `allowed` allocations succeed.
    MemoryShortage(Failing mode, long allowed) noexcept;
    MemoryShortage(MemoryShortage const&) = delete;
    MemoryShortage& operator=(MemoryShortage const&) = delete;
    ~MemoryShortage();

    /// Whether an allocation has failed so far.
    static bool occurred() noexcept;
};

/// How many allocations have not been freed.
long liveAllocations() noexcept;

} // namespace Zelk::Testing
