#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace ZelkTest;
using testing::HasSubstr;

namespace {

std::vector<std::string> const commands{"show", "check", "diff", "graph", "sequence", "make", "kinds"};

/// The long options that a help text names.
std::set<std::string> optionsIn(std::string const& help)
{
    std::set<std::string> options;
    std::regex const option("(?:^|[ ,\n])--([a-z][a-z-]*)");
    for (std::sregex_iterator at(help.begin(), help.end(), option), end; at != end; ++at)
        options.insert((*at)[1]);
    return options;
}

std::string withoutBackslashes(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), '\\'), text.end());
    return text;
}

} // namespace

TEST(CommandLine, HasHelpWithExamplesAndExitStatusForEveryCommand)
{
    EXPECT_EQ(zelkMsg({"--help"}).status, 0);
    for (std::string const& command : commands) {
        EXPECT_THAT(zelkMsg({"--help"}).out, HasSubstr("\n  " + command + " "));
        Result const help = zelkMsg({command, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.err, "");
        EXPECT_THAT(help.out, HasSubstr("Usage: zelk-msg " + command));
        EXPECT_THAT(help.out, HasSubstr("Example"));
        EXPECT_THAT(help.out, HasSubstr("  zelk-msg " + command));
        EXPECT_THAT(help.out, HasSubstr("Exit status: "));
    }
}

TEST(CommandLine, TellsItsVersion)
{
    Result const result = zelkMsg({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "zelk-msg " ZELK_VERSION "\n");
}

TEST(CommandLine, RefusesWrongUsageWithOneLineAndStatusTwo)
{
    struct Case {
        std::vector<std::string> arguments;
        char const* error;
    };
    Case const cases[] = {
        {{}, "zelk-msg: which command? (see zelk-msg --help)\n"},
        {{"chek"}, "zelk-msg: no command is called 'chek'; did you mean 'check'? (see zelk-msg --help)\n"},
        {{"check", "--strikt"},
         "zelk-msg: The following argument was not expected: --strikt (see zelk-msg check --help)\n"},
        {{"make"}, "zelk-msg: KIND is required (see zelk-msg make --help)\n"},
        {{"show", "--color", "blue"},
         "zelk-msg: --color: blue not in {auto,always,never} (see zelk-msg show --help)\n"},
        {{"show", "--memory-limit", "lots"},
         "zelk-msg: --memory-limit: 'lots' is no size such as 512M or 4G (see zelk-msg show --help)\n"},
        {{"show", "--memory-limit", "1M"},
         "zelk-msg: --memory-limit: at least 32M are needed (see zelk-msg show --help)\n"},
        {{"show", "--stats", "--json"}, "zelk-msg: --stats excludes --json (see zelk-msg show --help)\n"},
        {{"graph", "--lint", "--format", "dot"},
         "zelk-msg: --format excludes --lint (see zelk-msg graph --help)\n"},
    };
    for (Case const& one : cases) {
        Result const result = zelkMsg(one.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, one.error);
    }
}

TEST(CommandLine, TakesGeneralOptionsBeforeAndBehindTheCommand)
{
    for (std::vector<std::string> const& arguments :
         {std::vector<std::string>{"--color", "always", "kinds"}, {"kinds", "--color", "always"}})
        EXPECT_THAT(zelkMsg(arguments).out, HasSubstr("\033["));
}

TEST(CommandLine, ReadsSizesWithEveryUsualUnit)
{
    for (char const* const size : {"67108864", "65536k", "64M", "64MB", "64MiB", "1g", "1T", "99999999T"})
        EXPECT_EQ(zelkMsg({"kinds", "--memory-limit", size}).status, 0) << size;
}

TEST(CommandLine, ReportsHelpThatCannotBeWritten)
{
    for (char const* const arguments : {"--help", "--version", "show --help"}) {
        Result const result = run({"sh", "-c", std::string(ZELK_MSG_PATH " ") + arguments + " > /dev/full"});
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_EQ(result.err, "zelk-msg: standard output: No space left on device\n");
    }
}

TEST(Documents, NameEveryCommandAndOption)
{
    std::string const folder = ZELK_MSG_FOLDER;
    for (std::string const file : {"/zelk-msg.1", "/completions/zelk-msg.bash", "/completions/_zelk-msg",
                                   "/completions/zelk-msg.fish"}) {
        std::string const text = withoutBackslashes(contentOf(folder + file));
        for (std::string const& command : commands) {
            EXPECT_TRUE(std::regex_search(text, std::regex("\\b" + command + "\\b")))
                << file << ": " << command;
            for (std::string const& option : optionsIn(zelkMsg({command, "--help"}).out))
                EXPECT_TRUE(std::regex_search(text, std::regex("(--|-l )" + option + "\\b")))
                    << file << ": --" << option;
        }
    }
}

TEST(Documents, CompleteEveryKind)
{
    std::istringstream list(zelkMsg({"kinds"}).out);
    std::string line;
    std::getline(list, line);
    while (std::getline(list, line) && !line.empty()) {
        std::string kind = line.substr(0, line.find(' '));
        kind.erase(std::remove_if(kind.begin(), kind.end(), [](char c) { return c == '<' || c == '>'; }),
                   kind.end());
        for (std::string const file : {"zelk-msg.bash", "_zelk-msg", "zelk-msg.fish"}) {
            std::string const text = contentOf(std::string(ZELK_MSG_FOLDER "/completions/") + file);
            EXPECT_TRUE(std::regex_search(text, std::regex("[ (\"]" + kind + "[ )\"\n]")))
                << file << ": " << kind;
        }
    }
}

TEST(Documents, BashCompletionOffersCommandsOptionsAndKinds)
{
    auto const complete = [](std::string const& words) {
        Result const result =
            run({"bash", "-c",
                 "source " ZELK_MSG_FOLDER "/completions/zelk-msg.bash; COMP_WORDS=(" + words +
                     "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _zelk_msg; echo \"${COMPREPLY[*]}\""});
        EXPECT_EQ(result.err, "");
        return result.out;
    };
    EXPECT_EQ(complete("zelk-msg s"), "show sequence\n");
    EXPECT_EQ(complete("zelk-msg check --str"), "--strict\n");
    EXPECT_EQ(complete("zelk-msg graph --format p"), "plantuml\n");
    EXPECT_EQ(complete("zelk-msg graph --format s"), "svg\n");
    EXPECT_EQ(complete("zelk-msg sequence --format m"), "mermaid\n");
    EXPECT_EQ(complete("zelk-msg make Delete"), "DeleteSubscriberCommand\n");
    EXPECT_EQ(complete("zelk-msg show --kind Unre"), "UnregisterCommand\n");
}
