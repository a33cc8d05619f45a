#include "msgs/legacystate/state_space_response.h"
#include "tests/msgs/legacystate_responses/reading.h"
#include "tests/tree_edits.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace Zelk::Msgs::LegacyState {
namespace {

using State = StateSpaceMetaDataResponse::State;
using MetaData::MissingMemberError;
using MetaData::TypeError;
using Testing::expectThrows;
using Testing::text;
using Testing::tree;

char const* const plainText =
    R"({"endState":"b","eventid":7,"eventname":"go","name":"t","startstate":"a","transition_id":1})";
char const* const textWithParameter =
    R"({"endState":"b","eventid":7,"eventname":"go","name":"t","parametername":"p","parametertype":"int",)"
    R"("startstate":"a","transition_id":1})";

State plainState()
{
    return State("t", 1, "a", "b", "go", 7, "", "");
}

State stateWithParameter()
{
    return State("t", 1, "a", "b", "go", 7, "p", "int");
}

/// A state none of whose members is equal to one in the texts.
State otherState()
{
    return State("T", -1, "A", "B", "GO", -7, "P", "INT");
}

std::string written(Json::Serializable const& record)
{
    MetaData::Element target;
    record.copyToMetaData(target);
    return text(target);
}

/// All members, in the order in which they are read.
std::vector<std::string> members(State const& state)
{
    return {state.name(),      std::to_string(state.transitionId()), state.startState(), state.endState(),
            state.eventName(), std::to_string(state.eventId()),      state.paramName(),  state.paramType()};
}

TEST(State, TakesItsMembersInOrder)
{
    State const state("n", 1, "s", "e", "ev", 2, "p", "pt");
    EXPECT_EQ(state.name(), "n");
    EXPECT_EQ(state.transitionId(), 1);
    EXPECT_EQ(state.startState(), "s");
    EXPECT_EQ(state.endState(), "e");
    EXPECT_EQ(state.eventName(), "ev");
    EXPECT_EQ(state.eventId(), 2);
    EXPECT_EQ(state.paramName(), "p");
    EXPECT_EQ(state.paramType(), "pt");
}

TEST(State, StoresWhatItsSettersAreGiven)
{
    State state("", 0, "", "", "", 0, "", "");
    state.setName("n");
    state.setTransitionId(std::numeric_limits<int>::min());
    state.setStartState("s");
    state.setEndState("e");
    state.setEventName("ev");
    state.setEventId(-9);
    state.setParamName("p");
    state.setParamType("pt");
    EXPECT_EQ(members(state),
              (std::vector<std::string>{"n", "-2147483648", "s", "e", "ev", "-9", "p", "pt"}));
}

TEST(State, HasAParameterExactlyWhenThatHasAName)
{
    EXPECT_FALSE(State("n", 1, "s", "e", "ev", 2, "", "").hasParam());
    EXPECT_FALSE(State("n", 1, "s", "e", "ev", 2, "", "int").hasParam());
    EXPECT_TRUE(State("n", 1, "s", "e", "ev", 2, "p", "").hasParam());
    EXPECT_TRUE(State("n", 1, "s", "e", "ev", 2, "p", "int").hasParam());
}

TEST(State, LosesNameAndTypeOfItsParameterWhenThatIsCleared)
{
    State state = stateWithParameter();
    state.clearParam();
    EXPECT_EQ(members(state), members(plainState()));
}

TEST(State, WritesItsKeysToTheLetter)
{
    EXPECT_EQ(written(plainState()), plainText);
    EXPECT_EQ(written(stateWithParameter()), textWithParameter);
    EXPECT_EQ(written(State("", 0, "", "", "", 0, "", "")),
              R"({"endState":"","eventid":0,"eventname":"","name":"","startstate":"","transition_id":0})");
    EXPECT_EQ(plainState().toJsonString(), plainText);
}

TEST(State, WritesItsIdsSignExtended)
{
    EXPECT_EQ(
        written(State("", -1, "", "", "", std::numeric_limits<int>::min(), "", "")),
        R"({"endState":"","eventid":-2147483648,"eventname":"","name":"","startstate":"","transition_id":-1})");
}

TEST(State, WritesNeitherKeyOfAParameterWithoutName)
{
    State const state("t", 1, "a", "b", "go", 7, "", "int");
    EXPECT_EQ(written(state), plainText);
    State read = otherState();
    read.fromJsonString(state.toJsonString());
    EXPECT_EQ(members(read), members(plainState()));
}

TEST(State, WritesAParameterWithoutTypeWithBothKeys)
{
    State const state("t", 1, "a", "b", "go", 7, "p", "");
    EXPECT_EQ(written(state),
              R"({"endState":"b","eventid":7,"eventname":"go","name":"t","parametername":"p",)"
              R"("parametertype":"","startstate":"a","transition_id":1})");
}

TEST(State, LeavesKeysInItsTargetThatItDoesNotWrite)
{
    MetaData::Element target = tree(textWithParameter);
    target["other"] = tree("1");
    State("T", 2, "A", "B", "GO", 8, "", "").copyToMetaData(target);
    EXPECT_EQ(text(target),
              R"({"endState":"B","eventid":8,"eventname":"GO","name":"T","other":1,)"
              R"("parametername":"p","parametertype":"int","startstate":"A","transition_id":2})");
}

TEST(State, CannotBeWrittenIntoANodeThatIsNoObject)
{
    for (Testing::OtherKind const& kind : Testing::kindsThatTakeNoMembers()) {
        SCOPED_TRACE(kind.node);
        MetaData::Element target = tree(kind.node);
        expectThrows<TypeError>([&] { plainState().copyToMetaData(target); },
                                std::string("expected object, found ") + kind.name);
    }
}

TEST(State, ReadsWhatItWrites)
{
    State read = otherState();
    read.copyFromMetaData(tree(textWithParameter));
    EXPECT_EQ(members(read), members(stateWithParameter()));
    read = otherState();
    read.copyFromMetaData(tree(plainText));
    EXPECT_EQ(members(read), members(plainState()));
}

TEST(State, KeepsTheLow32BitsOfItsIds)
{
    State read = otherState();
    read.copyFromMetaData(
        tree(R"({"endState":"","eventid":4294967296,"eventname":"","name":"","startstate":"",)"
             R"("transition_id":4294967295})"));
    EXPECT_EQ(read.eventId(), 0);
    EXPECT_EQ(read.transitionId(), -1);
}

TEST(State, MatchesItsKeysLetterByLetter)
{
    struct Case {
        char const* key;
        char const* similar;
    };
    for (Case const& c : {Case{"startstate", "startState"}, Case{"endState", "endstate"},
                          Case{"transition_id", "transitionid"}, Case{"eventid", "event_id"},
                          Case{"eventname", "eventName"}, Case{"name", "Name"}}) {
        SCOPED_TRACE(c.similar);
        MetaData::Element const original = tree(plainText);
        MetaData::Element const renamed =
            Testing::with(Testing::without(original, {c.key}), {c.similar}, original[c.key]);
        expectThrows<MissingMemberError>([&] { otherState().copyFromMetaData(renamed); },
                                         std::string("no member named \"") + c.key + "\"");
    }
}

TEST(State, HasNoParameterWhenOnlyItsTypeIsThere)
{
    State read = otherState();
    read.copyFromMetaData(Testing::with(tree(plainText), {"parametertype"}, tree(R"("int")")));
    EXPECT_EQ(members(read), members(plainState()));
    // The type is not looked at, so it may be anything.
    read = otherState();
    read.copyFromMetaData(Testing::with(tree(plainText), {"parametertype"}, tree("[5]")));
    EXPECT_EQ(members(read), members(plainState()));
}

/// The keys in the order in which they are read, with the kind that each must have.
struct Key {
    char const* name;
    bool isString;
};

std::vector<Key> const keysInOrder = {{"name", true},          {"transition_id", false}, {"startstate", true},
                                      {"endState", true},      {"eventname", true},      {"eventid", false},
                                      {"parametername", true}, {"parametertype", true}};

/// Expects the members before the one at `failing` to be new and the others to be old.
void expectReadUpTo(std::size_t failing, State const& read)
{
    std::vector<std::string> expected = members(stateWithParameter());
    std::vector<std::string> const old = members(otherState());
    for (std::size_t i = failing; i < expected.size(); ++i)
        expected[i] = old[i];
    EXPECT_EQ(members(read), expected);
}

TEST(State, KeepsTheMembersReadBeforeAMissingKey)
{
    for (std::size_t i = 0; i < keysInOrder.size(); ++i) {
        std::string const key = keysInOrder[i].name;
        if (key == "parametername")
            continue; // optional
        SCOPED_TRACE(key);
        State read = otherState();
        expectThrows<MissingMemberError>(
            [&] { read.copyFromMetaData(Testing::without(tree(textWithParameter), {key})); },
            "no member named \"" + key + "\"");
        expectReadUpTo(i, read);
    }
}

TEST(State, KeepsTheMembersReadBeforeAKeyOfAnotherKind)
{
    for (std::size_t i = 0; i < keysInOrder.size(); ++i) {
        Key const& key = keysInOrder[i];
        for (Testing::OtherKind const& kind :
             key.isString ? Testing::kindsOtherThanString() : Testing::kindsOtherThanInteger()) {
            SCOPED_TRACE(std::string(key.name) + " is " + kind.node);
            State read = otherState();
            expectThrows<TypeError>(
                [&] {
                    read.copyFromMetaData(
                        Testing::with(tree(textWithParameter), {key.name}, tree(kind.node)));
                },
                std::string("expected ") + (key.isString ? "string" : "integer") + ", found " + kind.name);
            expectReadUpTo(i, read);
        }
    }
}

TEST(State, RefusesANodeThatIsNoObject)
{
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanObject()) {
        SCOPED_TRACE(kind.node);
        State read = otherState();
        expectThrows<TypeError>([&] { read.copyFromMetaData(tree(kind.node)); },
                                std::string("expected object, found ") + kind.name);
        EXPECT_EQ(members(read), members(otherState()));
    }
}

