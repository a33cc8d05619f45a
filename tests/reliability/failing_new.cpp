#include "tests/reliability/failing_new.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

long live = 0;
bool armed = false;
bool failed = false;
Zelk::Testing::Failing failing = Zelk::Testing::Failing::once;
long countdown = 0;

void* take(std::size_t size)
{
    if (armed && countdown-- <= 0 && (failing == Zelk::Testing::Failing::onwards || !failed)) {
        failed = true;
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    ++live;
    return memory;
}

void give(void* memory) noexcept
{
    if (memory == nullptr)
        return;
    --live;
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size)
{
    return take(size);
}
void* operator new[](std::size_t size)
{
    return take(size);
}
void operator delete(void* memory) noexcept
{
    give(memory);
}
void operator delete[](void* memory) noexcept
{
    give(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    give(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    give(memory);
}

namespace Zelk::Testing {

MemoryShortage::MemoryShortage(Failing mode, long allowed) noexcept
{
    failing = mode;
    countdown = allowed;
    failed = false;
    armed = true;
}

MemoryShortage::~MemoryShortage()
{
    armed = false;
}

bool MemoryShortage::occurred() noexcept
{
    return failed;
}

long liveAllocations() noexcept
{
    return live;
}

} // namespace Zelk::Testing
