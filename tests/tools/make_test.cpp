#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace ZelkTest;

namespace {

Result make(std::vector<std::string> arguments, std::string const& input = "")
{
    arguments.insert(arguments.begin(), "make");
    Setting setting;
    setting.input = input;
    return zelkMsg(arguments, setting);
}

} // namespace

struct Made {
    char const* name;
    std::vector<std::string> arguments;
    char const* text;
};

void PrintTo(Made const& made, std::ostream* stream)
{
    *stream << made.name;
}

class MakeWrites : public testing::TestWithParam<Made> {};

TEST_P(MakeWrites, TheMessageWithItsMembers)
{
    Result const result = make(GetParam().arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, std::string(GetParam().text) + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Messages, MakeWrites,
    testing::Values(
        Made{"NothingSet", {"NormalGlobalEventCommand-10"}, R"({"clientname":"","commandid":0,"id":-10})"},
        Made{"TextThatLooksLikeANumber",
             {"StateCommand", "--set", "clientname=12", "--set", "commandid=4294967295"},
             R"({"clientname":"12","commandid":4294967295})"},
        Made{"TextWithAnEqualsSignAndQuotes",
             {"StateCommand", "--set", R"(clientname=a="b")"},
             R"({"clientname":"a=\"b\"","commandid":0})"},
        Made{"EmptyText", {"StateCommand", "--set", "clientname="}, R"({"clientname":"","commandid":0})"},
        Made{
            "IntegerForANumber",
            {"CreateSubscriberCommand", "--set", "filterFreq=5", "--set", "eventId=-1"},
            R"({"clientname":"","commandid":0,"eventId":-1,"filterFreq":5.0,"filterType":0,"id":-4,"publisherName":""})"},
        Made{"Boolean",
             {"EnableLogModeCommand", "--set", "value=true"},
             R"({"clientname":"","commandid":0,"id":-3,"value":true})"},
        Made{
            "ListsWithCommas",
            {"RegisterCommand", "--set", "ids=7,9", "--set", "type=1,0", "--set", "freq=0.5,2"},
            R"({"clientname":"","commandid":0,"eventlist":{"ids":[7,9]},"filterlist":{"freq":[0.5,2.0],"type":[1,0]}})"},
        Made{"ListAsJson",
             {"UnregisterCommand", "--set", "ids=[7, 9]"},
             R"({"clientname":"","commandid":0,"eventlist":{"ids":[7,9]}})"},
        Made{"EmptyList",
             {"UnregisterCommand", "--set", "ids="},
             R"({"clientname":"","commandid":0,"eventlist":{"ids":[]}})"},
        Made{"MemberByPath",
             {"RegisterMessageQueueResponse", "--set", "/body/name=q", "--set", "header=h"},
             R"({"body":{"id":-2,"name":"q"},"header":"h"})"},
        Made{"AnyName",
             {"XmlAttrToEventMappingResponse", "--set", "mode=12", "--set", "/body/level=40"},
             R"({"body":{"id":-7,"level":40,"mode":12},"header":""})"},
        Made{"ListOfRecords",
             {"MetaDataResponse", "--set", R"(eventlist=[{"name":"open","id":7}])"},
             R"({"body":{"eventlist":[{"id":7,"name":"open"}],"id":-1},"header":""})"},
        Made{"ListOfTexts",
             {"InfoResponse", "--set", "SenderID=a,b", "--set", "StateName=Open"},
             R"({"Data":{"StateName":"Open"},"MsgId":562949953486852,"SenderID":["a","b"]})"},
        Made{"FreeEventId",
             {"statecommandwitheventid", "--set", "id=5"},
             R"({"clientname":"","commandid":0,"id":5})"}),
    [](auto const& one) { return one.param.name; });

struct Refusal {
    char const* name;
    std::vector<std::string> arguments;
    char const* error;
};

void PrintTo(Refusal const& refusal, std::ostream* stream)
{
    *stream << refusal.name;
}

class MakeRefuses : public testing::TestWithParam<Refusal> {};

