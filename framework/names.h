/// Comparing the names of members, which are short and mostly differ early.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Zelk::MetaData::Detail {

/// Less than, equal to or greater than 0 as `a` comes before, is, or comes after `b`, byte by byte.
[[gnu::always_inline]] inline int compareNames(std::string_view a, std::string_view b) noexcept
{
    // Most names differ in their first byte, which saves the call that compares the rest.
    if (!a.empty() && !b.empty() && a.front() != b.front())
        return static_cast<unsigned char>(a.front()) - static_cast<unsigned char>(b.front());
    return a.compare(b);
}

template <typename Word>
bool haveEqualEnds(std::string_view a, std::string_view b) noexcept
{
    auto const word = [](char const* text) {
        Word bits;
        std::memcpy(&bits, text, sizeof bits);
        return bits;
    };
    std::size_t const last = a.size() - sizeof(Word);
    return word(a.data()) == word(b.data()) && word(a.data() + last) == word(b.data() + last);
}

/// Whether two names are equal. Most that are not differ in size; short ones are compared by their ends,
/// which overlap.
[[gnu::always_inline]] inline bool areEqualNames(std::string_view a, std::string_view b) noexcept
{
    if (a.size() != b.size())
        return false;
    if (a.size() > 2 * sizeof(std::uint64_t))
        return a == b;
    if (a.size() >= sizeof(std::uint64_t))
        return haveEqualEnds<std::uint64_t>(a, b);
    if (a.size() >= sizeof(std::uint32_t))
        return haveEqualEnds<std::uint32_t>(a, b);
    if (a.size() >= sizeof(std::uint16_t))
        return haveEqualEnds<std::uint16_t>(a, b);
    return a.empty() || a.front() == b.front();
}

} // namespace Zelk::MetaData::Detail
