#include "framework/containers.h"
#include "framework/json_text.h"
#include "framework/text_scan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ios>
#include <memory>
#include <ostream>
#include <string>

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

/// Text that grows: at first where it is, then on the heap.
class Buffer {
public:
    Buffer() = default;
    Buffer(Buffer const&) = delete;
    Buffer& operator=(Buffer const&) = delete;
    ~Buffer() { std::free(heap_); }

    char const* data() const noexcept { return begin_; }

    /// Makes room for `size` more bytes behind `out`, the end of the text so far; gives that end anew.
    char* reserve(char* out, std::size_t size)
    {
        return static_cast<std::size_t>(end_ - out) >= size ? out : grow(out, size);
    }

    char* begin() noexcept { return begin_; }

private:
    char* grow(char* out, std::size_t size)
    {
        auto const used = static_cast<std::size_t>(out - begin_);
        std::size_t const capacity = std::max(used + size, 2 * static_cast<std::size_t>(end_ - begin_));
        char* const moved = static_cast<char*>(std::realloc(heap_, capacity));
        if (moved == nullptr)
            throw std::bad_alloc();
        if (heap_ == nullptr)
            std::memcpy(moved, first_, used);
        begin_ = heap_ = moved;
        end_ = moved + capacity;
        return moved + used;
    }

    char first_[1024];
    char* heap_ = nullptr;
    char* begin_ = first_;
    char* end_ = first_ + sizeof first_;
};

/// Prints one tree. `out_` is the end of the text so far. Open containers are kept on a stack of its own.
class Printer {
public:
    std::string_view print(Element const& root)
    {
        printValue(root);
        while (depth_ != 0) {
            Open& open = top();
            if (open.store->object)
                printNextMember(open);
            else
                printNextItem(open);
        }
        return {buffer_.data(), static_cast<std::size_t>(out_ - buffer_.data())};
    }

private:
    struct Open {
        StoreHead const* store;
        Object::const_iterator member;
        std::size_t index;
    };

    Open& top() noexcept { return *at(depth_ - 1); }
    Open* at(std::size_t level) noexcept { return reinterpret_cast<Open*>(open_) + level; }

    void put(char c)
    {
        out_ = buffer_.reserve(out_, 1);
        *out_++ = c;
    }

    void putWord(std::string_view word)
    {
        out_ = buffer_.reserve(out_, word.size());
        std::memcpy(out_, word.data(), word.size());
        out_ += word.size();
    }

    void printNextMember(Open& open)
    {
        auto const& tree = static_cast<ObjectStore const*>(open.store)->tree;
        if (open.index != 0)
            ++open.member;
        if (open.member == tree.end()) {
            put('}');
            --depth_;
            return;
        }
        bool const first = open.index++ == 0;
        std::string const& name = open.member->name();
        out_ = buffer_.reserve(out_, 1);
        *out_ = ',';
        out_ += first ? 0 : 1;
        printString(name);
        put(':');
        printValue(open.member->element());
    }

    void printNextItem(Open& open)
    {
        auto const& items = static_cast<ArrayStore const*>(open.store)->items;
        if (open.index == items.size()) {
            put(']');
            --depth_;
            return;
        }
        if (open.index != 0)
            put(',');
        printValue(items[open.index++]);
    }

    void printValue(Element const& node)
    {
        switch (node.GetElementType()) {
        case Element::real:
            return printReal(TreeAccess::real(node));
        case Element::integer:
            return printInteger(TreeAccess::integer(node));
        case Element::boolean:
            return putWord(TreeAccess::integer(node) != 0 ? "true" : "false");
        case Element::string:
            return printString(TreeAccess::string(node));
        case Element::object:
            return printObject(TreeAccess::store(TreeAccess::object(node)));
        case Element::array:
            return printArray(TreeAccess::store(TreeAccess::array(node)));
        default:
            return putWord("null");
        }
    }

    void printObject(ObjectStore const* store)
    {
        put('{');
        if (store == nullptr)
            checkDepthAndPut('}');
        else
            open(store, store->tree.begin());
    }

    void printArray(ArrayStore const* store)
    {
        put('[');
        if (store == nullptr)
            checkDepthAndPut(']');
        else
            open(store, {});
    }

    void checkDepthAndPut(char closing)
    {
        checkDepth();
        put(closing);
    }

    void open(StoreHead const* store, Object::const_iterator member)
    {
        checkDepth();
        new (at(depth_)) Open{store, member, 0};
        ++depth_;
    }

    void checkDepth()
    {
        if (depth_ == deepestNesting)
            fail("nesting is deeper than 1024 levels");
    }

    // ---- numbers
    // ------------------------------------------------------------------------------------------------

    static constexpr std::size_t longestNumber = 32;

    void printInteger(long long value)
    {
        out_ = buffer_.reserve(out_, longestNumber);
        out_ = std::to_chars(out_, out_ + longestNumber, value).ptr;
    }

    void printReal(double value)
    {
        if (!std::isfinite(value))
            fail("the number is not finite");
        out_ = buffer_.reserve(out_, longestNumber);
        if (printShortDecimal(value))
            return;
        char* const start = out_;
        out_ = std::to_chars(out_, out_ + longestNumber, value).ptr;
        if (std::none_of(start, out_, [](char c) { return c == '.' || c == 'e'; })) {
            *out_++ = '.';
            *out_++ = '0';
        }
    }

