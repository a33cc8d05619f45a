#include "framework/json_text.h"
#include "nodes.h"
#include "reading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ios>
#include <istream>
#include <limits>
#include <ostream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Zelk::Json {
namespace {

using MetaData::Element;
using Tests::array;
using Tests::boolean;
using Tests::integer;
using Tests::isReadAsByTheOracle;
using Tests::isRefusedAt;
using Tests::object;
using Tests::pointsTo;
using Tests::real;
using Tests::shown;
using Tests::text;

// ---- values

struct Accepted {
    std::string text;
    Element tree;
};

TEST(ReadText, BuildsTheTreeOfTheText)
{
    Accepted const accepted[] = {
        {"null", Element()},
        {"true", boolean(true)},
        {"false", boolean(false)},
        {"0", integer(0)},
        {"-0", integer(0)},
        {"-0.0", real(-0.0)},
        {"1", integer(1)},
        {"-1", integer(-1)},
        {"1.0", real(1.0)},
        {"1e0", real(1.0)},
        {"1E+2", real(100.0)},
        {"25e-2", real(0.25)},
        {"\"\"", text("")},
        {"\"ui\"", text("ui")},
        {"{}", Element(MetaData::Object())},
        {"[]", Element(MetaData::Array())},
        {" \t\r\n{ \t\r\n} \t\r\n", Element(MetaData::Object())},
        {" \t\r\n[ \t\r\n] \t\r\n", Element(MetaData::Array())},
        {" [ 1 , 2 ] ", array({integer(1), integer(2)})},
        {" { \"a\" : 1 , \"b\" : [ ] } ", object({{"a", integer(1)}, {"b", Element(MetaData::Array())}})},
        {"[[],[[]],{}]", array({Element(MetaData::Array()), array({Element(MetaData::Array())}),
                                Element(MetaData::Object())})},
        {"{\"\":{\"\":null}}", object({{"", object({{"", Element()}})}})},
        {"[null,true,false,\"x\",1,1.5]",
         array({Element(), boolean(true), boolean(false), text("x"), integer(1), real(1.5)})},
    };
    for (Accepted const& each : accepted) {
        Element const tree = readText(each.text);
        EXPECT_EQ(tree, each.tree) << each.text;
        EXPECT_EQ(tree.GetElementType(), each.tree.GetElementType()) << each.text;
    }
}

TEST(ReadText, KeepsTheLastOfARepeatedName)
{
    EXPECT_EQ(readText(R"({"a":1,"a":2})"), object({{"a", integer(2)}}));
    EXPECT_EQ(readText(R"({"a":{"b":1},"a":{"c":[]}})"),
              object({{"a", object({{"c", Element(MetaData::Array())}})}}));
    EXPECT_EQ(readText(R"({"a":[1,2],"b":1,"a":null})"), object({{"a", Element()}, {"b", integer(1)}}));
    EXPECT_EQ(readText(R"({"a":"former text that is long enough for the heap","a":{}})"),
              object({{"a", Element(MetaData::Object())}}));
    EXPECT_EQ(readText(R"({"A":1,"\u0041":2})"), object({{"A", integer(2)}}));
    EXPECT_EQ(readText(R"({"a":{"x":1,"x":2},"a":{"y":3,"y":{"z":4,"z":5}}})"),
              object({{"a", object({{"y", object({{"z", integer(5)}})}})}}));
}

TEST(ReadText, KeepsTheLastOfARepeatedNameInObjectsOfEverySize)
{
    for (unsigned int count = 1; count < 40; ++count) {
        std::string text = "{";
        for (int round = 0; round < 3; ++round)
            for (unsigned int i = 0; i < count; ++i)
                text += "\"m" + std::to_string(i * 7 % count) + "\":[" + std::to_string(round) + "],";
        text.back() = '}';
        Element const tree = readText(text);
        MetaData::Object const& members = tree;
        std::vector<std::string> names;
        for (MetaData::Object::Member const& member : members) {
            EXPECT_EQ(member.element(), array({integer(2)}));
            names.push_back(member.name());
        }
        EXPECT_EQ(names.size(), members.size());
        EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
        EXPECT_EQ(members.size(), count % 7 == 0 ? count / 7 : count);
    }
}

// ---- where a text is refused

TEST(ReadText, JudgesEveryByteAndEveryPairOfBytes)
{
    ASSERT_TRUE(isReadAsByTheOracle(""));
    std::string const frames[][2] = {{"", ""}, {"[", "]"}, {"\"", "\""}, {"1", ""}, {"\"\\", "\""}};
    for (auto const& [before, after] : frames)
        for (int first = 0; first < 256; ++first) {
            ASSERT_TRUE(isReadAsByTheOracle(before + static_cast<char>(first) + after));
            for (int second = 0; second < 256; ++second)
                ASSERT_TRUE(isReadAsByTheOracle(before + static_cast<char>(first) +
                                                static_cast<char>(second) + after));
        }
}

TEST(ReadText, JudgesEveryByteBehindEveryBeginning)
{
    std::string const beginnings[] = {
        "{",         "{\"",  "{\"a",  "{\"a\"",   "{\"a\":",   "{\"a\":1",    "{\"a\":1,",    "[1",
        "[1,",       "[\n",  "[[]",   "-",        "0",         "-0",          "12",           "1.",
        "1.5",       "1e",   "1e-",   "1e-5",     "t",         "tr",          "tru",          "true",
        "f",         "fals", "false", "n",        "nul",       "null",        "\"a\"",        "{}",
        "[]",        " ",    "\"\\u", "\"\\u00e", "\"\\ud834", "\"\\ud834\\", "\"\\ud834\\u", "\"\xC3",
        "\"\xF0\x9F"};
    for (std::string const& beginning : beginnings)
        for (int byte = 0; byte < 256; ++byte)
            for (std::string const& after :
                 {std::string(), std::string("}"), std::string("aaaaaaaaaaaaaaaaaaaaa\"")})
                ASSERT_TRUE(isReadAsByTheOracle(beginning + static_cast<char>(byte) + after));
}

// Its exponents stay small whatever one byte becomes, since the state machine does not know the size of
// numbers.
std::string const richText =
    "{\"clientname\" : \"u\\u00e9\\ud83d\\uDE00 \\n\\\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\",\n"
    "  \"empty\":[ [],{} ],\r\n\t\"flags\":[true,false,null],\n"
    "\"numbers\":[0,-0,12,-3.25,4e5 ,5E-6,6.5e+7 ,0.0],\n"
    "\"long \\\\ \\/ name that goes on\":{\"a\":{\"b\":[[1],[2,3]]}}} \n";

TEST(ReadText, ReadsTheTextThatTheNextTestsSpoil)
{
    EXPECT_EQ(readText(richText)["clientname"].asString(),
              "u\xC3\xA9\xF0\x9F\x98\x80 \n\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(ReadText, RefusesEveryTruncation)
{
    std::size_t const end = richText.rfind('}');
    for (std::size_t length = 0; length <= end; ++length) {
        ASSERT_TRUE(isRefusedAt(richText.substr(0, length), length));
        ASSERT_TRUE(isReadAsByTheOracle(richText.substr(0, length)));
    }
}

TEST(ReadText, JudgesEveryChangeOfOneByte)
{
    for (std::size_t at = 0; at < richText.size(); ++at) {
        std::string changed = richText;
        for (int byte = 0; byte < 256; ++byte) {
            changed[at] = static_cast<char>(byte);
            ASSERT_TRUE(isReadAsByTheOracle(changed));
        }
    }
}

TEST(ReadText, JudgesEveryByteLeftOutAndEveryByteAdded)
{
    for (std::size_t at = 0; at <= richText.size(); ++at) {
        if (at < richText.size()) {
            ASSERT_TRUE(isReadAsByTheOracle(std::string(richText).erase(at, 1)));
        }
        for (int byte = 0; byte < 256; ++byte)
            ASSERT_TRUE(isReadAsByTheOracle(std::string(richText).insert(at, 1, static_cast<char>(byte))));
    }
}

TEST(ReadText, JudgesRandomWordsOfTheGrammar)
{
    std::string const words[] = {
        "{",   "}",    "[",    "]", ",",  ":",  "\"",  "\"a\"", "\"b\":", "1",  "-",    "0",    ".5",
        "e-1", "true", "null", " ", "\n", "\\", "\\u", "d8",    "dc",     "00", "\x80", "\xC3", "\xA9"};
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto count = random() % 12; count != 0; --count)
            text += words[random() % std::size(words)];
        ASSERT_TRUE(isReadAsByTheOracle(text));
    }
}

TEST(ReadText, RefusesAByteOrderMark)
{
    EXPECT_TRUE(isRefusedAt("\xEF\xBB\xBF{}", 0));
    EXPECT_TRUE(isRefusedAt("\xFE\xFF{}", 0));
    EXPECT_TRUE(isRefusedAt(std::string_view("\0{\0}", 4), 0));
    EXPECT_EQ(readText("\"\xEF\xBB\xBF\""), text("\xEF\xBB\xBF")); // a character like any other in a string
}

TEST(ReadText, RefusesNulBytesEverywhere)
{
    using namespace std::string_view_literals;
    EXPECT_TRUE(isRefusedAt("\0"sv, 0));
    EXPECT_TRUE(isRefusedAt("1\0"sv, 1));
    EXPECT_TRUE(isRefusedAt("[1,\0 2]"sv, 3));
    EXPECT_TRUE(isRefusedAt("\"a\0b\""sv, 2));
    EXPECT_TRUE(isRefusedAt("{}\n\0"sv, 3));
    EXPECT_EQ(readText("\"a\\u0000b\""), text(std::string("a\0b", 3)));
}

TEST(ReadText, CountsLinesAtLineFeedsAndColumnsInBytes)
{
    struct {
        std::string text;
        std::size_t offset, line, column;
    } const cases[] = {
        {"", 0, 1, 1},
        {"x", 0, 1, 1},
        {"  x", 2, 1, 3},
        {"\nx", 1, 2, 1},
        {"\r\nx", 2, 2, 1},
        {"\rx", 1, 1, 2},
        {"\n\n", 2, 3, 1},
        {"[\n1,\n  2\n", 9, 4, 1},
        {"[\n1,\n  \"\xC3\xA9\" x]", 12, 3, 8},
        {"{\"a\":\n1\n,\n}", 10, 4, 1},
    };
    for (auto const& each : cases) {
        try {
            readText(each.text);
            ADD_FAILURE() << shown(each.text) << " is accepted";
        } catch (ParseError const& error) {
            EXPECT_EQ(error.offset(), each.offset) << shown(each.text);
            EXPECT_EQ(error.line(), each.line) << shown(each.text);
            EXPECT_EQ(error.column(), each.column) << shown(each.text);
        }
    }
}

TEST(ReadText, RefusesWithARuntimeErrorThatSaysWhereAndWhat)
{
    auto const message = [](std::string_view bad) -> std::string {
        try {
            readText(bad);
        } catch (std::runtime_error const& error) {
            return error.what();
        }
        return "accepted";
    };
    EXPECT_EQ(message("[1,\n}").rfind("line 2, column 1: expected a value", 0), 0u);
    EXPECT_EQ(message("{\"a\" 1}").rfind("line 1, column 6: expected ':'", 0), 0u);
    EXPECT_EQ(message("[1 2]").rfind("line 1, column 4: expected ',' or ']'", 0), 0u);
    EXPECT_EQ(message("{\"a\":1]").rfind("line 1, column 7: expected ',' or '}'", 0), 0u);
    EXPECT_NE(message("{").find("end of the text"), std::string::npos);
}

TEST(ParseError, KeepsWhatItIsBuiltFromWhenCopied)
{
    ParseError const original(7, 2, 3, "expected a value");
    ParseError copy(0, 1, 1, "");
    copy = original;
    EXPECT_EQ(copy.offset(), 7u);
    EXPECT_EQ(copy.line(), 2u);
    EXPECT_EQ(copy.column(), 3u);
    EXPECT_STREQ(copy.what(), "line 2, column 3: expected a value");
}

// ---- nesting

std::string nested(std::size_t levels, std::string const& opening, std::string const& inside,
                   std::string const& closing)
{
    std::string result;
    for (std::size_t i = 0; i < levels; ++i)
        result += opening;
    result += inside;
    for (std::size_t i = 0; i < levels; ++i)
        result += closing;
    return result;
}

TEST(ReadText, OpensAtMost1024Brackets)
{
    EXPECT_NO_THROW(readText(nested(1024, "[", "", "]")));
    EXPECT_NO_THROW(readText(nested(1024, "[", "1,\"x\",null", "]")));
    EXPECT_NO_THROW(readText(nested(1024, "{\"a\":", "1", "}")));
    EXPECT_NO_THROW(readText(nested(1023, "{\"a\":", "{}", "}")));
    EXPECT_NO_THROW(readText(nested(512, "[{\"a\":", "true", "}]")));

    EXPECT_TRUE(isRefusedAt(nested(1025, "[", "", "]"), 1024));
    EXPECT_TRUE(isRefusedAt(nested(1024, "[", "{}", "]"), 1024));
    EXPECT_TRUE(isRefusedAt(nested(1024, "[", "1,[]", "]"), 1026));
    EXPECT_TRUE(isRefusedAt(nested(1025, "{\"a\":", "1", "}"), 1024 * 5));
    EXPECT_TRUE(isRefusedAt(nested(1024, "{\"a\":", "[]", "}"), 1024 * 5));
    EXPECT_TRUE(isRefusedAt(nested(512, "[{\"a\":", "[]", "}]"), 512 * 6));
    EXPECT_TRUE(isRefusedAt(std::string(1000000, '['), 1024));
}

TEST(ReadText, CountsOnlyOpenBrackets)
{
    std::string text = "[";
    for (int i = 0; i < 5000; ++i)
        text += "[{}],{\"a\":[]},";
    text += nested(1023, "[", "", "]") + "," + nested(1023, "[", "", "]") + "]";
    EXPECT_EQ(static_cast<MetaData::Array const&>(std::as_const(static_cast<Element const&>(readText(text))))
                  .size(),
              10002u);
}

// ---- strings

std::string utf8(unsigned int code)
{
    auto const byte = [](unsigned int value) { return std::string(1, static_cast<char>(value)); };
    if (code < 0x80)
        return byte(code);
    if (code < 0x800)
        return byte(0xC0 + code / 64) + byte(0x80 + code % 64);
    if (code < 0x10000)
        return byte(0xE0 + code / 4096) + byte(0x80 + code / 64 % 64) + byte(0x80 + code % 64);
    return byte(0xF0 + code / 262144) + byte(0x80 + code / 4096 % 64) + byte(0x80 + code / 64 % 64) +
           byte(0x80 + code % 64);
}

std::string escaped(unsigned int unit, bool upperCase)
{
    char result[8];
    std::snprintf(result, sizeof result, upperCase ? "\\u%04X" : "\\u%04x", unit & 0xFFFF);
    return result;
}

TEST(ReadText, DecodesEveryEscapeOfOneUnit)
{
    for (unsigned int unit = 0; unit < 0x10000; ++unit)
        for (bool const upperCase : {false, true}) {
            std::string const quoted = '"' + escaped(unit, upperCase) + '"';
            if (unit >= 0xDC00 && unit <= 0xDFFF) {
                ASSERT_TRUE(isRefusedAt(quoted, 4)); // the second digit tells that it is a low surrogate
            } else if (unit >= 0xD800 && unit <= 0xDBFF) {
                ASSERT_TRUE(isRefusedAt(quoted, 7));
            } else {
                ASSERT_EQ(readText(quoted).asString(), utf8(unit));
            }
        }
}

TEST(ReadText, DecodesSurrogatePairs)
{
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        auto const code = static_cast<unsigned int>(0x10000 + random() % 0x100000);
        unsigned int const high = 0xD800 + (code - 0x10000) / 0x400;
        unsigned int const low = 0xDC00 + (code - 0x10000) % 0x400;
        std::string const quoted = "\"x" + escaped(high, round % 2 == 0) + escaped(low, round % 3 == 0) +
                                   escaped(0x41, false) + "\"";
        ASSERT_EQ(readText(quoted).asString(), "x" + utf8(code) + "A");
    }
    EXPECT_EQ(readText("\"\\ud800\\udc00\""), text(utf8(0x10000)));
    EXPECT_EQ(readText("\"\\uDBFF\\uDFFF\""), text(utf8(0x10FFFF)));
}

