/// From decimal digits and a power of ten to the nearest double, fast where that is possible.
#pragma once

#include <cstdint>

namespace Zelk::Json::Detail {

/// The double nearest to digits x 10^power, ties to even, for `digits` that are not 0. False, with `value`
/// unchanged, when the power is outside of what the fast ways cover (about 10^-27 to 10^27).
bool toDouble(std::uint64_t digits, long long power, double& value) noexcept;

} // namespace Zelk::Json::Detail
