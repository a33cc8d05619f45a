#include "framework/containers.h"
#include "framework/json_text.h"
#include "framework/text_scan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <ios>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace Zelk::Json {

using MetaData::Element;
using MetaData::Object;
using MetaData::Detail::ArrayStore;
using MetaData::Detail::ObjectStore;
using MetaData::Detail::StoreHead;
using MetaData::Detail::TreeAccess;

PrintError::PrintError(std::string const& text) : std::runtime_error(text) {}

PrintError::~PrintError() = default;

namespace {

constexpr std::size_t deepestNesting = 1024;

/// Text that is written into a block, which is emptied into a string whenever it is full. A text that fits
/// into the block costs one allocation, and a large one is not copied as a whole when it is done.
class Buffer {
public:
    static constexpr std::size_t size = 8192;

    Buffer() = default;
    Buffer(Buffer const&) = delete;
    Buffer& operator=(Buffer const&) = delete;

    char* begin() noexcept { return block_; }

    /// Makes room for `count` more bytes, which must fit into the block, behind `out`, the end of the text so
    /// far; gives that end anew.
    char* reserve(char* out, std::size_t count)
    {
        return __builtin_expect(room(out) >= count, 1) ? out : empty(out);
    }

    /// Adds text of any length, and sees to room for `count` more bytes.
    char* append(char* out, char const* text, std::size_t length, std::size_t count)
    {
        if (room(out) < length + count)
            out = empty(out);
        if (size < length + count) {
            store(text, length);
            return out;
        }
        std::memcpy(out, text, length);
        return out + length;
    }

    /// Whether there is more text than fits into the block.
    bool hasOverflowed() const noexcept { return !text_.empty(); }

    /// The text, which ends at `out`; it stays here.
    std::string_view view(char* out)
    {
        if (text_.empty())
            return {block_, static_cast<std::size_t>(out - block_)};
        empty(out);
        return text_;
    }

    /// The text, which ends at `out`; nothing is left of it here.
    std::string take(char* out)
    {
        if (text_.empty())
            return {block_, out};
        empty(out);
        return std::move(text_);
    }

private:
    std::size_t room(char const* out) const noexcept { return static_cast<std::size_t>(block_ + size - out); }

    [[gnu::noinline]] char* empty(char* out)
    {
        store(block_, static_cast<std::size_t>(out - block_));
        return block_;
    }

    void store(char const* text, std::size_t length)
    {
        // Thrice, since the usual heap gives memory back to the system once twice the largest piece is free,
        // which by doubling is just what the outgrown pieces and the text leave behind: every page would be
        // faulted in anew for the next text.
        if (text_.capacity() - text_.size() < length)
            text_.reserve(std::max(3 * text_.capacity(), text_.size() + length));
        text_.append(text, length);
    }

    std::string text_;
    char block_[size];
};

/// Prints one tree. Open containers are kept on a stack of its own. What prints a part of the text is given
/// the end of the text so far, behind which there is always room for `margin` bytes, and gives the new end,
/// behind which it has seen to the same.
class Printer {
public:
    /// The text of a tree, good as long as this printer.
    std::string_view view(Element const& root) { return buffer_.view(print(root)); }

    /// The text of a tree.
    std::string text(Element const& root) { return buffer_.take(print(root)); }

private:
    // The longest number has 24 characters, and there are a comma and a bracket or a colon around it.
    static constexpr std::size_t margin = 40;

    struct Open {
        StoreHead* store;
        Object::const_iterator member;
        std::size_t index;
    };

    char* print(Element const& root)
    {
        char* out = printValue(buffer_.begin(), root);
        while (depth_ != 0)
            out = top().store->object ? printMembers(out) : printItems(out);
        return out;
    }

    Open& top() noexcept { return *at(depth_ - 1); }
    Open* at(std::size_t level) noexcept { return reinterpret_cast<Open*>(open_) + level; }

    /// Prints the members of the innermost container as far as the first with a container in it, or its end.
    [[gnu::always_inline]] char* printMembers(char* out)
    {
        Open& open = top();
        Object::const_iterator const end = static_cast<ObjectStore*>(open.store)->end();
        std::size_t const level = depth_;
        while (depth_ == level) {
            if (open.index != 0)
                open.member = ObjectStore::next(open.member);
            if (open.member == end)
                return close(out, '}');
            if (open.index++ != 0)
                *out++ = ',';
            Object::Member const& member = *open.member;
            if (buffer_.hasOverflowed())
                fetchAhead(&member);
            out = printString(out, member.name());
            *out++ = ':';
            out = printValue(out, member.element());
        }
        return out;
    }

    /// Asks for the memory two pages behind a member. The tree of a long text does not fit into the caches,
    /// and mostly lies there in the order of the text; the processor itself does not look beyond a page.
    static void fetchAhead(Object::Member const* member)
    {
        auto const* const ahead = reinterpret_cast<char const*>(member) + 8192;
        __builtin_prefetch(ahead);
        __builtin_prefetch(ahead + 64); // a member is longer than a cache line
    }

