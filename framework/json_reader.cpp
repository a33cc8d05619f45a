#include "framework/containers.h"
#include "framework/json_text.h"
#include "framework/text_scan.h"

#include <array>
#include <charconv>
#include <cstdint>
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

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The value of eight digits, or false when there are fewer.
bool eightDigits(char const* text, std::uint32_t& value)
{
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    if (((word & 0xF0F0F0F0F0F0F0F0) | (((word + 0x0606060606060606) & 0xF0F0F0F0F0F0F0F0) >> 4)) !=
        0x3333333333333333)
        return false;
    // Neighbours are joined in pairs: digits to 2-digit, then 4-digit, then 8-digit numbers.
    word = (word & 0x0F0F0F0F0F0F0F0F) * 2561 >> 8;
    word = (word & 0x00FF00FF00FF00FF) * 6553601 >> 16;
    value = static_cast<std::uint32_t>((word & 0x0000FFFF0000FFFF) * 42949672960001 >> 32);
    return true;
}

constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int largestExactPower = 22;
constexpr std::uint64_t largestExactMantissa = std::uint64_t{1} << 53;

/// Builds the tree of one text in one pass. Open containers are kept on a stack of its own.
class Reader {
public:
    explicit Reader(std::string_view text)
        : begin_(text.data()), cursor_(text.data()), end_(text.data() + text.size()), arena_(text.size() * 8),
          arenaInUse_(text.size() > arenaThreshold ? &arena_ : nullptr)
    {}

