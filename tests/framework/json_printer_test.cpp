#include "framework/json_text.h"
#include "nodes.h"
#include "reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ios>
#include <limits>
#include <ostream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>

namespace Zelk::Json {
namespace {

using MetaData::Element;
using testing::StrEq;
using testing::ThrowsMessage;
using Tests::array;
using Tests::boolean;
using Tests::integer;
using Tests::object;
using Tests::real;
using Tests::shown;
using Tests::text;

// ---- layout

TEST(PrintText, PrintsEveryKindWithoutWhiteSpace)
{
    struct {
        Element tree;
        std::string text;
    } const cases[] = {
        {Element(), "null"},
        {boolean(true), "true"},
        {boolean(false), "false"},
        {integer(0), "0"},
        {integer(-1), "-1"},
        {integer(std::numeric_limits<long long>::max()), "9223372036854775807"},
        {integer(std::numeric_limits<long long>::min()), "-9223372036854775808"},
        {text(""), "\"\""},
        {text("ui"), "\"ui\""},
        {Element(MetaData::Object()), "{}"},
        {Element(MetaData::Array()), "[]"},
        {array({Element(), array({}), object({})}), "[null,[],{}]"},
        {object({{"b", integer(1)}, {"a", array({boolean(true), text("x")})}, {"", Element()}}),
         R"({"":null,"a":[true,"x"],"b":1})"},
        {object({{"body", object({{"id", integer(-9)}, {"statelist", array({object({})})}})},
                 {"header", text("h")}}),
         R"({"body":{"id":-9,"statelist":[{}]},"header":"h"})"},
    };
    for (auto const& each : cases) {
        EXPECT_EQ(printText(each.tree), each.text);
        EXPECT_EQ(readText(printText(each.tree)), each.tree) << each.text;
    }
}

TEST(PrintText, PrintsMembersInTheOrderOfTheirNames)
{
    Element tree;
    for (char const* const name : {"b", "B", "a", "\xC3\xA9", "aa", "", "z", "1"})
        tree[name] = integer(0);
    EXPECT_EQ(printText(tree), "{\"\":0,\"1\":0,\"B\":0,\"a\":0,\"aa\":0,\"b\":0,\"z\":0,\"\xC3\xA9\":0}");
}

TEST(PrintText, PrintsContainersOfEverySize)
{
    for (unsigned int count = 0; count < 300; count = count < 40 ? count + 1 : count * 2) {
        MetaData::Array items;
        std::string expected = "[";
        for (unsigned int i = 0; i < count; ++i) {
            items[i] = integer(i);
            expected += (i == 0 ? "" : ",") + std::to_string(i);
        }
        EXPECT_EQ(printText(Element(items)), expected + "]");
    }
}

// ---- strings

TEST(PrintText, EscapesOnlyWhatMustBeEscaped)
{
    for (int byte = 0; byte < 0x80; ++byte) {
        std::string expected(1, static_cast<char>(byte));
        switch (byte) {
        case '"':
            expected = "\\\"";
            break;
        case '\\':
            expected = "\\\\";
            break;
        case 8:
            expected = "\\b";
            break;
        case 9:
            expected = "\\t";
            break;
        case 10:
            expected = "\\n";
            break;
        case 12:
            expected = "\\f";
            break;
        case 13:
            expected = "\\r";
            break;
        default:
            if (byte < 0x20)
                expected = std::string("\\u00") + (byte < 0x10 ? '0' : '1') + "0123456789abcdef"[byte % 16];
        }
        // At every place of strings of every length up to several processor words.
        for (std::size_t before = 0; before <= 36; ++before)
            for (std::size_t const after : {0u, 1u, 2u, 3u, 4u, 7u, 8u, 15u, 16u, 31u, 33u}) {
                std::string const left(before, 'l');
                std::string const right(after, 'r');
                std::string const whole = left + static_cast<char>(byte) + right;
                ASSERT_EQ(printText(text(whole)), '"' + left + expected + right + '"');
                if (before % 5 == 0) {
                    ASSERT_EQ(printText(object({{whole, Element()}})),
                              "{\"" + left + expected + right + "\":null}");
                }
            }
    }
}

TEST(PrintText, PrintsEveryCharacterBeyondAsciiAsItIs)
{
    std::string all;
    for (unsigned int code = 0x80; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF)
            continue;
        std::string character;
        if (code < 0x800)
            character = {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
        else if (code < 0x10000)
            character = {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
                         static_cast<char>(0x80 | (code & 0x3F))};
        else
            character = {static_cast<char>(0xF0 | code >> 18), static_cast<char>(0x80 | (code >> 12 & 0x3F)),
                         static_cast<char>(0x80 | (code >> 6 & 0x3F)),
                         static_cast<char>(0x80 | (code & 0x3F))};
        ASSERT_EQ(printText(text(character)), '"' + character + '"') << code;
        all += character;
    }
    EXPECT_EQ(printText(text(all)), '"' + all + '"');
}

TEST(PrintText, PrintsTextsThatOutgrowItsRoomAnywhere)
{
    // The values behind the filler are moved byte by byte over every end of the room that a text may begin
    // in.
    std::string const wide(32, 'w');
    std::string const escapes(20, '\x01');
    Element const smallest = integer(std::numeric_limits<long long>::min());
    Element const values =
        array({text(wide), smallest, text(wide + 'w'), smallest, text(escapes), text("e\xC3\xA9"),
               real(-2.2250738585072014e-308), boolean(false), Element(), object({}),
               array({object({{"", text("")}})}), object({{wide, smallest}})});
    std::string const valuesText = printText(values);
    for (std::size_t const room : {4096u, 8192u, 24576u})
        for (std::size_t size = room - 400; size <= room + 60; ++size) {
            std::string const filler(size, 'f');
            ASSERT_EQ(printText(array({text(filler), values, text(wide)})),
                      "[\"" + filler + "\"," + valuesText + ",\"" + wide + "\"]")
                << size;
            ASSERT_EQ(printText(object({{filler, text(filler)}})), "{\"" + filler + "\":\"" + filler + "\"}")
                << size;
            // Short pieces fill the room otherwise than one long piece does.
            MetaData::Array items;
            std::string expected = "[";
            for (unsigned int i = 0; i < size / 4; ++i) {
                items[i] = integer(100 + i % 900);
                expected += std::to_string(100 + i % 900) + ',';
            }
            items[items.size()] = values;
            ASSERT_EQ(printText(Element(items)), expected + valuesText + ']') << size;
        }
}

TEST(PrintText, PrintsLongStringsOfMixedContent)
{
    std::mt19937 random(4);
    std::string const pieces[] = {"plain",
                                  "\"",
                                  "\\",
                                  "\n",
                                  std::string(1, '\0'),
                                  "\xC3\xA9",
                                  "\xF0\x9F\x98\x80",
                                  "a text of more than sixteen bytes",
                                  "\x7F",
                                  "/"};
    for (int round = 0; round < 5000; ++round) {
        std::string content;
        for (auto count = random() % 60; count != 0; --count)
            content += pieces[random() % std::size(pieces)];
        ASSERT_EQ(readText(printText(text(content))).asString(), content) << shown(content);
    }
    std::string const large(3000000, '\x01');
    EXPECT_EQ(printText(text(large)).size(), large.size() * 6 + 2);
}

TEST(PrintText, RefusesEveryStringThatIsNotUtf8)
{
    std::string const bad[] = {"\x80",
                               "\xBF",
                               "\xC0\xAF",
                               "\xC1\xBF",
                               "\xC3",
                               "\xE0\x80\xAF",
                               "\xE0\x9F\xBF",
                               "\xE2",
                               "\xE2\x82",
                               "\xED\xA0\x80",
                               "\xED\xBF\xBF",
                               "\xF0",
                               "\xF0\x8F\xBF\xBF",
                               "\xF0\x9F\x98",
                               "\xF4\x90\x80\x80",
                               "\xF5",
                               "\xFE",
                               "\xFF",
                               "\xC3\xA9\xA9",
                               "\xE2\xC3\xA9"};
    for (std::string const& bytes : bad)
        for (std::size_t before = 0; before <= 36; ++before)
            for (std::size_t const after : {0u, 1u, 7u, 16u, 40u}) {
                std::string const content = std::string(before, 'l') + bytes + std::string(after, 'r');
                ASSERT_THROW(printText(text(content)), PrintError) << shown(content);
                ASSERT_THROW(printText(object({{content, integer(1)}})), PrintError) << shown(content);
            }
}

// ---- numbers

/// What to_chars gives, with ".0" where nothing else tells that the number is floating-point.
std::string expectedText(double value)
{
    char buffer[64];
    std::string text(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

double fromBits(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Empty when `value` is printed as it should be and read back as the same double.
std::string wrongWith(double value)
{
    std::string const text = printText(real(value));
    if (text != expectedText(value))
        return text + " instead of " + expectedText(value);
    Element const back = readText(text);
    double const read = back.GetElementType() == Element::real ? back.asDouble() : std::nan("");
    return std::memcmp(&read, &value, sizeof value) == 0 ? "" : text + " is read as " + expectedText(read);
}

TEST(PrintText, PrintsDoublesAsTheShortestTextThatIsReadBackTheSame)
{
    struct {
        double value;
        char const* text;
    } const cases[] = {
        {0.0, "0.0"},
        {-0.0, "-0.0"},
        {5.0, "5.0"},
        {-5.0, "-5.0"},
        {0.1, "0.1"},
        {0.5, "0.5"},
        {1e30, "1e+30"},
        {1e-7, "1e-07"},
        {0.001, "0.001"},
        {0.0001, "1e-04"},
        {100000.0, "1e+05"},
        {123456.0, "123456.0"},
        {120000.0, "120000.0"},
        {1e22, "1e+22"},
        {9007199254740993.0, "9007199254740992.0"},
        {1.7976931348623157e308, "1.7976931348623157e+308"},
        {5e-324, "5e-324"},
        {2.2250738585072014e-308, "2.2250738585072014e-308"},
        {3.141592653589793, "3.141592653589793"},
    };
    for (auto const& each : cases) {
        EXPECT_EQ(printText(real(each.value)), each.text);
        EXPECT_EQ(wrongWith(each.value), "");
    }
}

TEST(PrintText, PrintsAMillionRandomDoublesAsToCharsDoesAndReadsThemBack)
{
    std::mt19937_64 random(11);
    for (int round = 0; round < 1000000; ++round) {
        double const value = fromBits(random());
        if (std::isfinite(value)) {
            std::string const wrong = wrongWith(value);
            ASSERT_TRUE(wrong.empty()) << wrong;
        }
    }
}

TEST(PrintText, PrintsSubnormalAndRoundBinaryNumbersAsToCharsDoes)
{
    std::mt19937_64 random(12);
    for (int round = 0; round < 20000; ++round)
        ASSERT_EQ(wrongWith(fromBits(random() >> 12)), "");
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        double const power = std::ldexp(1.0, exponent);
        for (double const value : {power, -power, std::nextafter(power, 0.0), std::nextafter(power, 1e308)})
            ASSERT_EQ(wrongWith(value), "");
    }
}

TEST(PrintText, PrintsShortDecimalsAsToCharsDoes)
{
    for (double const scale : {1.0, 10.0, 100.0, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e12})
        for (int n = 1; n < 20000; ++n) {
            ASSERT_EQ(wrongWith(n / scale), "");
            ASSERT_EQ(wrongWith(-n / scale), "");
        }
    std::mt19937_64 random(13);
    double const scales[] = {1.0, 10.0, 100.0, 1e3, 1e4, 1e5, 1e6, 1e7, 1e9};
    for (int round = 0; round < 300000; ++round) {
        auto const digits = static_cast<double>(random() >> (11 + random() % 53));
        double const value = digits / scales[random() % std::size(scales)];
        ASSERT_EQ(wrongWith(value), "");
        ASSERT_EQ(wrongWith(std::nextafter(value, 0.0)), "");
    }
}

TEST(PrintText, PrintsTheNumbersAroundEveryPowerOfTenAsToCharsDoes)
{
    for (int exponent = -323; exponent <= 308; ++exponent) {
        double const power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        double below = power;
        double above = power;
        for (int step = 0; step < 20; ++step) {
            ASSERT_EQ(wrongWith(below), "");
            ASSERT_EQ(wrongWith(above), "");
            below = std::nextafter(below, 0.0);
            above = std::nextafter(above, 1e308);
        }
    }
}

TEST(PrintText, PrintsIntegersOfEveryLength)
{
    long long value = 0;
    for (int digits = 1; digits <= 18; ++digits) {
        value = value * 10 + digits % 10;
        EXPECT_EQ(printText(integer(value)), std::to_string(value));
        EXPECT_EQ(printText(integer(-value)), std::to_string(-value));
        EXPECT_EQ(readText(printText(integer(-value))), integer(-value));
    }
}

// ---- what has no text

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(PrintText, RefusesNumbersThatAreNotFinite)
{
    for (double const value : {infinity, -infinity, std::nan(""), -std::nan("")}) {
        EXPECT_THROW(printText(real(value)), PrintError);
        EXPECT_THROW(printText(array({integer(1), real(value)})), PrintError);
        EXPECT_THROW(printText(object({{"a", object({{"b", real(value)}})}})), std::runtime_error);
    }
}

TEST(PrintText, SaysWhatHasNoTextAndWhere)
{
    EXPECT_THAT(
        [] {
            printText(
                object({{"body", object({{"freq", array({real(0), real(1), real(2), real(infinity)})}})}}));
        },
        ThrowsMessage<PrintError>(StrEq("/body/freq/3: the number is not finite")));
    EXPECT_THAT(
        [] {
            printText(object({{"a", integer(1)}, {"b", text("\xFF")}}));
        },
        ThrowsMessage<PrintError>(StrEq("/b: the string is not UTF-8")));
    EXPECT_THAT([] { printText(real(infinity)); },
                ThrowsMessage<PrintError>(testing::EndsWith(": the number is not finite")));
}

Element nestedArrays(unsigned int levels, Element const& inside)
{
    Element root;
    Element* node = &root;
    for (unsigned int i = 0; i < levels; ++i)
        node = &static_cast<MetaData::Array&>(*node)[0];
    *node = inside;
    return root;
}

Element nestedObjects(unsigned int levels, Element const& inside)
{
    Element root;
    Element* node = &root;
    for (unsigned int i = 0; i < levels; ++i)
        node = &(*node)["a"];
    *node = inside;
    return root;
}

TEST(PrintText, PrintsAtMost1024Levels)
{
    EXPECT_EQ(printText(nestedArrays(1024, integer(1))),
              std::string(1024, '[') + '1' + std::string(1024, ']'));
    EXPECT_EQ(printText(nestedArrays(1023, Element(MetaData::Array()))),
              std::string(1024, '[') + std::string(1024, ']'));
    EXPECT_EQ(printText(nestedObjects(1024, text("x"))).size(), 1024u * 6 + 3);
    EXPECT_EQ(readText(printText(nestedObjects(1023, Element(MetaData::Object())))),
              nestedObjects(1023, Element(MetaData::Object())));

    for (unsigned int const levels : {1025u, 2000u, 100000u}) {
        EXPECT_THROW(printText(nestedArrays(levels, integer(1))), PrintError);
        EXPECT_THROW(printText(nestedObjects(levels, integer(1))), PrintError);
    }
    EXPECT_THROW(printText(nestedArrays(1024, Element(MetaData::Array()))), PrintError);
    EXPECT_THROW(printText(nestedArrays(1024, Element(MetaData::Object()))), PrintError);
    EXPECT_THROW(printText(nestedObjects(1024, Element(MetaData::Array()))), PrintError);
    EXPECT_THROW(printText(nestedObjects(1024, object({{"x", integer(1)}}))), PrintError);
}

TEST(PrintText, LeavesTheTreeAsItIs)
{
    Element const tree = object({{"a", array({integer(1), text("x")})}});
    Element const copy = tree;
    std::string const first = printText(tree);
    EXPECT_EQ(printText(tree), first);
    EXPECT_EQ(tree, copy);
}

// ---- streams

TEST(PrintText, WritesTheTextToAStream)
{
    std::ostringstream stream;
    stream << "before ";
    printText(object({{"a", integer(1)}}), stream);
    stream << " after";
    EXPECT_EQ(stream.str(), "before {\"a\":1} after");
}

TEST(PrintText, WritesTextsOfEveryLengthToAStream)
{
    for (std::size_t const size : {0u, 1u, 1000u, 8190u, 8191u, 8192u, 8193u, 20000u, 300000u}) {
        std::ostringstream stream;
        printText(array({text(std::string(size, 'a')), text("b")}), stream);
        ASSERT_EQ(stream.str(), "[\"" + std::string(size, 'a') + "\",\"b\"]") << size;
    }
}

TEST(PrintText, IgnoresTheFormatOfTheStream)
{
    std::ostringstream stream;
    stream << std::hex << std::showpos << std::fixed << std::showbase;
    stream.width(40);
    stream.precision(2);
    stream.fill('*');
    printText(array({integer(255), real(0.125)}), stream);
    EXPECT_EQ(stream.str(), "[255,0.125]");
}

TEST(PrintText, WritesNothingOfATreeThatCannotBePrinted)
{
    MetaData::Array items;
    for (unsigned int i = 0; i < 100000; ++i)
        items[i] = integer(i);
    items[100000] = real(infinity);
    Element const tree(std::move(items));
    std::ostringstream stream;
    EXPECT_THROW(printText(tree, stream), PrintError);
    EXPECT_EQ(stream.str(), "");
    EXPECT_TRUE(stream.good());
    EXPECT_THROW(printText(nestedArrays(1025, integer(1)), stream), PrintError);
    EXPECT_THROW(printText(array({text("a"), text("\xFF")}), stream), PrintError);
    EXPECT_EQ(stream.str(), "");
    EXPECT_TRUE(stream.good());
}

TEST(PrintText, RefusesAStreamThatIsNotGoodAtTheStart)
{
    for (std::ios_base::iostate const state :
         {std::ios_base::eofbit, std::ios_base::failbit, std::ios_base::badbit}) {
        std::ostringstream stream;
        stream.setstate(state);
        EXPECT_THROW(printText(integer(1), stream), std::ios_base::failure);
        EXPECT_EQ(stream.str(), "");
    }
    std::ostream none(nullptr);
    EXPECT_THROW(printText(integer(1), none), std::ios_base::failure);
}

/// Takes some bytes, then fails: by its result or by an exception.
class FullTarget : public std::streambuf {
public:
    FullTarget(std::size_t room, bool throws) : room_(room), throws_(throws) {}

protected:
    int_type overflow(int_type byte) override
    {
        if (room_ != 0) {
            --room_;
            return traits_type::not_eof(byte);
        }
        if (throws_)
            throw std::logic_error("the target is full");
        return traits_type::eof();
    }

private:
    std::size_t room_;
    bool throws_;
};

TEST(PrintText, ReportsAStreamThatFailsWhileItIsWritten)
{
    for (bool const throws : {false, true})
        for (std::size_t const room : {0u, 1u, 6u})
            for (std::ios_base::iostate const mask :
                 {std::ios_base::goodbit, std::ios_base::failbit, std::ios_base::badbit,
                  std::ios_base::badbit | std::ios_base::failbit | std::ios_base::eofbit}) {
                FullTarget target(room, throws);
                std::ostream stream(&target);
                stream.exceptions(mask);
                EXPECT_THROW(printText(object({{"a", integer(1)}}), stream), std::ios_base::failure)
                    << room << " bytes, mask " << mask << (throws ? ", throwing" : "");
                EXPECT_TRUE(stream.bad());
            }
    FullTarget enough(7, true);
    std::ostream stream(&enough);
    EXPECT_NO_THROW(printText(object({{"a", integer(1)}}), stream));
}

} // namespace
} // namespace Zelk::Json
