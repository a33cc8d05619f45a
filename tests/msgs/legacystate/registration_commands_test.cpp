#include "msgs/legacystate/registration_commands.h"
#include "readings.h"
#include "tests/framework/nodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::Msgs::LegacyState {
namespace {

using Event = RegisterCommand::Event;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::array;
using Tests::boolean;
using Tests::expectRefusals;
using Tests::failureOf;
using Tests::integer;
using Tests::object;
using Tests::real;
using Tests::text;

using Triple = std::tuple<int, int, double>;

std::vector<Triple> eventsOf(RegisterCommand const& command)
{
    std::vector<Triple> triples;
    for (Event const& event : command.events())
        triples.emplace_back(event.id(), event.filterType(), event.filterFreq());
    return triples;
}

RegisterCommand registering(std::string const& client, std::vector<Event> const& events)
{
    RegisterCommand command;
    command.setClientName(client);
    for (Event const& event : events)
        command.events().push_back(event);
    return command;
}

UnregisterCommand unregistering(std::string const& client, std::vector<int> const& events)
{
    UnregisterCommand command;
    command.setClientName(client);
    command.events().items() = events;
    return command;
}

std::string const mismatch = "runtime_error: event ids and filter lists do not match";

// ---- one event

TEST(RegisterCommandEvent, HoldsItsThreeValues)
{
    Event event(7, 1, 0.5);
    EXPECT_EQ(event.id(), 7);
    EXPECT_EQ(event.filterType(), 1);
    EXPECT_EQ(event.filterFreq(), 0.5);
    event.setId(-8);
    event.setFilterType(-2);
    event.setFilterFreq(-1.5);
    EXPECT_EQ(event.id(), -8);
    EXPECT_EQ(event.filterType(), -2);
    EXPECT_EQ(event.filterFreq(), -1.5);
}

TEST(RegisterCommandEvent, BeginsWithZeros)
{
    Event const event;
    EXPECT_EQ(event.id(), 0);
    EXPECT_EQ(event.filterType(), 0);
    EXPECT_EQ(event.filterFreq(), 0.0);
}

TEST(RegisterCommandEvent, HasNoFormOfItsOwn)
{
    Event event(7, 1, 0.5);
    MetaData::Element target = object({{"x", integer(1)}});
    event.copyToMetaData(target);
    EXPECT_EQ(target, object({{"x", integer(1)}}));
    EXPECT_EQ(event.toJsonString(), "null");

    event.copyFromMetaData(object({{"id", integer(9)}}));
    event.copyFromMetaData(text("not even an object"));
    EXPECT_EQ(event.id(), 7);
    EXPECT_EQ(event.filterType(), 1);
    EXPECT_EQ(event.filterFreq(), 0.5);
}

TEST(RegisterCommandEvent, AListOfThemWrittenByItselfHasEmptyItems)
{
    Json::Array<Event> const events = {Event(7, 1, 0.5), Event(9, 0, 2.0)};
    EXPECT_EQ(events.toJsonString(), "[null,null]");
}

TEST(RegisterCommandEvent, AListOfThemReadByItselfHasZeroItems)
{
    Json::Array<Event> events = {Event(7, 1, 0.5)};
    events.fromJsonString(R"([1,"x"])");
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].id(), 0);
    EXPECT_EQ(events[1].filterFreq(), 0.0);
}

// ---- registering: writing

TEST(RegisterCommand, WritesItsForm)
{
    EXPECT_EQ(registering("ui", {Event(7, 1, 0.5), Event(9, 0, 2.0)}).toJsonString(),
              R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[7,9]},)"
              R"("filterlist":{"freq":[0.5,2.0],"type":[1,0]}})");
}

TEST(RegisterCommand, WritesIntegersAsIntegersAndFrequenciesAsFloatingPoint)
{
    MetaData::Element tree;
    registering("ui", {Event(-1, std::numeric_limits<int>::min(), 3)}).copyToMetaData(tree);
    EXPECT_EQ(tree, object({{"commandid", integer(0)},
                            {"clientname", text("ui")},
                            {"eventlist", object({{"ids", array({integer(-1)})}})},
                            {"filterlist", object({{"type", array({integer(-2147483648LL)})},
                                                   {"freq", array({real(3.0)})}})}}));
}

