/// Tables and words that the tests of the commands share: how numbers are read leniently, and what is left of
/// a message that refused a text.
#pragma once

#include "framework/element.h"
#include "framework/error.h"
#include "tests/framework/nodes.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace Zelk::Tests {

/// A node under a key that is read leniently, and the value it stands for.
template <typename T>
struct Reading {
    std::string name;
    MetaData::Element node;
    T value;
};

inline std::vector<Reading<int>> intReadings()
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    return {
        {"integer", integer(7), 7},
        {"negative integer", integer(-7), -7},
        {"integer beyond 32 bits keeps the low ones", integer(4294967297), 1},
        {"integer of 2^32", integer(4294967296), 0},
        {"integer with bit 31 set is negative", integer(3000000000), -1294967296},
        {"lowest 64-bit integer", integer(std::numeric_limits<long long>::min()), 0},
        {"highest 64-bit integer", integer(std::numeric_limits<long long>::max()), -1},
        {"floating point is truncated", real(3.9), 3},
        {"negative floating point is truncated toward zero", real(-2.9), -2},
        {"floating point above the range", real(1e10), highest},
        {"floating point below the range", real(-1e10), lowest},
        {"infinity", real(std::numeric_limits<double>::infinity()), highest},
        {"minus infinity", real(-std::numeric_limits<double>::infinity()), lowest},
        {"not a number", real(std::numeric_limits<double>::quiet_NaN()), 0},
        {"true", boolean(true), 1},
        {"false", boolean(false), 0},
    };
}

inline std::vector<Reading<unsigned int>> unsignedReadings()
{
    return {
        {"integer", integer(7), 7},
        {"minus one", integer(-1), 4294967295},
        {"highest", integer(4294967295), 4294967295},
        {"integer beyond 32 bits keeps the low ones", integer(4294967297), 1},
        {"floating point is truncated", real(2.9), 2},
        {"floating point beyond int", real(3000000000.5), 3000000000},
        {"negative floating point", real(-1.0), 0},
        {"floating point above the range", real(1e10), 4294967295},
        {"not a number", real(std::numeric_limits<double>::quiet_NaN()), 0},
        {"true", boolean(true), 1},
        {"false", boolean(false), 0},
    };
}

inline std::vector<Reading<double>> doubleReadings()
{
    return {
        {"floating point", real(0.25), 0.25},
        {"negative floating point", real(-1e300), -1e300},
        {"infinity", real(std::numeric_limits<double>::infinity()), std::numeric_limits<double>::infinity()},
        {"integer", integer(5), 5.0},
        {"integer beyond 2^53 is rounded to the nearest", integer(9007199254740993), 9007199254740992.0},
        {"true", boolean(true), 1.0},
        {"false", boolean(false), 0.0},
    };
}

inline std::vector<Reading<bool>> boolReadings()
{
    return {
        {"true", boolean(true), true},
        {"false", boolean(false), false},
        {"zero", integer(0), false},
        {"integer", integer(2), true},
        {"negative integer", integer(-1), true},
        {"integer without low 32 bits", integer(4294967296), true},
        {"floating-point zero", real(0.0), false},
        {"tiny", real(0.000001), false},
        {"the limit itself", real(1e-05), false},
        {"just above the limit", real(0.00002), true},
        {"negative tiny", real(-0.000001), false},
        {"negative", real(-0.5), true},
    };
}

/// Kind and text of what `action` throws; "nothing" when it does not throw.
template <typename Action>
std::string failureOf(Action action)
{
    try {
        action();
    } catch (MetaData::TypeError const& error) {
        return std::string("TypeError: ") + error.what();
    } catch (MetaData::MissingMemberError const& error) {
        return std::string("MissingMemberError: ") + error.what();
    } catch (std::runtime_error const& error) {
        return (typeid(error) == typeid(std::runtime_error) ? std::string("runtime_error: ")
                                                            : std::string("another error: ")) +
               error.what();
    }
    return "nothing";
}

/// A text that a message refuses, why, and what the message writes afterwards: members read before the
/// failure are new, the others old, and nothing else of the refused text is left.
struct Refusal {
    std::string name;
    std::string received;
    std::string failure;
    std::string written;
};

template <typename Message>
void expectRefusals(Message const& before, std::vector<Refusal> const& refusals)
{
    for (Refusal const& refusal : refusals) {
        SCOPED_TRACE(refusal.name + ": " + refusal.received);
        Message message = before;
        EXPECT_EQ(failureOf([&] { message.fromJsonString(refusal.received); }), refusal.failure);
        EXPECT_EQ(message.toJsonString(), refusal.written);
    }
}

/// Reads each node under the top-level `key`, beside the other members of `form`, and compares what `get`
/// says.
template <typename Message, typename T, typename Get>
void expectReadings(Message message, MetaData::Element form, std::string const& key,
                    std::vector<Reading<T>> const& readings, Get get)
{
    for (Reading<T> const& reading : readings) {
        SCOPED_TRACE(key + ", " + reading.name);
        form[key] = reading.node;
        EXPECT_EQ(failureOf([&] { message.copyFromMetaData(form); }), "nothing");
        EXPECT_EQ(get(message), reading.value);
    }
}

} // namespace Zelk::Tests
