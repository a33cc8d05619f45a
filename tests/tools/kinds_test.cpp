#include "tests/tools/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using namespace ZelkTest;
using testing::HasSubstr;

namespace {

std::vector<std::string> allKinds()
{
    std::istringstream list(zelkMsg({"kinds"}).out);
    std::vector<std::string> names;
    std::string line;
    std::getline(list, line); // the headings
    while (std::getline(list, line) && !line.empty())
        names.push_back(line.substr(0, line.find(' ')));
    return names;
}

} // namespace

TEST(Kinds, ListsEveryKind)
{
    Result const result = zelkMsg({"kinds"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, expected("kinds.txt"));
    EXPECT_EQ(allKinds().size(), 18U);
}

TEST(Kinds, DescribesAKind)
{
    Result const result = zelkMsg({"kinds", "StateSpaceMetaDataResponse"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, expected("kinds-state-space.txt"));
}

TEST(Kinds, TakesNamesInAnyCaseAndWithoutBrackets)
{
    for (char const* const name :
         {"NormalGlobalEventCommand<-6>", "normalglobaleventcommand-6", "NORMALGLOBALEVENTCOMMAND<-6>"})
        EXPECT_THAT(zelkMsg({"kinds", name}).out,
                    HasSubstr("NormalGlobalEventCommand<-6>  client to service, global "
                              "event id -6\n"));
}

TEST(Kinds, SuggestsTheNearestName)
{
    Result const result = zelkMsg({"kinds", "inforespons"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "zelk-msg: no kind of message is called 'inforespons'; did you mean 'InfoResponse'?\n");
    EXPECT_EQ(zelkMsg({"kinds", "temperature"}).err,
              "zelk-msg: no kind of message is called 'temperature'\n");
}

TEST(Kinds, HasExamplesThatTheirKindsAcceptAndWriteTheSame)
{
    for (std::string const& kind : allKinds()) {
        std::string const text = zelkMsg({"kinds", kind}).out;
        Setting setting;
        setting.input = text.substr(text.find("Example:\n") + 9);
        Result const check = zelkMsg({"check", "--strict", "--quiet"}, setting);
        EXPECT_EQ(check.status, 0) << kind << "\n" << check.out;
        EXPECT_THAT(zelkMsg({"show"}, setting).out, HasSubstr("<stdin>:1  " + kind + "  ")) << kind;
    }
}

TEST(Kinds, NamesEveryMemberThatAClassWrites)
{
    for (std::string const& kind : allKinds()) {
        Setting setting;
        setting.input = zelkMsg({"make", kind}).out;
        Result const shown = zelkMsg({"show"}, setting);
        EXPECT_EQ(shown.status, 0) << kind;
        EXPECT_EQ(shown.out.find("unknown members"), std::string::npos) << kind << "\n" << shown.out;
    }
}