TEST(ReadText, RefusesLoneSurrogatesAtTheFirstByteThatTells)
{
    struct {
        std::string text;
        std::size_t offset;
    } const cases[] = {
        {R"("\uDC00")", 4},
        {R"("\udfff")", 4},
        {R"("\uDc00\uD800")", 4},
        {R"("\uD800")", 7},
        {R"("\uD800x")", 7},
        {R"("\uD800\n")", 8},
        {R"("\uD800\u0041")", 9},
        {R"("\uD800\uD800")", 10},
        {R"("\uD800\uE000")", 9},
        {R"("\uD800\uDBFF")", 10},
        {R"("\uD800\uDC0g")", 12},
        {R"("\uD800\)", 8},
        {R"("\uD800\u)", 9},
        {R"("\uD800\uD)", 10},
        {R"("\uD800\uDC0)", 12},
        {R"("\uD800)", 7},
        {R"("\uDBFF\uDFFF\uDFFF")", 16},
        {R"({"\uDC00":1})", 5},
    };
    for (auto const& each : cases) {
        EXPECT_TRUE(isRefusedAt(each.text, each.offset));
        EXPECT_TRUE(isReadAsByTheOracle(each.text));
    }
}

TEST(ReadText, JudgesAllDigitsOfEscapes)
{
    std::string const frames[][2] = {
        {"\"\\u", "00\""},        {"\"\\u00", "\""},        {"\"\\u0", "0\""},
        {"\"\\ud8", "\\udc00\""}, {"\"\\ud800\\u", "00\""}, {"\"\\ud800\\ud", "0\""},
        {"\"\\ud800\\udc", "\""}, {"\"\\ud800", "udc00\""}, {"\"\\ud800", "\""}};
    std::string const bytes("0123456789abcdefghABCDEFGHuU/:@`\"\\ \n\0\x7F\x80\xFF", 40);
    for (auto const& [before, after] : frames)
        for (char const first : bytes)
            for (char const second : bytes)
                ASSERT_TRUE(isReadAsByTheOracle(before + first + second + after));
}

