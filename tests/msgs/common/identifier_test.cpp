#include "msgs/common/identifier.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace Zelk::Msgs {
namespace {

TEST(Identifier, PacksTheFirstPartIntoTheHighestBits)
{
    struct Case {
        char const* name;
        unsigned short parts[4];
        unsigned long long value;
    };
    Case const cases[] = {
        {"nothing", {0, 0, 0, 0}, 0},
        {"first", {1, 0, 0, 0}, 0x0001000000000000ULL},
        {"second", {0, 1, 0, 0}, 0x0000000100000000ULL},
        {"third", {0, 0, 1, 0}, 0x0000000000010000ULL},
        {"fourth", {0, 0, 0, 1}, 0x0000000000000001ULL},
        {"all different", {0x1234, 0x5678, 0x9ABC, 0xDEF0}, 0x123456789ABCDEF0ULL},
        {"high bit of each part", {0x8000, 0x8000, 0x8000, 0x8000}, 0x8000800080008000ULL},
        {"all bits", {65535, 65535, 65535, 65535}, 0xFFFFFFFFFFFFFFFFULL},
        {"a state message", {2, 0, 1, 4}, 0x0002000000010004ULL},
    };
    for (Case const& c : cases)
        EXPECT_EQ(Identifier::toValue(c.parts[0], c.parts[1], c.parts[2], c.parts[3]), c.value) << c.name;
}

TEST(Identifier, GivesBackTheValueItWasBuiltFrom)
{
    for (unsigned long long value : {0ULL, 1ULL, 0x0002000000010004ULL, 0x8000000000000000ULL, ~0ULL})
        EXPECT_EQ(static_cast<unsigned long long>(Identifier(value)), value);
}

TEST(Identifier, IsACopyableValueThatNoNumberBecomesByAccident)
{
    Identifier identifier(5);
    Identifier const copy = identifier;
    identifier = Identifier(6);
    EXPECT_EQ(static_cast<unsigned long long>(copy), 5U);
    EXPECT_EQ(static_cast<unsigned long long>(identifier), 6U);
    static_assert(!std::is_convertible_v<unsigned long long, Identifier>);
}

} // namespace
} // namespace Zelk::Msgs
