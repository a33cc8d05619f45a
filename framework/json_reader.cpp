#include "framework/containers.h"
#include "framework/decimal.h"
#include "framework/json_text.h"
#include "framework/text_scan.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <ios>
#include <istream>
#include <limits>
#include <string>
#include <system_error>

namespace Zelk::Json {

using MetaData::Element;
using MetaData::Detail::Arena;
using MetaData::Detail::ArrayStore;
using MetaData::Detail::ObjectStore;
using MetaData::Detail::StoreHead;
using MetaData::Detail::TreeAccess;

ParseError::ParseError(std::size_t offset, std::size_t line, std::size_t column,
                       std::string const& expectation)
    : std::runtime_error("line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
                         expectation),
      offset_(offset), line_(line), column_(column)
{}

ParseError::~ParseError() = default;

namespace {

constexpr std::size_t deepestNesting = 1024;
// Below this a text has too few containers for an arena to pay.
constexpr std::size_t arenaThreshold = 1024;
// Room for items that cannot be given back later.
constexpr std::size_t itemsWithoutArena = 4;

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The digits that eight bytes begin with: their number, and their value.
unsigned int leadingDigits(char const* text, std::uint64_t& value)
{
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__)
        word = __builtin_bswap64(word);
    word ^= 0x3030303030303030; // digits become 0 to 9
    // A carry out of a byte that is no digit reaches only those behind it, which matter no more.
    std::uint64_t const others = (word | (word + 0x7676767676767676)) & 0x8080808080808080;
    if ((others & 0xFF) != 0)
        return 0;
    unsigned int const count = others == 0 ? 8 : static_cast<unsigned int>(__builtin_ctzll(others)) / 8;
    // Leading zeros make eight of them; then neighbours are joined to 2-digit, 4-digit, 8-digit numbers.
    word <<= 64 - 8 * count;
    word = (word & 0x0F0F0F0F0F0F0F0F) * 2561 >> 8;
    word = (word & 0x00FF00FF00FF00FF) * 6553601 >> 16;
    value = (word & 0x0000FFFF0000FFFF) * 42949672960001 >> 32;
    return count;
}

constexpr std::uint64_t powersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

/// Builds the tree of one text in one pass. Open containers are kept on a stack of its own. What reads a part
/// of the text is given the place where the part begins, and gives the place behind it. What few texts need
/// is kept out of line, so that the common way through stays short.
class Reader {
public:
    explicit Reader(std::string_view text)
        : begin_(text.data()), end_(text.data() + text.size()), arena_(text.size() * 8),
          arenaInUse_(text.size() > arenaThreshold ? &arena_ : nullptr)
    {}

    Element read()
    {
        Element root;
        char const* const behind = skipSpace(readValue(skipSpace(begin_), root));
        if (behind != end_)
            fail(behind, "expected the end of the text");
        return root;
    }

private:
    [[noreturn]] void fail(char const* at, char const* expectation) const
    {
        std::size_t line = 1;
        char const* lineBegin = begin_;
        for (char const* byte = begin_; byte != at; ++byte) {
            if (*byte == '\n') {
                ++line;
                lineBegin = byte + 1;
            }
        }
        throw ParseError(static_cast<std::size_t>(at - begin_), line,
                         static_cast<std::size_t>(at - lineBegin) + 1, std::string(expectation) + found(at));
    }

    std::string found(char const* at) const
    {
        if (at == end_)
            return ", found the end of the text";
        auto const byte = static_cast<unsigned char>(*at);
        if (byte > 0x20 && byte < 0x7F)
            return std::string(", found '") + *at + "'";
        constexpr char digits[] = "0123456789abcdef";
        return std::string(", found byte 0x") + digits[byte >> 4] + digits[byte & 15];
    }

    char const* skipSpace(char const* text) const { return Detail::skipSpace(text, end_); }

    bool isAt(char const* text, char wanted) const { return text != end_ && *text == wanted; }