TEST(ReadText, ReadsEveryCharacterAsItIs)
{
    for (unsigned int code = 0x20; code <= 0x10FFFF; ++code) {
        if (code == '"' || code == '\\' || (code >= 0xD800 && code <= 0xDFFF))
            continue;
        std::string const character = utf8(code);
        ASSERT_EQ(readText('"' + character + '"').asString(), character) << code;
    }
}

TEST(ReadText, JudgesAllBytesThatLookLikeUtf8)
{
    // The first and last byte of every range that the encoding tells apart.
    std::string const bytes =
        "\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3"
        "\xF4\xF5\xF7\xF8\xFC\xFE\xFF";
    for (char const first : bytes)
        for (char const second : bytes)
            for (char const third : bytes) {
                ASSERT_TRUE(isReadAsByTheOracle(std::string{'"', first, second, third, '"'}));
                if (static_cast<unsigned char>(first) < 0xE0)
                    continue;
                for (char const fourth : {'\x41', '\x7F', '\x80', '\xBF', '\xC0', '\xFF'})
                    ASSERT_TRUE(isReadAsByTheOracle(std::string{'"', first, second, third, fourth, '"'}));
            }
}

struct Utf8Case {
    std::string name;
    std::string bytes;
    std::size_t offset; // of the first byte that cannot be
};