    Element read()
    {
        Element root;
        skipSpace();
        readValue(root);
        skipSpace();
        if (cursor_ != end_)
            fail(cursor_, "expected the end of the text");
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

    void skipSpace()
    {
        while (cursor_ != end_ &&
               (*cursor_ == ' ' || *cursor_ == '\n' || *cursor_ == '\r' || *cursor_ == '\t'))
            ++cursor_;
    }

    /// Steps over `wanted`, which must come next but for white space.
    void require(char wanted, char const* expectation)
    {
        if (cursor_ == end_ || *cursor_ != wanted) {
            skipSpace();
            if (cursor_ == end_ || *cursor_ != wanted)
                fail(cursor_, expectation);
        }
        ++cursor_;
    }

    /// Reads a value and all within it. `node` is always the place for the value that comes next.
    void readValue(Element& root)
    {
        Element* node = &root;
        while (true) {
            if (beginContainer(*node)) {
                node = &nextPlace();
                continue;
            }
            // A value is complete: close the containers that end with it, then go on behind the comma.
            while (true) {
                if (depth_ == 0)
                    return;
                if (comma())
                    break;
                closeContainer();
            }
            node = &nextPlace();
        }
    }

    /// Reads a scalar or an empty container and says false, or opens a container that has something in it.
    bool beginContainer(Element& node)
    {
        if (cursor_ == end_)
            fail(cursor_, "expected a value");
        char const bracket = *cursor_;
        if (bracket != '{' && bracket != '[') {
            readScalar(node);
            return false;
        }
        if (depth_ == deepestNesting)
            fail(cursor_, "expected at most 1024 open brackets");
        ++cursor_;
        skipSpace();
        if (bracket == '{') {
            auto& object = TreeAccess::setObject(node);
            if (closes('}'))
                return false;
            open_[depth_++] = TreeAccess::store(object) = ObjectStore::create(arenaInUse_);
        } else {
            auto& array = TreeAccess::setArray(node);
            if (closes(']'))
                return false;
            open_[depth_++] = TreeAccess::store(array) = ArrayStore::create(arenaInUse_);
        }
        return true;
    }

    /// Steps over the closing bracket of an empty container, if it comes next.
    bool closes(char bracket)
    {
        if (cursor_ == end_ || *cursor_ != bracket)
            return false;
        ++cursor_;
        return true;
    }

    /// The place for the next value of the innermost container.
    Element& nextPlace()
    {
        StoreHead* const store = open_[depth_ - 1];
        return store->object ? readName(*static_cast<ObjectStore*>(store))
                             : append(*static_cast<ArrayStore*>(store));
    }

    void closeContainer()
    {
        StoreHead* const store = open_[--depth_];
        if (store->object)
            static_cast<ObjectStore*>(store)->close();
        else
            static_cast<ArrayStore*>(store)->close();
    }

    /// Steps over the comma behind a value and the space that follows, or over the bracket that closes the
    /// innermost container; tells whether it was a comma.
    bool comma()
    {
        skipSpace();
        bool const object = open_[depth_ - 1]->object;
        if (cursor_ != end_ && *cursor_ == ',') {
            ++cursor_;
            skipSpace();
            return true;
        }
        if (!closes(object ? '}' : ']'))
            fail(cursor_, object ? "expected ',' or '}'" : "expected ',' or ']'");
        return false;
    }

    Element& readName(ObjectStore& object)
    {
        if (cursor_ == end_ || *cursor_ != '"')
            fail(cursor_, "expected a member name in quotes");
        Element& node = TreeAccess::element(object.insert(readString()));
        require(':', "expected ':'");
        skipSpace();
        // Of a repeated name the last value wins.
        if (StoreHead* const former = TreeAccess::clear(node))
            destroy(former);
        return node;
    }

    void readScalar(Element& node)
    {
        switch (*cursor_) {
        case '"': {
            std::string_view const text = readString();
            return TreeAccess::setString(node, text.data(), text.size());
        }
        case 't':
            readWord("true");
            return TreeAccess::setBoolean(node, true);
        case 'f':
            readWord("false");
            return TreeAccess::setBoolean(node, false);
        case 'n':
            return readWord("null");
        default:
            return readNumber(node);
        }
    }

    void readWord(char const* word)
    {
        char const* const whole = word;
        for (; *word != '\0'; ++word, ++cursor_)
            if (cursor_ == end_ || *cursor_ != *word)
                fail(cursor_, (std::string("expected \"") + whole + '"').c_str());
    }

    // ---- strings
    // ------------------------------------------------------------------------------------------------

    /// Reads a string, whose opening quote comes next. The view is good until the next string is read.
    std::string_view readString()
    {
        char const* const start = ++cursor_;
        char const* stop = Detail::findSpecial(start, end_);
        if (stop == end_ || *stop != '"')
            stop = skipPlain(stop);
        if (*stop == '"') {
            cursor_ = stop + 1;
            return {start, static_cast<std::size_t>(stop - start)};
        }
        decoded_.assign(start, stop);
        cursor_ = stop;
        while (*cursor_ != '"') {
            readEscape();
            char const* const next = skipPlain(cursor_);
            decoded_.append(cursor_, next);
            cursor_ = next;
        }
        ++cursor_;
        return decoded_;
    }

    /// The first quote or backslash; everything else that may stand in a string is skipped.
    char const* skipPlain(char const* text) const
    {
        while (true) {
            text = Detail::findSpecial(text, end_);
            if (text == end_)
                fail(text, "expected '\"' at the end of a string");
            auto const byte = static_cast<unsigned char>(*text);
            if (byte == '"' || byte == '\\')
                return text;
            if (byte < 0x20)
                fail(text, "expected a control character to be escaped");
            char const* bad = nullptr;
            text = Detail::skipUtf8(text, end_, bad);
            if (bad != nullptr)
                fail(bad, "expected well-formed UTF-8");
        }
    }

    void readEscape()
    {
        ++cursor_;
        if (cursor_ == end_)
            fail(cursor_, "expected an escape character");
        switch (*cursor_) {
        case '"':
        case '\\':
        case '/':
            decoded_ += *cursor_;
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
            ++cursor_;
            return readUnicodeEscape();
        default:
            fail(cursor_, "expected one of \"\\/bfnrtu after a backslash");
        }
        ++cursor_;
    }

    /// Reads the digits of an escape and, when they are a high surrogate, the low one that must follow.
    void readUnicodeEscape()
    {
        unsigned int code = readHexDigits(false);
        if (code >= 0xD800 && code <= 0xDBFF) {
            if (cursor_ == end_ || *cursor_ != '\\')
                fail(cursor_, "expected the escape of a low surrogate");
            ++cursor_;
            if (cursor_ == end_ || *cursor_ != 'u')
                fail(cursor_, "expected the escape of a low surrogate");
            ++cursor_;
            unsigned int const low = readHexDigits(true);
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        }
        appendUtf8(code);
    }

    /// Reads four hexadecimal digits: of a low surrogate where one must come, else of anything but one.
    unsigned int readHexDigits(bool lowSurrogate)
    {
        unsigned int code = 0;
        for (int i = 0; i < 4; ++i, ++cursor_) {
            if (cursor_ == end_)
                fail(cursor_, "expected four hexadecimal digits");
            char const c = *cursor_;
            unsigned int digit = 0;
            if (isDigit(c))
                digit = static_cast<unsigned int>(c - '0');
            else if (c >= 'a' && c <= 'f')
                digit = static_cast<unsigned int>(c - 'a') + 10;
            else if (c >= 'A' && c <= 'F')
                digit = static_cast<unsigned int>(c - 'A') + 10;
            else
                fail(cursor_, "expected four hexadecimal digits");
            code = code << 4 | digit;
            bool const isLow = i >= 1 && code >> (4 * (i - 1)) >= 0xDC && code >> (4 * (i - 1)) <= 0xDF;
            if (lowSurrogate && ((i == 0 && digit != 0xD) || (i == 1 && !isLow)))
                fail(cursor_, "expected a low surrogate");
            if (!lowSurrogate && i == 1 && isLow)
                fail(cursor_, "expected a high surrogate before a low one");
        }
        return code;
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
    // ------------------------------------------------------------------------------------------------

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
            std::uint32_t eight = 0;
            while (end - text >= 8 && digits + 8 <= mostDigits && eightDigits(text, eight)) {
                value = value * 100000000 + eight;
                digits += 8;
                text += 8;
            }
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

    void readNumber(Element& node)
    {
        char const* const start = cursor_;
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
        if (wholeDigits && readInteger(node, mantissa, negative)) {
            cursor_ = p;
            return;
        }

        auto pointShift = 0LL; // the power of ten of the last digit
        if (p != end_ && *p == '.') {
            char const* const fraction = ++p;
            if (p == end_ || !isDigit(*p))
                fail(p, "expected a digit");
            mantissa.add(p, end_);
            pointShift = fraction - p;
        }
        Exponent exponent;
        if (p != end_ && (*p == 'e' || *p == 'E')) {
            ++p;
            exponent.negative = p != end_ && *p == '-';
            if (p != end_ && (*p == '-' || *p == '+'))
                ++p;
            if (p == end_ || !isDigit(*p))
                fail(p, "expected a digit");
            exponent.digits = p;
            while (p != end_ && isDigit(*p))
                exponent.add(*p++);
        }
        cursor_ = p;
        TreeAccess::setReal(node, real(start, mantissa, negative, pointShift, exponent));
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

    /// The value of the number from `start` to the cursor.
    double real(char const* start, Mantissa const& mantissa, bool negative, long long pointShift,
                Exponent const& exponent) const
    {
        if (mantissa.digits == 0)
            return negative ? -0.0 : 0.0;
        long long const power = pointShift + (exponent.negative ? -exponent.value : exponent.value);
        if (mantissa.digits <= Mantissa::mostDigits && mantissa.value <= largestExactMantissa &&
            power >= -largestExactPower && power <= largestExactPower) {
            // Both operands are exact, so the one rounding is the right one.
            auto const digits = static_cast<double>(mantissa.value);
            double const value = power < 0 ? digits / powersOfTen[-power] : digits * powersOfTen[power];
            return negative ? -value : value;
        }
        double value = 0;
        if (convert(start, cursor_, value))
            return value;
        auto const leadingDigits = pointShift + static_cast<long long>(mantissa.digits);
        if (power - pointShift + leadingDigits < 0)
            return negative ? -0.0 : 0.0;
        fail(firstTooLarge(start, leadingDigits, exponent), "expected a number within the range of a double");
    }

    /// Of a number that is too large, the first byte after which it cannot be mended any more: a digit of a
    /// positive exponent, or else the byte behind the number, where a negative exponent could still have
    /// come.
    char const* firstTooLarge(char const* start, long long leadingDigits, Exponent const& exponent) const
    {
        if (exponent.digits == nullptr || exponent.negative)
            return cursor_;
        Exponent prefix;
        double value = 0;
        char const* digit = exponent.digits;
        for (; digit != cursor_ - 1; ++digit) {
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
    char const* cursor_;
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