TEST(State, ComesOutOfANodeByValue)
{
    EXPECT_EQ(members(Json::Serializable::fromElement<State>(tree(plainText))), members(plainState()));
    expectThrows<MissingMemberError>([] { Json::Serializable::fromElement<State>(tree("{}")); },
                                     R"(no member named "name")");
}

TEST(StateSpaceMetaDataResponse, WritesAnEmptyListWhenItHasNoStatesAndReadsItBackEmpty)
{
    StateSpaceMetaDataResponse response;
    EXPECT_EQ(response.eventId(), -9);
    EXPECT_TRUE(response.states().empty());
    EXPECT_EQ(response.toJsonString(), R"({"body":{"id":-9,"statelist":[]},"header":""})");
    response.states().push_back(plainState());
    response.fromJsonString(R"({"body":{"id":-9,"statelist":[]},"header":""})");
    EXPECT_TRUE(response.states().empty());
}

TEST(StateSpaceMetaDataResponse, WritesItsStatesInListOrder)
{
    StateSpaceMetaDataResponse response;
    response.setHeader("h");
    response.states() = {stateWithParameter(), plainState()};
    EXPECT_EQ(response.toJsonString(), std::string(R"({"body":{"id":-9,"statelist":[)") + textWithParameter +
                                           "," + plainText + R"(]},"header":"h"})");
}