std::vector<Utf8Case> utf8Errors()
{
    return {
        {"continuation byte alone", "\x80", 0},
        {"last continuation byte alone", "\xBF", 0},
        {"overlong of two bytes", "\xC0\xAF", 0},
        {"overlong of two bytes, highest", "\xC1\xBF", 0},
        {"overlong of three bytes", "\xE0\x80\xAF", 1},
        {"overlong of three bytes, highest", "\xE0\x9F\xBF", 1},
        {"overlong of four bytes", "\xF0\x80\x80\xAF", 1},
        {"overlong of four bytes, highest", "\xF0\x8F\xBF\xBF", 1},
        {"first high surrogate", "\xED\xA0\x80", 1},
        {"last low surrogate", "\xED\xBF\xBF", 1},
        {"beyond the last code point", "\xF4\x90\x80\x80", 1},
        {"lead byte F5", "\xF5\x80\x80\x80", 0},
        {"five bytes", "\xF8\x88\x80\x80\x80", 0},
        {"six bytes", "\xFC\x84\x80\x80\x80\x80", 0},
        {"byte FE", "\xFE", 0},
        {"byte FF", "\xFF", 0},
        {"two bytes cut short", "\xC3", 1},
        {"three bytes cut short after one", "\xE2", 1},
        {"three bytes cut short after two", "\xE2\x82", 2},
        {"four bytes cut short after one", "\xF0", 1},
        {"four bytes cut short after two", "\xF0\x9F", 2},
        {"four bytes cut short after three", "\xF0\x9F\x98", 3},
        {"lead byte within a character", "\xE2\xC3\xA9", 1},
        {"one continuation byte too many", "\xC3\xA9\xA9", 2},
        {"control character", "\x1F", 0},
        {"NUL", std::string(1, '\0'), 0},
        {"line feed", "\n", 0},
    };
}

TEST(ReadText, FindsAWrongByteAtEveryPlaceOfAString)
{
    for (Utf8Case const& each : utf8Errors())
        for (std::size_t before = 0; before <= 40; ++before)
            for (std::size_t const after : {0u, 1u, 3u, 4u, 7u, 8u, 9u, 15u, 16u, 17u, 33u})
                for (std::string const& filler : {std::string("a"), std::string("\xC3\xA9")}) {
                    SCOPED_TRACE(each.name + ", " + std::to_string(before) + " before, " +
                                 std::to_string(after) + " after");
                    std::string quoted = "\"";
                    for (std::size_t i = 0; i < before; ++i)
                        quoted += filler;
                    std::size_t const offset = quoted.size() + each.offset;
                    quoted += each.bytes;
                    quoted.append(after, 'z');
                    ASSERT_TRUE(isRefusedAt(quoted + '"', offset));
                    ASSERT_TRUE(isReadAsByTheOracle(quoted));                     // cut off
                    ASSERT_TRUE(isRefusedAt("{" + quoted + "\":1}", offset + 1)); // in a name
                }
}

