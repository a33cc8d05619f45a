// Reading and printing under locales that write numbers in other ways.
#include "framework/json_text.h"
#include "nodes.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <sstream>
#include <string>

namespace Zelk::Json {
namespace {

using Tests::array;
using Tests::integer;
using Tests::real;

/// Numbers as in "1.234,5".
class CommaForPoint : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
    std::string do_truename() const override { return "wahr"; }
    std::string do_falsename() const override { return "falsch"; }
};

/// Both the C and the C++ locale write numbers so while a test runs.
class Locale : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(setenv("LOCPATH", ZELK_TEST_LOCALES, 1), 0);
        ASSERT_NE(std::setlocale(LC_ALL, "comma"), nullptr);
        former_ = std::locale::global(std::locale(std::locale::classic(), new CommaForPoint));
        ASSERT_NE(std::setlocale(LC_ALL, "comma"), nullptr);
        char text[16];
        std::snprintf(text, sizeof text, "%.1f", 1.5);
        ASSERT_STREQ(text, "1,5");
        std::ostringstream stream;
        stream << 1234.5;
        ASSERT_EQ(stream.str(), "1.234,5");
    }
    void TearDown() override
    {
        std::locale::global(former_);
        std::setlocale(LC_ALL, "C");
    }

private:
    std::locale former_;
};

MetaData::Element const tree = array(
    {real(1234567.25), real(0.1), real(-1e-300), real(5.0), integer(-1234567890123), Tests::boolean(true)});
std::string const treeText = "[1234567.25,0.1,-1e-300,5.0,-1234567890123,true]";

TEST_F(Locale, HasNoEffectOnStrings)
{
    EXPECT_EQ(printText(tree), treeText);
    EXPECT_EQ(readText(treeText), tree);
    EXPECT_EQ(readText("123456789012345678901234567890.5e-10").asDouble(), 12345678901234567890.12345678905);
    EXPECT_THROW(readText("1,5"), ParseError);
    EXPECT_THROW(readText("1e400"), ParseError);
    EXPECT_EQ(readText("1e-400"), real(0.0));
}

TEST_F(Locale, HasNoEffectOnStreams)
{
    std::ostringstream out;
    out.imbue(std::locale());
    printText(tree, out);
    EXPECT_EQ(out.str(), treeText);
    std::istringstream in(treeText);
    in.imbue(std::locale());
    EXPECT_EQ(readText(in), tree);
}

TEST_F(Locale, HasNoEffectOnErrors)
{
    std::string const text = std::string(12345, '\n') + std::string(1234, ' ') + "x";
    try {
        readText(text);
        FAIL();
    } catch (ParseError const& error) {
        EXPECT_EQ(std::string(error.what()).rfind("line 12346, column 1235: ", 0), 0u) << error.what();
    }
}

} // namespace
} // namespace Zelk::Json
