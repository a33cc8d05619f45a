#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace ZelkTest;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

std::string const conversations = ZELK_EXAMPLES_DIR "/conversations";
std::string const good = R"({"clientname":"ui","commandid":0,"id":-10})";

/// `show` of a text on standard input.
Result show(std::string const& input, std::vector<std::string> arguments = {})
{
    arguments.insert(arguments.begin(), "show");
    Setting setting;
    setting.input = input;
    return zelkMsg(arguments, setting);
}

} // namespace

TEST(Show, ShowsAConversationAndAcceptsAllOfIt)
{
    Setting setting;
    setting.folder = conversations;
    Result const result = zelkMsg({"show", "door.jsonl"}, setting);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, expected("show-door.txt"));
}

TEST(Show, ShowsRefusedMessagesWithTheReasonAndGoesOn)
{
    Result const result = zelkMsg({"show", "refused.jsonl"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, expected("show-refused.txt"));
    EXPECT_EQ(result.err, expected("show-refused.err"));
}

struct Layout {
    char const* name;
    std::string text;
    int messages;
};

void PrintTo(Layout const& layout, std::ostream* stream)
{
    *stream << layout.name;
}

class ShowReadsEveryLayout : public testing::TestWithParam<Layout> {};

TEST_P(ShowReadsEveryLayout, AcceptsAllMessages)
{
    Result const result = show(GetParam().text);
    EXPECT_EQ(result.status, 0) << result.err;
    int messages = 0;
    for (std::size_t at = 0; (at = result.out.find("NormalGlobalEventCommand", at)) != std::string::npos;
         ++at)
        ++messages;
    EXPECT_EQ(messages, GetParam().messages) << result.out;
}

std::string const pretty = "{\n  \"clientname\": \"ui\",\n  \"commandid\": 0,\n  \"id\": -10\n}";

INSTANTIATE_TEST_SUITE_P(
    Layouts, ShowReadsEveryLayout,
    testing::Values(Layout{"Nothing", "", 0}, Layout{"BlankLines", "\n \n\r\n\t\n", 0},
                    Layout{"OneLine", good + "\n", 1}, Layout{"NoLineEndAtTheEnd", good + "\n" + good, 2},
                    Layout{"CarriageReturnLineFeed", good + "\r\n" + good + "\r\n", 2},
                    Layout{"CarriageReturnOnly", good + "\r" + good + "\r", 2},
                    Layout{"BlankLinesBetween", "\n" + good + "\n\n\n" + good + "\n", 2},
                    Layout{"ByteOrderMark", "\xEF\xBB\xBF" + good + "\n", 1},
                    Layout{"OneAfterTheOtherOnALine", good + good + " " + good + "\n", 3},
                    Layout{"Indented", pretty + "\n" + pretty + "\n", 2},
                    Layout{"IndentedWithoutSpaceBetween", pretty + pretty, 2},
                    Layout{"LinesThenIndented", good + "\n" + pretty + "\n" + good + "\n", 3},
                    Layout{"Array", "[" + good + "," + good + "]", 2},
                    Layout{"ArrayWithAnElementALine", "[\n" + good + ",\n" + good + "\n]\n", 2},
                    Layout{"IndentedArray", "[\n  " + good + ",\n  " + pretty + "\n]\n", 2},
                    Layout{"EmptyArray", "[]", 0},
                    Layout{"ArrayThenLine", "[" + good + "]\n" + good + "\n", 2}),
    [](auto const& one) { return one.param.name; });

TEST(Show, KeepsReadingRecordsThatBeginTheirLines)
{
    std::string const text = "{\"header\":\"h\",\"body\":{\"id\":-1,\"eventlist\":[\n"
                             "{\"name\":\"a\",\"id\":1},\n"
                             "{\"name\":\"b\",\"id\":2}\n"
                             "]}}\n";
    Result const result = show(text + good + "\n");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("<stdin>:1  MetaDataResponse"));
    EXPECT_THAT(result.out, HasSubstr("<stdin>:5  NormalGlobalEventCommand<-10>"));
}

struct Damage {
    char const* name;
    std::string text;
    std::string errors;
    char const* good; ///< the beginning of the view of a good message behind the damage
};