TEST(ReadText, FindsAQuoteAndABackslashAtEveryPlaceOfAString)
{
    for (std::size_t before = 0; before <= 40; ++before)
        for (std::size_t after = 0; after <= 40; ++after) {
            std::string const left(before, 'l');
            std::string const right(after, 'r');
            ASSERT_EQ(readText('"' + left + right + '"').asString(), left + right);
            ASSERT_EQ(readText('"' + left + "\\\"" + right + '"').asString(), left + '"' + right);
            ASSERT_EQ(readText('"' + left + "\\\\" + right + '"').asString(), left + '\\' + right);
            ASSERT_EQ(readText('"' + left + "\xF0\x9F\x98\x80" + right + '"').asString(),
                      left + "\xF0\x9F\x98\x80" + right);
            ASSERT_EQ(readText('"' + left + "\\n\\u00e9" + right + "\\t\"").asString(),
                      left + "\n\xC3\xA9" + right + '\t');
            ASSERT_TRUE(isRefusedAt('"' + left + '"' + right + "x\"", before + 2));
            ASSERT_TRUE(isRefusedAt('"' + left + right, before + after + 1));
        }
}

TEST(ReadText, NeverLooksBehindTheEndOfTheText)
{
    // The text is the beginning of a piece of memory that goes on as a whole text would.
    std::string const memory = "[\"abcdefghijklmnopqrstuvwxyz\",12345678901234567890,true]";
    for (std::size_t length = 0; length < memory.size(); ++length)
        ASSERT_TRUE(isRefusedAt(std::string_view(memory).substr(0, length), length));
    std::string const number = "12345678901234567890";
    for (std::size_t length = 1; length < 19; ++length)
        EXPECT_EQ(readText(std::string_view(number).substr(0, length)).asInt64(),
                  std::stoll(number.substr(0, length)));
}

// ---- numbers

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(ReadText, ReadsIntegersThatFit64BitsAsIntegers)
{
    struct {
        std::string text;
        long long value;
    } const integers[] = {
        {"9223372036854775807", std::numeric_limits<long long>::max()},
        {"-9223372036854775808", std::numeric_limits<long long>::min()},
        {"-9223372036854775807", -9223372036854775807},
        {"9223372036854775806", 9223372036854775806},
        {"1000000000000000000", 1000000000000000000},
        {"999999999999999999", 999999999999999999},
        {"4294967296", 4294967296},
        {"-0", 0},
    };
    for (auto const& each : integers)
        EXPECT_EQ(readText(each.text), integer(each.value)) << each.text;
    std::string digits;
    long long value = 0;
    for (int count = 1; count <= 18; ++count) { // every length
        digits += static_cast<char>('0' + count % 10);
        value = value * 10 + count % 10;
        EXPECT_EQ(readText(digits), integer(value));
        EXPECT_EQ(readText('-' + digits), integer(-value));
        EXPECT_EQ(readText('[' + digits + ']'), array({integer(value)}));
    }
}

TEST(ReadText, ReadsLargerIntegersAsFloatingPoint)
{
    for (char const* const digits :
         {"9223372036854775808", "-9223372036854775809", "9999999999999999999", "10000000000000000000",
          "18446744073709551615", "18446744073709551616", "-18446744073709551616", "92233720368547758070",
          "100000000000000000000", "123456789012345678901234567890", "-99999999999999999999999"}) {
        Element const node = readText(digits);
        ASSERT_EQ(node.GetElementType(), Element::real) << digits;
        EXPECT_TRUE(sameBits(node.asDouble(), std::strtod(digits, nullptr))) << digits;
    }
}

TEST(ReadText, AFractionOrAnExponentMakesANumberFloatingPoint)
{
    for (char const* const digits : {"1.0", "0.0", "-0.0", "0e0", "-0e0", "1e2", "1E2", "1e+2", "100e-2",
                                     "0.5e1", "-0.0e-0", "9223372036854775807.0", "0.000", "0e+00"}) {
        Element const node = readText(digits);
        ASSERT_EQ(node.GetElementType(), Element::real) << digits;
        EXPECT_TRUE(sameBits(node.asDouble(), std::strtod(digits, nullptr))) << digits;
    }
}

TEST(ReadText, RefusesEveryOtherShapeOfANumber)
{
    struct {
        char const* text;
        std::size_t offset;
    } const cases[] = {
        {"-", 1},    {"+1", 0},     {"--1", 1},   {"-a", 1},    {"01", 1},       {"-01", 2},
        {"00", 1},   {"1.", 2},     {".5", 0},    {"-.5", 1},   {"1.e1", 2},     {"1e", 2},
        {"1e+", 3},  {"1e-", 3},    {"1e+-1", 3}, {"1e1.5", 3}, {"1.2.3", 3},    {"1_0", 1},
        {"0x10", 1}, {"1f", 1},     {"NaN", 0},   {"-NaN", 1},  {"Infinity", 0}, {"-Infinity", 1},
        {"1 2", 2},  {"1,5", 1},    {"1'000", 1}, {"0b1", 1},   {"1e1e1", 3},    {"- 1", 1},
        {"1. 5", 2}, {"1.5e 3", 4}, {"inf", 0},   {"-inf", 1},  {"1d", 1},       {"1L", 1},
    };
    for (auto const& each : cases) {
        EXPECT_TRUE(isRefusedAt(each.text, each.offset));
        EXPECT_TRUE(isReadAsByTheOracle(each.text));
    }
}

