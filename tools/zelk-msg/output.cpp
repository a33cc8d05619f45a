#include "tools/zelk-msg/output.h"

#include "tools/zelk-msg/progress.h"
#include "tools/zelk-msg/trouble.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <system_error>
#include <unistd.h>

namespace ZelkMsg {

namespace {

std::string_view codeOf(Style style)
{
    switch (style) {
    case Style::heading:
        return "\033[1m";
    case Style::name:
        return "\033[36m";
    case Style::value:
        return "\033[33m";
    case Style::faint:
        return "\033[2m";
    case Style::good:
        return "\033[32m";
    case Style::bad:
        return "\033[31m";
    case Style::plain:
        break;
    }
    return "";
}

/// Bytes that are not UTF-8 count as characters beyond all others.
constexpr std::uint32_t strayByte = 0x110000;

/// Takes one character from the front.
std::uint32_t takeCharacter(std::string_view& text, std::string_view& bytes)
{
    auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    std::uint32_t code = byte(0);
    std::size_t length = 1;
    if (code >= 0xF0)
        length = 4;
    else if (code >= 0xE0)
        length = 3;
    else if (code >= 0xC0)
        length = 2;
    bool valid = (code < 0x80 || code >= 0xC0) && length <= text.size();
    if (valid && length > 1) {
        code &= 0xFFu >> (length + 1);
        for (std::size_t i = 1; i < length; ++i) {
            valid = valid && (byte(i) & 0xC0u) == 0x80u;
            code = (code << 6) | (byte(i) & 0x3Fu);
        }
    }
    if (!valid) {
        length = 1;
        code = strayByte + byte(0);
    }
    bytes = text.substr(0, length);
    text.remove_prefix(length);
    return code;
}

/// Control characters, and those that turn the direction of writing.
bool disturbs(std::uint32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x200E || code == 0x200F ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF ||
           code >= strayByte;
}

bool isWide(std::uint32_t code)
{
    return (code >= 0x1100 && code <= 0x115F) || (code >= 0x2E80 && code <= 0xA4CF) ||
           (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0xF900 && code <= 0xFAFF) ||
           (code >= 0xFE30 && code <= 0xFE6F) || (code >= 0xFF00 && code <= 0xFF60) ||
           (code >= 0xFFE0 && code <= 0xFFE6) || (code >= 0x1F300 && code <= 0x1FAFF) ||
           (code >= 0x20000 && code <= 0x3FFFD);
}

bool isCombining(std::uint32_t code)
{
    return (code >= 0x0300 && code <= 0x036F) || (code >= 0x200B && code <= 0x200D) ||
           (code >= 0x20D0 && code <= 0x20FF) || (code >= 0xFE00 && code <= 0xFE0F);
}

void escape(std::string& target, std::uint32_t code)
{
    switch (code) {
    case '\n':
        target += "\\n";
        return;
    case '\t':
        target += "\\t";
        return;
    case '\r':
        target += "\\r";
        return;
    default:
        break;
    }
    constexpr char digits[] = "0123456789abcdef";
    bool const stray = code >= strayByte;
    target += stray ? "\\x" : "\\u";
    for (int shift = stray ? 4 : 12; shift >= 0; shift -= 4)
        target += digits[(code >> shift) & 0xF];
}

} // namespace

Output::Output(ColorMode mode) : terminal_(::isatty(STDOUT_FILENO) == 1), color_(mode == ColorMode::always)
{
    if (mode == ColorMode::automatic) {
        char const* const no_color = std::getenv("NO_COLOR");
        char const* const term = std::getenv("TERM");
        bool const dumb = term != nullptr && std::string_view(term) == "dumb";
        color_ = terminal_ && !dumb && (no_color == nullptr || *no_color == '\0');
    }
}

Output& Output::print(Style style, std::string_view text)
{
    std::string_view const code = color_ ? codeOf(style) : "";
    if (code.empty())
        return *this << text;
    return *this << code << text << "\033[0m";
}

void Output::flush()
{
    std::string_view rest = buffer_;
    if (terminal_ && !rest.empty())
        wipeProgress();
    while (!rest.empty()) {
        ssize_t const count = ::write(STDOUT_FILENO, rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
            continue;
        }
        if (errno == EINTR)
            continue;
        int const error = errno;
        buffer_.clear();
        if (error == EPIPE)
            ::_exit(fine); // whoever read has seen enough
        throw Trouble("standard output: " + std::generic_category().message(error));
    }
    buffer_.clear();
}

std::string readable(std::string_view text)
{
    bool quote = text.empty() || text.front() == ' ' || text.back() == ' ' || text.front() == '"';
    std::string_view bytes;
    for (std::string_view rest = text; !rest.empty() && !quote;)
        quote = disturbs(takeCharacter(rest, bytes));
    if (!quote)
        return std::string(text);
    std::string result = "\"";
    for (std::string_view rest = text; !rest.empty();) {
        std::uint32_t const code = takeCharacter(rest, bytes);
        if (disturbs(code))
            escape(result, code);
        else if (code == '"' || code == '\\')
            result.append("\\").append(bytes);
        else
            result += bytes;
    }
    return result + '"';
}

std::string harmless(std::string_view text)
{
    std::string result;
    std::string_view bytes;
    while (!text.empty()) {
        std::uint32_t const code = takeCharacter(text, bytes);
        if (disturbs(code))
            escape(result, code);
        else
            result += bytes;
    }
    return result;
}

std::size_t width(std::string_view text)
{
    std::size_t columns = 0;
    while (!text.empty()) {
        std::string_view bytes;
        std::uint32_t const code = takeCharacter(text, bytes);
        columns += isCombining(code) ? 0u : isWide(code) ? 2u : 1u;
    }
    return columns;
}

std::string padded(std::string_view text, std::size_t columns)
{
    std::string result(text);
    std::size_t const taken = width(text);
    if (taken < columns)
        result.append(columns - taken, ' ');
    return result;
}

} // namespace ZelkMsg
