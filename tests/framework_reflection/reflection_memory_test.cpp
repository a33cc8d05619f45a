#include "framework/json_text.h"
#include "framework/reflector.h"
#include "msgs/msgidstate/info.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <vector>

namespace {

long allocations = 0;
long allowed = -1; // no limit

void* take(std::size_t size)
{
    if (allowed == 0)
        throw std::bad_alloc();
    if (allowed > 0)
        --allowed;
    ++allocations;
    if (void* memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size)
{
    return take(size);
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace Zelk::MetaData {
namespace {

template <typename T>
using Field = Reflector<T, false, true>;

/// Runs with so many allocations allowed; what it does is what is left when memory runs out.
template <typename Action>
void withMemoryFor(long count, Action action)
{
    struct Limit {
        explicit Limit(long limit) { allowed = limit; }
        ~Limit() { allowed = -1; }
    } const limit(count);
    action();
}

struct TwentyFields : MirroredObject {
    Field<bool> a{this, "a", true}, b{this, "b", true}, c{this, "c", true}, d{this, "d", true},
        e{this, "e", true}, f{this, "f", true}, g{this, "g", true}, h{this, "h", true}, i{this, "i", true},
        j{this, "j", true};
    Field<std::string> k{this, "k", false}, l{this, "l", false}, m{this, "m", false}, n{this, "n", false},
        o{this, "o", false}, p{this, "p", false}, q{this, "q", false}, r{this, "r", false},
        s{this, "s", false}, t{this, "t", false};
};

TEST(ReflectionMemory, RegistersFieldsWithoutAllocating)
{
    long const before = allocations;
    std::optional<TwentyFields> record;
    record.emplace();
    long const after = allocations;
    EXPECT_EQ(after - before, 0);
    EXPECT_TRUE(record->j.initialized());
}

TEST(ReflectionMemory, ReadsAndCopiesShortValuesWithoutAllocating)
{
    Element const form = Json::readText(R"({"AttribInfo":true,"StateName":"Running"})");
    Msgs::MsgIdState::InfoRequestData source(false);
    Msgs::MsgIdState::InfoRequestData target(false);
    long const before = allocations;
    source.copyFromMetaData(form);
    target = source;
    Msgs::MsgIdState::InfoRequestData const copy(target);
    long const after = allocations;
    EXPECT_EQ(after - before, 0);
    EXPECT_EQ(copy.StateName(), "Running");
}

TEST(ReflectionMemory, IsNotTakenByLookingAtASetField)
{
    MirroredObject owner;
    Field<bool> field(&owner, "k", true);
    long const before = allocations;
    bool const value = field();
    long const after = allocations;
    EXPECT_EQ(after - before, 0);
    EXPECT_FALSE(value);
}

TEST(ReflectionMemory, LeavesAFieldUnsetWhenItRunsOutWhileTheFieldIsRead)
{
    Element const form = Json::readText("{\"k\":\"" + std::string(1000, 'x') + "\"}");
    MirroredObject owner;
    Field<std::string> field(&owner, "k", true, "former");
    withMemoryFor(0, [&] { EXPECT_NO_THROW(field.copyFromMetaData(form)); });
    EXPECT_FALSE(field.initialized());
    field.init();
    EXPECT_EQ(field(), "");
}

TEST(ReflectionMemory, LeavesTheFieldsThatNeedTooMuchUnsetAndTheOthersRead)
{
    Element const form =
        Json::readText("{\"AttribInfo\":true,\"StateName\":\"" + std::string(1000, 'x') + "\"}");
    Msgs::MsgIdState::InfoRequestData record(false);
    withMemoryFor(0, [&] { EXPECT_NO_THROW(record.copyFromMetaData(form)); });
    EXPECT_FALSE(record.StateName.initialized());
    EXPECT_TRUE(record.AttribInfo());
}

TEST(ReflectionMemory, LeavesAnAddressUnsetWhereverItRunsOut)
{
    Element const form = Json::readText("{\"SenderID\":[\"" + std::string(100, 'x') + "\",\"" +
                                        std::string(100, 'y') + "\"]}");
    MirroredObject owner;
    Msgs::ReflectedAddress field(&owner, "SenderID", false);
    for (long count = 0; count < 3; ++count) { // the list, and its two strings
        SCOPED_TRACE(count);
        field = std::vector<std::string>{"former"};
        withMemoryFor(count, [&] { EXPECT_NO_THROW(field.copyFromMetaData(form)); });
        EXPECT_FALSE(field.initialized());
    }
    withMemoryFor(3, [&] { field.copyFromMetaData(form); });
    EXPECT_EQ(field().size(), 2U);
}

TEST(ReflectionMemory, KeepsTheFieldWhenItRunsOutWhileTheFieldIsAssigned)
{
    MirroredObject owner;
    Field<std::string> field(&owner, "k", false);
    std::string const longText(1000, 'x');
    withMemoryFor(0, [&] { EXPECT_THROW(field = longText, std::bad_alloc); });
    EXPECT_FALSE(field.initialized());
}

} // namespace
} // namespace Zelk::MetaData