TEST(ReadText, RefusesNumbersTooLargeForADouble)
{
    std::string const many(400, '7');
    struct {
        std::string text;
        std::size_t offset;
    } const cases[] = {
        {"1e309", 4},
        {"-1e309", 5},
        {"1e+309", 5},
        {"1.8e308", 6},
        {"1.7976931348623159e308", 21}, // halfway to the next power of two, and a little more
        {"1.797693134862315807938e308", 26},
        {"1e000000309", 10},
        {"[1e400]", 5},
        {"1e3090000", 4},
        {"1e99999999999999999999999", 4},
        {"0.001e312", 8},
        {many, 400}, // an exponent could still make it smaller
        {"[" + many + "]", 401},
        {many + ".5 ", 402},
        {many + "e-1,", 403},
        {many + "e5", 401},
    };
    for (auto const& each : cases)
        EXPECT_TRUE(isRefusedAt(each.text, each.offset));
    EXPECT_EQ(readText(many + "e-399").asDouble(), std::strtod((many + "e-399").c_str(), nullptr));
}

TEST(ReadText, ReadsTheLargestAndTheSmallestDoubles)
{
    for (char const* const digits :
         {"1.7976931348623157e308", "1.797693134862315807e308", "1.79769313486231580792e308",
          "-1.7976931348623157e308", "179769313486231570000e288", "1e308", "0.1e309", "0.000000001e317",
          "2.2250738585072014e-308", "2.2250738585072011e-308", "2.225073858507201e-308",
          "4.9406564584124654e-324", "5e-324", "3e-324", "2.4703282292062328e-324", "1e-320", "-5e-324",
          "1.5e-323"}) {
        double const value = readText(digits).asDouble();
        EXPECT_TRUE(sameBits(value, std::strtod(digits, nullptr))) << digits;
        EXPECT_TRUE(std::isfinite(value));
        EXPECT_NE(value, 0.0);
    }
}

TEST(ReadText, RoundsNumbersTooSmallForADoubleToZero)
{
    for (std::string const digits :
         {"1e-400", "2e-324", "2.4703282292062327e-324", "1e-999999999999999999999999", "0.1e-400",
          "123456789e-99999", "1e-1000000000000000000000000000000"}) {
        EXPECT_TRUE(sameBits(readText(digits).asDouble(), 0.0)) << digits;
        EXPECT_TRUE(sameBits(readText('-' + digits).asDouble(), -0.0)) << digits;
    }
    EXPECT_TRUE(sameBits(readText("0." + std::string(100000, '0') + "1").asDouble(), 0.0));
}

TEST(ReadText, ReadsZeroWithEveryExponent)
{
    for (std::string const digits : {"0e99999999999", "0E+99999999999999999999999999999", "0.0e-99999999999",
                                     "0.000e400", "0e-0", "0e309"}) {
        EXPECT_TRUE(sameBits(readText(digits).asDouble(), 0.0)) << digits;
        EXPECT_TRUE(sameBits(readText('-' + digits).asDouble(), -0.0)) << digits;
    }
}

TEST(ReadText, ReadsNumbersOfManyDigits)
{
    for (std::size_t const length : {20u, 100u, 308u, 767u, 768u, 769u, 800u, 1000u, 5000u}) {
        std::string digits;
        for (std::size_t i = 0; i < length; ++i)
            digits += static_cast<char>('1' + i * 7 % 9);
        std::string const exponent = std::to_string(length);
        for (std::string const& number :
             {"0." + digits, digits.substr(0, 1) + '.' + digits, digits + "e-" + exponent,
              "1." + std::string(length, '0') + "1", "0." + std::string(length, '0') + "1e" + exponent,
              digits + "." + digits + "e-" + exponent, "1" + std::string(length, '0') + "e-" + exponent,
              "0." + std::string(length, '9')})
            EXPECT_TRUE(sameBits(readText(number).asDouble(), std::strtod(number.c_str(), nullptr)))
                << number;
    }
}

TEST(ReadText, ReadsExponentsThatMakeUpForManyDigits)
{
    for (std::size_t const length : {1000u, 100000u}) {
        std::string const up = "0." + std::string(length, '0') + "25e" + std::to_string(length + 1);
        EXPECT_TRUE(sameBits(readText(up).asDouble(), 2.5)) << length;
        std::string const down = "25" + std::string(length, '0') + "e-" + std::to_string(length + 1);
        EXPECT_TRUE(sameBits(readText(down).asDouble(), 2.5)) << length;
        EXPECT_EQ(readText("1e" + std::string(length, '0') + "1").asDouble(), 10.0);
        EXPECT_EQ(readText("1e-" + std::string(length, '0') + "1").asDouble(), 0.1);
    }
}

TEST(ReadText, RefusesAHugeExponentInLinearTime)
{
    std::string const digits(2000000, '9');
    EXPECT_TRUE(isRefusedAt("1e" + digits, 4)); // 1e99 is fine, 1e999 is not
    EXPECT_TRUE(isRefusedAt("1e" + std::string(2000000, '0') + "309", 2000004));
    EXPECT_TRUE(isRefusedAt(digits, 2000000));
    EXPECT_TRUE(isRefusedAt(digits + "e" + digits, 2000001));
}

TEST(ReadText, RoundsRandomDecimalsAsTheCLibraryDoes)
{
    std::mt19937_64 random(7);
    auto const below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned int>(limit));
    };
    for (int round = 0; round < 200000; ++round) {
        std::string number = below(2) == 0 ? "" : "-";
        number += static_cast<char>('1' + below(9));
        for (int count = below(25); count > 0; --count)
            number += static_cast<char>('0' + below(10));
        number += '.';
        for (int count = below(25); count >= 0; --count)
            number += static_cast<char>('0' + below(10));
        if (below(3) != 0)
            number += 'e' + std::to_string(below(4) == 0 ? below(600) - 330 : below(60) - 30);
        double const expected = std::strtod(number.c_str(), nullptr);
        if (std::isinf(expected)) {
            ASSERT_THROW(readText(number), ParseError) << number;
        } else {
            ASSERT_TRUE(sameBits(readText(number).asDouble(), expected)) << number;
        }
    }
}

