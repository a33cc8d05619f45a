#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace ZelkTest;
using testing::HasSubstr;

namespace {

std::string const good = "{\"clientname\":\"ui\",\"commandid\":0,\"id\":-10}\n";

/// A message whose tree takes more than 64 MiB.
std::string hugeMessage()
{
    std::string text = R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[0)";
    for (int i = 0; i < 2000000; ++i)
        text += ",1";
    return text + "]}}\n";
}

Result withLimit(std::vector<std::string> arguments, char const* limit, std::string const& input)
{
    arguments.insert(arguments.end(), {"--memory-limit", limit});
    Setting setting;
    setting.input = input;
    return zelkMsg(arguments, setting);
}

} // namespace

TEST(MemoryLimit, RefusesAMessageThatNeedsMoreAndGoesOn)
{
    std::string const input = good + hugeMessage() + good;
    for (std::vector<std::string> const& arguments :
         {std::vector<std::string>{"check"}, std::vector<std::string>{"check", "-j", "2"}}) {
        Result const result = withLimit(arguments, "64M", input);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "<stdin>:2:1: needs more memory than the limit of 64 MiB\n"
                              "3 messages: 2 fine, 1 refused, 0 different when written again\n");
        EXPECT_EQ(result.err, "");
    }
    Result const shown = withLimit({"show"}, "64M", input);
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.out, HasSubstr("<stdin>:3  NormalGlobalEventCommand<-10>"));
    EXPECT_THAT(shown.err, HasSubstr("<stdin>:2:1: needs more memory than the limit of 64 MiB\n"));
}

TEST(MemoryLimit, AcceptsTheSameMessageUnderAHigherLimit)
{
    EXPECT_EQ(withLimit({"check"}, "1G", good + hugeMessage() + good).status, 0);
}

TEST(MemoryLimit, ReadsAFileThatIsLargerThanTheLimit)
{
    std::string input;
    for (int i = 0; i < 900000; ++i)
        input += good;
    EXPECT_GT(input.size(), std::size_t{35} << 20);
    Result const result = withLimit({"check"}, "32M", input);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "900000 messages: 900000 fine, 0 refused, 0 different when written again\n");
}

TEST(MemoryLimit, ReadsATextWithoutLineEndsThatIsLargerThanTheLimit)
{
    std::string input = "[";
    std::string const element = good.substr(0, good.size() - 1) + ",";
    for (int i = 0; i < 900000; ++i)
        input += element;
    input.back() = ']';
    Result const result = withLimit({"check"}, "32M", input);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "900000 messages: 900000 fine, 0 refused, 0 different when written again\n");
}

TEST(MemoryLimit, RefusesATextThatDoesNotEvenFitItself)
{
    std::string const input =
        good + "{\"clientname\":\"" + std::string(std::size_t{40} << 20, 'x') + "\n" + good;
    Result const result = withLimit({"check"}, "64M", input);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "<stdin>:2:1: the text is too long for the memory limit\n"
                          "3 messages: 2 fine, 1 refused, 0 different when written again\n");
}

TEST(MemoryLimit, KeepsATighterOneOfTheCaller)
{
    TemporaryFile const file(hugeMessage());
    Result const result = run({"bash", "-c", "ulimit -Sv 65536; " ZELK_MSG_PATH " check -q " + file.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, HasSubstr(":1:1: needs more memory than the limit of 64 MiB\n"));
}

TEST(MemoryLimit, HoldsTextsOfAnyLengthForSeveralThreads)
{
    std::string input;
    for (int i = 0; i < 12; ++i)
        input += "{\"clientname\":\"" + std::string(std::size_t{12} << 20, 'x') + "\",\"commandid\":0}\n";
    for (char const* const jobs : {"1", "2", "8"}) {
        Result const result = withLimit({"check", "-j", jobs}, "144M", input);
        EXPECT_EQ(result.status, 0) << jobs;
        EXPECT_EQ(result.out, "12 messages: 12 fine, 0 refused, 0 different when written again\n");
    }
}

TEST(MemoryLimit, IsNotReachedByAnEventWithAParameter)
{
    std::string const text =
        R"({"body":{"eventlist":[{"id":1,"name":"e","param0_default":0,"param0_name":"p","param0_type":"int"}],"id":-1},"header":""})";
    std::string const finding =
        "<stdin>:1:75: /body/eventlist/0/param0_name: an event with a parameter cannot be "
        "received: reading it goes on until memory is exhausted\n";
    for (std::vector<std::string> const& arguments : {std::vector<std::string>{"show"},
                                                      {"show", "--json"},
                                                      {"check", "-q"},
                                                      {"check", "-q", "-j", "2"},
                                                      {"graph"},
                                                      {"graph", "--lint"},
                                                      {"sequence"},
                                                      {"diff", "-", "odd-player.json"}}) {
        Result const result = withLimit(arguments, "64M", text);
        EXPECT_NE(result.status, 0) << arguments.front();
        EXPECT_THAT(result.err + result.out, HasSubstr(finding)) << arguments.front();
    }
}