TEST_P(MakeRefuses, AndSaysWhatWouldBeRight)
{
    Result const result = make(GetParam().arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, std::string("zelk-msg: ") + GetParam().error + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Mistakes, MakeRefuses,
    testing::Values(
        Refusal{"UnknownKind",
                {"EnableLogMode"},
                "no kind of message is called 'EnableLogMode'; did you mean 'EnableLogModeCommand'?"},
        Refusal{"UnknownKey",
                {"DeleteSubscriberCommand", "--set", "publishername=p"},
                "DeleteSubscriberCommand has no member 'publishername'; did you mean 'publisherName'?"},
        Refusal{"KeyLikeNoOther",
                {"StateCommand", "--set", "temperature=5"},
                "StateCommand has no member 'temperature'"},
        Refusal{"NoKey", {"StateCommand", "--set", "=5"}, "--set wants KEY=VALUE, not '=5'"},
        Refusal{
            "NoValue", {"StateCommand", "--set", "clientname"}, "--set wants KEY=VALUE, not 'clientname'"},
        Refusal{"TextForAnInteger",
                {"StateCommand", "--set", "commandid=five"},
                "commandid wants an integer, not \"five\""},
        Refusal{"FractionForAnInteger",
                {"StateCommand", "--set", "commandid=1.5"},
                "commandid wants an integer, not 1.5; did you mean '2'?"},
        Refusal{"NumberForABoolean",
                {"EnableLogModeCommand", "--set", "value=1"},
                "value wants true or false, not 1; did you mean 'true'?"},
        Refusal{"TextForANumber",
                {"CreateSubscriberCommand", "--set", "filterFreq=fast"},
                "filterFreq wants a number, not \"fast\""},
        Refusal{"MisspelledBoolean",
                {"EnableLogModeCommand", "--set", "value=ture"},
                "value wants true or false, not \"ture\"; did you mean 'true'?"},
        Refusal{"BooleanInOtherWords",
                {"EnableLogModeCommand", "--set", "value=off"},
                "value wants true or false, not \"off\"; did you mean 'false'?"},
        Refusal{"BooleanForAnInteger",
                {"StateCommand", "--set", "commandid=true"},
                "commandid wants an integer, not true; did you mean '1'?"},
        Refusal{"NumberWithAUnit",
                {"CreateSubscriberCommand", "--set", "filterFreq=2.5Hz"},
                "filterFreq wants a number, not \"2.5Hz\"; did you mean '2.5'?"},
        Refusal{"NumberWithAComma",
                {"CreateSubscriberCommand", "--set", "filterFreq=0,5"},
                "filterFreq wants a number, not \"0,5\"; did you mean '0.5'?"},
        Refusal{"NegativeCommandId",
                {"StateCommand", "--set", "commandid=-7"},
                "/commandid: -7 would be read as 4294967289; did you mean '0'?"},
        Refusal{"TextThatIsNotUtf8",
                {"StateCommand", "--set", "clientname=\xFF"},
                "/clientname: the string is not UTF-8"},
        Refusal{"IntegerThatIsTooLarge",
                {"StateCommand", "--set", "commandid=4294967296"},
                "/commandid: 4294967296 would be read as 0; did you mean '4294967295'?"},
        Refusal{
            "ForeignId",
            {"EnableLogModeCommand", "--set", "id=-4"},
            "EnableLogModeCommand refuses this: event id does not match expected value; did you mean '-3'?"},
        Refusal{"ListsOfDifferentLengths",
                {"RegisterCommand", "--set", "ids=1,2"},
                "RegisterCommand refuses this: event ids and filter lists do not match"},
        Refusal{"ObjectForAList",
                {"MetaDataResponse", "--set", "eventlist={}"},
                "eventlist wants a list, not {}"},
        Refusal{
            "WrongListItem", {"UnregisterCommand", "--set", "ids=1,x"}, "ids/1 wants an integer, not \"x\""},
        Refusal{"NumberForARecord",
                {"MetaDataResponse", "--set", "eventlist=[7]"},
                "eventlist/0 wants an object, not 7"},
        Refusal{"UnknownKeyOfARecord",
                {"MetaDataResponse", "--set", R"(eventlist=[{"name":"a","ID":1}])"},
                "eventlist/0 has no member 'ID'; did you mean 'id'?"},
        Refusal{"MissingKeyOfARecord",
                {"MetaDataResponse", "--set", R"(eventlist=[{"name":"a"}])"},
                "eventlist/0 needs the member 'id'"},
        Refusal{"EventWithAParameter",
                {"MetaDataResponse", "--set",
                 R"(eventlist=[{"name":"a","id":1,"param0_name":"p","param0_type":"t","param0_default":0}])"},
                "/body/eventlist/0/param0_name: an event with a parameter cannot be received: reading it "
                "goes on until "
                "memory is exhausted"},
        Refusal{"HeaderThatIsNotRead",
                {"XmlAttrToEventMappingResponse", "--set", "header=h"},
                "/header: \"h\" would be read as \"\""}),
    [](auto const& one) { return one.param.name; });

TEST(MakeEdit, TakesMembersByNameOrAsTheyNest)
{
    Result const flat =
        make({"RegisterCommand", "--edit", "-"}, R"({"clientname":"ui","ids":[1],"type":[2],"freq":[3]})");
    EXPECT_EQ(flat.status, 0) << flat.err;
    EXPECT_EQ(
        flat.out,
        R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[1]},"filterlist":{"freq":[3.0],"type":[2]}})"
        "\n");
    Result const nested = make({"RegisterCommand", "--edit", "-"}, flat.out);
    EXPECT_EQ(nested.out, flat.out) << nested.err;
}