TEST(StateSpaceMetaDataResponse, ReplacesItsWholeListInTheOrderOfTheArray)
{
    StateSpaceMetaDataResponse response;
    response.states() = {otherState(), otherState(), otherState()};
    response.fromJsonString(std::string(R"({"header":"h","body":{"id":-9,"statelist":[)") + plainText + "," +
                            textWithParameter + "]}}");
    ASSERT_EQ(response.states().size(), 2u);
    EXPECT_EQ(members(response.states()[0]), members(plainState()));
    EXPECT_EQ(members(response.states()[1]), members(stateWithParameter()));
}

TEST(StateSpaceMetaDataResponse, WritesItsListOverANodeOfAnyKindAndKeepsUnknownMembers)
{
    for (char const* former : {"7", R"("a")", "null", R"({"a":1})", "[1,2,3]"}) {
        SCOPED_TRACE(former);
        StateSpaceMetaDataResponse const response;
        response.metaData() = tree(std::string(R"({"x":1,"body":{"y":2,"statelist":)") + former + "}}");
        EXPECT_EQ(response.toJsonString(), R"({"body":{"id":-9,"statelist":[],"y":2},"header":"","x":1})");
    }
}

TEST(StateSpaceMetaDataResponse, KeepsItsStatesWhenTheListIsMissingOrNoArray)
{
    auto const expectRefused = [](std::string const& json, std::string const& what) {
        SCOPED_TRACE(json);
        StateSpaceMetaDataResponse response;
        response.states().push_back(otherState());
        expectThrows<TypeError>([&] { response.fromJsonString(json); }, what);
        EXPECT_EQ(response.header(), "new");
        ASSERT_EQ(response.states().size(), 1u);
        EXPECT_EQ(members(response.states()[0]), members(otherState()));
        EXPECT_EQ(response.metaData(), MetaData::Element());
    };
    expectRefused(R"({"header":"new","body":{"id":-9}})", "expected array, found empty");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanArray())
        expectRefused(std::string(R"({"header":"new","body":{"id":-9,"statelist":)") + kind.node + "}}",
                      std::string("expected array, found ") + kind.name);
}

