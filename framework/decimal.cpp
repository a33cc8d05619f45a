#include "framework/decimal.h"

#include <array>
#include <cstring>

namespace Zelk::Json::Detail {

namespace {

constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int largestExactPower = 22;
constexpr std::uint64_t largestExactDigits = std::uint64_t{1} << 53;

#ifdef __SIZEOF_INT128__

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t high(Wide value)
{
    return static_cast<std::uint64_t>(value >> 64);
}

// 5^27 is the largest power of five below 2^64. Up to it, the 128 leading bits of a power of five tell the
// nearest double of every product with 64 bits (Lemire, "Number parsing at a gigabyte per second", 2021;
// Mushtak and Lemire, "Fast number parsing without fallback", 2023).
constexpr int largestFive = 27;

/// The 128 leading bits of 5^power: exact for positive powers, rounded up for negative ones.
constexpr Wide leadingBits(int power)
{
    Wide five = 1;
    for (int i = 0; i < (power < 0 ? -power : power); ++i)
        five *= 5;
    Wide bits = 0;
    if (power >= 0) {
        for (bits = five; bits >> 127 == 0;)
            bits <<= 1;
        return bits;
    }
    // Long division of a power of two, digit by binary digit, until the quotient is 128 bits long.
    for (Wide rest = 1; bits >> 127 == 0;) {
        rest <<= 1;
        bits = bits << 1 | (rest >= five ? 1 : 0);
        rest -= rest >= five ? five : 0;
    }
    return bits + 1;
}

constexpr auto fives = [] {
    std::array<Wide, 2 * largestFive + 1> all{};
    for (int power = -largestFive; power <= largestFive; ++power)
        all[static_cast<std::size_t>(power + largestFive)] = leadingBits(power);
    return all;
}();

/// The exponent of two of 10^power, rounded down.
constexpr int binaryExponent(int power)
{
    return (217706 * power) >> 16;
}

double product(std::uint64_t digits, int power) noexcept
{
    constexpr int mantissaBits = 52;
    constexpr int bias = 1023;
    int const leadingZeros = __builtin_clzll(digits);
    digits <<= leadingZeros;
    Wide const five = fives[static_cast<std::size_t>(power + largestFive)];
    Wide bits = Wide{digits} * high(five);
    // Only when all bits below those of the double are set could the low half of the power carry into them.
    constexpr std::uint64_t belowMantissa = 0x1FF;
    if ((high(bits) & belowMantissa) == belowMantissa)
        bits += high(Wide{digits} * static_cast<std::uint64_t>(five));
    int const carry = static_cast<int>(high(bits) >> 63);
    int const shift = carry + 64 - mantissaBits - 3;
    std::uint64_t mantissa = high(bits) >> shift; // with one bit more than it has, for rounding
    // A tie is exact, and possible only when 5^power or its inverse divides what 64 bits can hold.
    bool const tie = static_cast<std::uint64_t>(bits) <= 1 && power >= -4 && power <= 23 &&
                     (mantissa & 3) == 1 && mantissa << shift == high(bits);
    mantissa += tie ? 0 : mantissa & 1;
    mantissa >>= 1;
    auto exponent = static_cast<std::uint64_t>(binaryExponent(power) + 63 + carry - leadingZeros + bias);
    if (mantissa >> (mantissaBits + 1) != 0) { // rounded up to the next power of two
        mantissa >>= 1;
        ++exponent;
    }
    mantissa &= ~(std::uint64_t{1} << mantissaBits);
    std::uint64_t const representation = exponent << mantissaBits | mantissa;
    double value = 0;
    std::memcpy(&value, &representation, sizeof value);
    return value;
}

#endif

} // namespace

bool toDouble(std::uint64_t digits, long long power, double& value) noexcept
{
    if (digits <= largestExactDigits && power >= -largestExactPower && power <= largestExactPower) {
        // Both operands are exact, so the one rounding is the right one.
        auto const exact = static_cast<double>(digits);
        value = power < 0 ? exact / powersOfTen[-power] : exact * powersOfTen[power];
        return true;
    }
#ifdef __SIZEOF_INT128__
    if (power >= -largestFive && power <= largestFive) {
        value = product(digits, static_cast<int>(power));
        return true;
    }
#endif
    return false;
}

} // namespace Zelk::Json::Detail
