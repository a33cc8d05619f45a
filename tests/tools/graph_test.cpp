#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace ZelkTest;
using testing::HasSubstr;

namespace {

std::string const door = ZELK_EXAMPLES_DIR "/conversations/door.jsonl";

std::string transition(std::string const& from, std::string const& event, int id, std::string const& to)
{
    return R"({"name":"t","transition_id":1,"startstate":")" + from + R"(","endState":")" + to +
           R"(","eventname":")" + event + R"(","eventid":)" + std::to_string(id) + "}";
}

std::string space(std::string const& transitions)
{
    return R"({"header":"machine","body":{"id":-9,"statelist":[)" + transitions + "]}}\n";
}

Result graph(std::string const& input, std::vector<std::string> arguments = {})
{
    arguments.insert(arguments.begin(), "graph");
    Setting setting;
    setting.input = input;
    return zelkMsg(arguments, setting);
}

} // namespace

TEST(Graph, DrawsTheStateSpaceOfAConversation)
{
    Result const result = zelkMsg({"graph", door});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, expected("graph-door.dot"));
}

TEST(Graph, DrawsEveryTransitionOfOneAndTheSamePair)
{
    Result const result = graph(space(transition("A", "x", 1, "B") + "," + transition("A", "y", 2, "B") +
                                      "," + transition("A", "z", 3, "A")));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("s0 -> s1 [label=\" x \\n 1 t \"]"));
    EXPECT_THAT(result.out, HasSubstr("s0 -> s1 [label=\" y \\n 1 t \"]"));
    EXPECT_THAT(result.out, HasSubstr("s0 -> s0 [label=\" z \\n 1 t \"]"));
}

TEST(Graph, EscapesWhatTheDrawingLanguageWouldInterpret)
{
    Result const result = graph(space(transition(R"(\"]; \\N <b> &amp; \n\u0001)", R"(a\"b)", 1, "B")));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr(R"(s0 [label="\"]; \\N <b> &amp;amp; \\n\\u0001"])"));
    EXPECT_THAT(result.out, HasSubstr(R"(label=" a\"b \n 1 t ")"));
    Setting setting;
    setting.input = result.out;
    Result const dot = run({"dot", "-Tplain"}, setting);
    EXPECT_EQ(dot.status, 0);
    EXPECT_EQ(dot.err, "");
}

TEST(Graph, DrawsAnEmptyStateSpace)
{
    Result const result = graph(space(""));
    EXPECT_EQ(result.status, 0);
    Setting setting;
    setting.input = result.out;
    EXPECT_EQ(run({"dot", "-Tplain"}, setting).out, "graph 1 0 0\nstop\n");
}

TEST(Graph, WritesAnSvgFile)
{
    TemporaryFile const file;
    Result const result = zelkMsg({"graph", "--svg", file.path(), door});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "");
    std::string const svg = contentOf(file.path());
    for (char const* const part : {"<svg ", ">EmergencyOpen</text>", "unlock(pin: string)", "</svg>"})
        EXPECT_NE(svg.find(part), std::string::npos) << part;
}

TEST(Graph, SaysSoWhenGraphvizIsMissing)
{
    Setting setting;
    setting.environment["PATH"] = "/nonexistent";
    Result const result = zelkMsg({"graph", "--svg", "/nonexistent/x.svg", door}, setting);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "zelk-msg: SVG needs the program dot, which is not installed (Debian has it in the package "
              "graphviz); the other formats do without it\n");
}

TEST(Graph, ReportsThatTheSvgFileCannotBeWritten)
{
    Result const missing = zelkMsg({"graph", "--svg", "/nonexistent/x.svg", door});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err, "zelk-msg: /nonexistent/x.svg: No such file or directory\n");
    Result const full = zelkMsg({"graph", "--svg", "/dev/full", door});
    EXPECT_EQ(full.status, 2);
    EXPECT_EQ(full.err, "zelk-msg: /dev/full: No space left on device\n");
}