static_assert(LDBL_MANT_DIG > DBL_MANT_DIG,
              "the next test holds the middle between two doubles in a long double");

TEST(ReadText, RoundsUpToTheNextPowerOfTwo)
{
    for (int exponent = -30; exponent <= 80; ++exponent) {
        // Nearer to the power than to the double below it, which is half as far away as the one above.
        long double const below = std::ldexp(1.0L, exponent) * (1.0L - 0x1p-56L);
        char digits[40];
        std::snprintf(digits, sizeof digits, "%.18Le", below);
        EXPECT_EQ(readText(digits), real(std::ldexp(1.0, exponent))) << digits;
    }
}

TEST(ReadText, RoundsTheMiddleBetweenTwoDoublesToTheEvenOne)
{
    std::mt19937_64 random(9);
    for (int round = 0; round < 4000; ++round) {
        double lower = 0;
        std::uint64_t bits = random() >> 1;
        if (round % 4 == 0)
            bits &= 0x000FFFFFFFFFFFFF; // subnormal
        std::memcpy(&lower, &bits, sizeof lower);
        double const upper = std::nextafter(lower, std::numeric_limits<double>::infinity());
        if (!std::isfinite(lower) || !std::isfinite(upper))
            continue;
        long double const middle = (static_cast<long double>(lower) + static_cast<long double>(upper)) / 2;
        char digits[1400];
        ASSERT_LT(std::snprintf(digits, sizeof digits, "%.1080Le", middle), static_cast<int>(sizeof digits));
        std::string const number = digits;
        std::size_t const exponent = number.find('e');
        double const even = bits % 2 == 0 ? lower : upper;
        ASSERT_TRUE(sameBits(readText(number).asDouble(), even)) << number;
        std::string const more = std::string(number).insert(exponent, "1");
        ASSERT_TRUE(sameBits(readText(more).asDouble(), upper)) << more;
        std::string less = number; // the last digit that is not zero is 5: make it 4 and a tail of nines
        std::size_t const last = less.find_last_of("123456789", exponent - 1);
        --less[last];
        for (std::size_t i = last + 1; i < exponent; ++i)
            less[i] = '9';
        ASSERT_TRUE(sameBits(readText(less).asDouble(), lower)) << less;
    }
}

/// Whether the number is read, or refused at the same place, whatever stands around it: a reader that looks
/// at many bytes at a time does so only where they are.
testing::AssertionResult isReadAlikeEverywhere(std::string const& number)
{
    Element alone;
    std::size_t refusedAt = std::string::npos;
    try {
        alone = readText(number);
    } catch (ParseError const& error) {
        refusedAt = error.offset();
    }
    for (std::string const before : {"", "[", "  [\"123\",  "})
        for (std::string const behind :
             {"       ", "                    ", ",1234567890123]", "]", "]\n       "}) {
            std::string const whole = before + number + behind;
            if ((before.find('[') == std::string::npos) != (behind.find(']') == std::string::npos))
                continue;
            try {
                Element const tree = readText(whole);
                Element const& node = before.size() > 1 ? static_cast<MetaData::Array const&>(tree)[1]
                                      : before.empty()  ? tree
                                                        : static_cast<MetaData::Array const&>(tree)[0];
                if (refusedAt != std::string::npos)
                    return testing::AssertionFailure() << whole << " is accepted";
                if (node.GetElementType() != alone.GetElementType() || printText(node) != printText(alone))
                    return testing::AssertionFailure() << whole << " is " << printText(node);
            } catch (ParseError const& error) {
                if (refusedAt == std::string::npos || error.offset() != before.size() + refusedAt)
                    return testing::AssertionFailure() << whole << " is refused at " << error.offset();
            }
        }
    return testing::AssertionSuccess();
}

TEST(ReadText, ReadsANumberAlikeWhateverStandsAroundIt)
{
    for (std::string const number : {"0",
                                     "-0",
                                     "7",
                                     "-7",
                                     "10",
                                     "01",
                                     "-01",
                                     "00",
                                     "1234567",
                                     "12345678",
                                     "123456789",
                                     "1234567812345678",
                                     "123456781234567",
                                     "999999999999999999",
                                     "1000000000000000000",
                                     "9223372036854775807",
                                     "-9223372036854775808",
                                     "9223372036854775808",
                                     "12345678901234567890",
                                     "123456789012345678901234",
                                     "0.5",
                                     "-0.5",
                                     "0.0",
                                     "-0.0",
                                     "0.00000000",
                                     "1.00000000",
                                     "12345678.12345678",
                                     "1234567.1234567",
                                     "0.1234567890123456789",
                                     "0.12345678901234567",
                                     "1234567890.123456789",
                                     "1234567890.1234567891",
                                     "0.000000000000000000012345",
                                     "9007199254740993.0",
                                     "900719925474099.3",
                                     "18446744073709551615.0",
                                     "1844674407370955161.5",
                                     "65.613616999999977",
                                     "1e5",
                                     "1E5",
                                     "12e-5",
                                     "1.5e3",
                                     "12345678e1",
                                     "1.12345678e1",
                                     "1e400",
                                     "12345678.e",
                                     "1.",
                                     "-",
                                     "1.x",
                                     "12345678x",
                                     "12345678.12345678x",
                                     ".5"})
        EXPECT_TRUE(isReadAlikeEverywhere(number));
    std::mt19937_64 random(13);
    for (int round = 0; round < 20000; ++round) {
        std::string digits = std::to_string(random() >> random() % 64);
        if (random() % 4 != 0)
            digits.insert(1 + random() % digits.size(), ".");
        if (digits.back() == '.')
            digits += '0';
        ASSERT_TRUE(isReadAlikeEverywhere(digits));
    }
}

