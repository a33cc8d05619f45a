/// JSON text to a metadata tree and back.
///
/// Reading is RFC 8259 and nothing looser: one value with only white space around it, UTF-8 checked, no
/// comments, trailing commas or byte-order mark. Of a repeated name the last one wins. Brackets nest at most
/// 1,024 deep. A number without fraction and exponent that fits a signed 64-bit integer becomes an integer
/// node, every other number a correctly rounded floating-point node; one too large for a double is refused.
///
/// Printing is compact, members in the order of their names; what is printed is read back as an equal tree,
/// kinds included. Neither direction looks at a locale.
#pragma once

#include "framework/element.h"
#include "framework/export.h"

#include <cstddef>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Zelk::Json {

/// Text that is not JSON. what() begins with "line L, column C: " and says what was expected there.
class ZELK_EXPORT ParseError : public std::runtime_error {
public:
    /// An error at byte `offset` (from 0) of a text, in line `line` and column `column` (from 1, in bytes),
    /// where `expectation` says what was expected.
    ParseError(std::size_t offset, std::size_t line, std::size_t column, std::string const& expectation);
    ParseError(ParseError const&) = default;
    ParseError& operator=(ParseError const&) = default;
    ~ParseError() override;

    /// Offset in bytes, from 0, of the first byte that cannot continue the text; the length of the text when
    /// it ends too early.
    std::size_t offset() const noexcept { return offset_; }
    /// Line of that byte, from 1; a new line begins after each line feed.
    std::size_t line() const noexcept { return line_; }
    /// Column of that byte, from 1, in bytes.
    std::size_t column() const noexcept { return column_; }

private:
    std::size_t offset_;
    std::size_t line_;
    std::size_t column_;
};

/// A tree that has no JSON text: it holds a number that is not finite or a string that is not UTF-8, or nests
/// deeper than 1,024 levels. what() says which, and where: "/body/freq/3: the number is not finite".
class ZELK_EXPORT PrintError : public std::runtime_error {
public:
    explicit PrintError(std::string const& text);
    PrintError(PrintError const&) = default;
    PrintError& operator=(PrintError const&) = default;
    ~PrintError() override;
};

/// The tree of a JSON text. Throws ParseError, or std::bad_alloc. Linear.
ZELK_EXPORT MetaData::Element readText(std::string_view text);

/// The tree of the JSON text that makes up the rest of the stream. Throws ParseError, std::bad_alloc, or
/// std::ios_base::failure when the stream is not good() at the start or fails while it is read.
ZELK_EXPORT MetaData::Element readText(std::istream& stream);

/// The JSON text of a tree; a long one may have up to twice its size to spare in its capacity. Throws
/// PrintError, or std::bad_alloc. Linear.
ZELK_EXPORT std::string printText(MetaData::Element const& tree);

/// Writes the JSON text of a tree. Throws PrintError or std::bad_alloc, and then the stream has got nothing;
/// std::ios_base::failure when the stream is not good() at the start or fails while it is written.
ZELK_EXPORT void printText(MetaData::Element const& tree, std::ostream& stream);

} // namespace Zelk::Json
