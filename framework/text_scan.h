/// Looking through JSON strings many bytes at a time.
///
/// The only processor intrinsics of the library stand here, beside a portable form that does the same; the
/// build option ZELK_PORTABLE_SCAN chooses it everywhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) && !defined(ZELK_PORTABLE_SCAN)
#include <emmintrin.h>
#define ZELK_SCAN_SSE2
#endif

namespace Zelk::Json::Detail {

/// Whether a byte cannot stand in a JSON string as it is and without a further look: a quote, a backslash, a
/// control character, or a byte of a character beyond ASCII.
constexpr bool isSpecial(unsigned char byte) noexcept
{
    return byte < 0x20 || byte >= 0x80 || byte == '"' || byte == '\\';
}

/// Whether a byte is white space between the parts of a JSON text.
constexpr bool isSpace(char byte) noexcept
{
    return static_cast<unsigned char>(byte) <= ' ' &&
           (byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t');
}

/// As many bytes at once as the unsigned integer T has.
template <typename T>
struct Bytes {
    static constexpr std::size_t size = sizeof(T);
    static constexpr T ones = static_cast<T>(0x0101010101010101);
    static constexpr T highs = static_cast<T>(0x8080808080808080);

    explicit Bytes(char const* text) noexcept { std::memcpy(&bits, text, size); }
    void copyTo(char* out) const noexcept { std::memcpy(out, &bits, size); }

    /// Whether any of the bytes is special. (A byte with its high bit set is special anyway, so the usual
    /// doubt about borrows in such bytes does not matter.)
    bool hasSpecial() const noexcept
    {
        T const quote = bits ^ (ones * '"');
        T const backslash = bits ^ (ones * '\\');
        T const found = (bits - ones * 0x20) | (quote - ones) | (backslash - ones) | bits;
        return (found & highs) != 0;
    }

    T bits;
};
using HalfWord = Bytes<std::uint32_t>;
using Word = Bytes<std::uint64_t>;

#ifdef ZELK_SCAN_SSE2

/// Sixteen bytes at once.
struct Block {
    static constexpr std::size_t size = 16;

    explicit Block(char const* text) noexcept : bits(_mm_loadu_si128(reinterpret_cast<__m128i const*>(text)))
    {}
    void copyTo(char* out) const noexcept { _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bits); }

    /// One bit a byte, lowest first, set where the byte is special.
    unsigned int specials() const noexcept
    {
        // Only the highest bit of each byte counts, which control characters get by the subtraction.
        __m128i const outside = _mm_or_si128(bits, _mm_sub_epi8(bits, _mm_set1_epi8(0x20)));
        __m128i const quote = _mm_cmpeq_epi8(bits, _mm_set1_epi8('"'));
        __m128i const backslash = _mm_cmpeq_epi8(bits, _mm_set1_epi8('\\'));
        return static_cast<unsigned int>(
            _mm_movemask_epi8(_mm_or_si128(outside, _mm_or_si128(quote, backslash))));
    }
    bool hasSpecial() const noexcept { return specials() != 0; }
    std::size_t firstSpecial() const noexcept { return static_cast<std::size_t>(__builtin_ctz(specials())); }

    /// Number of bytes of white space that the block begins with.
    std::size_t leadingSpace() const noexcept
    {
        auto const is = [this](char c) { return _mm_cmpeq_epi8(bits, _mm_set1_epi8(c)); };
        __m128i const space = _mm_or_si128(_mm_or_si128(is(' '), is('\n')), _mm_or_si128(is('\r'), is('\t')));
        constexpr unsigned int stop = 1U << size;
        return static_cast<std::size_t>(
            __builtin_ctz(~static_cast<unsigned int>(_mm_movemask_epi8(space)) | stop));
    }

    __m128i bits;
};

#else

struct Block {
    static constexpr std::size_t size = 16;

