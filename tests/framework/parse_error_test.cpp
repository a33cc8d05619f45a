#include "framework/json_text.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <stdexcept>
#include <string>

namespace Zelk::Json {
namespace {

struct Refused {
    char const* name;
    std::string text;
    char const* message;
};

void PrintTo(Refused const& refused, std::ostream* out)
{
    *out << refused.name;
}

class ParseErrorTest : public testing::TestWithParam<Refused> {};

TEST_P(ParseErrorTest, SaysWhereTheTextIsWrongWhatWasExpectedAndWhatStandsThere)
{
    try {
        static_cast<void>(readText(GetParam().text));
        FAIL() << "the text was read";
    } catch (ParseError const& error) {
        EXPECT_STREQ(error.what(), GetParam().message);
    }
}

ParseError errorOf(std::string const& text)
{
    try {
        static_cast<void>(readText(text));
    } catch (ParseError const& error) {
        return error;
    }
    throw std::logic_error("the text was read: " + text);
}

TEST_P(ParseErrorTest, SaysTheSameWhereverTheMistakeStandsInALongerText)
{
    std::string const& text = GetParam().text;
    ParseError const alone = errorOf(text);
    auto const withoutPlace = [](ParseError const& error) {
        std::string const what = error.what();
        return what.substr(what.find(": "));
    };
    for (std::size_t before = 0; before <= 140; ++before)
        for (std::size_t const behind : {0u, 1u, 15u, 16u, 17u, 62u, 63u, 64u, 65u, 200u}) {
            // Behind a text that ends too early nothing can be put.
            if (behind != 0 && alone.offset() == text.size())
                continue;
            ParseError const error = errorOf(std::string(before, ' ') + text + std::string(behind, ' '));
            ASSERT_EQ(error.offset(), before + alone.offset()) << before << ' ' << behind;
            ASSERT_EQ(error.line(), alone.line()) << before << ' ' << behind;
            ASSERT_EQ(error.column(), alone.column() + (alone.line() == 1 ? before : 0))
                << before << ' ' << behind;
            ASSERT_EQ(withoutPlace(error), withoutPlace(alone)) << before << ' ' << behind;
        }
}

INSTANTIATE_TEST_SUITE_P(
    Refused, ParseErrorTest,
    testing::Values(
        Refused{"Nothing", "", "line 1, column 1: expected a value, found the end of the text"},
        Refused{"NoValue", "[,]", "line 1, column 2: expected a value, found ','"},
        Refused{"Behind", "1\n 2", "line 2, column 2: expected the end of the text, found '2'"},
        Refused{"Word", "[trUe]", "line 1, column 4: expected \"true\", found 'U'"},
        Refused{"Name", "{1:2}", "line 1, column 2: expected a member name in quotes, found '1'"},
        Refused{"Colon", "{\"a\" 1}", "line 1, column 6: expected ':', found '1'"},
        Refused{"MemberEnd", "{\"a\":1]", "line 1, column 7: expected ',' or '}', found ']'"},
        Refused{"ItemEnd", "[1}", "line 1, column 3: expected ',' or ']', found '}'"},
        Refused{"Digit", "-x", "line 1, column 2: expected a digit, found 'x'"},
        Refused{"DigitBehindThePoint", "1.e", "line 1, column 3: expected a digit, found 'e'"},
        Refused{"StringEnd", "\"a",
                "line 1, column 3: expected '\"' at the end of a string, found the end of the text"},
        Refused{"ControlCharacter", "\"\t\"",
                "line 1, column 2: expected a control character to be escaped, found byte 0x09"},
        Refused{"Utf8", "\"\xFF\"", "line 1, column 2: expected well-formed UTF-8, found byte 0xff"},
        Refused{"EscapeAtTheEnd", "\"\\",
                "line 1, column 3: expected an escape character, found the end of the text"},
        Refused{"Escape", "\"\\x\"",
                "line 1, column 3: expected one of \"\\/bfnrtu after a backslash, found 'x'"},
        Refused{"HexDigit", "\"\\u00g0\"", "line 1, column 6: expected four hexadecimal digits, found 'g'"},
        Refused{"LowSurrogate", "\"\\ud800x\"",
                "line 1, column 8: expected the escape of a low surrogate, found 'x'"},
        Refused{"NoLowSurrogate", "\"\\ud800\\u0041\"",
                "line 1, column 10: expected a low surrogate, found '0'"},
        Refused{"LowSurrogateFirst", "\"\\udc00\"",
                "line 1, column 5: expected a high surrogate before a low one, found 'c'"},
        Refused{"Depth", std::string(1025, '['),
                "line 1, column 1025: expected at most 1024 open brackets, found '['"},
        Refused{"TooLarge", "1e999",
                "line 1, column 5: expected a number within the range of a double, found '9'"}),
    [](testing::TestParamInfo<Refused> const& refused) { return std::string(refused.param.name); });

} // namespace
} // namespace Zelk::Json