    char* printItems(char* out)
    {
        Open& open = top();
        auto* const array = static_cast<ArrayStore*>(open.store);
        std::size_t const size = array->size();
        std::size_t const level = depth_;
        while (depth_ == level) {
            if (open.index == size)
                return close(out, ']');
            if (open.index != 0)
                *out++ = ',';
            out = printValue(out, array->at(open.index++));
        }
        return out;
    }

    char* close(char* out, char bracket)
    {
        --depth_;
        *out++ = bracket;
        return buffer_.reserve(out, margin);
    }

    char* printValue(char* out, Element const& node)
    {
        switch (node.GetElementType()) {
        case Element::real:
            out = printReal(out, TreeAccess::real(node));
            break;
        case Element::integer:
            out = printInteger(out, TreeAccess::integer(node));
            break;
        case Element::boolean:
            out = TreeAccess::integer(node) != 0 ? copy(out, "true") : copy(out, "false");
            break;
        case Element::string:
            return printString(out, TreeAccess::string(node));
        case Element::object: {
            ObjectStore* const store = TreeAccess::store(TreeAccess::object(node));
            out = open(out, "{}", store, store == nullptr ? Object::const_iterator() : store->begin());
            break;
        }
        case Element::array:
            out = open(out, "[]", TreeAccess::store(TreeAccess::array(node)), {});
            break;
        default:
            out = copy(out, "null");
        }
        return buffer_.reserve(out, margin);
    }

    template <std::size_t Size>
    static char* copy(char* out, char const (&text)[Size])
    {
        std::memcpy(out, text, Size - 1);
        return out + Size - 1;
    }

    /// Prints the opening bracket of a container, and the closing one as well of an empty one.
    char* open(char* out, char const (&brackets)[3], StoreHead* store, Object::const_iterator member)
    {
        if (depth_ == deepestNesting)
            fail("nesting is deeper than 1024 levels");
        if (store == nullptr)
            return copy(out, brackets);
        new (at(depth_++)) Open{store, member, 0};
        *out = *brackets;
        return out + 1;
    }

    // ---- numbers

    static char* printInteger(char* out, long long value)
    {
        auto const size = static_cast<std::uint64_t>(value);
        if (value >= 0)
            return printDigits(out, size);
        *out++ = '-';
        return printDigits(out, std::uint64_t{0} - size);
    }

    static constexpr std::uint64_t eightDigitNumbers = 100000000;

    static char* printDigits(char* out, std::uint64_t value)
    {
        if (value < 10) {
            *out = static_cast<char>('0' + value);
            return out + 1;
        }
        if (value >= eightDigitNumbers) {
            out = printDigits(out, value / eightDigitNumbers);
            return putDigits(out, eightDigits(value % eightDigitNumbers), 0);
        }
        std::uint64_t const digits = eightDigits(value);
        return putDigits(out, digits, __builtin_ctzll(digits) / 8);
    }

    /// The eight digits of a number, the first of them in the lowest byte.
    static std::uint64_t eightDigits(std::uint64_t value)
    {
        // Split in two numbers of four digits, four of two, eight of one; the factors divide by 100 and
        // by 10.
        std::uint64_t const fours = value / 10000 | value % 10000 << 32;
        std::uint64_t const hundreds = fours * 10486 >> 20 & 0x0000007F0000007F;
        std::uint64_t const twos = hundreds | (fours - 100 * hundreds) << 16;
        std::uint64_t const tens = twos * 103 >> 10 & 0x000F000F000F000F;
        return tens | (twos - 10 * tens) << 8;
    }

    /// Prints eight digits but for the first `skipped`.
    static char* putDigits(char* out, std::uint64_t digits, int skipped)
    {
        digits = (digits | 0x3030303030303030) >> 8 * skipped;
        if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__)
            digits = __builtin_bswap64(digits);
        std::memcpy(out, &digits, sizeof digits);
        return out + sizeof digits - skipped;
    }

    char* printReal(char* out, double value)
    {
        if (!std::isfinite(value))
            fail("the number is not finite");
        char* const start = out;
        if (printShortDecimal(out, value))
            return out;
        out = std::to_chars(start, start + margin, value).ptr;
        return std::any_of(start, out, [](char c) { return c == '.' || c == 'e'; }) ? out : copy(out, ".0");
    }