TEST(ReadText, RoundsNumbersOfUpTo19DigitsToTheNearestDouble)
{
    std::mt19937_64 random(14);
    for (int round = 0; round < 20000; ++round) {
        // The middle between two neighbours, times a power of ten that keeps it an integer, and its
        // neighbours.
        std::uint64_t const middle = 2 * (random() >> (11 + random() % 40)) + 1;
        std::uint64_t fives = 1;
        for (int places = 0; places <= 22 && middle <= 9999999999999999999U / fives; ++places, fives *= 5) {
            for (std::uint64_t const digits : {middle * fives - 1, middle * fives, middle * fives + 1}) {
                std::string const number = std::to_string(digits) + ".0e-" + std::to_string(places);
                std::string decimal =
                    std::string(static_cast<std::size_t>(places), '0') + std::to_string(digits);
                decimal.insert(decimal.size() - static_cast<std::size_t>(places), ".");
                decimal.erase(0, std::min(decimal.find_first_not_of('0'), decimal.find('.') - 1));
                if (decimal.back() == '.')
                    decimal += '0';
                double const expected = std::strtod(number.c_str(), nullptr);
                ASSERT_TRUE(sameBits(readText(number + "        ").asDouble(), expected)) << number;
                ASSERT_TRUE(sameBits(readText(decimal + "        ").asDouble(), expected)) << decimal;
            }
        }
    }
}

// ---- streams

TEST(ReadText, ReadsAStreamToItsEnd)
{
    std::istringstream stream("xx {\"a\" : [1]}\n");
    stream.ignore(2);
    EXPECT_EQ(readText(stream), object({{"a", array({integer(1)})}}));
    EXPECT_TRUE(stream.eof());
    EXPECT_FALSE(stream.bad());
}

TEST(ReadText, ReadsLongStreams)
{
    for (std::size_t const length : {4093u, 4094u, 4095u, 8190u, 100000u, 1000000u}) {
        std::string const content(length, 's');
        std::istringstream stream('"' + content + '"');
        EXPECT_EQ(readText(stream).asString(), content);
    }
}

TEST(ReadText, ReadsNothingButOneValueOutOfAStream)
{
    std::istringstream two("1 2");
    EXPECT_THROW(readText(two), ParseError);
    std::istringstream none("");
    try {
        readText(none);
        FAIL() << "an empty stream is accepted";
    } catch (ParseError const& error) {
        EXPECT_TRUE(pointsTo(error, "", 0));
    }
}

TEST(ReadText, RefusesAStreamThatIsNotGoodAtTheStart)
{
    for (std::ios_base::iostate const state :
         {std::ios_base::eofbit, std::ios_base::failbit, std::ios_base::badbit}) {
        std::istringstream stream("1");
        stream.setstate(state);
        EXPECT_THROW(readText(stream), std::ios_base::failure);
        stream.clear();
        EXPECT_EQ(readText(stream), integer(1)) << "the stream was read";
    }
}

/// A stream that fails by an exception after some bytes.
class BrokenSource : public std::streambuf {
public:
    explicit BrokenSource(std::string text) : text_(std::move(text))
    {
        setg(text_.data(), text_.data(), text_.data() + text_.size());
    }

protected:
    int_type underflow() override { throw std::logic_error("the source is gone"); }

private:
    std::string text_;
};

TEST(ReadText, ReportsAStreamThatFailsWhileItIsRead)
{
    for (std::ios_base::iostate const mask :
         {std::ios_base::goodbit, std::ios_base::badbit, std::ios_base::failbit,
          std::ios_base::badbit | std::ios_base::failbit})
        for (char const* const before : {"", "[1", "[1]"}) {
            BrokenSource source(before);
            std::istream stream(&source);
            stream.exceptions(mask);
            EXPECT_THROW(readText(stream), std::ios_base::failure) << before;
            EXPECT_TRUE(stream.bad());
        }
}

TEST(ReadText, RefusesAStreamWithoutABuffer)
{
    std::istream stream(nullptr);
    EXPECT_THROW(readText(stream), std::ios_base::failure);
}

TEST(ReadText, ReadsAnArrayOfManyItems)
{
    std::string text = "[0";
    for (int i = 1; i < 40000; ++i)
        text += "," + std::to_string(i);
    Element const tree = readText(text + "]");
    MetaData::Array const& items = tree;
    ASSERT_EQ(items.size(), 40000U);
    long long expected = 0;
    for (Element const& item : items)
        ASSERT_EQ(item.asInt64(), expected++);
}

/// What is written to it cannot be passed on, and it says so by an exception.
class BlockedSink : public std::streambuf {
protected:
    int sync() override { throw std::runtime_error("blocked"); }
};

TEST(ReadText, ReportsAStreamWhoseTiedStreamCannotBeFlushed)
{
    BlockedSink sink;
    std::ostream tied(&sink);
    tied.exceptions(std::ios_base::badbit);
    std::istringstream stream("[1]");
    stream.tie(&tied);
    EXPECT_THROW(readText(stream), std::ios_base::failure);
}

TEST(ReadText, ReadsAStreamThatThrowsOnFailures)
{
    std::istringstream stream("[true]");
    stream.exceptions(std::ios_base::failbit | std::ios_base::badbit);
    EXPECT_EQ(readText(stream), array({boolean(true)}));
    std::istringstream throwsAtTheEnd("[true]");
    throwsAtTheEnd.exceptions(std::ios_base::eofbit);
    EXPECT_THROW(readText(throwsAtTheEnd), std::ios_base::failure);
}

} // namespace
} // namespace Zelk::Json
