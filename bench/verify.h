/// Nothing is timed before its result was seen to be right.
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace bench {

/// How exactly the numbers of two texts must agree.
enum class Numbers {
    exact,   ///< the same double
    adjacent ///< a few units in the last place apart, for a library that does not round correctly
};

/// Throws std::runtime_error, naming `what`, unless the text holds the expected value.
void requireJson(std::string_view text, nlohmann::json const& expected, std::string const& what,
                 Numbers numbers);

/// Throws std::runtime_error, naming `what`, unless the result is right.
void require(bool right, std::string const& what);

} // namespace bench
