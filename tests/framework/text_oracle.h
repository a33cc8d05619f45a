/// Where a text stops being JSON, told by a machine that has no code in common with the reader: it takes one
/// byte after the other and only knows whether some text with that beginning could still be JSON. It does not
/// judge the size of numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Zelk::Tests {

/// Knows every beginning of every character in UTF-8, by having written all of them down.
class Utf8Beginnings {
public:
    Utf8Beginnings() : two_(1u << 16), three_(1u << 24), four_(1u << 27)
    {
        for (std::uint32_t code = 0x80; code <= 0x10FFFF; ++code) {
            if (code >= 0xD800 && code <= 0xDFFF)
                continue;
            std::uint32_t const last = 0x80 | (code & 0x3F);
            std::uint32_t const third = 0x80 | (code >> 6 & 0x3F);
            std::uint32_t const second = 0x80 | (code >> 12 & 0x3F);
            if (code < 0x800)
                add({0xC0 | code >> 6, last});
            else if (code < 0x10000)
                add({0xE0 | code >> 12, third, last});
            else
                add({0xF0 | code >> 18, second, third, last});
        }
    }

    bool contain(std::string_view bytes) const
    {
        std::uint32_t value = 0;
        for (char const byte : bytes)
            value = value << 8 | static_cast<unsigned char>(byte);
        switch (bytes.size()) {
        case 1:
            return one_[value];
        case 2:
            return two_[value];
        case 3:
            return three_[value];
        default:
            return value >= 0xF0000000 && four_[value & 0x07FFFFFF];
        }
    }

    static std::size_t lengthOf(char first)
    {
        auto const lead = static_cast<unsigned char>(first);
        return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    }

private:
    void add(std::vector<std::uint32_t> const& bytes)
    {
        one_[bytes[0]] = true;
        two_[bytes[0] << 8 | bytes[1]] = true;
        if (bytes.size() > 2)
            three_[bytes[0] << 16 | bytes[1] << 8 | bytes[2]] = true;
        if (bytes.size() > 3)
            four_[(bytes[0] & 7) << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3]] = true;
    }

    bool one_[256] = {};
    std::vector<bool> two_;
    std::vector<bool> three_;
    std::vector<bool> four_;
};

class TextOracle {
public:
    static constexpr std::size_t isJson = static_cast<std::size_t>(-1);

    /// The offset of the first byte that cannot continue the text, its length when it ends too early, or
    /// isJson.
    static std::size_t firstBadByte(std::string_view text)
    {
        TextOracle oracle;
        for (std::size_t offset = 0; offset < text.size(); ++offset)
            if (!oracle.take(text[offset]))
                return offset;
        return oracle.complete() ? isJson : text.size();
    }

private:
    enum class State {
        value,          // a value must come
        valueOrEnd,     // behind '['
        nameOrEnd,      // behind '{'
        name,           // behind ',' in an object
        colon,          // behind a name
        after,          // behind a value
        word,           // in true, false or null
        string,         // in a string
        escape,         // behind a backslash
        hex,            // in the digits of an escape
        lowBackslash,   // behind a high surrogate
        lowU,           // and the backslash
        minus,          // behind '-'
        zero,           // behind a leading zero
        digits,         // in the digits of a whole number
        point,          // behind the point
        fraction,       // in the digits behind it
        exponent,       // behind 'e'
        exponentSign,   // behind its sign
        exponentDigits, // in its digits
    };

    bool complete() const { return brackets_.empty() && (state_ == State::after || endsNumber()); }

    bool endsNumber() const
    {
        return state_ == State::zero || state_ == State::digits || state_ == State::fraction ||
               state_ == State::exponentDigits;
    }

    bool go(State next)
    {
        state_ = next;
        return true;
    }