    /// Reads a value and all within it.
    char const* readValue(char const* text, Element& root)
    {
        Element* node = &root; // the place for the value that comes next
        while (true) {
            if (text == end_)
                fail(text, "expected a value");
            StoreHead* opened = nullptr;
            if (*text == '{')
                text = beginObject(text, *node, opened);
            else if (*text == '[')
                text = beginArray(text, *node, opened);
            else
                text = readScalar(text, *node);
            // Unless there is something in it the value is complete: close the containers that end with it.
            while (opened == nullptr) {
                if (depth_ == 0)
                    return text;
                text = skipSpace(text);
                StoreHead* const innermost = open_[depth_ - 1];
                if (isAt(text, ',')) {
                    text = skipSpace(text + 1);
                    opened = innermost;
                } else {
                    text = closeContainer(text, innermost);
                }
            }
            if (opened->object)
                text = readName(text, *static_cast<ObjectStore*>(opened), node);
            else
                node = &static_cast<ArrayStore*>(opened)->append(arenaInUse_);
        }
    }

    /// Reads the beginning of an object; `opened` is what to fill, if there is something in it.
    char const* beginObject(char const* text, Element& node, StoreHead*& opened)
    {
        text = enter(text);
        auto& object = TreeAccess::setObject(node);
        if (isAt(text, '}'))
            return text + 1;
        TreeAccess::store(object) = ObjectStore::create(arenaForNext());
        opened = open_[depth_++] = TreeAccess::store(object);
        return text;
    }

    char const* beginArray(char const* text, Element& node, StoreHead*& opened)
    {
        text = enter(text);
        auto& array = TreeAccess::setArray(node);
        if (isAt(text, ']'))
            return text + 1;
        Arena* const arena = arenaForNext();
        TreeAccess::store(array) =
            ArrayStore::create(arena, arena == nullptr ? itemsWithoutArena : ArrayStore::chunkItems);
        opened = open_[depth_++] = TreeAccess::store(array);
        return text;
    }

    /// Steps over an opening bracket and the space behind it.
    char const* enter(char const* bracket) const
    {
        if (depth_ == deepestNesting)
            fail(bracket, "expected at most 1024 open brackets");
        return skipSpace(bracket + 1);
    }

    /// Where a container that is to be opened gets its memory from.
    Arena* arenaForNext()
    {
        // What an array around it has not needed so far can serve it.
        if (arenaInUse_ != nullptr && depth_ != 0 && !open_[depth_ - 1]->object)
            static_cast<ArrayStore*>(open_[depth_ - 1])->trim(arena_);
        return arenaInUse_;
    }

    char const* closeContainer(char const* text, StoreHead* innermost)
    {
        if (!isAt(text, innermost->object ? '}' : ']'))
            fail(text, innermost->object ? "expected ',' or '}'" : "expected ',' or ']'");
        --depth_;
        if (arenaInUse_ != nullptr) {
            if (innermost->object)
                static_cast<ObjectStore*>(innermost)->trim(arena_);
            else
                static_cast<ArrayStore*>(innermost)->trim(arena_);
        }
        return text + 1;
    }

    /// Reads the name of a member and the colon; `node` is the place for the value.
    char const* readName(char const* text, ObjectStore& object, Element*& node)
    {
        if (!isAt(text, '"'))
            fail(text, "expected a member name in quotes");
        std::string_view name;
        text = readString(text, name);
        node = &TreeAccess::element(object.insert(name, arenaInUse_));
        // Of a repeated name the last value wins.
        if (StoreHead* const former = TreeAccess::clear(*node))
            destroy(former);
        if (!isAt(text, ':')) {
            text = skipSpace(text);
            if (!isAt(text, ':'))
                fail(text, "expected ':'");
        }
        return skipSpace(text + 1);
    }

    char const* readScalar(char const* text, Element& node)
    {
        switch (*text) {
        case '"': {
            std::string_view content;
            text = readString(text, content);
            TreeAccess::setString(node, content.data(), content.size());
            return text;
        }
        case 't':
            text = readWord(text, "true");
            TreeAccess::setBoolean(node, true);
            return text;
        case 'f':
            text = readWord(text, "false");
            TreeAccess::setBoolean(node, false);
            return text;
        case 'n':
            return readWord(text, "null");
        default:
            return readNumber(text, node);
        }
    }

