#include "framework/json_text.h"
#include "msgs/legacystate/state_command.h"
#include "readings.h"
#include "tests/framework/nodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::Msgs::LegacyState {
namespace {

using Tests::boolean;
using Tests::expectReadings;
using Tests::expectRefusals;
using Tests::failureOf;
using Tests::integer;
using Tests::object;
using Tests::real;
using Tests::text;

/// The class that users derive from for an event id of their own choice.
class ChosenEventCommand : public StateCommandWithEventId {
public:
    using StateCommandWithEventId::StateCommandWithEventId;
};

/// A command whose id is not the stored one.
class OwnIdCommand : public StateCommand {
public:
    unsigned int commandId() const override { return 4000000000; }
};

/// A command that adds a payload to a global event id of the user's own.
class UserPayloadCommand : public NormalGlobalEventCommand<-77> {
public:
    int volume = 0;

    void copyToInternalMetaData() const override
    {
        NormalGlobalEventCommand<-77>::copyToInternalMetaData();
        elementImpl(metaData(), "volume") = integer(volume);
    }
    void copyFromInternalMetaData() override
    {
        NormalGlobalEventCommand<-77>::copyFromInternalMetaData();
        volume = element<int>("volume");
    }
};

template <typename Command>
Command read(std::string const& json)
{
    Command command;
    command.fromJsonString(json);
    return command;
}

// ---- the class tree

TEST(StateMessage, IsTheAbstractRootOfCommands)
{
    static_assert(std::is_abstract_v<StateMessage>);
    static_assert(std::has_virtual_destructor_v<StateMessage>);
    static_assert(std::is_base_of_v<Json::PartiallyDeserializable, StateMessage>);
    static_assert(std::is_base_of_v<StateMessage, StateCommand>);
    static_assert(!std::is_abstract_v<StateCommand>);

    std::vector<std::unique_ptr<StateMessage>> messages;
    messages.push_back(std::make_unique<StateCommand>(static_cast<unsigned short>(3)));
    messages.push_back(std::make_unique<NormalGlobalEventCommand<-6>>());
    EXPECT_EQ(messages[0]->toJsonString(), R"({"clientname":"","commandid":3})");
    EXPECT_EQ(messages[1]->toJsonString(), R"({"clientname":"","commandid":0,"id":-6})");
}

TEST(StateCommand, BasesWithAnEventIdAreAbstract)
{
    static_assert(std::is_abstract_v<StateCommandWithEventId>);
    static_assert(std::is_abstract_v<StateCommandWithGlobalEventId<-4>>);
    static_assert(std::is_abstract_v<StateCommandWithGlobalEventId<-77>>);
    static_assert(!std::is_abstract_v<NormalGlobalEventCommand<-10>>);
    static_assert(!std::is_abstract_v<NormalGlobalEventCommand<-77>>);
    static_assert(std::is_base_of_v<StateCommandWithGlobalEventId<-10>, NormalGlobalEventCommand<-10>>);
    static_assert(std::is_base_of_v<StateCommand, StateCommandWithGlobalEventId<-10>>);

    ChosenEventCommand chosen;
    StateCommand* command = &chosen;
    EXPECT_NE(dynamic_cast<StateCommandWithEventId*>(command), nullptr);
    EXPECT_EQ(dynamic_cast<StateCommandWithGlobalEventId<-10>*>(command), nullptr);
}

TEST(StateCommand, IsNotMadeFromANumberByAccident)
{
    static_assert(!std::is_convertible_v<unsigned short, StateCommand>);
    static_assert(!std::is_convertible_v<unsigned short, ChosenEventCommand>);
    static_assert(std::is_constructible_v<StateCommand, unsigned short>);

    EXPECT_EQ(StateCommand().commandId(), 0u);
    EXPECT_EQ(StateCommand(65535).commandId(), 65535u);
}

// ---- writing

TEST(StateCommand, WritesExactlyItsTwoMembers)
{
    MetaData::Element tree;
    StateCommand().copyToMetaData(tree);
    EXPECT_EQ(tree, object({{"commandid", integer(0)}, {"clientname", text("")}}));
}

TEST(StateCommand, WritesItsForm)
{
    StateCommand command(7);
    command.setClientName("ui");
    EXPECT_EQ(command.clientName(), "ui");
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":7})");
}

TEST(StateCommand, WritesTheIdZeroExtended)
{
    EXPECT_EQ(StateCommand(65535).toJsonString(), R"({"clientname":"","commandid":65535})");
    StateCommand command = read<StateCommand>(R"({"clientname":"","commandid":-1})");
    EXPECT_EQ(command.commandId(), 4294967295u);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"","commandid":4294967295})");
}