    static bool space(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
    static bool digit(char c) { return std::string_view("0123456789").find(c) != std::string_view::npos; }

    bool take(char c)
    {
        switch (state_) {
        case State::valueOrEnd:
            if (c == ']')
                return close(c);
            [[fallthrough]];
        case State::value:
            return space(c) || beginValue(c);
        case State::nameOrEnd:
            if (c == '}')
                return close(c);
            [[fallthrough]];
        case State::name:
            return space(c) || (c == '"' && beginString(true));
        case State::colon:
            return space(c) || (c == ':' && go(State::value));
        case State::after:
            return space(c) || afterValue(c);
        case State::word:
            if (c != word_.front())
                return false;
            word_.remove_prefix(1);
            return !word_.empty() || go(State::after);
        case State::string:
            return takeInString(c);
        case State::escape:
            if (c == 'u') {
                hex_.clear();
                return go(State::hex);
            }
            return std::string_view("\"\\/bfnrt").find(c) != std::string_view::npos && go(State::string);
        case State::hex:
            return takeHex(c);
        case State::lowBackslash:
            return c == '\\' && go(State::lowU);
        case State::lowU:
            hex_.clear();
            return c == 'u' && go(State::hex);
        case State::minus:
            return digit(c) && go(c == '0' ? State::zero : State::digits);
        case State::zero:
            return behindDigits(c, true, true);
        case State::digits:
            return digit(c) || behindDigits(c, true, true);
        case State::point:
            return digit(c) && go(State::fraction);
        case State::fraction:
            return digit(c) || behindDigits(c, false, true);
        case State::exponent:
            if (c == '+' || c == '-')
                return go(State::exponentSign);
            [[fallthrough]];
        case State::exponentSign:
            return digit(c) && go(State::exponentDigits);
        case State::exponentDigits:
            return digit(c) || behindDigits(c, false, false);
        }
        return false;
    }

    bool behindDigits(char c, bool mayPoint, bool mayExponent)
    {
        if (mayPoint && c == '.')
            return go(State::point);
        if (mayExponent && (c == 'e' || c == 'E'))
            return go(State::exponent);
        state_ = State::after;
        return space(c) || afterValue(c);
    }

    bool beginValue(char c)
    {
        switch (c) {
        case '{':
        case '[':
            if (brackets_.size() == 1024)
                return false;
            brackets_ += c;
            return go(c == '{' ? State::nameOrEnd : State::valueOrEnd);
        case '"':
            return beginString(false);
        case '-':
            return go(State::minus);
        case '0':
            return go(State::zero);
        case 't':
            word_ = "rue";
            return go(State::word);
        case 'f':
            word_ = "alse";
            return go(State::word);
        case 'n':
            word_ = "ull";
            return go(State::word);
        default:
            return digit(c) && go(State::digits);
        }
    }

    bool afterValue(char c)
    {
        if (brackets_.empty())
            return false;
        if (c == ',')
            return go(brackets_.back() == '{' ? State::name : State::value);
        return close(c);
    }

    bool close(char c)
    {
        if (brackets_.empty() || c != (brackets_.back() == '{' ? '}' : ']'))
            return false;
        brackets_.pop_back();
        return go(State::after);
    }

    bool beginString(bool isName)
    {
        isName_ = isName;
        character_.clear();
        highSurrogate_ = false;
        return go(State::string);
    }

    bool takeInString(char c)
    {
        static Utf8Beginnings const utf8;
        if (!character_.empty() || static_cast<unsigned char>(c) >= 0x80) {
            character_ += c;
            if (!utf8.contain(character_))
                return false;
            if (character_.size() == Utf8Beginnings::lengthOf(character_.front()))
                character_.clear();
            return true;
        }
        if (c == '"')
            return go(isName_ ? State::colon : State::after);
        if (c == '\\')
            return go(State::escape);
        return static_cast<unsigned char>(c) >= 0x20;
    }

    /// Digits are right while some four digits with this beginning are: of a low surrogate behind a high one,
    /// of anything but a low surrogate elsewhere.
    bool takeHex(char c)
    {
        if (std::string_view("0123456789abcdefABCDEF").find(c) == std::string_view::npos)
            return false;
        hex_ += c;
        std::string shortest = hex_;
        shortest.resize(4, '0');
        std::string longest = hex_;
        longest.resize(4, 'f');
        unsigned long const from = std::stoul(shortest, nullptr, 16);
        unsigned long const to = std::stoul(longest, nullptr, 16);
        bool const someLow = to >= 0xDC00 && from <= 0xDFFF;
        bool const onlyLow = from >= 0xDC00 && to <= 0xDFFF;
        if (highSurrogate_ ? !someLow : onlyLow)
            return false;
        if (hex_.size() < 4)
            return true;
        if (highSurrogate_ || from < 0xD800 || from > 0xDBFF) {
            highSurrogate_ = false;
            return go(State::string);
        }
        highSurrogate_ = true;
        return go(State::lowBackslash);
    }

    State state_ = State::value;
    std::string brackets_;
    std::string_view word_;
    bool isName_ = false;
    bool highSurrogate_ = false;
    std::string character_;
    std::string hex_;
};

} // namespace Zelk::Tests
