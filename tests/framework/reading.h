/// Reads a text and checks every thing that a refusal tells against the state machine of text_oracle.h.
#pragma once

#include "framework/json_text.h"
#include "text_oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

namespace Zelk::Tests {

/// A text in which every byte can be seen.
inline std::string shown(std::string_view text)
{
    std::string result;
    for (char const c : text) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "<%02x>", static_cast<unsigned int>(static_cast<unsigned char>(c)));
        result += c >= ' ' && c <= '~' ? std::string(1, c) : std::string(hex);
    }
    return result;
}

/// Whether `error` points to byte `offset` of `text` in all its ways.
inline testing::AssertionResult pointsTo(Json::ParseError const& error, std::string_view text,
                                         std::size_t offset)
{
    std::string_view const before = text.substr(0, offset);
    auto const line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    std::size_t const column = line == 1 ? offset + 1 : offset - before.rfind('\n');
    std::string const begin = "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
    std::string const what = error.what();
    if (error.offset() == offset && error.line() == line && error.column() == column &&
        what.compare(0, begin.size(), begin) == 0 && what.size() > begin.size())
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "offset " << error.offset() << ", line " << error.line() << ", column " << error.column()
           << ", \"" << what << "\" instead of offset " << offset << ", \"" << begin << "...\" for "
           << shown(text);
}

inline testing::AssertionResult isRefusedAt(std::string_view text, std::size_t offset)
{
    try {
        Json::readText(text);
    } catch (Json::ParseError const& error) {
        return pointsTo(error, text, offset);
    }
    return testing::AssertionFailure() << "accepted, instead of refused at " << offset << ": " << shown(text);
}

/// Whether the reader takes the text, or refuses it at the byte, where the state machine does.
inline testing::AssertionResult isReadAsByTheOracle(std::string_view text)
{
    std::size_t const offset = TextOracle::firstBadByte(text);
    if (offset != TextOracle::isJson)
        return isRefusedAt(text, offset);
    try {
        Json::readText(text);
    } catch (Json::ParseError const& error) {
        return testing::AssertionFailure() << "refused, \"" << error.what() << "\": " << shown(text);
    }
    return testing::AssertionSuccess();
}

} // namespace Zelk::Tests