TEST(Graph, PrintsSvgToStandardOutput)
{
    TemporaryFile const file;
    EXPECT_EQ(zelkMsg({"graph", "--svg", file.path(), door}).status, 0);
    EXPECT_EQ(zelkMsg({"graph", "--svg", "-", door}).out, contentOf(file.path()));
    EXPECT_EQ(zelkMsg({"graph", "--format", "svg", door}).out, contentOf(file.path()));
}

TEST(Graph, BreaksLongNamesAtTheirJoints)
{
    Result const result = graph(space(
        transition("a state whose name tells a whole story of its own",
                   "event_with_a_name_that_is_a_sentence", 1, std::string(50, 'x')) +
        "," +
        transition("WaitingForTheOperatorToConfirmTheRequest", "e", 2, "ShortEnoughForOneLineOfTheDrawing")));
    EXPECT_THAT(result.out, HasSubstr("[label=\"a state whose name tells a whole \\nstory of its own\"]"));
    EXPECT_THAT(result.out, HasSubstr("[label=\" event_with_a_name_that_is_a_ \\n sentence \\n 1 t \"]"));
    EXPECT_THAT(result.out,
                HasSubstr("[label=\"" + std::string(40, 'x') + "\\n" + std::string(10, 'x') + "\""));
    EXPECT_THAT(result.out, HasSubstr("[label=\"WaitingForTheOperatorToConfirm\\nTheRequest\""));
    EXPECT_THAT(result.out, HasSubstr("[label=\"ShortEnoughForOneLineOfTheDrawing\""));
}

TEST(Graph, GivesNamelessStatesAndEventsALabelInEveryLanguage)
{
    std::string const nameless = space(transition("", "", 1, "B"));
    Result const mermaid = graph(nameless, {"--format", "mermaid"});
    EXPECT_THAT(mermaid.out, HasSubstr("state \"#8203;\" as s0\n"));
    EXPECT_THAT(mermaid.out, HasSubstr("s0 --> s1 : #8203;\n"));
    Result const plant_uml = graph(nameless, {"--format", "plantuml"});
    EXPECT_THAT(plant_uml.out, HasSubstr("state \"&#8203;\" as s0\n"));
    EXPECT_THAT(plant_uml.out, HasSubstr("s0 --> s1 : &#8203;\\n1 t\n"));
}

TEST(Graph, KeepsControlCharactersOutOfEveryLanguage)
{
    std::string const wild = space(transition(R"(\u001b[31m\u009b\u202e\n)", R"(\u0007\r)", 1, "B"));
    for (char const* const format : {"dot", "mermaid", "plantuml", "svg"}) {
        Result const result = graph(wild, {"--format", format});
        EXPECT_EQ(result.status, 0);
        for (char const* const character : {"\033", "\xC2\x9B", "\xE2\x80\xAE", "\a", "\r"})
            EXPECT_EQ(result.out.find(character), std::string::npos) << format;
    }
}

TEST(Graph, SaysSoWhenThereIsNoStateSpace)
{
    Result const result = graph(R"({"clientname":"ui","commandid":0,"id":-10})");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "zelk-msg: <stdin>: no state space in it (StateSpaceMetaDataResponse)\n");
}

TEST(Graph, ReportsRefusedMessagesAndDrawsTheRest)
{
    Result const result = graph("{\n" + space(transition("A", "x", 1, "B")));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "<stdin>:1:2: not JSON: expected a member name in quotes, found the end of the text\n");
    EXPECT_THAT(result.out, HasSubstr("digraph \"machine\""));
}

TEST(Graph, DrawsTheLastStateSpaceUnlessToldOtherwise)
{
    std::string const two = space(transition("A", "x", 1, "B")) + space(transition("C", "x", 1, "D"));
    Result const last = graph(two);
    EXPECT_EQ(last.status, 0);
    EXPECT_EQ(last.err,
              "zelk-msg: <stdin>: 2 state spaces, the last one is drawn (--number chooses another)\n");
    EXPECT_THAT(last.out, HasSubstr("[label=\"C\"]"));
    Result const first = graph(two, {"--number", "1"});
    EXPECT_EQ(first.err, "");
    EXPECT_THAT(first.out, HasSubstr("[label=\"A\"]"));
    Result const third = graph(two, {"--number", "3"});
    EXPECT_EQ(third.status, 2);
    EXPECT_EQ(third.err, "zelk-msg: <stdin>: there are only 2 state spaces\n");
}

