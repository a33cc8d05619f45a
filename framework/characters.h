/// Characters on their way from a text into a name or a string of the tree.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Zelk::MetaData::Detail {

class Characters {
public:
    /// As many characters as fit into a string object of libstdc++ itself.
    static constexpr std::size_t shortString = 15;

    /// Characters of which nothing is known but themselves.
    Characters(std::string_view text) noexcept : text_(text) {}
    Characters(std::string const& text) noexcept : text_(text) {}

    /// At most `shortString` characters in a text that goes on behind them, so that this many may be read
    /// from `text` on. This many are copied whatever their number, in two moves and without a call, and cut
    /// off then.
    static Characters shortIn(char const* text, std::size_t size) noexcept
    {
        Characters characters(std::string_view(text, size));
        characters.short_ = true;
        return characters;
    }

    std::string_view view() const noexcept { return text_; }

    /// The string of them. Throws std::bad_alloc.
    [[gnu::always_inline]] std::string string() const { return short_ ? cut(text_) : std::string(text_); }

private:
    [[gnu::always_inline]] static std::string cut(std::string_view text)
    {
        std::string string(text.data(), shortString);
        // The mask changes nothing, but without it the code of an exception would stand in every caller.
        static_assert((shortString & (shortString + 1)) == 0);
        string.erase(text.size() & shortString);
        return string;
    }

    std::string_view text_;
    bool short_ = false;
};

} // namespace Zelk::MetaData::Detail
