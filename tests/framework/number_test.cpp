#include "framework/number.h"
#include "nodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace Zelk::MetaData {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;
using Tests::boolean;
using Tests::integer;
using Tests::object;
using Tests::real;
using Tests::text;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double tiny = std::numeric_limits<double>::denorm_min();
constexpr long long largest = std::numeric_limits<long long>::max();
constexpr long long smallest = std::numeric_limits<long long>::min();

struct Case {
    std::string name;
    Element node;
    double asDouble;
    int asInt;
    unsigned int asUnsigned;
    bool asBool;
};

std::vector<Case> cases()
{
    constexpr int intMax = 2147483647;
    constexpr int intMin = -2147483647 - 1;
    return {
        {"0.0", real(0.0), 0.0, 0, 0, false},
        {"-0.0", real(-0.0), -0.0, 0, 0, false},
        {"smallest double", real(tiny), tiny, 0, 0, false},
        {"0.9", real(0.9), 0.9, 0, 0, true},
        {"-0.9", real(-0.9), -0.9, 0, 0, true},
        {"1.9", real(1.9), 1.9, 1, 1, true},
        {"2.9", real(2.9), 2.9, 2, 2, true},
        {"-1.0", real(-1.0), -1.0, -1, 0, true},
        {"-2.9", real(-2.9), -2.9, -2, 0, true},
        {"0.000001", real(0.000001), 0.000001, 0, 0, false},
        {"0.00001", real(0.00001), 0.00001, 0, 0, false},
        {"just above 0.00001", real(std::nextafter(1e-05, 1.0)), std::nextafter(1e-05, 1.0), 0, 0, true},
        {"-0.00001", real(-0.00001), -0.00001, 0, 0, false},
        {"just below -0.00001", real(std::nextafter(-1e-05, -1.0)), std::nextafter(-1e-05, -1.0), 0, 0, true},
        {"0.00002", real(0.00002), 0.00002, 0, 0, true},
        {"2^31 - 1", real(2147483647.0), 2147483647.0, intMax, 2147483647u, true},
        {"2^31 - 0.5", real(2147483647.5), 2147483647.5, intMax, 2147483647u, true},
        {"2^31", real(2147483648.0), 2147483648.0, intMax, 2147483648u, true},
        {"2^31 + 1", real(2147483649.0), 2147483649.0, intMax, 2147483649u, true},
        {"-2^31", real(-2147483648.0), -2147483648.0, intMin, 0, true},
        {"-2^31 - 0.5", real(-2147483648.5), -2147483648.5, intMin, 0, true},
        {"-2^31 - 1", real(-2147483649.0), -2147483649.0, intMin, 0, true},
        {"2^32 - 1", real(4294967295.0), 4294967295.0, intMax, 4294967295u, true},
        {"2^32 - 0.5", real(4294967295.5), 4294967295.5, intMax, 4294967295u, true},
        {"2^32", real(4294967296.0), 4294967296.0, intMax, 4294967295u, true},
        {"1e300", real(1e300), 1e300, intMax, 4294967295u, true},
        {"-1e300", real(-1e300), -1e300, intMin, 0, true},
        {"infinity", real(infinity), infinity, intMax, 4294967295u, true},
        {"-infinity", real(-infinity), -infinity, intMin, 0, true},

        {"integer 0", integer(0), 0.0, 0, 0, false},
        {"integer 7", integer(7), 7.0, 7, 7, true},
        {"integer -1", integer(-1), -1.0, -1, 4294967295u, true},
        {"integer 2147483647", integer(2147483647), 2147483647.0, intMax, 2147483647u, true},
        {"integer 2147483648", integer(2147483648), 2147483648.0, intMin, 2147483648u, true},
        {"integer -2147483648", integer(-2147483648LL), -2147483648.0, intMin, 2147483648u, true},
        {"integer -2147483649", integer(-2147483649LL), -2147483649.0, intMax, 2147483647u, true},
        {"integer 3000000000", integer(3000000000), 3000000000.0, -1294967296, 3000000000u, true},
        {"integer 4294967295", integer(4294967295), 4294967295.0, -1, 4294967295u, true},
        {"integer 4294967296", integer(4294967296), 4294967296.0, 0, 0, true},
        {"integer 4294967297", integer(4294967297), 4294967297.0, 1, 1, true},
        {"integer 2^53", integer(9007199254740992), 9007199254740992.0, 0, 0, true},
        {"integer 2^53 + 1 to the even neighbour", integer(9007199254740993), 9007199254740992.0, 1, 1, true},
        {"integer 2^53 + 3 to the even neighbour", integer(9007199254740995), 9007199254740996.0, 3, 3, true},
        {"largest integer", integer(largest), 9223372036854775808.0, -1, 4294967295u, true},
        {"smallest integer", integer(smallest), -9223372036854775808.0, 0, 0, true},

        {"true", boolean(true), 1.0, 1, 1, true},
        {"false", boolean(false), 0.0, 0, 0, false},
    };
}