void PrintTo(Damage const& damage, std::ostream* stream)
{
    *stream << damage.name;
}

class ShowSurvivesDamage : public testing::TestWithParam<Damage> {};

TEST_P(ShowSurvivesDamage, ReportsItOnceAndReadsWhatFollows)
{
    Result const result = show(GetParam().text);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, GetParam().errors);
    EXPECT_THAT(result.out, HasSubstr(GetParam().good));
}

INSTANTIATE_TEST_SUITE_P(
    Damages, ShowSurvivesDamage,
    testing::Values(
        Damage{"LineCutOffAfterAMember", "{\"clientname\":\"ui\",\"commandid\":0\n" + good + "\n",
               "<stdin>:1:33: not JSON: expected ',' or '}', found the end of the text\n",
               "<stdin>:2  Normal"},
        Damage{"LineCutOffAfterAComma", "{\"clientname\":\"ui\",\n" + good + "\n",
               "<stdin>:1:20: not JSON: expected a member name in quotes, found the end of the text\n",
               "<stdin>:2  Normal"},
        Damage{"LineCutOffInAString", "{\"clientname\":\"u\n" + good + "\n",
               "<stdin>:1:17: not JSON: expected '\"' at the end of a string, found the end of the text\n",
               "<stdin>:2  Normal"},
        Damage{"LineCutOffInAList",
               "{\"clientname\":\"ui\",\"commandid\":0,\"eventlist\":{\"ids\":[7,\n" + good + "\n",
               "<stdin>:1:56: not JSON: expected a value, found the end of the text\n", "<stdin>:2  Normal"},
        Damage{"LineWithoutItsBeginning", "\"ui\",\"commandid\":0}\n" + good + "\n",
               "<stdin>:1:5: not JSON: expected the end of the text, found ','\n", "<stdin>:2  Normal"},
        Damage{"TooManyBrackets", good + "}\n" + good + "\n",
               "<stdin>:1:43: not JSON: expected the end of the text, found '}'\n", "<stdin>:2  Normal"},
        Damage{"WordsBetweenMessages", "starting\n" + good + "\n",
               "<stdin>:1:1: not JSON: expected a value, found 's'\n", "<stdin>:2  Normal"},
        Damage{"BrokenElementOfAnArray", "[\n  {\"clientname\":\"u},\n  " + good + "\n]\n",
               "<stdin>:2:21: not JSON: expected '\"' at the end of a string, found the end of the text\n",
               "<stdin>:3  Normal"},
        Damage{"ArrayNotClosed", "[" + good + ",\n", "<stdin>:2:1: the array of messages is not closed\n",
               "<stdin>:1  Normal"},
        Damage{"ByteOrderMarkBeforeALaterMessage", "\xEF\xBB\xBF\xEF\xBB\xBF{}\n" + good + "\n",
               "<stdin>:1:1: not JSON: a byte order mark stands before the message\n", "<stdin>:2  Normal"},
        Damage{"ZeroBytes", std::string(3, '\0') + "\n" + good + "\n",
               "<stdin>:1:1: not JSON: expected a value, found byte 0x00\n", "<stdin>:2  Normal"}),
    [](auto const& one) { return one.param.name; });