TEST(StateCommand, WritesTheIdThatItsClassSays)
{
    OwnIdCommand command;
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"","commandid":4000000000})");

    command.fromJsonString(R"({"clientname":"ui","commandid":7})");
    EXPECT_EQ(command.StateCommand::commandId(), 7u);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":4000000000})");
}

TEST(StateCommand, WritesTheIdBeforeTheClientName)
{
    class NoIdCommand : public StateCommand {
    public:
        unsigned int commandId() const override { throw std::runtime_error("no id"); }
    };
    NoIdCommand command;
    EXPECT_EQ(failureOf([&] { command.copyToInternalMetaData(); }), "runtime_error: no id");
    EXPECT_EQ(command.metaData(), object({{"commandid", MetaData::Element()}}));
}

TEST(StateCommand, WritesOverMembersOfAnyKind)
{
    StateCommand command(7);
    command.setClientName("ui");
    command.metaData() = object({{"commandid", text("x")}, {"clientname", object({{"a", integer(1)}})}});
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":7})");
}

TEST(StateCommand, WritesIntoNothingButAnObject)
{
    StateCommand command;
    command.metaData() = integer(5);
    EXPECT_EQ(failureOf([&] { command.toJsonString(); }), "TypeError: expected object, found integer");
}

TEST(StateCommand, CarriesAnyClientName)
{
    std::vector<std::pair<std::string, std::string>> const names = {
        {"", "empty"},
        {"ui", "short"},
        {std::string(1000, 'x'), "long"},
        {"\"quoted\"\\\n", "escaped"},
        {std::string("a\0b", 3), "with a zero byte"},
        {"gr\xC3\xBC\xC3\x9F", "not ASCII"},
    };
    for (auto const& [name, description] : names) {
        SCOPED_TRACE(description);
        StateCommand command;
        command.setClientName(name);
        EXPECT_EQ(read<StateCommand>(command.toJsonString()).clientName(), name);
    }
}

// ---- reading

TEST(StateCommand, ReadsAnyCommandId)
{
    StateCommand command(3);
    command.fromJsonString(R"({"commandid":7,"clientname":"ui"})");
    EXPECT_EQ(command.commandId(), 7u);
    EXPECT_EQ(command.clientName(), "ui");
}

TEST(StateCommand, ReadsItsIdLeniently)
{
    expectReadings(StateCommand(), object({{"clientname", text("ui")}}), "commandid",
                   Tests::unsignedReadings(),
                   [](StateCommand const& command) { return command.commandId(); });
}

TEST(StateCommand, ReadsNumbersOfATextLeniently)
{
    EXPECT_EQ(read<StateCommand>(R"({"clientname":"","commandid":2.9})").commandId(), 2u);
    EXPECT_EQ(read<StateCommand>(R"({"clientname":"","commandid":true})").commandId(), 1u);
    EXPECT_EQ(read<StateCommand>(R"({"clientname":"","commandid":-1.0})").commandId(), 0u);
}

TEST(StateCommand, ReadsTheIdBeforeTheClientName)
{
    StateCommand before(3);
    before.setClientName("old");
    std::string const nothingRead = R"({"clientname":"old","commandid":3})";
    std::string const idRead = R"({"clientname":"old","commandid":7})";
    expectRefusals(
        before,
        {
            {"nothing", "{}", "TypeError: expected integer, found empty", nothingRead},
            {"no id", R"({"clientname":"ui"})", "TypeError: expected integer, found empty", nothingRead},
            {"null id", R"({"clientname":"ui","commandid":null})", "TypeError: expected integer, found empty",
             nothingRead},
            {"string id", R"({"clientname":"ui","commandid":"7"})",
             "TypeError: expected integer, found string", nothingRead},
            {"object id", R"({"clientname":"ui","commandid":{}})",
             "TypeError: expected integer, found object", nothingRead},
            {"array id", R"({"clientname":"ui","commandid":[7]})", "TypeError: expected integer, found array",
             nothingRead},
            {"no name", R"({"commandid":7})", "TypeError: expected string, found empty", idRead},
            {"null name", R"({"clientname":null,"commandid":7})", "TypeError: expected string, found empty",
             idRead},
            {"integer name", R"({"clientname":5,"commandid":7})", "TypeError: expected string, found integer",
             idRead},
            {"boolean name", R"({"clientname":true,"commandid":7})",
             "TypeError: expected string, found boolean", idRead},
            {"floating-point name", R"({"clientname":1.5,"commandid":7})",
             "TypeError: expected string, found floating-point number", idRead},
            {"object name", R"({"clientname":{},"commandid":7})", "TypeError: expected string, found object",
             idRead},
            {"array name", R"({"clientname":["ui"],"commandid":7})",
             "TypeError: expected string, found array", idRead},
            {"array", "[]", "TypeError: expected object, found array", nothingRead},
            {"number", "7", "TypeError: expected object, found integer", nothingRead},
        });
}