TEST(StateSpaceMetaDataResponse, ReadsNoStatesWhenTheIdIsWrong)
{
    StateSpaceMetaDataResponse response;
    response.states().push_back(otherState());
    expectThrows<std::runtime_error>(
        [&] { response.fromJsonString(R"({"header":"new","body":{"id":-1,"statelist":[]}})"); },
        "event ID does not match expected value");
    EXPECT_EQ(response.header(), "new");
    EXPECT_EQ(response.states().size(), 1u);
}

TEST(StateSpaceMetaDataResponse, HasTheStatesBeforeOneThatCannotBeRead)
{
    StateSpaceMetaDataResponse response;
    response.states() = {otherState(), otherState(), otherState()};
    expectThrows<MissingMemberError>(
        [&] {
            response.fromJsonString(
                std::string(R"({"header":"h","body":{"id":-9,"statelist":[)") + textWithParameter + "," +
                text(Testing::without(tree(plainText), {"eventid"})) + "," + plainText + "]}}");
        },
        R"(no member named "eventid")");
    ASSERT_EQ(response.states().size(), 1u);
    EXPECT_EQ(members(response.states()[0]), members(stateWithParameter()));
}

TEST(StateSpaceMetaDataResponse, RefusesAnItemThatIsNoObject)
{
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanObject()) {
        SCOPED_TRACE(kind.node);
        StateSpaceMetaDataResponse response;
        expectThrows<TypeError>(
            [&] {
                response.fromJsonString(std::string(R"({"header":"h","body":{"id":-9,"statelist":[)") +
                                        kind.node + "]}}");
            },
            std::string("expected object, found ") + kind.name);
    }
}

TEST(StateSpaceMetaDataResponse, IsCopiedWithItsStates)
{
    StateSpaceMetaDataResponse original;
    original.states().push_back(plainState());
    StateSpaceMetaDataResponse const copy(original);
    original.states()[0].setName("changed");
    EXPECT_EQ(members(copy.states()[0]), members(plainState()));
}

} // namespace
} // namespace Zelk::Msgs::LegacyState