TEST(RegisterCommand, WritesAnEmptyListAsThreeEmptyArrays)
{
    EXPECT_EQ(RegisterCommand().toJsonString(),
              R"({"clientname":"","commandid":0,"eventlist":{"ids":[]},"filterlist":{"freq":[],"type":[]}})");
}

TEST(RegisterCommand, HasNoEventIdOfItsOwn)
{
    static_assert(std::is_base_of_v<StateCommand, RegisterCommand>);
    static_assert(!std::is_base_of_v<StateCommandWithEventId, RegisterCommand>);
    static_assert(!std::is_base_of_v<StateCommandWithEventId, UnregisterCommand>);

    MetaData::Element tree;
    RegisterCommand().copyToMetaData(tree);
    MetaData::Object const& members = tree;
    EXPECT_TRUE(members.find("id") == members.end());
}

TEST(RegisterCommand, LeavesNothingOfLongerArrays)
{
    RegisterCommand command = registering("ui", {Event(1, 1, 1.0), Event(2, 2, 2.0), Event(3, 3, 3.0)});
    command.fromJsonString(command.toJsonString());
    command.events().clear();
    command.events().push_back(Event(9, 8, 0.25));
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[9]},)"
                                      R"("filterlist":{"freq":[0.25],"type":[8]}})");
}

TEST(RegisterCommand, GrowsShorterArrays)
{
    RegisterCommand command = registering("ui", {Event(1, 1, 1.0)});
    command.fromJsonString(command.toJsonString());
    command.events().emplace_back(2, 2, 2.0);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[1,2]},)"
                                      R"("filterlist":{"freq":[1.0,2.0],"type":[1,2]}})");
}

TEST(RegisterCommand, WritesTheEnvelopeThenViewsAllArraysThenClearsThem)
{
    RegisterCommand const command = registering("ui", {Event(7, 1, 0.5)});
    struct Case {
        std::string name;
        MetaData::Element before;
        std::string failure;
        MetaData::Element after;
    };
    MetaData::Element const envelope = object({{"commandid", integer(0)}, {"clientname", text("ui")}});
    auto const with = [&envelope](std::string const& key, MetaData::Element const& node,
                                  MetaData::Element rest) {
        MetaData::Element tree = envelope;
        tree[key] = node;
        if (rest.GetElementType() != MetaData::Element::empty)
            tree["eventlist"] = rest;
        return tree;
    };
    MetaData::Element const old = object({{"ids", array({integer(1), integer(2)})}});
    MetaData::Element const badFrequencies =
        object({{"type", array({integer(3)})}, {"freq", text("no array")}});
    std::vector<Case> const cases = {
        {"eventlist is not an object", object({{"eventlist", text("no object")}}),
         "TypeError: expected object, found string", with("eventlist", text("no object"), {})},
        {"ids is not an array", object({{"eventlist", object({{"ids", integer(1)}})}}),
         "TypeError: expected array, found integer", with("eventlist", object({{"ids", integer(1)}}), {})},
        {"filterlist is not an object", object({{"eventlist", old}, {"filterlist", boolean(true)}}),
         "TypeError: expected object, found boolean", with("filterlist", boolean(true), old)},
        {"type is not an array", object({{"eventlist", old}, {"filterlist", object({{"type", real(1.0)}})}}),
         "TypeError: expected array, found floating-point number",
         with("filterlist", object({{"type", real(1.0)}}), old)},
        {"freq is not an array", object({{"eventlist", old}, {"filterlist", badFrequencies}}),
         "TypeError: expected array, found string", with("filterlist", badFrequencies, old)},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(c.name);
        command.metaData() = c.before;
        EXPECT_EQ(failureOf([&] { command.copyToInternalMetaData(); }), c.failure);
        EXPECT_EQ(command.metaData(), c.after);
    }
}

// ---- registering: reading