TEST(Show, ReadsALineThatIsLongerThanItsBuffer)
{
    std::string const name(700000, 'n');
    Result const result =
        show("{\"clientname\":\"" + name + "\",\"commandid\":0,\"id\":-10}\n" + good + "\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("clientname  " + name + "\n"));
    EXPECT_THAT(result.out, HasSubstr("<stdin>:2  NormalGlobalEventCommand<-10>"));
}

TEST(Show, ReadsEveryFileAndStandardInput)
{
    TemporaryFile const file(good + "\n");
    Result const result = show(good, {file.path(), "-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr(file.path() + ":1  Normal"));
    EXPECT_THAT(result.out, HasSubstr("<stdin>:1  Normal"));
}

TEST(Show, ReadsTheOtherFilesWhenOneIsMissing)
{
    Result const result = show(good, {"no-such-file", "/", "-"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zelk-msg: no-such-file: No such file or directory\nzelk-msg: /: Is a directory\n");
    EXPECT_THAT(result.out, HasSubstr("<stdin>:1  Normal"));
}

TEST(Show, KeepsTheTerminalSafeFromWhatNamesContain)
{
    Result const result =
        show("{\"clientname\":\"\\u001b[31mred\\u202e\\u0085 \\\"x\\\"\",\"commandid\":0,\"id\":-10}\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr(R"(clientname  "\u001b[31mred\u202e\u0085 \"x\"")"));
}

TEST(Show, ShowsMembersThatTheClassDoesNotKnow)
{
    Result const result = show(R"({"clientname":"ui","commandid":0,"id":-10,"urgent":{"by":3}})");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("    unknown members\n"
                                      "        member   value\n"
                                      "        /urgent  {\"by\":3}\n"));
}

TEST(Show, TellsEveryKindByItsEnvelopeIdAndMembers)
{
    struct Case {
        char const* text;
        char const* kind;
    };
    Case const cases[] = {
        {R"({"clientname":"c","commandid":1})", "StateCommand  command"},
        {R"({"clientname":"c","commandid":1,"id":5})", "StateCommandWithEventId  command"},
        {R"({"clientname":"c","commandid":1,"id":-6.9})", "NormalGlobalEventCommand<-6>  command"},
        {R"({"clientname":"c","commandid":1,"id":4294967293,"value":1})", "EnableLogModeCommand  command"},
        {R"({"clientname":"c","commandid":1,"eventlist":{"ids":[]},"filterlist":{"type":[],"freq":[]}})",
         "RegisterCommand  command"},
        {R"({"clientname":"c","commandid":1,"filterlist":{"freq":[],"type":[]}})",
         "RegisterCommand  command"},
        {R"({"clientname":"c","commandid":1,"eventlist":{"ids":[1.5,true]}})", "UnregisterCommand  command"},
        {R"({"header":"","body":{"id":5}})", "StateResponse  response"},
        {R"({"header":"","body":{"id":4294967287,"statelist":[]}})", "StateSpaceMetaDataResponse  response"},
        {R"({"header":"","body":{"id":-7,"statelist":3}})", "XmlAttrToEventMappingResponse  response"},
        {R"({"SenderID":[],"Data":{"StateName":"S"}})", "InfoResponse  response"},
        {R"({"AttribInfo":true})", "InfoRequestData  record"},
        {R"({"StateName":"S"})", "InfoResponseData  record"},
        {R"({"name":"n","version":"1"})", "InfraMetaDataAppInfo  record"},
    };
    for (Case const& one : cases) {
        Result const result = show(one.text);
        EXPECT_EQ(result.status, 0) << one.text << "\n" << result.err;
        EXPECT_THAT(result.out, HasSubstr(std::string("<stdin>:1  ") + one.kind)) << one.text;
    }
}

TEST(Show, UsesColoursOnlyWhenAsked)
{
    EXPECT_THAT(show(good).out, Not(HasSubstr("\033[")));
    EXPECT_THAT(show(good, {"--color", "never"}).out, Not(HasSubstr("\033[")));
    EXPECT_THAT(show(good, {"--color=always"}).out, HasSubstr("\033[1mNormalGlobalEventCommand<-10>\033[0m"));
}

TEST(Show, ReportsAnOutputThatCannotBeWritten)
{
    Setting setting;
    setting.input = good;
    Result const result = run({"sh", "-c", ZELK_MSG_PATH " show > /dev/full"}, setting);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zelk-msg: standard output: No space left on device\n");
}

TEST(Show, EndsQuietlyWhenNobodyReadsItsOutput)
{
    Setting setting;
    for (int i = 0; i < 20000; ++i)
        setting.input += good + "\n";
    Result const result = run({"sh", "-c", ZELK_MSG_PATH " show | head -n 1"}, setting);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "<stdin>:1  NormalGlobalEventCommand<-10>  command\n");
}

TEST(ShowKind, ShowsOnlyMessagesOfTheNamedKinds)
{
    Setting setting;
    setting.folder = conversations;
    Result const result =
        zelkMsg({"show", "--kind", "enablelogmodecommand", "--kind", "InfoResponse", "door.jsonl"}, setting);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, expected("show-kinds-door.txt"));
}

TEST(ShowKind, SuggestsTheNearestKind)
{
    Result const result = show("", {"--kind", "RegisterComand"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "zelk-msg: no kind of message is called 'RegisterComand'; did you mean 'RegisterCommand'?\n");
}

TEST(ShowGrep, FindsMembersByNamePathAndPattern)
{
    struct Case {
        char const* condition;
        char const* lines; ///< of the messages that are found
    };
    Case const cases[] = {
        {"clientname=building-monitor", "9 19 21"},
        {"clientname=*monitor", "9 19 21"},
        {"eventid=12", "5"},
        {"/id=-3", "19 21"},
        {"/body/id=-9", "5"},
        {"value=true", "19"},
        {"ids=[3,4,*", "6 22"},
        {"StateName=Open", "18"},
        {"clientname=nobody", ""},
    };
    for (Case const& one : cases) {
        Result const result = zelkMsg({"show", "--grep", one.condition, "door.jsonl"}, [] {
            Setting setting;
            setting.folder = conversations;
            return setting;
        }());
        EXPECT_EQ(result.status, 0);
        std::string lines;
        for (std::size_t at = 0; (at = result.out.find("door.jsonl:", at)) != std::string::npos;) {
            at += std::string("door.jsonl:").size();
            lines += (lines.empty() ? "" : " ") + result.out.substr(at, result.out.find(' ', at) - at);
        }
        EXPECT_EQ(lines, one.lines) << one.condition;
    }
}

TEST(ShowGrep, WantsAllConditionsToHold)
{
    std::string const other = R"({"clientname":"ui","commandid":5})";
    Result const result = show(good + "\n" + other, {"--grep", "clientname=ui", "--grep", "commandid=5"});
    EXPECT_THAT(result.out, HasSubstr("<stdin>:2  StateCommand"));
    EXPECT_THAT(result.out, Not(HasSubstr("<stdin>:1")));
}

TEST(ShowGrep, RefusesAConditionWithoutAKey)
{
    EXPECT_EQ(show("", {"--grep", "=x"}).err, "zelk-msg: --grep wants KEY=VALUE, not '=x'\n");
    EXPECT_EQ(show("", {"--grep", "x"}).status, 2);
}

TEST(ShowStats, CountsByKindAndClientAndByReason)
{
    Result const result =
        zelkMsg({"show", "--stats", "refused.jsonl", ZELK_EXAMPLES_DIR "/conversations/door.jsonl"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, expected("show-stats.txt"));
}

TEST(ShowJson, PrintsWhatWasReadIndented)
{
    Result const result = show(
        R"({"commandid":0,"clientname":"ui","eventlist":{"ids":[1,2]},"extra":[{"a":null},[]]})", {"--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "{\n"
                          "  \"clientname\": \"ui\",\n"
                          "  \"commandid\": 0,\n"
                          "  \"eventlist\": {\n"
                          "    \"ids\": [1,2]\n"
                          "  },\n"
                          "  \"extra\": [\n"
                          "    {\n"
                          "      \"a\": null\n"
                          "    },\n"
                          "    []\n"
                          "  ]\n"
                          "}\n");
}

TEST(ShowJson, CanBeReadAgain)
{
    Setting setting;
    setting.folder = conversations;
    std::string const json = zelkMsg({"show", "--json", "door.jsonl"}, setting).out;
    EXPECT_EQ(show(json, {"--json"}).out, json);
}

namespace {

/// `show --follow` of a file, which runs as long as this object exists.
class Follower {
public:
    explicit Follower(std::string const& file) : child_(::fork())
    {
        if (child_ != 0)
            return;
        if (std::freopen(out_.path().c_str(), "w", stdout) == nullptr ||
            std::freopen(err_.path().c_str(), "w", stderr) == nullptr)
            ::_exit(126);
        ::execl(ZELK_MSG_PATH, "zelk-msg", "show", "--follow", file.c_str(), nullptr);
        ::_exit(127);
    }
    Follower(Follower const&) = delete;
    Follower& operator=(Follower const&) = delete;
    ~Follower()
    {
        ::kill(child_, SIGTERM);
        ::waitpid(child_, nullptr, 0);
    }

    /// True as soon as it has shown the text; false when it does not in a long time.
    bool shows(std::string const& text) const
    {
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (contentOf(out_.path()).find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > deadline)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return true;
    }

    std::string output() const { return contentOf(out_.path()); }
    std::string errors() const { return contentOf(err_.path()); }

private:
    TemporaryFile out_;
    TemporaryFile err_;
    pid_t child_;
};

std::string from(std::string const& client)
{
    return R"({"clientname":")" + client + R"(","commandid":0})" + "\n";
}

void write(std::string const& path, std::string const& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

} // namespace

TEST(ShowFollow, ShowsWhatIsAddedToTheFile)
{
    TemporaryFile const file(good + "\n{\"clientname\":\"late\",");
    Follower const follower(file.path());
    EXPECT_TRUE(follower.shows(":1  Normal"));
    EXPECT_EQ(follower.output().find("late"), std::string::npos);
    file.append("\"commandid\":0,\"id\":-6}\n");
    EXPECT_TRUE(follower.shows("clientname  late"));
    file.append(good + "\n");
    EXPECT_TRUE(follower.shows(":3  Normal"));
}

TEST(ShowFollow, BeginsAgainWithAFileThatWasEmptied)
{
    TemporaryFile const file(from("first") + from("second") + R"({"clientname":"never comp)");
    Follower const follower(file.path());
    EXPECT_TRUE(follower.shows("clientname  second"));
    write(file.path(), from("anew"));
    EXPECT_TRUE(follower.shows("clientname  anew"));
    EXPECT_THAT(follower.output(),
                HasSubstr(":1  StateCommand  command\n    commandid   0\n    clientname  anew"));
    EXPECT_THAT(follower.errors(), HasSubstr(":3:26: not JSON: expected '\"' at the end of a string"));
}

TEST(ShowFollow, GoesOnWithTheFileThatTookThePlaceOfAnother)
{
    TemporaryFile const file(from("old"));
    std::string const away = file.path() + ".1";
    Follower const follower(file.path());
    EXPECT_TRUE(follower.shows("clientname  old"));
    ASSERT_EQ(std::rename(file.path().c_str(), away.c_str()), 0);
    write(away, from("old") + from("late"));
    EXPECT_TRUE(follower.shows("clientname  late"));
    write(file.path(), from("new"));
    EXPECT_TRUE(follower.shows("clientname  new"));
    file.append(from("newer"));
    EXPECT_TRUE(follower.shows("clientname  newer"));
    EXPECT_THAT(follower.output(),
                HasSubstr(":2  StateCommand  command\n    commandid   0\n    clientname  newer"));
    EXPECT_EQ(follower.errors(), "");
    ::unlink(away.c_str());
}

TEST(ShowFollow, EndsWithAPipe)
{
    Result const result =
        run({"sh", "-c", "echo '" + good + "' | timeout 20 " ZELK_MSG_PATH " show --follow"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("<stdin>:1  Normal"));
}

TEST(ShowFollow, EndsWhenNobodyReadsItsOutput)
{
    TemporaryFile const file(good + "\n");
    // Nothing is added to the file: there is nothing to write that would fail.
    Result const result = run({"bash", "-c",
                               "timeout 20 " ZELK_MSG_PATH " show --follow " + file.path() +
                                   " | head -n 1; echo ${PIPESTATUS[0]}"});
    EXPECT_THAT(result.out, EndsWith(":1  NormalGlobalEventCommand<-10>  command\n0\n"));
}

TEST(ShowFollow, TakesOneFileOnly)
{
    Result const result = zelkMsg({"show", "--follow", "refused.jsonl", "odd-player.json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zelk-msg: --follow takes one file only\n");
}

TEST(Show, ShowsAMessageBeforeItWaitsForTheNext)
{
    // The rest of the second message comes only when the first one has been seen.
    Result const result =
        run({"bash", "-c",
             "coproc " ZELK_MSG_PATH " show; printf '%s\\n{\"clientname\"' '" + good +
                 "' >&${COPROC[1]}; read -r -t 20 line <&${COPROC[0]}; echo \"$line\";"
                 "echo ':\"ui\",\"commandid\":0}' >&${COPROC[1]}; exec {COPROC[1]}>&-; cat <&${COPROC[0]}"});
    EXPECT_THAT(result.out, StartsWith("<stdin>:1  NormalGlobalEventCommand<-10>  command\n"));
    EXPECT_THAT(result.out, HasSubstr("<stdin>:2  StateCommand  command\n"));
}

TEST(Show, ShowsItsProgressOnATerminalOnly)
{
    // Not in the form in which the class writes it, which takes longer to look at.
    std::string const slow = "{ \"commandid\":0,\"clientname\":\"ui\",\"eventlist\":{\"ids\":[" + [] {
        std::string ids = "1";
        for (int i = 0; i < 2000; ++i)
            ids += ", 1";
        return ids;
    }() + "]}}\n";
    std::string content;
    for (int i = 0; i < 6000; ++i)
        content += slow;
    TemporaryFile const file(content);
    std::string const command = ZELK_MSG_PATH " check " + file.path();
    Setting terminal;
    terminal.environment["TERM"] = "xterm";
    std::string const shown = run({"script", "-qec", command, "/dev/null"}, terminal).out;
    EXPECT_THAT(shown, HasSubstr("% of "));
    EXPECT_THAT(shown, HasSubstr("\r\033[K6000 messages: ")); // the bar is wiped out first
    Result const piped = run({"sh", "-c", command}, terminal);
    EXPECT_EQ(piped.out, "6000 messages: 6000 fine, 0 refused, 0 different when written again\n");
    EXPECT_EQ(piped.err, "");
}

TEST(Show, UsesColoursOnATerminalUnlessToldOtherwise)
{
    struct Case {
        char const* variable;
        char const* value;
        bool colours;
    };
    for (Case const& one : {Case{"LANG", "C", true},
                            {"NO_COLOR", "", true},
                            {"NO_COLOR", "1", false},
                            {"TERM", "dumb", false}}) {
        Setting terminal;
        terminal.environment["TERM"] = "xterm";
        terminal.environment[one.variable] = one.value;
        std::string const shown = run({"script", "-qec", ZELK_MSG_PATH " kinds", "/dev/null"}, terminal).out;
        EXPECT_THAT(shown, HasSubstr("RegisterCommand"));
        EXPECT_EQ(shown.find("\033[") != std::string::npos, one.colours) << one.variable << "=" << one.value;
    }
}

TEST(Show, RefusesTextInAnotherEncoding)
{
    for (std::string const mark : {"\xFF\xFE", "\xFE\xFF"}) {
        Result const result = show(mark + std::string("{\0}\0", 4));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "zelk-msg: <stdin>: the text is UTF-16; messages are UTF-8\n");
    }
}

TEST(ShowGrep, ComparesNumbersByTheirValue)
{
    std::string const text =
        R"({"clientname":"ui","commandid":5,"eventId":7,"filterFreq":0.50,"filterType":1,"id":-4,"publisherName":"p"})";
    for (char const* const condition : {"filterFreq=0.5", "filterFreq=5e-1", "commandid=5.0", "eventId=7"})
        EXPECT_THAT(show(text, {"--grep", condition}).out, HasSubstr("CreateSubscriberCommand")) << condition;
    EXPECT_EQ(show(text, {"--grep", "commandid=5.5"}).out, "");
}

TEST(ShowJson, EscapesWhatCouldDisturbATerminal)
{
    std::string const wild =
        "{\"\xC2\x9B"
        "1m\":\"\\u001b[31m\x7F\xE2\x80\xAE\",\"clientname\":\"\xC3\xA9\",\"commandid\":0}";
    std::string const json = show(wild, {"--json"}).out;
    EXPECT_EQ(json, "{\n"
                    "  \"clientname\": \"\xC3\xA9\",\n"
                    "  \"commandid\": 0,\n"
                    "  \"\\u009b1m\": \"\\u001b[31m\\u007f\\u202e\"\n"
                    "}\n");
    EXPECT_EQ(show(json, {"--json"}).out, json);
}

TEST(Show, RefusesAnEventWithAParameterWithoutTakingMemory)
{
    Result const result = zelkMsg({"show", "--kind", "MetaDataResponse", "refused.jsonl"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out,
                HasSubstr("refused.jsonl:14  refused  MetaDataResponse\n"
                          "    /body/eventlist/0/param0_name: an event with a parameter cannot be "
                          "received: reading it goes on until memory is exhausted\n"));
}