    explicit Block(char const* text) noexcept : low(text), high(text + Word::size) {}
    void copyTo(char* out) const noexcept
    {
        low.copyTo(out);
        high.copyTo(out + Word::size);
    }
    bool hasSpecial() const noexcept { return low.hasSpecial() || high.hasSpecial(); }
    std::size_t firstSpecial() const noexcept
    {
        char bytes[size];
        copyTo(bytes);
        std::size_t index = 0;
        while (!isSpecial(static_cast<unsigned char>(bytes[index])))
            ++index;
        return index;
    }
    std::size_t leadingSpace() const noexcept
    {
        char bytes[size];
        copyTo(bytes);
        std::size_t index = 0;
        while (index != size && isSpace(bytes[index]))
            ++index;
        return index;
    }

    Word low;
    Word high;
};

#endif

/// The first special byte in a text, or its end.
inline char const* findSpecial(char const* text, char const* end) noexcept
{
    for (; static_cast<std::size_t>(end - text) >= Block::size; text += Block::size) {
        Block const block(text);
        if (block.hasSpecial())
            return text + block.firstSpecial();
    }
    if (static_cast<std::size_t>(end - text) >= Word::size && !Word(text).hasSpecial())
        text += Word::size;
    while (text != end && !isSpecial(static_cast<unsigned char>(*text)))
        ++text;
    return text;
}

/// The first byte of a character beyond ASCII that cannot continue well-formed UTF-8; the end if the text
/// ends within the character, or null when it is well-formed, and `length` is that of the character then.
inline char const* findBadUtf8(char const* text, char const* end, std::size_t& length) noexcept
{
    auto const byteAt = [](char const* at) { return static_cast<unsigned char>(*at); };
    // The second byte's range keeps out overlong forms, surrogates, and all beyond U+10FFFF.
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    unsigned char const lead = byteAt(text);
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0;
        else if (lead == 0xED)
            high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90;
        else if (lead == 0xF4)
            high = 0x8F;
    } else {
        return text;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (text + i == end || byteAt(text + i) < low || byteAt(text + i) > high)
            return text + i;
        low = 0x80;
        high = 0xBF;
    }
    return nullptr;
}

/// The first byte from which on a text cannot stand in a JSON string as it is: a quote, a backslash or a
/// control character, or the end. When UTF-8 is not well-formed before that, `bad` tells the first byte that
/// cannot continue it; else it is null.
inline char const* skipPlain(char const* text, char const* end, char const*& bad) noexcept
{
    auto const byteAt = [](char const* at) { return static_cast<unsigned char>(*at); };
    auto const continues = [byteAt](char const* at) { return (byteAt(at) & 0xC0) == 0x80; };
    bad = nullptr;
    while (true) {
        text = findSpecial(text, end);
        if (text == end || byteAt(text) < 0x80)
            return text;
        while (text != end && byteAt(text) >= 0x80) {
            // Most characters beyond ASCII have two bytes, or three with a lead that allows any second one.
            unsigned char const lead = byteAt(text);
            std::size_t length = 0;
            if (end - text >= 2 && lead >= 0xC2 && lead <= 0xDF && continues(text + 1))
                length = 2;
            else if (end - text >= 3 && lead >= 0xE1 && lead <= 0xEF && lead != 0xED && continues(text + 1) &&
                     continues(text + 2))
                length = 3;
            else
                bad = findBadUtf8(text, end, length);
            if (bad != nullptr)
                return text;
            text += length;
        }
    }
}

/// Steps over white space, of which there is at least one byte.
[[gnu::noinline]] inline char const* skipSpaces(char const* text, char const* end) noexcept
{
    ++text;
    if (text == end || static_cast<unsigned char>(*text) > ' ')
        return text;
    for (; static_cast<std::size_t>(end - text) >= Block::size; text += Block::size) {
        std::size_t const space = Block(text).leadingSpace();
        if (space != Block::size)
            return text + space;
    }
    while (text != end && isSpace(*text))
        ++text;
    return text;
}

/// Steps over white space; most often there is none.
[[gnu::always_inline]] inline char const* skipSpace(char const* text, char const* end) noexcept
{
    return text == end || !isSpace(*text) ? text : skipSpaces(text, end);
}

} // namespace Zelk::Json::Detail