TEST(RegisterCommand, ReadsItsForm)
{
    RegisterCommand command = registering("old", {Event(1, 1, 1.0), Event(2, 2, 2.0), Event(3, 3, 3.0)});
    command.fromJsonString(R"({"commandid":5,"clientname":"ui","eventlist":{"ids":[7,9]},
                              "filterlist":{"type":[1,0],"freq":[0.5,2.0]}})");
    EXPECT_EQ(command.commandId(), 5u);
    EXPECT_EQ(command.clientName(), "ui");
    EXPECT_THAT(eventsOf(command), ElementsAre(Triple(7, 1, 0.5), Triple(9, 0, 2.0)));
}

TEST(RegisterCommand, ReadsTheLowBitsOfIntegers)
{
    RegisterCommand command;
    command.fromJsonString(R"({"commandid":0,"clientname":"","eventlist":{"ids":[4294967297,4294967295]},
                              "filterlist":{"type":[3000000000,4294967296],"freq":[1e300,-0.0]}})");
    EXPECT_THAT(eventsOf(command), ElementsAre(Triple(1, -1294967296, 1e300), Triple(-1, 0, 0.0)));
}

TEST(RegisterCommand, ReadsMissingArraysAsEmptyOnes)
{
    std::string const envelope = R"({"commandid":0,"clientname":"ui")";
    for (std::string const lists : {
             R"(})",
             R"(,"eventlist":{}})",
             R"(,"filterlist":{}})",
             R"(,"eventlist":null,"filterlist":null})",
             R"(,"eventlist":{"ids":null},"filterlist":{"type":null,"freq":null}})",
             R"(,"eventlist":{"ids":[]},"filterlist":{"type":[]}})",
             R"(,"eventlist":{"ids":[]},"filterlist":{"type":[],"freq":[]}})",
         }) {
        SCOPED_TRACE(lists);
        RegisterCommand command = registering("old", {Event(1, 1, 1.0)});
        EXPECT_EQ(failureOf([&] { command.fromJsonString(envelope + lists); }), "nothing");
        EXPECT_THAT(eventsOf(command), IsEmpty());
        EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[]},)"
                                          R"("filterlist":{"freq":[],"type":[]}})");
    }
}

TEST(RegisterCommand, RefusesArraysOfDifferentLengthsBeforeItsListChanges)
{
    RegisterCommand const before = registering("old", {Event(4, 5, 6.0)});
    for (std::string const lists : {
             R"("eventlist":{"ids":[1,2]},"filterlist":{"type":[0,0],"freq":[1.5]})",
             R"("eventlist":{"ids":[1]},"filterlist":{"type":[0,0],"freq":[1.5]})",
             R"("eventlist":{"ids":[1]},"filterlist":{"type":[0,0],"freq":[1.5,1.5]})",
             R"("eventlist":{"ids":[1,2]},"filterlist":{"type":[0],"freq":[1.5,1.5]})",
             R"("eventlist":{"ids":[1]},"filterlist":{"type":[0],"freq":[]})",
             R"("eventlist":{"ids":[]},"filterlist":{"type":[0],"freq":[1.5]})",
             R"("eventlist":{"ids":[1]})",
             R"("filterlist":{"type":[0],"freq":[1.5]})",
             R"("eventlist":{"ids":["not read"]},"filterlist":{"type":[],"freq":[]})",
         }) {
        SCOPED_TRACE(lists);
        RegisterCommand command = before;
        EXPECT_EQ(
            failureOf([&] { command.fromJsonString(R"({"commandid":7,"clientname":"ui",)" + lists + "}"); }),
            mismatch);
        EXPECT_EQ(command.commandId(), 7u);
        EXPECT_EQ(command.clientName(), "ui");
        EXPECT_THAT(eventsOf(command), ElementsAre(Triple(4, 5, 6.0)));
    }
}