TEST(Graph, GivesLoopsOfOneStateDifferentSidesOrOneLabel)
{
    std::string const a = transition("A", "x", 1, "A");
    std::string const b = transition("A", "y", 2, "A");
    Result const two = graph(space(a + "," + b));
    EXPECT_THAT(two.out, HasSubstr("s0 -> s0 [label=\" x \\n 1 t \"];\n"));
    EXPECT_THAT(two.out, HasSubstr("s0 -> s0 [label=\" y \\n 1 t \", tailport=w, headport=w];\n"));
    Result const three = graph(space(a + "," + b + "," + transition("A", "z", 3, "A")));
    EXPECT_THAT(three.out, HasSubstr("s0 -> s0 [label=\" x \\n 1 t \\n y \\n 1 t \\n z \\n 1 t \"];\n"));
}

struct Drawing {
    char const* name;
    std::vector<std::string> arguments;
    char const* expectedFile;
};

void PrintTo(Drawing const& drawing, std::ostream* stream)
{
    *stream << drawing.name;
}

class GraphMarksOddities : public testing::TestWithParam<Drawing> {};

TEST_P(GraphMarksOddities, InEveryLanguage)
{
    std::vector<std::string> arguments{"graph", "odd-player.json"};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    Result const result = zelkMsg(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, expected(GetParam().expectedFile));
}

INSTANTIATE_TEST_SUITE_P(Languages, GraphMarksOddities,
                         testing::Values(Drawing{"Dot", {}, "graph-odd-player.dot"},
                                         Drawing{"Mermaid", {"--format", "mermaid"}, "graph-odd-player.mmd"},
                                         Drawing{
                                             "PlantUml", {"--format", "plantuml"}, "graph-odd-player.puml"}),
                         [](auto const& one) { return one.param.name; });

TEST(GraphLint, NamesUnreachableStatesDeadEndsAndAmbiguousEvents)
{
    Result const result = zelkMsg({"graph", "--lint", "odd-player.json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "unreachable: no way leads from Stopped to Service <&> test\n"
                          "dead end: no transition leads from Broken \"disc\" to another state\n"
                          "non-deterministic: in Stopped the event play (1) leads to Playing (transition 1), "
                          "Loading (transition 2)\n");
}

TEST(GraphLint, HasNothingToSayOfTheDoor)
{
    Result const result = zelkMsg({"graph", "--lint", door});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
}

TEST(GraphLint, TellsEventsApartByNumberAndName)
{
    auto const lint = [](std::string const& second) {
        return graph(space(transition("A", "x", 1, "B") + "," + second + "," + transition("B", "y", 9, "A") +
                           "," + transition("C", "y", 9, "A")),
                     {"--lint"});
    };
    EXPECT_EQ(lint(transition("A", "x", 1, "C")).status, 1);
    EXPECT_EQ(lint(transition("A", "x", 2, "C")).status, 0);
    EXPECT_EQ(lint(transition("A", "z", 1, "C")).status, 0);
}

TEST(GraphLint, StartsFromTheNamedState)
{
    std::string const chain = space(transition("A", "x", 1, "B") + "," + transition("B", "x", 1, "C") + "," +
                                    transition("C", "x", 1, "B"));
    EXPECT_EQ(graph(chain, {"--lint"}).out, "");
    EXPECT_EQ(graph(chain, {"--lint", "--initial", "B"}).out, "unreachable: no way leads from B to A\n");
    Result const unknown = graph(chain, {"--lint", "--initial", "D"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "zelk-msg: no state is called 'D'\n");
}