    /// Prints a number of few digits, at most six of them behind the point, without the general algorithm: a
    /// decimal of at most 15 digits that is read as this double is the shortest that is. Leaves to the
    /// general one what that would print with an exponent.
    bool printShortDecimal(double value)
    {
        constexpr double scale = 1e6;
        constexpr std::uint32_t scaleDigits = 6;
        double const size = std::fabs(value);
        if (!(size >= 1e-3 && size < 1e9))
            return false;
        double const scaled = size * scale;
        auto const digits = static_cast<std::uint64_t>(scaled);
        if (static_cast<double>(digits) != scaled || scaled / scale != size)
            return false;
        std::uint64_t const whole = digits / 1000000;
        auto fraction = static_cast<std::uint32_t>(digits % 1000000);
        // Round numbers of six and more digits may be shorter with an exponent.
        if (fraction == 0 && whole >= 100000)
            return false;
        if (value < 0)
            *out_++ = '-';
        out_ = std::to_chars(out_, out_ + longestNumber, whole).ptr;
        *out_++ = '.';
        std::uint32_t length = scaleDigits;
        if (fraction == 0) {
            length = 1;
        } else {
            if (fraction % 1000 == 0) {
                fraction /= 1000;
                length -= 3;
            }
            while (fraction % 10 == 0) {
                fraction /= 10;
                --length;
            }
        }
        for (std::uint32_t i = length; i-- != 0; fraction /= 10)
            out_[i] = static_cast<char>('0' + fraction % 10);
        out_ += length;
        return true;
    }

    // ---- strings
    // ------------------------------------------------------------------------------------------------

    void printString(std::string const& text)
    {
        char const* const data = text.data();
        std::size_t const size = text.size();
        out_ = buffer_.reserve(out_, size + 2);
        if (size <= 2 * Detail::Block::size && copyPlain(data, size))
            return;
        *out_++ = '"';
        printPieces(data, data + size);
        put('"');
    }

    /// Copies a short string with its quotes by overlapping wide moves; false, with nothing printed, when
    /// there is a special byte in it.
    bool copyPlain(char const* text, std::size_t size)
    {
        char* const to = out_ + 1;
        if (size >= Detail::Block::size) {
            if (!copyBothEnds<Detail::Block>(text, size, to))
                return false;
        } else if (size >= Detail::Word::size) {
            if (!copyBothEnds<Detail::Word>(text, size, to))
                return false;
        } else if (size >= Detail::HalfWord::size) {
            if (!copyBothEnds<Detail::HalfWord>(text, size, to))
                return false;
        } else {
            for (std::size_t i = 0; i < size; ++i) {
                if (Detail::isSpecial(static_cast<unsigned char>(text[i])))
                    return false;
                to[i] = text[i];
            }
        }
        *out_ = '"';
        to[size] = '"';
        out_ = to + size + 1;
        return true;
    }

    template <typename Unit>
    static bool copyBothEnds(char const* text, std::size_t size, char* to)
    {
        Unit const first(text);
        Unit const last(text + size - Unit::size);
        first.copyTo(to);
        last.copyTo(to + size - Unit::size);
        return !first.hasSpecial() && !last.hasSpecial();
    }

    /// Prints text piece by piece: plain ASCII, a run of characters beyond it, or one byte to be escaped.
    void printPieces(char const* text, char const* end)
    {
        while (text != end) {
            char const* next = Detail::findSpecial(text, end);
            if (next == text) {
                if (static_cast<unsigned char>(*text) < 0x80) {
                    printEscaped(*text++);
                    continue;
                }
                char const* bad = nullptr;
                next = Detail::skipUtf8(text, end, bad);
                if (bad != nullptr)
                    fail("the string is not UTF-8");
            }
            putWord({text, static_cast<std::size_t>(next - text)});
            text = next;
        }
    }

    void printEscaped(char c)
    {
        switch (c) {
        case '"':
            return putWord("\\\"");
        case '\\':
            return putWord("\\\\");
        case '\b':
            return putWord("\\b");
        case '\f':
            return putWord("\\f");
        case '\n':
            return putWord("\\n");
        case '\r':
            return putWord("\\r");
        case '\t':
            return putWord("\\t");
        default:
            constexpr char digits[] = "0123456789abcdef";
            auto const code = static_cast<unsigned char>(c);
            char const escape[] = {'\\', 'u', '0', '0', digits[code >> 4], digits[code & 15]};
            return putWord({escape, sizeof escape});
        }
    }

    // ---- failure
    // ------------------------------------------------------------------------------------------------

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
    char* out_ = buffer_.begin();
    std::size_t depth_ = 0;
    alignas(Open) unsigned char open_[deepestNesting * sizeof(Open)]; // the first depth_ are alive
};

} // namespace

std::string printText(Element const& tree)
{
    Printer printer;
    return std::string(printer.print(tree));
}

void printText(Element const& tree, std::ostream& stream)
{
    auto const failure = [] { return std::ios_base::failure("cannot write JSON text to the stream"); };
    if (!stream.good())
        throw failure();
    Printer printer;
    std::string_view const text = printer.print(tree);
    try {
        stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    } catch (...) { // what the stream's buffer threw, if the stream passes it on
        throw failure();
    }
    if (!stream.good())
        throw failure();
}

} // namespace Zelk::Json