TEST(StateCommand, ReadsKeysCharacterForCharacter)
{
    EXPECT_EQ(failureOf([] { read<StateCommand>(R"({"clientname":"ui","commandId":7})"); }),
              "TypeError: expected integer, found empty");
    EXPECT_EQ(failureOf([] { read<StateCommand>(R"({"clientName":"ui","commandid":7})"); }),
              "TypeError: expected string, found empty");
}

TEST(StateCommand, StaysAsItWasWhenATextIsNotJson)
{
    StateCommand command = read<StateCommand>(R"({"clientname":"ui","commandid":7,"x":1})");
    EXPECT_THROW(command.fromJsonString(R"({"clientname":"other","commandid":8)"), Json::ParseError);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":7,"x":1})");
}

TEST(StateCommand, ReadsAndWritesStreams)
{
    std::istringstream in(R"( {"clientname" : "ui", "commandid" : 7} )");
    StateCommand command;
    command.fromJson(in);
    std::ostringstream out;
    command.toJson(out);
    EXPECT_EQ(out.str(), R"({"clientname":"ui","commandid":7})");
}

// ---- the internal metadata object

TEST(StateCommand, WritesUnknownMembersOutAgain)
{
    StateCommand command =
        read<StateCommand>(R"({"clientname":"ui","commandid":7,"id":5,"more":{"list":[1,2.5,null]}})");
    command.setClientName("cli");
    EXPECT_EQ(command.toJsonString(),
              R"({"clientname":"cli","commandid":7,"id":5,"more":{"list":[1,2.5,null]}})");
}

TEST(StateCommand, ForgetsUnknownMembersOfAnEarlierText)
{
    StateCommand command = read<StateCommand>(R"({"clientname":"ui","commandid":7,"more":1})");
    command.fromJsonString(R"({"clientname":"ui","commandid":7})");
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":7})");
}

TEST(StateCommand, KeepsUnknownMembersWhenARefusedTextHasOthers)
{
    StateCommand command = read<StateCommand>(R"({"clientname":"ui","commandid":7,"kept":1})");
    EXPECT_EQ(failureOf([&] { command.fromJsonString(R"({"commandid":8,"refused":2})"); }),
              "TypeError: expected string, found empty");
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":8,"kept":1})");
}

TEST(StateCommand, ReadsFromAndWritesIntoItsOwnMetadata)
{
    StateCommand command = read<StateCommand>(R"({"clientname":"ui","commandid":7,"more":1})");
    command.metaData()["clientname"] = text("cli");
    command.copyFromMetaData(command.metaData());
    EXPECT_EQ(command.clientName(), "cli");

    command.setClientName("third");
    command.copyToMetaData(command.metaData());
    EXPECT_EQ(command.metaData(),
              object({{"clientname", text("third")}, {"commandid", integer(7)}, {"more", integer(1)}}));

    command.moveFromMetaData(std::move(command.metaData()));
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"third","commandid":7,"more":1})");

    command.moveToMetaData(command.metaData());
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"third","commandid":7,"more":1})");
}

TEST(StateCommand, ReadsFromAPartOfItsOwnMetadata)
{
    StateCommand command = read<StateCommand>(
        R"({"clientname":"outer","commandid":1,"inner":{"clientname":"inner","commandid":2}})");
    command.copyFromMetaData(command.metaData()["inner"]);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"inner","commandid":2})");
}

TEST(StateCommand, CopiesShareNothing)
{
    StateCommand original = read<StateCommand>(R"({"clientname":"ui","commandid":7,"more":{"a":1}})");
    StateCommand copy(original);
    StateCommand assigned;
    assigned = original;
    original.setClientName("changed");
    original.metaData()["more"]["a"] = integer(2);
    EXPECT_EQ(copy.toJsonString(), R"({"clientname":"ui","commandid":7,"more":{"a":1}})");
    EXPECT_EQ(assigned.toJsonString(), R"({"clientname":"ui","commandid":7,"more":{"a":1}})");
    EXPECT_EQ(original.toJsonString(), R"({"clientname":"changed","commandid":7,"more":{"a":2}})");
}

TEST(StateCommand, TakesItsOwnClientName)
{
    StateCommand command;
    command.setClientName(std::string(100, 'x'));
    command.setClientName(command.clientName());
    EXPECT_EQ(command.clientName(), std::string(100, 'x'));
}

