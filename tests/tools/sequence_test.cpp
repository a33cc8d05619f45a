#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace ZelkTest;
using testing::HasSubstr;

namespace {

Setting const inConversations = [] {
    Setting setting;
    setting.folder = ZELK_EXAMPLES_DIR "/conversations";
    return setting;
}();

Result sequence(std::string const& input, std::vector<std::string> arguments = {})
{
    arguments.insert(arguments.begin(), "sequence");
    Setting setting;
    setting.input = input;
    return zelkMsg(arguments, setting);
}

} // namespace

TEST(Sequence, DrawsAConversationForMermaid)
{
    Result const result = zelkMsg({"sequence", "door.jsonl"}, inConversations);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, expected("sequence-door.mmd"));
}

TEST(Sequence, TellsAConversationAsText)
{
    Result const result = zelkMsg({"sequence", "--format", "text", "door.jsonl"}, inConversations);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, expected("sequence-door.txt"));
}

TEST(Sequence, AnswersTheClientThatSpokeLast)
{
    Result const result = sequence(R"({"clientname":"a","commandid":0}{"clientname":"b","commandid":0})"
                                   R"({"header":"","body":{"id":1}})");
    EXPECT_EQ(result.out, "sequenceDiagram\n"
                          "    participant c0 as a\n"
                          "    participant c1 as b\n"
                          "    participant s as service\n"
                          "    c0->>s: StateCommand\n"
                          "    c1->>s: StateCommand\n"
                          "    s-->>c1: StateResponse 1\n");
}

TEST(Sequence, NotesRefusedMessagesAndRecords)
{
    Result const result = sequence("{}\n{\"name\":\"n\",\"version\":\"1\"}\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("<stdin>:1:1: no known message"));
    EXPECT_THAT(result.out, HasSubstr("    Note over s: #60;stdin#62;#58;1 refused<br/>no known message"));
    EXPECT_THAT(
        result.out,
        HasSubstr("    Note over s: #60;stdin#62;#58;2 InfraMetaDataAppInfo<br/>name n, version 1\n"));
}

TEST(Sequence, EscapesWhatMermaidWouldInterpret)
{
    Result const result = sequence(R"({"clientname":"x;y#z: <b>\n","commandid":0})");
    EXPECT_THAT(result.out, HasSubstr("participant c0 as #34;x#59;y#35;z#58; #60;b#62;#92;n#34;\n"));
}

TEST(Sequence, KeepsAClientCalledLikeAKeywordOfMermaidApart)
{
    Result const result =
        sequence(R"({"clientname":"end","commandid":0}{"clientname":"send","commandid":0})");
    EXPECT_THAT(result.out, HasSubstr("participant c0 as #101;nd\n"));
    EXPECT_THAT(result.out, HasSubstr("participant c1 as send\n"));
}