    char const* readWord(char const* text, char const* word) const
    {
        for (char const* letter = word; *letter != '\0'; ++letter, ++text)
            if (!isAt(text, *letter))
                fail(text, (std::string("expected \"") + word + '"').c_str());
        return text;
    }

    // ---- strings

    /// Reads a string from its opening quote on. The content is good until the next string is read.
    [[gnu::always_inline]] char const* readString(char const* text, std::string_view& content)
    {
        char const* const start = text + 1;
        char const* stop = Detail::findSpecial(start, end_);
        if (!isAt(stop, '"'))
            stop = skipPlain(stop);
        if (*stop != '"')
            return readEscapedString(start, stop, content);
        content = {start, static_cast<std::size_t>(stop - start)};
        return stop + 1;
    }

    /// Reads a string that begins at `start` and has its first escape at `text`.
    [[gnu::noinline]] char const* readEscapedString(char const* start, char const* text,
                                                    std::string_view& content)
    {
        decoded_.assign(start, text);
        while (*text != '"') {
            text = readEscape(text);
            char const* const next = skipPlain(text);
            decoded_.append(text, next);
            text = next;
        }
        content = decoded_;
        return text + 1;
    }

    /// The first quote or backslash; everything else that may stand in a string is skipped.
    [[gnu::noinline]] char const* skipPlain(char const* text) const
    {
        char const* bad = nullptr;
        text = Detail::skipPlain(text, end_, bad);
        if (bad != nullptr)
            fail(bad, "expected well-formed UTF-8");
        if (text == end_)
            fail(text, "expected '\"' at the end of a string");
        if (*text != '"' && *text != '\\')
            fail(text, "expected a control character to be escaped");
        return text;
    }

    char const* readEscape(char const* text)
    {
        ++text;
        if (text == end_)
            fail(text, "expected an escape character");
        switch (*text) {
        case '"':
        case '\\':
        case '/':
            decoded_ += *text;
            break;
        case 'b':
            decoded_ += '\b';
            break;
        case 'f':
            decoded_ += '\f';
            break;
        case 'n':
            decoded_ += '\n';
            break;
        case 'r':
            decoded_ += '\r';
            break;
        case 't':
            decoded_ += '\t';
            break;
        case 'u':
            return readUnicodeEscape(text + 1);
        default:
            fail(text, "expected one of \"\\/bfnrtu after a backslash");
        }
        return text + 1;
    }

    /// Reads the digits of an escape and, when they are a high surrogate, the low one that must follow.
    char const* readUnicodeEscape(char const* text)
    {
        unsigned int code = 0;
        text = readHexDigits(text, false, code);
        if (code >= 0xD800 && code <= 0xDBFF) {
            for (char const letter : {'\\', 'u'}) {
                if (!isAt(text, letter))
                    fail(text, "expected the escape of a low surrogate");
                ++text;
            }
            unsigned int low = 0;
            text = readHexDigits(text, true, low);
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        }
        appendUtf8(code);
        return text;
    }

    /// Reads four hexadecimal digits: of a low surrogate where one must come, else of anything but one.
    char const* readHexDigits(char const* text, bool lowSurrogate, unsigned int& code) const
    {
        for (int i = 0; i < 4; ++i, ++text) {
            if (text == end_)
                fail(text, "expected four hexadecimal digits");
            char const c = *text;
            unsigned int digit = 0;
            if (isDigit(c))
                digit = static_cast<unsigned int>(c - '0');
            else if (c >= 'a' && c <= 'f')
                digit = static_cast<unsigned int>(c - 'a') + 10;
            else if (c >= 'A' && c <= 'F')
                digit = static_cast<unsigned int>(c - 'A') + 10;
            else
                fail(text, "expected four hexadecimal digits");
            code = code << 4 | digit;
            bool const isLow = i >= 1 && code >> (4 * (i - 1)) >= 0xDC && code >> (4 * (i - 1)) <= 0xDF;
            if (lowSurrogate && ((i == 0 && digit != 0xD) || (i == 1 && !isLow)))
                fail(text, "expected a low surrogate");
            if (!lowSurrogate && i == 1 && isLow)
                fail(text, "expected a high surrogate before a low one");
        }
        return text;
    }

