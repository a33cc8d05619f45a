#include "framework/containers.h"
#include "framework/decimal.h"
#include "framework/json_text.h"
#include "framework/text_scan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <ios>
#include <istream>
#include <iterator>
#include <limits>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>

namespace Zelk::Json {

using MetaData::Element;
using MetaData::Object;
using MetaData::Detail::Arena;
using MetaData::Detail::ArrayStore;
using MetaData::Detail::Characters;
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
    word = word * 2561 >> 8;
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
        : text_(text), end_(text.data() + text.size()), lastInReach_(end_ - std::min(reach, text.size())),
          arena_(text.size() * 8), arenaInUse_(text.size() > arenaThreshold ? &arena_ : nullptr)
    {}

    Element read()
    {
        Element root;
        char const* text = text_.size() <= roomForRest ? copyOfRest(text_.data()) : text_.data();
        text = readValue(toNextPart(text), root);
        while (depth_ != 0)
            text = top()->object ? readMembers(text) : readItems(text);
        text = skipSpace(text);
        if (text != end_)
            fail(text, "expected the end of the text");
        return root;
    }

private:
    [[noreturn]] void fail(char const* at, char const* expectation) const
    {
        // `at` may be in the copy of the rest.
        std::size_t const offset = text_.size() - static_cast<std::size_t>(end_ - at);
        std::size_t line = 1;
        std::size_t lineBegin = 0;
        for (std::size_t i = 0; i != offset; ++i) {
            if (text_[i] == '\n') {
                ++line;
                lineBegin = i + 1;
            }
        }
        throw ParseError(offset, line, offset - lineBegin + 1, std::string(expectation) + found(at));
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

    // ---- reach

    // The next parts of a text are mostly short, so that most code would rather not ask for the end with
    // every byte. A comma, a short name, a colon, and a block of a string or the digits of an integer take up
    // to 40 bytes: a place is secured when these may be read from it on.
    static constexpr std::size_t reach = 64;
    // A short text is copied as a whole: what has just been copied is slow to be read at once.
    static constexpr std::size_t roomForRest = 4 * reach;

    /// The same place, in the text or in a copy of its rest with zeros behind it: in any case one from which
    /// on `reach` bytes may be read. A zero is where no part of a text begins or goes on.
    char const* secure(char const* text)
    {
        return __builtin_expect(text <= lastInReach_, 1) ? text : copyOfRest(text);
    }

    [[gnu::noinline]] char const* copyOfRest(char const* text)
    {
        char* const end = std::copy(text, end_, rest_);
        std::memset(end, 0, reach);
        end_ = lastInReach_ = end;
        return rest_;
    }

    /// Steps over white space, of which there is mostly none, from one secured place to another.
    char const* toNextPart(char const* text)
    {
        return static_cast<unsigned char>(*text) > ' ' ? text : secure(skipSpace(text));
    }

    /// Whether `wanted` comes next, white space aside; else `text`, which stays secured, is at what comes.
    bool comes(char const*& text, char wanted)
    {
        if (*text == wanted)
            return true;
        text = toNextPart(text);
        return *text == wanted;
    }

    StoreHead* top() const noexcept { return open_[depth_ - 1]; }

    /// Reads on in the innermost container as far as the first value with something in it, or its end.
    [[gnu::noinline]] char const* readMembers(char const* text)
    {
        auto& object = *static_cast<ObjectStore*>(top());
        bool first = object.size() == 0;
        for (std::size_t const level = depth_; depth_ == level; first = false) {
            text = secure(text);
            if (!first) {
                if (!comes(text, ','))
                    return close(text, object, '}', "expected ',' or '}'");
                ++text;
            }
            if (!comes(text, '"'))
                fail(text, "expected a member name in quotes");
            Element* node = nullptr;
            if (std::size_t size = 0; isShortString(text, size)) {
                Object::Member* const member = object.append(Characters::shortIn(text + 1, size));
                node = member != nullptr ? &TreeAccess::element(*member) : &placeOf(text + 1, size, object);
                text += size + 2;
            } else {
                std::tie(text, node) = readName(text, object);
                text = secure(text);
            }
            if (!comes(text, ':'))
                fail(text, "expected ':'");
            text = readValue(toNextPart(text + 1), *node);
        }
        return text;
    }

    /// As readMembers, but goes on in arrays within the array and around it, since those of numbers are
    /// short.
    [[gnu::noinline]] char const* readItems(char const* text)
    {
        auto* array = static_cast<ArrayStore*>(top());
        bool first = array->size() == 0;
        while (true) {
            text = secure(text);
            if (!first) {
                if (!comes(text, ',')) {
                    text = close(text, *array, ']', "expected ',' or ']'");
                    if (depth_ == 0 || top()->object)
                        return text;
                    array = static_cast<ArrayStore*>(top());
                    continue;
                }
                ++text;
            }
            std::size_t const level = depth_;
            Element& node = array->append(arenaInUse_);
            text = toNextPart(text);
            // Most arrays are of numbers or of containers.
            if (isDigit(*text) || *text == '-')
                text = readNumber(text, node);
            else if (*text == '[')
                text = beginArray(text, node);
            else if (*text == '{')
                text = beginObject(text, node);
            else
                text = readValue(text, node);
            first = depth_ != level;
            if (first) {
                if (top()->object)
                    return text;
                array = static_cast<ArrayStore*>(top());
            }
        }
    }

    /// Reads any name from its opening quote on; gives the place for the value too.
    [[gnu::noinline]] std::pair<char const*, Element*> readName(char const* text, ObjectStore& object)
    {
        std::string_view name;
        text = readString(text, name);
        return {text, &placeOf(name, object)};
    }

    /// The place for the value of a member with a short name that is not simply appended.
    [[gnu::noinline]] Element& placeOf(char const* name, std::size_t size, ObjectStore& object)
    {
        return placeOf(Characters::shortIn(name, size), object);
    }

    Element& placeOf(Characters const& name, ObjectStore& object)
    {
        Element& node = TreeAccess::element(object.insert(name, arenaInUse_));
        // Of a repeated name the last value wins.
        if (StoreHead* const former = TreeAccess::clear(node))
            destroy(former);
        return node;
    }

    template <typename Store>
    char const* close(char const* text, Store& store, char bracket, char const* expectation)
    {
        if (!isAt(text, bracket))
            fail(text, expectation);
        --depth_;
        if (arenaInUse_ != nullptr)
            store.trim(arena_);
        return text + 1;
    }

    /// Reads a value; a container only as far as it is clear whether there is something in it. What is most
    /// frequent and needs no call stands here.
    char const* readValue(char const* text, Element& node)
    {
        if (*text == '"') {
            std::size_t size = 0;
            if (!isShortString(text, size))
                return readLongString(text, node);
            TreeAccess::setString(node, Characters::shortIn(text + 1, size));
            return text + size + 2;
        }
        if (isDigit(*text) || *text == '-') {
            char const* const behind = readDigit(text, node);
            return behind != nullptr ? behind : readLongNumber(text, node);
        }
        return readOther(text, node);
    }

    [[gnu::noinline]] char const* readLongString(char const* text, Element& node)
    {
        std::string_view content;
        text = readString(text, content);
        TreeAccess::setString(node, content);
        return text;
    }

    [[gnu::noinline]] char const* readLongNumber(char const* text, Element& node) const
    {
        return readNumber(text, node);
    }

    /// Reads any value but a string or a number.
    [[gnu::noinline]] char const* readOther(char const* text, Element& node)
    {
        switch (*text) {
        case '{':
            return beginObject(text, node);
        case '[':
            return beginArray(text, node);
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
            fail(text, "expected a value");
        }
    }

    char const* beginObject(char const* text, Element& node)
    {
        enter(text);
        auto& object = TreeAccess::setObject(node);
        if (comes(text, '}'))
            return text + 1;
        TreeAccess::store(object) = ObjectStore::create(arenaForNext());
        open_[depth_++] = TreeAccess::store(object);
        return text;
    }

    [[gnu::noinline]] char const* beginArray(char const* text, Element& node)
    {
        enter(text);
        auto& array = TreeAccess::setArray(node);
        if (comes(text, ']'))
            return text + 1;
        Arena* const arena = arenaForNext();
        TreeAccess::store(array) =
            ArrayStore::create(arena, arena == nullptr ? itemsWithoutArena : ArrayStore::chunkItems);
        open_[depth_++] = TreeAccess::store(array);
        return text;
    }

    /// Steps over an opening bracket.
    void enter(char const*& text) const
    {
        if (depth_ == deepestNesting)
            fail(text, "expected at most 1024 open brackets");
        ++text;
    }

    /// Where a container that is to be opened gets its memory from.
    Arena* arenaForNext()
    {
        // What an array around it has not needed so far can serve it.
        if (arenaInUse_ != nullptr && depth_ != 0 && !top()->object)
            static_cast<ArrayStore*>(top())->trim(arena_);
        return arenaInUse_;
    }

    char const* readWord(char const* text, char const* word) const
    {
        for (char const* letter = word; *letter != '\0'; ++letter, ++text)
            if (!isAt(text, *letter))
                fail(text, (std::string("expected \"") + word + '"').c_str());
        return text;
    }

    // ---- strings

    /// Whether the string with its opening quote at `text`, which is secured, is short and stands there as it
    /// is; gives its size then.
    static bool isShortString(char const* text, std::size_t& size)
    {
        Detail::Block const block(text + 1);
        if (!block.hasSpecial())
            return false;
        size = block.firstSpecial();
        return text[1 + size] == '"';
    }

    /// Reads any string from its opening quote on. The content is good until the next string is read.
    char const* readString(char const* text, std::string_view& content)
    {
        char const* const start = text + 1;
        char const* stop = Detail::findSpecial(start, end_);
        if (!isAt(stop, '"'))
            stop = skipPlain(stop);
        if (*stop != '"') {
            text = readEscapedString(start, stop);
            content = decoded_;
            return text;
        }
        content = {start, static_cast<std::size_t>(stop - start)};
        return stop + 1;
    }

    /// Decodes a string that begins at `start` and has its first escape at `text`.
    [[gnu::noinline]] char const* readEscapedString(char const* start, char const* text)
    {
        decoded_.assign(start, text);
        while (*text != '"') {
            text = readEscape(text);
            char const* const next = skipPlain(text);
            decoded_.append(text, next);
            text = next;
        }
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

    /// Reads a number of a single digit, as a great many are; null when there is anything else.
    [[gnu::always_inline]] char const* readDigit(char const* text, Element& node) const
    {
        bool const negative = *text == '-';
        char const* const digit = text + (negative ? 1 : 0);
        if (!isDigit(*digit) || !endsValue(digit[1]))
            return nullptr;
        int const value = *digit - '0';
        TreeAccess::setInteger(node, negative ? -value : value);
        return digit + 1;
    }

    static bool endsValue(char c) { return c == ',' || c == '}' || c == ']'; }

    /// Reads a number of at most 19 digits without exponent, and leaves every other one to readAnyNumber.
    [[gnu::always_inline]] char const* readNumber(char const* const start, Element& node) const
    {
        bool const negative = *start == '-';
        char const* const whole = start + (negative ? 1 : 0);
        char const* text = whole;
        std::uint64_t digits = 0;
        // One by one, since before a point and in integers there are mostly few.
        for (; isDigit(*text) && text - whole < Mantissa::mostDigits; ++text)
            digits = 10 * digits + static_cast<std::uint64_t>(*text - '0');
        if (text == whole || (*whole == '0' && text - whole > 1))
            return readAnyNumber(start, node);
        if (*text != '.') {
            if (text - whole == Mantissa::mostDigits || *text == 'e' || *text == 'E')
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
            if (text > lastInReach_ + (reach - 8))
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

    std::string_view const text_;
    char const* end_;
    char const* lastInReach_; // from where on `reach` bytes may be read
    char rest_[roomForRest + reach];
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
