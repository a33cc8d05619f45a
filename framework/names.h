/// Comparing the names of members, which are short and mostly differ early.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Zelk::MetaData::Detail {

template <typename Word>
[[gnu::always_inline]] inline Word wordAt(char const* text) noexcept
{
    Word word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

template <typename Word>
[[gnu::always_inline]] inline bool haveEqualWord(char const* a, char const* b) noexcept
{
    return wordAt<Word>(a) == wordAt<Word>(b);
}

/// Less than, equal to or greater than 0 as `a` comes before, is, or comes after `b`, byte by byte.
[[gnu::always_inline]] inline int compareNames(std::string_view a, std::string_view b) noexcept
{
    // Most names differ in their first byte, most others in their first word, which saves the call that
    // compares the rest.
    if (!a.empty() && !b.empty() && a.front() != b.front())
        return static_cast<unsigned char>(a.front()) - static_cast<unsigned char>(b.front());
    using Word = std::uint64_t;
    if (a.size() >= sizeof(Word) && b.size() >= sizeof(Word)) {
        Word first = wordAt<Word>(a.data());
        Word second = wordAt<Word>(b.data());
        if (first != second) {
            if constexpr (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__) {
                first = __builtin_bswap64(first);
                second = __builtin_bswap64(second);
            }
            return first < second ? -1 : 1;
        }
    }
    return a.compare(b);
}

/// Whether two names of one size, which is at least that of a Word, begin and end alike; the words may
/// overlap.
template <typename Word>
[[gnu::always_inline]] inline bool haveEqualEnds(char const* a, char const* b, std::size_t size) noexcept
{
    std::size_t const last = size - sizeof(Word);
    return haveEqualWord<Word>(a, b) && haveEqualWord<Word>(a + last, b + last);
}

/// Whether two names are equal. Most that are not differ in size. Compares the rest itself, since around a
/// call a search would have to save and restore all that it keeps in registers.
[[gnu::always_inline]] inline bool areEqualNames(std::string_view a, std::string_view b) noexcept
{
    using Word = std::uint64_t;
    std::size_t const size = b.size();
    if (a.size() != size)
        return false;
    if (size >= sizeof(Word)) {
        if (!haveEqualEnds<Word>(a.data(), b.data(), size))
            return false;
        if (size > 2 * sizeof(Word))
            for (std::size_t i = sizeof(Word); i + sizeof(Word) < size; i += sizeof(Word))
                if (!haveEqualWord<Word>(a.data() + i, b.data() + i))
                    return false;
        return true;
    }
    if (size >= sizeof(std::uint32_t))
        return haveEqualEnds<std::uint32_t>(a.data(), b.data(), size);
    if (size >= sizeof(std::uint16_t))
        return haveEqualEnds<std::uint16_t>(a.data(), b.data(), size);
    return size == 0 || a.front() == b.front();
}

} // namespace Zelk::MetaData::Detail