    void appendUtf8(unsigned int code)
    {
        auto const put = [this](unsigned int byte) { decoded_ += static_cast<char>(byte); };
        if (code < 0x80) {
            put(code);
        } else if (code < 0x800) {
            put(0xC0 | code >> 6);
            put(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            put(0xE0 | code >> 12);
            put(0x80 | (code >> 6 & 0x3F));
            put(0x80 | (code & 0x3F));
        } else {
            put(0xF0 | code >> 18);
            put(0x80 | (code >> 12 & 0x3F));
            put(0x80 | (code >> 6 & 0x3F));
            put(0x80 | (code & 0x3F));
        }
    }

    // ---- numbers

    /// The digits of a number without point and leading zeros, as far as 64 bits hold them for sure.
    struct Mantissa {
        static constexpr int mostDigits = 19;
        std::uint64_t value = 0;
        std::size_t digits = 0; // all of them, those too many for `value` included

        void add(char const*& text, char const* end)
        {
            if (digits == 0)
                while (text != end && *text == '0')
                    ++text;
            for (; text != end && isDigit(*text); ++text, ++digits)
                if (digits < mostDigits)
                    value = value * 10 + static_cast<std::uint64_t>(*text - '0');
        }
    };

    /// The exponent of a number; large ones stop growing far beyond what the digits of any text can make up
    /// for.
    struct Exponent {
        static constexpr long long limit = 1LL << 60;
        char const* digits = nullptr;
        long long value = 0;
        bool negative = false;

        void add(char digit)
        {
            if (value < limit / 10)
                value = value * 10 + (digit - '0');
        }
    };

    /// Reads a number of at most 19 digits without exponent, and leaves every other one to readAnyNumber.
    char const* readNumber(char const* const start, Element& node) const
    {
        bool const negative = *start == '-';
        char const* const whole = start + (negative ? 1 : 0);
        char const* text = whole;
        std::uint64_t digits = 0;
        if (!addDigits(text, digits) || text == whole || (*whole == '0' && text - whole > 1))
            return readAnyNumber(start, node);
        if (*text != '.') {
            if (text - whole >= Mantissa::mostDigits || *text == 'e' || *text == 'E')
                return readAnyNumber(start, node);
            auto const value = static_cast<long long>(digits);
            TreeAccess::setInteger(node, negative ? -value : value);
            return text;
        }
        char const* const fraction = ++text;
        double value = 0;
        if (!addDigits(text, digits) || text == fraction || text - whole > Mantissa::mostDigits + 1 ||
            *text == 'e' || *text == 'E' || digits == 0 || !Detail::toDouble(digits, fraction - text, value))
            return readAnyNumber(start, node);
        TreeAccess::setReal(node, negative ? -value : value);
        return text;
    }

    /// Adds the digits that come next to `value`; false when there are not enough bytes behind them.
    bool addDigits(char const*& text, std::uint64_t& value) const
    {
        unsigned int count = 0;
        do {
            if (end_ - text < 8)
                return false;
            std::uint64_t group = 0;
            count = leadingDigits(text, group);
            value = value * powersOfTen[count] + group;
            text += count;
        } while (count == 8);
        return true;
    }

    [[gnu::noinline]] char const* readAnyNumber(char const* const start, Element& node) const
    {
        char const* p = start;
        bool const negative = *p == '-';
        if (negative)
            ++p;
        if (p == end_ || !isDigit(*p))
            fail(p, negative ? "expected a digit" : "expected a value");
        Mantissa mantissa;
        if (*p == '0')
            ++p;
        else
            mantissa.add(p, end_);
        bool const wholeDigits = p == end_ || (*p != '.' && *p != 'e' && *p != 'E');
        if (wholeDigits && readInteger(node, mantissa, negative))
            return p;

        auto pointShift = 0LL; // the power of ten of the last digit
        if (isAt(p, '.')) {
            char const* const fraction = ++p;
            if (p == end_ || !isDigit(*p))
                fail(p, "expected a digit");
            mantissa.add(p, end_);
            pointShift = fraction - p;
        }
        Exponent exponent;
        if (p != end_ && (*p == 'e' || *p == 'E')) {
            ++p;
            exponent.negative = isAt(p, '-');
            if (exponent.negative || isAt(p, '+'))
                ++p;
            if (p == end_ || !isDigit(*p))
                fail(p, "expected a digit");
            exponent.digits = p;
            while (p != end_ && isDigit(*p))
                exponent.add(*p++);
        }
        TreeAccess::setReal(node, real(start, p, mantissa, negative, pointShift, exponent));
        return p;
    }

    static bool readInteger(Element& node, Mantissa const& mantissa, bool negative)
    {
        constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
        if (mantissa.digits > Mantissa::mostDigits || mantissa.value > largest + (negative ? 1 : 0))
            return false;
        // Negated without sign: the smallest integer has no positive counterpart.
        TreeAccess::setInteger(
            node, static_cast<long long>(negative ? std::uint64_t{0} - mantissa.value : mantissa.value));
        return true;
    }

    /// The value of the number from `start` to `stop`.
    double real(char const* start, char const* stop, Mantissa const& mantissa, bool negative,
                long long pointShift, Exponent const& exponent) const
    {
        if (mantissa.digits == 0)
            return negative ? -0.0 : 0.0;
        long long const power = pointShift + (exponent.negative ? -exponent.value : exponent.value);
        double value = 0;
        if (mantissa.digits <= Mantissa::mostDigits && Detail::toDouble(mantissa.value, power, value))
            return negative ? -value : value;
        if (convert(start, stop, value))
            return value;
        auto const leadingDigits = pointShift + static_cast<long long>(mantissa.digits);
        if (power - pointShift + leadingDigits < 0)
            return negative ? -0.0 : 0.0;
        fail(firstTooLarge(start, stop, leadingDigits, exponent),
             "expected a number within the range of a double");
    }

    /// Of a number that is too large, the first byte after which it cannot be mended any more: a digit of a
    /// positive exponent, or else the byte behind the number, where a negative exponent could still have
    /// come.
    static char const* firstTooLarge(char const* start, char const* stop, long long leadingDigits,
                                     Exponent const& exponent)
    {
        if (exponent.digits == nullptr || exponent.negative)
            return stop;
        Exponent prefix;
        double value = 0;
        char const* digit = exponent.digits;
        for (; digit != stop - 1; ++digit) {
            prefix.add(*digit);
            // Leading zeros change nothing, and a text may have a great many of them.
            bool const changed = prefix.value != 0 || digit == exponent.digits;
            if (changed && leadingDigits + prefix.value > 0 && !convert(start, digit + 1, value))
                break;
        }
        return digit;
    }

    /// False when the number is too large or too small for a double.
    static bool convert(char const* start, char const* stop, double& value)
    {
        return std::from_chars(start, stop, value).ec == std::errc();
    }

    char const* const begin_;
    char const* const end_;
    std::string decoded_;
    Arena arena_;
    Arena* const arenaInUse_;
    std::size_t depth_ = 0;
    StoreHead* open_[deepestNesting]; // the first depth_ are in use
};

} // namespace

Element readText(std::string_view text)
{
    return Reader(text).read();
}

Element readText(std::istream& stream)
{
    auto const failure = [] { return std::ios_base::failure("cannot read JSON text from the stream"); };
    if (!stream.good())
        throw failure();
    std::string text;
    bool broken = false;
    {
        std::istream::sentry const ready(stream, true);
        if (!ready)
            throw failure();
        std::array<char, 4096> buffer;
        try {
            while (auto const count = stream.rdbuf()->sgetn(buffer.data(), buffer.size()))
                text.append(buffer.data(), static_cast<std::size_t>(count));
        } catch (std::bad_alloc const&) {
            throw;
        } catch (...) {
            broken = true;
        }
    }
    stream.setstate(broken ? std::ios_base::badbit : std::ios_base::eofbit);
    if (broken)
        throw failure();
    return readText(std::string_view(text));
}

} // namespace Zelk::Json