// ---- a free event id

TEST(StateCommandWithEventId, BeginsWithTheIdsGiven)
{
    EXPECT_EQ(ChosenEventCommand().toJsonString(), R"({"clientname":"","commandid":0,"id":0})");
    EXPECT_EQ(ChosenEventCommand(5).toJsonString(), R"({"clientname":"","commandid":5,"id":0})");
    EXPECT_EQ(ChosenEventCommand(65535, -8).toJsonString(), R"({"clientname":"","commandid":65535,"id":-8})");
}

TEST(StateCommandWithEventId, WritesItsEventIdSignExtended)
{
    ChosenEventCommand command;
    command.setEventId(-1);
    EXPECT_EQ(command.eventId(), -1);
    MetaData::Element tree;
    command.copyToMetaData(tree);
    EXPECT_EQ(tree, object({{"commandid", integer(0)}, {"clientname", text("")}, {"id", integer(-1)}}));
}

TEST(StateCommandWithEventId, ReadsItsEventIdLeniently)
{
    expectReadings(ChosenEventCommand(), object({{"clientname", text("ui")}, {"commandid", integer(7)}}),
                   "id", Tests::intReadings(),
                   [](ChosenEventCommand const& command) { return command.eventId(); });
}

TEST(StateCommandWithEventId, ReadsTheEnvelopeFirst)
{
    ChosenEventCommand before(3, 4);
    before.setClientName("old");
    expectRefusals(
        before,
        {
            {"no command id", R"({"clientname":"ui","id":9})", "TypeError: expected integer, found empty",
             R"({"clientname":"old","commandid":3,"id":4})"},
            {"no name", R"({"commandid":7,"id":9})", "TypeError: expected string, found empty",
             R"({"clientname":"old","commandid":7,"id":4})"},
            {"no event id", R"({"clientname":"ui","commandid":7})",
             "TypeError: expected integer, found empty", R"({"clientname":"ui","commandid":7,"id":4})"},
            {"string event id", R"({"clientname":"ui","commandid":7,"id":"9"})",
             "TypeError: expected integer, found string", R"({"clientname":"ui","commandid":7,"id":4})"},
            {"object event id", R"({"clientname":"ui","commandid":7,"id":{}})",
             "TypeError: expected integer, found object", R"({"clientname":"ui","commandid":7,"id":4})"},
        });
}

TEST(StateCommandWithEventId, ComesBackFromItsText)
{
    ChosenEventCommand const command =
        read<ChosenEventCommand>(R"({"clientname":"ui","commandid":7,"id":-9})");
    EXPECT_EQ(command.commandId(), 7u);
    EXPECT_EQ(command.clientName(), "ui");
    EXPECT_EQ(command.eventId(), -9);
}

// ---- a global event id

template <int N>
struct Bound {
    static constexpr int id = N;
};

template <typename Number>
class GlobalEventIdTest : public testing::Test {};

using GlobalEventIds = testing::Types<Bound<-3>, Bound<-4>, Bound<-5>, Bound<-6>, Bound<-10>, Bound<-77>,
                                      Bound<std::numeric_limits<int>::min()>>;

class GlobalEventIdNames {
public:
    template <typename Number>
    static std::string GetName(int)
    {
        return "Minus" + std::to_string(-static_cast<long long>(Number::id));
    }
};

TYPED_TEST_SUITE(GlobalEventIdTest, GlobalEventIds, GlobalEventIdNames);

TYPED_TEST(GlobalEventIdTest, IsWritten)
{
    NormalGlobalEventCommand<TypeParam::id> command;
    command.setClientName("ui");
    EXPECT_EQ(command.commandId(), 0u);
    MetaData::Element tree;
    command.copyToMetaData(tree);
    EXPECT_EQ(
        tree,
        object({{"commandid", integer(0)}, {"clientname", text("ui")}, {"id", integer(TypeParam::id)}}));
}

TYPED_TEST(GlobalEventIdTest, IsAccepted)
{
    long long const id = TypeParam::id;
    MetaData::Element const accepted[] = {integer(id), integer(id + 4294967296), integer(id - 4294967296),
                                          real(static_cast<double>(id)), real(static_cast<double>(id) - 0.7)};
    for (MetaData::Element const& node : accepted) {
        NormalGlobalEventCommand<TypeParam::id> command;
        EXPECT_EQ(failureOf([&] {
                      command.copyFromMetaData(
                          object({{"commandid", integer(7)}, {"clientname", text("ui")}, {"id", node}}));
                  }),
                  "nothing")
            << testing::PrintToString(node);
        EXPECT_EQ(command.commandId(), 7u);
        EXPECT_EQ(command.clientName(), "ui");
    }
}