    /// Prints a number of few digits, at most six of them behind the point, without the general algorithm: a
    /// decimal of at most 15 digits that is read as this double is the shortest that is. Leaves to the
    /// general one what that would print with an exponent.
    static bool printShortDecimal(char*& out, double value)
    {
        constexpr double scale = 1e6;
        double const size = std::fabs(value);
        if (!(size >= 1e-3 && size < 1e9))
            return false;
        double const scaled = size * scale;
        auto const digits = static_cast<std::uint64_t>(scaled);
        if (static_cast<double>(digits) != scaled || scaled / scale != size)
            return false;
        std::uint64_t const whole = digits / 1000000;
        std::uint64_t const fraction = digits % 1000000;
        // Round numbers of six and more digits may be shorter with an exponent.
        if (fraction == 0 && whole >= 100000)
            return false;
        if (value < 0)
            *out++ = '-';
        out = printDigits(out, whole);
        *out++ = '.';
        // Six digits and two zeros behind them, of which those up to the last that is not 0 count, and one at
        // least.
        std::uint64_t const behind = eightDigits(fraction * 100);
        out = putDigits(out, behind, 0) - __builtin_clzll(behind | 1) / 8;
        return true;
    }

    // ---- strings

    [[gnu::always_inline]] char* printString(char* out, std::string const& text)
    {
        char const* const data = text.data();
        std::size_t const size = text.size();
        constexpr std::size_t longest = 2 * Detail::Block::size;
        out = buffer_.reserve(out, longest + 2 + margin);
        *out++ = '"';
        if (size <= longest && copyPlain(out, data, size))
            out += size;
        else
            out = printPieces(out, data, data + size);
        *out++ = '"';
        return out;
    }

    /// Copies a short string by overlapping wide moves; false when there is a special byte in it.
    [[gnu::always_inline]] static bool copyPlain(char* out, char const* text, std::size_t size)
    {
        if (size >= Detail::Block::size)
            return copyBothEnds<Detail::Block>(out, text, size);
        if (size >= Detail::Word::size)
            return copyBothEnds<Detail::Word>(out, text, size);
        if (size >= Detail::HalfWord::size)
            return copyBothEnds<Detail::HalfWord>(out, text, size);
        for (std::size_t i = 0; i < size; ++i) {
            if (Detail::isSpecial(static_cast<unsigned char>(text[i])))
                return false;
            out[i] = text[i];
        }
        return true;
    }

    template <typename Unit>
    static bool copyBothEnds(char* out, char const* text, std::size_t size)
    {
        Unit const first(text);
        Unit const last(text + size - Unit::size);
        first.copyTo(out);
        last.copyTo(out + size - Unit::size);
        return !first.hasSpecial() && !last.hasSpecial();
    }

    /// Prints text piece by piece: as it is, or one byte to be escaped; behind it there is room for a quote
    /// and the margin. Out of line, since few strings need it.
    [[gnu::noinline]] char* printPieces(char* out, char const* text, char const* end)
    {
        while (true) {
            char const* bad = nullptr;
            char const* const next = Detail::skipPlain(text, end, bad);
            if (bad != nullptr)
                fail("the string is not UTF-8");
            out =
                buffer_.append(out, text, static_cast<std::size_t>(next - text), longestEscape + 1 + margin);
            if (next == end)
                return out;
            out = printEscaped(out, *next);
            text = next + 1;
        }
    }

    static constexpr std::size_t longestEscape = 6;

    static char* printEscaped(char* out, char c)
    {
        switch (c) {
        case '"':
            return copy(out, "\\\"");
        case '\\':
            return copy(out, "\\\\");
        case '\b':
            return copy(out, "\\b");
        case '\f':
            return copy(out, "\\f");
        case '\n':
            return copy(out, "\\n");
        case '\r':
            return copy(out, "\\r");
        case '\t':
            return copy(out, "\\t");
        default:
            constexpr char digits[] = "0123456789abcdef";
            auto const code = static_cast<unsigned char>(c);
            out = copy(out, "\\u00");
            *out++ = digits[code >> 4];
            *out++ = digits[code & 15];
            return out;
        }
    }

    // ---- failure

    [[noreturn]] void fail(char const* what)
    {
        throw PrintError((depth_ == 0 ? "the tree" : path()) + ": " + what);
    }

    /// The way to the node that is being printed, as a JSON pointer; where it is long, its beginning.
    std::string path()
    {
        constexpr std::size_t longest = 20;
        std::string text;
        for (std::size_t level = 0; level < std::min(depth_, longest); ++level) {
            Open const& open = *at(level);
            text += '/';
            if (open.store->object)
                text += open.member->name();
            else
                text += std::to_string(open.index - 1);
        }
        return depth_ > longest ? text + "/..." : text;
    }

    Buffer buffer_;
    std::size_t depth_ = 0;
    alignas(Open) unsigned char open_[deepestNesting * sizeof(Open)]; // the first depth_ are alive
};

} // namespace

std::string printText(Element const& tree)
{
    Printer printer;
    return printer.text(tree);
}

void printText(Element const& tree, std::ostream& stream)
{
    auto const failure = [] { return std::ios_base::failure("cannot write JSON text to the stream"); };
    if (!stream.good())
        throw failure();
    Printer printer;
    std::string_view const text = printer.view(tree);
    try {
        stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    } catch (...) { // what the stream's buffer threw, if the stream passes it on
        throw failure();
    }
    if (!stream.good())
        throw failure();
}

} // namespace Zelk::Json