TEST(RegisterCommand, IsStrictAboutItems)
{
    struct Case {
        std::string name;
        std::string ids;
        std::string types;
        std::string frequencies;
        std::string failure;
    };
    std::vector<Case> const cases = {
        {"floating-point id", "[7,1.0]", "[1,2]", "[0.5,1.5]",
         "TypeError: expected integer, found floating-point number"},
        {"boolean id", "[7,true]", "[1,2]", "[0.5,1.5]", "TypeError: expected integer, found boolean"},
        {"string id", R"([7,"8"])", "[1,2]", "[0.5,1.5]", "TypeError: expected integer, found string"},
        {"null id", "[7,null]", "[1,2]", "[0.5,1.5]", "TypeError: expected integer, found empty"},
        {"floating-point type", "[7,8]", "[1,2.0]", "[0.5,1.5]",
         "TypeError: expected integer, found floating-point number"},
        {"boolean type", "[7,8]", "[1,false]", "[0.5,1.5]", "TypeError: expected integer, found boolean"},
        {"object type", "[7,8]", "[1,{}]", "[0.5,1.5]", "TypeError: expected integer, found object"},
        {"integer frequency", "[7,8]", "[1,2]", "[0.5,2]",
         "TypeError: expected floating-point number, found integer"},
        {"boolean frequency", "[7,8]", "[1,2]", "[0.5,true]",
         "TypeError: expected floating-point number, found boolean"},
        {"array frequency", "[7,8]", "[1,2]", "[0.5,[]]",
         "TypeError: expected floating-point number, found array"},
        {"the id is read first", R"([7,"8"])", "[1,true]", "[0.5,2]",
         "TypeError: expected integer, found string"},
        {"the type is read before the frequency", "[7,8]", "[1,true]", "[0.5,2]",
         "TypeError: expected integer, found boolean"},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(c.name);
        RegisterCommand command = registering("old", {Event(4, 5, 6.0)});
        std::string const received = R"({"commandid":7,"clientname":"ui","eventlist":{"ids":)" + c.ids +
                                     R"(},"filterlist":{"type":)" + c.types + R"(,"freq":)" + c.frequencies +
                                     "}}";
        EXPECT_EQ(failureOf([&] { command.fromJsonString(received); }), c.failure);
        EXPECT_THAT(eventsOf(command), ElementsAre(Triple(7, 1, 0.5))) << "the events before the wrong one";
        EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[7]},)"
                                          R"("filterlist":{"freq":[0.5],"type":[1]}})");
    }
}

TEST(RegisterCommand, ReadsTheEnvelopeThenTheArrays)
{
    std::string const lists = R"("eventlist":{"ids":[4]},"filterlist":{"freq":[6.0],"type":[5]}})";
    std::string const nothingRead = R"({"clientname":"old","commandid":0,)" + lists;
    std::string const idRead = R"({"clientname":"old","commandid":7,)" + lists;
    std::string const envelopeRead = R"({"clientname":"ui","commandid":7,)" + lists;
    expectRefusals(
        registering("old", {Event(4, 5, 6.0)}),
        {
            {"no command id", R"({"clientname":"ui","eventlist":{"ids":[1]}})",
             "TypeError: expected integer, found empty", nothingRead},
            {"no name", R"({"commandid":7,"eventlist":{"ids":[1]}})",
             "TypeError: expected string, found empty", idRead},
            {"eventlist is an array", R"({"clientname":"ui","commandid":7,"eventlist":[1]})",
             "TypeError: expected object, found array", envelopeRead},
            {"ids is a number", R"({"clientname":"ui","commandid":7,"eventlist":{"ids":1}})",
             "TypeError: expected array, found integer", envelopeRead},
            {"ids is an object", R"({"clientname":"ui","commandid":7,"eventlist":{"ids":{}}})",
             "TypeError: expected array, found object", envelopeRead},
            {"filterlist is a string", R"({"clientname":"ui","commandid":7,"filterlist":"x"})",
             "TypeError: expected object, found string", envelopeRead},
            {"type is a string", R"({"clientname":"ui","commandid":7,"filterlist":{"type":"x"}})",
             "TypeError: expected array, found string", envelopeRead},
            {"freq is a boolean", R"({"clientname":"ui","commandid":7,"filterlist":{"freq":true}})",
             "TypeError: expected array, found boolean", envelopeRead},
            {"different lengths and freq is no array",
             R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[1]},"filterlist":{"freq":true}})",
             "TypeError: expected array, found boolean", envelopeRead},
        });
}

