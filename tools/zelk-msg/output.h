/// Standard output of the program: buffered, coloured when that is wanted, and honest about failures.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ZelkMsg {

/// When colours are used: on a terminal and without NO_COLOR, always, or never.
enum class ColorMode { automatic, always, never };

/// What a piece of text is, for its colour.
enum class Style { plain, heading, name, value, faint, good, bad };

/// Collects what a command prints. Nothing is written for good before flush().
class Output {
public:
    explicit Output(ColorMode mode);
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    Output& operator<<(std::string_view text)
    {
        buffer_ += text;
        if (buffer_.size() >= limit)
            flush();
        return *this;
    }
    /// The text in the colour of the style, when colours are on.
    Output& print(Style style, std::string_view text);

    /// Writes what was collected. Throws Trouble when that fails; a closed pipe ends the program instead,
    /// quietly.
    void flush();

    bool isTerminal() const noexcept { return terminal_; }

private:
    static constexpr std::size_t limit = 64 * 1024;

    std::string buffer_;
    bool terminal_;
    bool color_;
};

/// A line of text with what could disturb a terminal escaped as in JSON; quoted as in JSON when it would not
/// be told from its surroundings otherwise.
std::string readable(std::string_view text);

/// A line of text with what could disturb a terminal escaped; for text that is JSON already, or a message of
/// the program.
std::string harmless(std::string_view text);

/// Columns that the text takes on a terminal.
std::size_t width(std::string_view text);

/// The text followed by spaces up to the width.
std::string padded(std::string_view text, std::size_t columns);

} // namespace ZelkMsg