TEST(NumberAs, ConvertsEveryNumberAndBooleanToEveryType)
{
    for (Case const& each : cases()) {
        SCOPED_TRACE(each.name);
        double const number = numberAs<double>(each.node);
        EXPECT_EQ(number, each.asDouble);
        EXPECT_EQ(std::signbit(number), std::signbit(each.asDouble));
        EXPECT_EQ(numberAs<int>(each.node), each.asInt);
        EXPECT_EQ(numberAs<unsigned int>(each.node), each.asUnsigned);
        EXPECT_EQ(numberAs<bool>(each.node), each.asBool);
    }
}

TEST(NumberAs, ReadsWhatIsNotANumberAsZeroExceptForDouble)
{
    Element const node = real(std::nan(""));
    EXPECT_TRUE(std::isnan(numberAs<double>(node)));
    EXPECT_EQ(numberAs<int>(node), 0);
    EXPECT_EQ(numberAs<unsigned int>(node), 0u);
    EXPECT_FALSE(numberAs<bool>(node));
}

struct Refused {
    Element node;
    std::string found;
};

TEST(NumberAs, LeavesTheFailureOfEveryOtherKindToTheAccessorOfItsType)
{
    Refused const refused[] = {{text("1"), "string"},
                               {Element(Object()), "object"},
                               {object({{"id", integer(1)}}), "object"},
                               {Element(Array()), "array"},
                               {Element(), "empty"}};
    for (auto const& [node, found] : refused) {
        Element const& each = node;
        EXPECT_THAT([&] { numberAs<double>(each); },
                    ThrowsMessage<TypeError>(StrEq("expected floating-point number, found " + found)));
        EXPECT_THAT([&] { numberAs<int>(each); },
                    ThrowsMessage<TypeError>(StrEq("expected integer, found " + found)));
        EXPECT_THAT([&] { numberAs<unsigned int>(each); },
                    ThrowsMessage<TypeError>(StrEq("expected integer, found " + found)));
        EXPECT_THAT([&] { numberAs<bool>(each); },
                    ThrowsMessage<TypeError>(StrEq("expected boolean, found " + found)));
    }
}

TEST(Low32, KeepsTheLowBitsWithoutARangeCheck)
{
    static_assert(low32(4294967297) == 1);
    EXPECT_EQ(low32(0), 0);
    EXPECT_EQ(low32(-1), -1);
    EXPECT_EQ(low32(3000000000), -1294967296);
    EXPECT_EQ(low32(2147483648), std::numeric_limits<int>::min());
    EXPECT_EQ(low32(0x7FFFFFFF00000005), 5);
    EXPECT_EQ(low32(largest), -1);
    EXPECT_EQ(low32(smallest), 0);
}

} // namespace
} // namespace Zelk::MetaData