TEST(RegisterCommand, WritesUnknownMembersOutAgain)
{
    RegisterCommand command;
    command.fromJsonString(R"({"commandid":7,"clientname":"ui","more":[1],"eventlist":{"ids":[],"more":2},
                              "filterlist":{"type":[],"freq":[],"more":3}})");
    command.events().emplace_back(7, 1, 0.5);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[7],"more":2},)"
                                      R"("filterlist":{"freq":[0.5],"more":3,"type":[1]},"more":[1]})");
}

TEST(RegisterCommand, CarriesFrequenciesUnchanged)
{
    double const infinity = std::numeric_limits<double>::infinity();
    MetaData::Element tree;
    registering("ui", {Event(1, 0, infinity), Event(2, 0, 5e-324)}).copyToMetaData(tree);
    RegisterCommand command;
    command.copyFromMetaData(tree);
    EXPECT_THAT(eventsOf(command), ElementsAre(Triple(1, 0, infinity), Triple(2, 0, 5e-324)));
}

TEST(RegisterCommand, CarriesLongLists)
{
    RegisterCommand command;
    for (int i = 0; i < 10000; ++i)
        command.events().emplace_back(i, -i, i / 8.0);
    RegisterCommand other;
    other.fromJsonString(command.toJsonString());
    EXPECT_EQ(eventsOf(other), eventsOf(command));
}

TEST(RegisterCommand, CopiesShareNothing)
{
    RegisterCommand original = registering("ui", {Event(7, 1, 0.5)});
    original.copyToInternalMetaData();
    RegisterCommand copy = original;
    original.events()[0].setId(8);
    original.events().emplace_back(9, 0, 2.0);
    original.metaData()["eventlist"]["ids"] = text("changed");
    EXPECT_THAT(eventsOf(copy), ElementsAre(Triple(7, 1, 0.5)));
    EXPECT_EQ(copy.metaData()["eventlist"], object({{"ids", array({integer(7)})}}));
}

TEST(RegisterCommand, ReadsFromAndWritesIntoItsOwnMetadata)
{
    RegisterCommand command = registering("ui", {Event(7, 1, 0.5)});
    command.copyToMetaData(command.metaData());
    command.metaData()["eventlist"]["ids"] = array({integer(8)});
    command.copyFromMetaData(command.metaData());
    EXPECT_THAT(eventsOf(command), ElementsAre(Triple(8, 1, 0.5)));
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[8]},)"
                                      R"("filterlist":{"freq":[0.5],"type":[1]}})");
}

// ---- unregistering

TEST(UnregisterCommand, WritesItsForm)
{
    EXPECT_EQ(unregistering("ui", {7, 9}).toJsonString(),
              R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[7,9]}})");
    EXPECT_EQ(UnregisterCommand().toJsonString(),
              R"({"clientname":"","commandid":0,"eventlist":{"ids":[]}})");
}

TEST(UnregisterCommand, WritesIdsSignExtended)
{
    MetaData::Element tree;
    unregistering("ui", {-1, std::numeric_limits<int>::max()}).copyToMetaData(tree);
    EXPECT_EQ(tree, object({{"commandid", integer(0)},
                            {"clientname", text("ui")},
                            {"eventlist", object({{"ids", array({integer(-1), integer(2147483647)})}})}}));
}

TEST(UnregisterCommand, ReadsItsForm)
{
    UnregisterCommand command = unregistering("old", {1, 2, 3});
    command.fromJsonString(R"({"commandid":5,"clientname":"ui","eventlist":{"ids":[9,7]}})");
    EXPECT_EQ(command.commandId(), 5u);
    EXPECT_EQ(command.clientName(), "ui");
    EXPECT_THAT(command.events().items(), ElementsAre(9, 7));
    command.fromJsonString(R"({"commandid":5,"clientname":"ui","eventlist":{"ids":[]}})");
    EXPECT_THAT(command.events().items(), IsEmpty());
}

