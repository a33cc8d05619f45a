#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace ZelkTest;
using testing::HasSubstr;

namespace {

Result diff(std::string const& left, std::string const& right, std::vector<std::string> arguments = {})
{
    TemporaryFile const a(left);
    TemporaryFile const b(right);
    arguments.insert(arguments.begin(), "diff");
    arguments.push_back(a.path());
    arguments.push_back(b.path());
    Result result = zelkMsg(arguments);
    for (auto const& [path, name] : {std::pair(a.path(), "A"), std::pair(b.path(), "B")}) {
        for (std::string* const text : {&result.out, &result.err}) {
            for (std::size_t at = 0; (at = text->find(path)) != std::string::npos;)
                text->replace(at, path.size(), name);
        }
    }
    return result;
}

std::string command(int id, std::string const& client = "ui")
{
    return R"({"clientname":")" + client + R"(","commandid":)" + std::to_string(id) + "}\n";
}

} // namespace

TEST(Diff, FindsNothingBetweenMessagesOfTheSameMeaning)
{
    Result const result = diff(
        R"({"clientname":"ui","commandid":0,"id":-4,"publisherName":"p","eventId":7,"filterType":1,"filterFreq":5})",
        R"({"id":-4.0,"eventId":7.9,"filterFreq":5.0,"filterType":true,"publisherName":"\u0070","commandid":0,
                 "clientname":"ui"})");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
}

TEST(Diff, ShowsMembersThatDiffer)
{
    Result const result = diff(R"({"clientname":"ui","commandid":0,"id":-3,"value":true,"old":1})",
                               R"({"clientname":"ui","commandid":0,"id":-3,"value":false,"new":2})");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "EnableLogModeCommand  A:1  B:1\n"
                          "    + /new: 2\n"
                          "    - /old: 1\n"
                          "    - /value: true\n"
                          "    + /value: false\n");
}

TEST(Diff, FindsMessagesThatWereAddedAndTakenAway)
{
    Result const result =
        diff(command(1) + command(2) + command(3) + command(4),
             command(1) + command(3) + R"({"header":"h","body":{"id":0}})" + "\n" + command(4));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "StateCommand  only in A:2\n"
                          "    - {\"clientname\":\"ui\",\"commandid\":2}\n"
                          "StateResponse  only in B:3\n"
                          "    + {\"body\":{\"id\":0},\"header\":\"h\"}\n");
}

TEST(Diff, ComparesAMessageThatChangedWithWhatItBecame)
{
    Result const result =
        diff(command(1) + command(2) + command(3), command(1) + command(2, "other") + command(3));
    EXPECT_EQ(result.out, "StateCommand  A:2  B:2\n"
                          "    - /clientname: \"ui\"\n"
                          "    + /clientname: \"other\"\n");
}

TEST(Diff, TakesAnInsertedListItemForOneDifference)
{
    auto const list = [](std::string const& events) {
        return R"({"header":"","body":{"id":-1,"eventlist":[)" + events + "]}}";
    };
    std::string const a = R"({"id":1,"name":"a"})";
    std::string const b = R"({"id":2,"name":"b"})";
    std::string const c = R"({"id":3,"name":"c"})";
    Result const result = diff(list(a + "," + c), list(a + "," + b + "," + c));
    EXPECT_EQ(result.out, "MetaDataResponse  A:1  B:1\n"
                          "    + /body/eventlist/1: {\"id\":2,\"name\":\"b\"}\n");
}

TEST(Diff, HandlesConversationsWithoutAnythingInCommon)
{
    std::string left;
    std::string right;
    for (int i = 0; i < 4000; ++i) {
        left += command(i);
        right += command(10000 + i);
    }
    Result const result = diff(left, right);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out,
                HasSubstr("StateCommand  A:4000  B:4000\n    - /commandid: 3999\n    + /commandid: 13999\n"));
}

TEST(Diff, FindsTheRestOfConversationsThatDifferInThousandsOfPlaces)
{
    std::string left;
    std::string right = command(-1, "inserted");
    for (int i = 0; i < 20000; ++i) {
        left += command(i);
        right += command(i % 8 == 0 ? 100000 + i : i);
    }
    Result const result = diff(left, right);
    EXPECT_EQ(result.status, 1);
    // The one that was inserted at the front, and 2500 that changed behind it.
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), 'S'), 2501);
    EXPECT_THAT(result.out, HasSubstr("StateCommand  A:19993  B:19994\n"
                                      "    - /commandid: 19992\n    + /commandid: 119992\n"));
}

TEST(Diff, DoesNotTakeForeverForConversationsOfOtherKinds)
{
    std::string left;
    std::string right;
    for (int i = 0; i < 50000; ++i) {
        left += command(i);
        right += R"({"header":"h","body":{"id":)" + std::to_string(i) + "}}\n";
    }
    Result const result = diff(left, right, {"--quiet"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
}

TEST(Diff, RefusesToReadStandardInputTwice)
{
    Result const result = zelkMsg({"diff", "-", "-"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zelk-msg: only one of the two can be standard input\n");
}

TEST(Diff, HandlesEmptyConversations)
{
    EXPECT_EQ(diff("", "").status, 0);
    EXPECT_EQ(diff("", command(1)).status, 1);
    EXPECT_EQ(diff(command(1), "").status, 1);
}

TEST(Diff, OnlySetsTheStatusWhenQuiet)
{
    Result const result = diff(command(1), command(2), {"--quiet"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
}

TEST(Diff, CallsRefusedMessagesTrouble)
{
    Result const result = diff(command(1) + "{}\n", command(1));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("A:2:1: no known message"));
    EXPECT_EQ(diff(command(1), command(1)).status, 0);
}