TEST(MakeEdit, ComesBeforeSet)
{
    TemporaryFile const file(R"({"clientname":"from file","commandid":1})");
    Result const result = make({"StateCommand", "--set", "commandid=2", "--edit", file.path()});
    EXPECT_EQ(result.out, "{\"clientname\":\"from file\",\"commandid\":2}\n");
}

TEST(MakeEdit, RefusesWhatIsWrong)
{
    EXPECT_EQ(make({"StateCommand", "--edit", "-"}, R"({"clientnam":"x"})").err,
              "zelk-msg: StateCommand has no member 'clientnam'; did you mean 'clientname'?\n");
    EXPECT_EQ(make({"StateCommand", "--edit", "-"}, R"({"clientname":5})").err,
              "zelk-msg: clientname wants a string, not 5; did you mean '\"5\"'?\n");
    EXPECT_EQ(make({"StateCommand", "--edit", "-"}, "7").err,
              "zelk-msg: the members to edit must be given as a JSON object\n");
    EXPECT_EQ(make({"StateCommand", "--edit", "-"}, "").err, "zelk-msg: <stdin>: there is no JSON object\n");
    EXPECT_EQ(make({"StateCommand", "--edit", "-"}, "{}{}").err,
              "zelk-msg: <stdin>: one JSON object is wanted, not several\n");
    EXPECT_EQ(make({"StateCommand", "--edit", "-"}, R"({"\u001b[31m":1})").err,
              "zelk-msg: StateCommand has no member '\\u001b[31m'\n");
    EXPECT_EQ(make({"StateCommand", "--edit", "/nonexistent"}).err,
              "zelk-msg: /nonexistent: No such file or directory\n");
    EXPECT_EQ(make({"StateCommand", "--edit", "/"}).err, "zelk-msg: /: Is a directory\n");
}

TEST(MakeEdit, PointsToWhatIsNotJson)
{
    Result const result = make({"StateCommand", "--edit", "-"}, "\n{\"commandid\":1,\n  clientname}\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "<stdin>:3:3: not JSON: expected a member name in quotes, found 'c'\n");
}

TEST(Make, PrintsIndentedWhenAsked)
{
    EXPECT_EQ(make({"StateCommand", "--indent"}).out, "{\n  \"clientname\": \"\",\n  \"commandid\": 0\n}\n");
}

TEST(Make, EscapesWhatCouldDisturbATerminal)
{
    EXPECT_EQ(make({"StateCommand", "--set",
                    "clientname=\xC2\x9B"
                    "31m"})
                  .out,
              R"({"clientname":"\u009b31m","commandid":0})"
              "\n");
}