TEST(UnregisterCommand, ReadsIdsLeniently)
{
    UnregisterCommand command;
    command.fromJsonString(
        R"({"commandid":0,"clientname":"","eventlist":{"ids":[1.9,true,5,-2.9,4294967297,false,1e10]}})");
    EXPECT_THAT(command.events().items(), ElementsAre(1, 1, 5, -2, 1, 0, 2147483647));

    for (Tests::Reading<int> const& reading : Tests::intReadings()) {
        command.copyFromMetaData(object({{"commandid", integer(0)},
                                         {"clientname", text("")},
                                         {"eventlist", object({{"ids", array({reading.node})}})}}));
        EXPECT_THAT(command.events().items(), ElementsAre(reading.value)) << reading.name;
    }
}

TEST(UnregisterCommand, ReadsTheEnvelopeThenTheIds)
{
    std::string const envelopeRead = R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[4]}})";
    expectRefusals(
        unregistering("old", {4}),
        {
            {"no command id", R"({"clientname":"ui","eventlist":{"ids":[1]}})",
             "TypeError: expected integer, found empty",
             R"({"clientname":"old","commandid":0,"eventlist":{"ids":[4]}})"},
            {"no name", R"({"commandid":7,"eventlist":{"ids":[1]}})",
             "TypeError: expected string, found empty",
             R"({"clientname":"old","commandid":7,"eventlist":{"ids":[4]}})"},
            {"no eventlist", R"({"clientname":"ui","commandid":7})", "TypeError: expected array, found empty",
             envelopeRead},
            {"no ids", R"({"clientname":"ui","commandid":7,"eventlist":{}})",
             "TypeError: expected array, found empty", envelopeRead},
            {"null ids", R"({"clientname":"ui","commandid":7,"eventlist":{"ids":null}})",
             "TypeError: expected array, found empty", envelopeRead},
            {"eventlist is an array", R"({"clientname":"ui","commandid":7,"eventlist":[1]})",
             "TypeError: expected object, found array", envelopeRead},
            {"ids is an object", R"({"clientname":"ui","commandid":7,"eventlist":{"ids":{}}})",
             "TypeError: expected array, found object", envelopeRead},
            {"ids is a number", R"({"clientname":"ui","commandid":7,"eventlist":{"ids":1}})",
             "TypeError: expected array, found integer", envelopeRead},
            {"a string among the ids",
             R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[1,2.5,"3",4]}})",
             "TypeError: expected integer, found string",
             R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[1,2]}})"},
            {"null among the ids", R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[null]}})",
             "TypeError: expected integer, found empty",
             R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[]}})"},
        });
}

TEST(UnregisterCommand, WritesUnknownMembersOutAgainButNoOldIds)
{
    UnregisterCommand command;
    command.fromJsonString(
        R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[1,2,3],"more":2},"more":1})");
    command.events().items() = {9};
    EXPECT_EQ(command.toJsonString(),
              R"({"clientname":"ui","commandid":7,"eventlist":{"ids":[9],"more":2},"more":1})");
}

TEST(UnregisterCommand, WritesOverIdsOfAnyKind)
{
    UnregisterCommand command = unregistering("ui", {7});
    command.metaData()["eventlist"]["ids"] = object({{"a", integer(1)}});
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"eventlist":{"ids":[7]}})");
}

TEST(UnregisterCommand, CopiesShareNothing)
{
    UnregisterCommand original = unregistering("ui", {7});
    UnregisterCommand const copy = original;
    original.events()[0] = 8;
    EXPECT_THAT(copy.events().items(), ElementsAre(7));
}

TEST(UnregisterCommand, TakesARegistrationForItsOwn)
{
    // Neither has an id of its own kind, so a service must know from elsewhere which one it has got.
    UnregisterCommand command;
    command.fromJsonString(registering("ui", {Event(7, 1, 0.5)}).toJsonString());
    EXPECT_THAT(command.events().items(), ElementsAre(7));
}

} // namespace
} // namespace Zelk::Msgs::LegacyState