TYPED_TEST(GlobalEventIdTest, IsRequired)
{
    long long const id = TypeParam::id;
    MetaData::Element const refused[] = {
        integer(id + 1), integer(-id - 1), integer(0), real(0.0), real(static_cast<double>(id) + 1),
        boolean(true),   boolean(false)};
    for (MetaData::Element const& node : refused) {
        NormalGlobalEventCommand<TypeParam::id> command;
        EXPECT_EQ(failureOf([&] {
                      command.copyFromMetaData(
                          object({{"commandid", integer(7)}, {"clientname", text("ui")}, {"id", node}}));
                  }),
                  "runtime_error: event id does not match expected value")
            << testing::PrintToString(node);
        EXPECT_EQ(command.commandId(), 7u);
        EXPECT_EQ(command.clientName(), "ui");
    }
}

TEST(NormalGlobalEventCommand, WritesItsForm)
{
    NormalGlobalEventCommand<-10> command;
    command.setClientName("ui");
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"id":-10})");
}

TEST(NormalGlobalEventCommand, KeepsTheEnvelopeWhenTheIdIsWrong)
{
    NormalGlobalEventCommand<-6> command;
    EXPECT_EQ(failureOf([&] { command.fromJsonString(R"({"clientname":"ui","commandid":7,"id":-10})"); }),
              "runtime_error: event id does not match expected value");
    EXPECT_EQ(command.commandId(), 7u);
    EXPECT_EQ(command.clientName(), "ui");
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":7,"id":-6})");
}

TEST(NormalGlobalEventCommand, TruncatesAndNarrowsTheIdBeforeItCompares)
{
    for (std::string const id : {"-4", "-4.0", "-4.7", "4294967292"})
        EXPECT_EQ(failureOf([&] {
                      read<NormalGlobalEventCommand<-4>>(R"({"clientname":"ui","commandid":0,"id":)" + id +
                                                         "}");
                  }),
                  "nothing")
            << id;
    for (std::string const id : {"-5", "-3.9", "4", "4294967291", "true", "false"})
        EXPECT_EQ(failureOf([&] {
                      read<NormalGlobalEventCommand<-4>>(R"({"clientname":"ui","commandid":0,"id":)" + id +
                                                         "}");
                  }),
                  "runtime_error: event id does not match expected value")
            << id;
}

TEST(NormalGlobalEventCommand, ReadsTheEnvelopeFirst)
{
    expectRefusals(
        read<NormalGlobalEventCommand<-10>>(R"({"clientname":"old","commandid":3,"id":-10})"),
        {
            {"no command id, wrong event id", R"({"clientname":"ui","id":9})",
             "TypeError: expected integer, found empty", R"({"clientname":"old","commandid":3,"id":-10})"},
            {"no name, wrong event id", R"({"commandid":7,"id":9})",
             "TypeError: expected string, found empty", R"({"clientname":"old","commandid":7,"id":-10})"},
            {"no event id", R"({"clientname":"ui","commandid":7})",
             "TypeError: expected integer, found empty", R"({"clientname":"ui","commandid":7,"id":-10})"},
            {"string event id", R"({"clientname":"ui","commandid":7,"id":"-10"})",
             "TypeError: expected integer, found string", R"({"clientname":"ui","commandid":7,"id":-10})"},
            {"array event id", R"({"clientname":"ui","commandid":7,"id":[-10]})",
             "TypeError: expected integer, found array", R"({"clientname":"ui","commandid":7,"id":-10})"},
            {"wrong event id", R"({"clientname":"ui","commandid":7,"id":-6})",
             "runtime_error: event id does not match expected value",
             R"({"clientname":"ui","commandid":7,"id":-10})"},
        });
}

TEST(NormalGlobalEventCommand, CanBeBoundToANumberOfTheUsersOwn)
{
    UserPayloadCommand command;
    command.setClientName("ui");
    command.volume = 11;
    std::string const written = command.toJsonString();
    EXPECT_EQ(written, R"({"clientname":"ui","commandid":0,"id":-77,"volume":11})");
    EXPECT_EQ(read<UserPayloadCommand>(written).volume, 11);

    EXPECT_EQ(failureOf([&] {
                  command.fromJsonString(R"({"clientname":"cli","commandid":0,"id":-78,"volume":3})");
              }),
              "runtime_error: event id does not match expected value");
    EXPECT_EQ(command.clientName(), "cli");
    EXPECT_EQ(command.volume, 11);
}

} // namespace
} // namespace Zelk::Msgs::LegacyState
