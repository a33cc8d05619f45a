#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace ZelkTest;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

std::string const good = R"({"clientname":"ui","commandid":0,"id":-10})";

Result check(std::string const& input, std::vector<std::string> arguments = {})
{
    arguments.insert(arguments.begin(), "check");
    Setting setting;
    setting.input = input;
    return zelkMsg(arguments, setting);
}

} // namespace

TEST(Check, IsContentWithAGoodConversation)
{
    Result const result = zelkMsg({"check", ZELK_EXAMPLES_DIR "/conversations/door.jsonl"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "23 messages: 23 fine, 0 refused, 0 different when written again\n");
}

TEST(Check, NamesEveryRefusedMessage)
{
    Result const result = zelkMsg({"check", "refused.jsonl"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, expected("show-refused.err") +
                              "21 messages: 3 fine, 18 refused, 0 different when written again\n");
}

TEST(Check, PrintsOnlyFindingsWhenQuiet)
{
    EXPECT_EQ(check(good, {"--quiet"}).out, "");
    EXPECT_EQ(check("{}", {"-q"}).out, "<stdin>:1:1: no known message: neither \"clientname\" (command) nor "
                                       "\"header\" and \"body\" (response) "
                                       "nor \"MsgId\" is there\n");
}

struct Loss {
    char const* name;
    char const* text;
    char const* finding;
};

void PrintTo(Loss const& loss, std::ostream* stream)
{
    *stream << loss.name;
}

class CheckFindsWhatComesBackDifferent : public testing::TestWithParam<Loss> {};

TEST_P(CheckFindsWhatComesBackDifferent, AndSaysWhereAndHow)
{
    Result const result = check(GetParam().text, {"--quiet"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, std::string("<stdin>:") + GetParam().finding + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Losses, CheckFindsWhatComesBackDifferent,
    testing::Values(
        Loss{"FractionOfAnInteger", R"({"clientname":"ui","commandid":0.5,"id":-10})",
             "1:32: /commandid: 0.5 comes back as 0 (lost precision)"},
        Loss{"HighBitsOfAnInteger", R"({"clientname":"ui","commandid":4294967297,"id":-10})",
             "1:32: /commandid: 4294967297 comes back as 1 (lost precision)"},
        Loss{"IdByItsLowBits", R"({"clientname":"ui","commandid":0,"id":4294967286})",
             "1:39: /id: 4294967286 comes back as -10 (lost precision)"},
        Loss{"BooleanAsNumber", R"({"clientname":"ui","commandid":true,"id":-10})",
             "1:32: /commandid: true comes back as 1"},
        Loss{
            "NumberTooFineForADouble",
            R"({"clientname":"u","commandid":0,"eventId":1,"filterFreq":9007199254740993,"filterType":0,"id":-4,"publisherName":""})",
            "1:58: /filterFreq: 9007199254740993 comes back as 9007199254740992.0 (lost precision)"},
        Loss{"HeaderOfAMapping", R"({"header":"lost","body":{"id":-7,"mode":12}})",
             "1:11: /header: \"lost\" comes back as \"\""},
        Loss{"UnknownMemberOfARecord",
             "{\"header\":\"\",\"body\":{\"id\":-1,\"eventlist\":[\n  {\"id\":1,\"name\":\"e\",\n   "
             "\"color\":\"red\"}]}}",
             "3:12: /body/eventlist/0/color: is dropped: \"red\""},
        Loss{"UnknownMemberOfFields", R"({"AttribInfo":true,"more":1})", "1:27: /more: is dropped: 1"},
        Loss{
            "TypeWithoutParameter",
            R"({"header":"","body":{"id":-9,"statelist":[{"name":"","transition_id":1,"startstate":"","endState":"","eventname":"","eventid":0,"parametertype":"int"}]}})",
            "1:145: /body/statelist/0/parametertype: is dropped: \"int\""},
        Loss{"MissingIdentifier", R"({"SenderID":[],"Data":{"StateName":"S"}})",
             "1:1: /MsgId: is added: 562949953486852"}),
    [](auto const& one) { return one.param.name; });

TEST(Check, DoesNotMindOrderSpaceAndTheKindOfANumber)
{
    EXPECT_EQ(
        check(
            R"( { "id" : -4, "filterFreq" : 5, "filterType" : 1.0, "eventId" : 7, "publisherName" : "\u0070",
                          "clientname" : "ui", "commandid" : 0 } )")
            .status,
        0);
}

TEST(Check, MindsUnknownMembersOnlyWhenStrict)
{
    std::string const text = R"({"clientname":"ui","commandid":0,"id":-10,"by":{"whom":1}})";
    EXPECT_EQ(check(text).status, 0);
    Result const strict = check(text, {"--strict"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.out, "<stdin>:1:48: /by: unknown member: {\"whom\":1}\n"
                          "1 message: 0 fine, 1 refused, 0 different when written again\n");
}

TEST(Check, PointsIntoTheRightOneOfRepeatedMembers)
{
    Result const result = check(R"({"clientname":"ui","commandid":0,"commandid":1.5,"id":-10})", {"-q"});
    EXPECT_EQ(result.out, "<stdin>:1:46: /commandid: 1.5 comes back as 1 (lost precision)\n");
}

TEST(Check, KeepsTheOrderOfItsFindingsWithSeveralThreads)
{
    std::string input;
    for (int i = 0; i < 40000; ++i)
        input += i % 3 == 0 ? "{\"clientname\":" + std::to_string(i) + ",\"commandid\":0,\"id\":-10}\n"
                            : good + "\n";
    Result const one = check(input);
    EXPECT_EQ(one.status, 1);
    EXPECT_THAT(one.out,
                EndsWith("40000 messages: 26666 fine, 13334 refused, 0 different when written again\n"));
    EXPECT_EQ(check(input, {"-j", "4"}).out, one.out);
    EXPECT_EQ(check(input, {"-j", "0"}).out, one.out);
}

TEST(Check, ReadsEveryLayoutWithSeveralThreads)
{
    Result const result =
        check("[" + good + "," + good + "]\n" + good + good + "\n{\"clientname\"\n" + good, {"-j2"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "<stdin>:3:14: not JSON: expected ':', found the end of the text\n"
                          "6 messages: 5 fine, 1 refused, 0 different when written again\n");
}

TEST(Check, ReportsFilesThatCannotBeRead)
{
    for (char const* const jobs : {"1", "2"}) {
        Result const result = check(good, {"-j", jobs, "/nonexistent", "-"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "zelk-msg: /nonexistent: No such file or directory\n");
        EXPECT_EQ(result.out, "1 message: 1 fine, 0 refused, 0 different when written again\n");
    }
}

TEST(Check, FitsAnyNumberOfThreadsIntoTheMemoryLimit)
{
    for (char const* const limit : {"32M", "1G"}) {
        Result const result = check(good, {"-j", "256", "--memory-limit", limit});
        EXPECT_EQ(result.status, 0) << limit << result.err;
        EXPECT_EQ(result.out, "1 message: 1 fine, 0 refused, 0 different when written again\n");
    }
}

TEST(Check, ReportsWhatItFindsBeforeItWaitsForMore)
{
    // The input stays open until the finding has been read.
    Result const result = run({"bash", "-c",
                               "coproc " ZELK_MSG_PATH " check; echo '{' >&${COPROC[1]}; echo '" + good +
                                   "' >&${COPROC[1]}; read -r -t 20 line <&${COPROC[0]}; echo \"$line\"; "
                                   "exec {COPROC[1]}>&-; wait"});
    EXPECT_EQ(result.out,
              "<stdin>:1:2: not JSON: expected a member name in quotes, found the end of the text\n");
}
