#include "msgs/legacystate/subscriber_commands.h"
#include "readings.h"
#include "tests/framework/nodes.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>

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

std::string const wrongId = "runtime_error: event id does not match expected value";

CreateSubscriberCommand creating()
{
    CreateSubscriberCommand command;
    command.setClientName("ui");
    command.setPublisherName("p");
    command.setEventId(7);
    command.setFilterType(1);
    command.setFilterFreq(0.5);
    return command;
}

DeleteSubscriberCommand deleting()
{
    DeleteSubscriberCommand command;
    command.setClientName("ui");
    command.setPublisherName("p");
    command.setEventId(7);
    return command;
}

EnableLogModeCommand switching(bool value)
{
    EnableLogModeCommand command(value);
    command.setClientName("ui");
    return command;
}

template <typename Command>
MetaData::Element formOf(Command const& command)
{
    MetaData::Element tree;
    command.copyToMetaData(tree);
    return tree;
}

// ---- subscribing

TEST(CreateSubscriberCommand, BeginsEmpty)
{
    static_assert(std::is_base_of_v<NormalGlobalEventCommand<-4>, CreateSubscriberCommand>);
    CreateSubscriberCommand const command;
    EXPECT_EQ(command.commandId(), 0u);
    EXPECT_EQ(command.clientName(), "");
    EXPECT_EQ(command.publisherName(), "");
    EXPECT_EQ(command.eventId(), 0);
    EXPECT_EQ(command.filterType(), 0);
    EXPECT_EQ(command.filterFreq(), 0.0);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"","commandid":0,"eventId":0,"filterFreq":0.0,)"
                                      R"("filterType":0,"id":-4,"publisherName":""})");
}

TEST(CreateSubscriberCommand, WritesItsForm)
{
    EXPECT_EQ(creating().toJsonString(), R"({"clientname":"ui","commandid":0,"eventId":7,"filterFreq":0.5,)"
                                         R"("filterType":1,"id":-4,"publisherName":"p"})");
}

TEST(CreateSubscriberCommand, WritesNodesOfTheirKinds)
{
    CreateSubscriberCommand command = creating();
    command.setEventId(-1);
    command.setFilterType(std::numeric_limits<int>::min());
    command.setFilterFreq(3);
    EXPECT_EQ(formOf(command), object({{"commandid", integer(0)},
                                       {"clientname", text("ui")},
                                       {"id", integer(-4)},
                                       {"publisherName", text("p")},
                                       {"eventId", integer(-1)},
                                       {"filterType", integer(-2147483648LL)},
                                       {"filterFreq", real(3.0)}}));
}

TEST(CreateSubscriberCommand, ReadsItsForm)
{
    CreateSubscriberCommand command;
    command.fromJsonString(R"({"clientname":"ui","commandid":5,"eventId":7,"filterFreq":0.5,)"
                           R"("filterType":1,"id":-4,"publisherName":"p"})");
    EXPECT_EQ(command.commandId(), 5u);
    EXPECT_EQ(command.clientName(), "ui");
    EXPECT_EQ(command.publisherName(), "p");
    EXPECT_EQ(command.eventId(), 7);
    EXPECT_EQ(command.filterType(), 1);
    EXPECT_EQ(command.filterFreq(), 0.5);
}

TEST(CreateSubscriberCommand, ReadsNumbersLeniently)
{
    MetaData::Element const form = formOf(creating());
    expectReadings(CreateSubscriberCommand(), form, "eventId", Tests::intReadings(),
                   [](CreateSubscriberCommand const& command) { return command.eventId(); });
    expectReadings(CreateSubscriberCommand(), form, "filterType", Tests::intReadings(),
                   [](CreateSubscriberCommand const& command) { return command.filterType(); });
    expectReadings(CreateSubscriberCommand(), form, "filterFreq", Tests::doubleReadings(),
                   [](CreateSubscriberCommand const& command) { return command.filterFreq(); });
}

TEST(CreateSubscriberCommand, ReadsNumbersOfATextLeniently)
{
    CreateSubscriberCommand command;
    command.fromJsonString(R"({"clientname":"ui","commandid":0,"eventId":4294967297,"filterFreq":5,)"
                           R"("filterType":3.9,"id":-4.7,"publisherName":"p"})");
    EXPECT_EQ(command.eventId(), 1);
    EXPECT_EQ(command.filterType(), 3);
    EXPECT_EQ(command.filterFreq(), 5.0);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"eventId":1,"filterFreq":5.0,)"
                                      R"("filterType":3,"id":-4,"publisherName":"p"})");
}

TEST(CreateSubscriberCommand, RefusesTheTextOfADeletionAfterTheEnvelope)
{
    DeleteSubscriberCommand sent;
    sent.setClientName("cli");
    sent.setPublisherName("q");
    sent.setEventId(9);
    CreateSubscriberCommand command = creating();
    EXPECT_EQ(failureOf([&] { command.fromJsonString(sent.toJsonString()); }), wrongId);
    EXPECT_EQ(command.clientName(), "cli");
    EXPECT_EQ(command.publisherName(), "p");
    EXPECT_EQ(command.eventId(), 7);
}

TEST(CreateSubscriberCommand, ReadsItsMembersInTheOrderOfTheForm)
{
    // What is written after each member was the first that could not be read.
    std::string const none = R"({"clientname":"ui","commandid":0,"eventId":7,"filterFreq":0.5,)"
                             R"("filterType":1,"id":-4,"publisherName":"p"})";
    std::string const commandId = R"({"clientname":"ui","commandid":2,"eventId":7,"filterFreq":0.5,)"
                                  R"("filterType":1,"id":-4,"publisherName":"p"})";
    std::string const envelope = R"({"clientname":"cli","commandid":2,"eventId":7,"filterFreq":0.5,)"
                                 R"("filterType":1,"id":-4,"publisherName":"p"})";
    std::string const publisher = R"({"clientname":"cli","commandid":2,"eventId":7,"filterFreq":0.5,)"
                                  R"("filterType":1,"id":-4,"publisherName":"q"})";
    std::string const eventId = R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":0.5,)"
                                R"("filterType":1,"id":-4,"publisherName":"q"})";
    std::string const filterType = R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":0.5,)"
                                   R"("filterType":3,"id":-4,"publisherName":"q"})";
    expectRefusals(
        creating(),
        {
            {"commandid missing",
             R"({"clientname":"cli","eventId":9,"filterFreq":2.5,"filterType":3,"id":-4,"publisherName":"q"})",
             "TypeError: expected integer, found empty", none},
            {"commandid of a wrong kind",
             R"({"clientname":"cli","commandid":"2","eventId":9,"filterFreq":2.5,"filterType":3,"id":-4,)"
             R"("publisherName":"q"})",
             "TypeError: expected integer, found string", none},
            {"clientname missing",
             R"({"commandid":2,"eventId":9,"filterFreq":2.5,"filterType":3,"id":-4,"publisherName":"q"})",
             "TypeError: expected string, found empty", commandId},
            {"clientname of a wrong kind",
             R"({"clientname":1,"commandid":2,"eventId":9,"filterFreq":2.5,"filterType":3,"id":-4,)"
             R"("publisherName":"q"})",
             "TypeError: expected string, found integer", commandId},
            {"id missing",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":2.5,"filterType":3,)"
             R"("publisherName":"q"})",
             "TypeError: expected integer, found empty", envelope},
            {"id of a wrong kind",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":2.5,"filterType":3,"id":{},)"
             R"("publisherName":"q"})",
             "TypeError: expected integer, found object", envelope},
            {"another id",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":2.5,"filterType":3,"id":-5,)"
             R"("publisherName":"q"})",
             wrongId, envelope},
            {"publisherName missing",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":2.5,"filterType":3,"id":-4})",
             "TypeError: expected string, found empty", envelope},
            {"publisherName of a wrong kind",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":2.5,"filterType":3,"id":-4,)"
             R"("publisherName":true})",
             "TypeError: expected string, found boolean", envelope},
            {"eventId missing",
             R"({"clientname":"cli","commandid":2,"filterFreq":2.5,"filterType":3,"id":-4,"publisherName":"q"})",
             "TypeError: expected integer, found empty", publisher},
            {"eventId of a wrong kind",
             R"({"clientname":"cli","commandid":2,"eventId":"9","filterFreq":2.5,"filterType":3,"id":-4,)"
             R"("publisherName":"q"})",
             "TypeError: expected integer, found string", publisher},
            {"filterType missing",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":2.5,"id":-4,"publisherName":"q"})",
             "TypeError: expected integer, found empty", eventId},
            {"filterType of a wrong kind",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":2.5,"filterType":[3],"id":-4,)"
             R"("publisherName":"q"})",
             "TypeError: expected integer, found array", eventId},
            {"filterFreq missing",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterType":3,"id":-4,"publisherName":"q"})",
             "TypeError: expected floating-point number, found empty", filterType},
            {"filterFreq of a wrong kind",
             R"({"clientname":"cli","commandid":2,"eventId":9,"filterFreq":"2.5","filterType":3,"id":-4,)"
             R"("publisherName":"q"})",
             "TypeError: expected floating-point number, found string", filterType},
        });
}

TEST(CreateSubscriberCommand, DoesNotTakeItsOwnIdForTheEventSubscribedTo)
{
    CreateSubscriberCommand command = creating();
    command.setEventId(-4);
    MetaData::Element form = formOf(command);
    form["id"] = integer(7);
    EXPECT_EQ(failureOf([&] { command.copyFromMetaData(form); }), wrongId);
}

TEST(CreateSubscriberCommand, WritesUnknownMembersOutAgain)
{
    CreateSubscriberCommand command;
    command.fromJsonString(R"({"clientname":"ui","commandid":5,"eventId":7,"eventid":[],"filterFreq":0.5,)"
                           R"("filterType":1,"id":-4,"publisherName":"p","zone":{"a":null}})");
    command.setPublisherName("q");
    EXPECT_EQ(command.toJsonString(),
              R"({"clientname":"ui","commandid":5,"eventId":7,"eventid":[],"filterFreq":0.5,)"
              R"("filterType":1,"id":-4,"publisherName":"q","zone":{"a":null}})");
}

TEST(CreateSubscriberCommand, WritesAgainOverItsOwnForm)
{
    CreateSubscriberCommand command = creating();
    command.copyToMetaData(command.metaData());
    command.setPublisherName(std::string(100, 'q'));
    command.setEventId(8);
    command.copyFromMetaData(command.metaData());
    EXPECT_EQ(command.publisherName(), "p") << "read back from what was written before the change";
    EXPECT_EQ(command.eventId(), 7);
    command.setPublisherName("r");
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"eventId":7,"filterFreq":0.5,)"
                                      R"("filterType":1,"id":-4,"publisherName":"r"})");
}

TEST(CreateSubscriberCommand, CopiesShareNothing)
{
    CreateSubscriberCommand original = creating();
    original.setPublisherName(std::string(100, 'p'));
    CreateSubscriberCommand const copy = original;
    original.setPublisherName("changed");
    original.setFilterFreq(9.0);
    EXPECT_EQ(copy.publisherName(), std::string(100, 'p'));
    EXPECT_EQ(copy.filterFreq(), 0.5);
}

// ---- ending a subscription

TEST(DeleteSubscriberCommand, BeginsEmpty)
{
    static_assert(std::is_base_of_v<NormalGlobalEventCommand<-5>, DeleteSubscriberCommand>);
    DeleteSubscriberCommand const command;
    EXPECT_EQ(command.commandId(), 0u);
    EXPECT_EQ(command.publisherName(), "");
    EXPECT_EQ(command.eventId(), 0);
    EXPECT_EQ(command.toJsonString(),
              R"({"clientname":"","commandid":0,"eventId":0,"id":-5,"publisherName":""})");
}

TEST(DeleteSubscriberCommand, WritesItsForm)
{
    EXPECT_EQ(deleting().toJsonString(),
              R"({"clientname":"ui","commandid":0,"eventId":7,"id":-5,"publisherName":"p"})");
}

TEST(DeleteSubscriberCommand, WritesNodesOfTheirKinds)
{
    DeleteSubscriberCommand command = deleting();
    command.setEventId(-1);
    EXPECT_EQ(formOf(command), object({{"commandid", integer(0)},
                                       {"clientname", text("ui")},
                                       {"id", integer(-5)},
                                       {"publisherName", text("p")},
                                       {"eventId", integer(-1)}}));
}

TEST(DeleteSubscriberCommand, ReadsItsForm)
{
    DeleteSubscriberCommand command;
    command.fromJsonString(R"({"clientname":"ui","commandid":5,"eventId":7,"id":-5,"publisherName":"p"})");
    EXPECT_EQ(command.commandId(), 5u);
    EXPECT_EQ(command.clientName(), "ui");
    EXPECT_EQ(command.publisherName(), "p");
    EXPECT_EQ(command.eventId(), 7);
}

TEST(DeleteSubscriberCommand, ReadsItsEventIdLeniently)
{
    expectReadings(DeleteSubscriberCommand(), formOf(deleting()), "eventId", Tests::intReadings(),
                   [](DeleteSubscriberCommand const& command) { return command.eventId(); });
}

TEST(DeleteSubscriberCommand, ReadsItsMembersInTheOrderOfTheForm)
{
    std::string const none = R"({"clientname":"ui","commandid":0,"eventId":7,"id":-5,"publisherName":"p"})";
    std::string const commandId =
        R"({"clientname":"ui","commandid":2,"eventId":7,"id":-5,"publisherName":"p"})";
    std::string const envelope =
        R"({"clientname":"cli","commandid":2,"eventId":7,"id":-5,"publisherName":"p"})";
    std::string const publisher =
        R"({"clientname":"cli","commandid":2,"eventId":7,"id":-5,"publisherName":"q"})";
    expectRefusals(
        deleting(),
        {
            {"commandid missing", R"({"clientname":"cli","eventId":9,"id":-5,"publisherName":"q"})",
             "TypeError: expected integer, found empty", none},
            {"commandid of a wrong kind",
             R"({"clientname":"cli","commandid":[],"eventId":9,"id":-5,"publisherName":"q"})",
             "TypeError: expected integer, found array", none},
            {"clientname missing", R"({"commandid":2,"eventId":9,"id":-5,"publisherName":"q"})",
             "TypeError: expected string, found empty", commandId},
            {"clientname of a wrong kind",
             R"({"clientname":{},"commandid":2,"eventId":9,"id":-5,"publisherName":"q"})",
             "TypeError: expected string, found object", commandId},
            {"id missing", R"({"clientname":"cli","commandid":2,"eventId":9,"publisherName":"q"})",
             "TypeError: expected integer, found empty", envelope},
            {"id of a wrong kind",
             R"({"clientname":"cli","commandid":2,"eventId":9,"id":"-5","publisherName":"q"})",
             "TypeError: expected integer, found string", envelope},
            {"the id of a creation",
             R"({"clientname":"cli","commandid":2,"eventId":9,"id":-4,"publisherName":"q"})", wrongId,
             envelope},
            {"publisherName missing", R"({"clientname":"cli","commandid":2,"eventId":9,"id":-5})",
             "TypeError: expected string, found empty", envelope},
            {"publisherName of a wrong kind",
             R"({"clientname":"cli","commandid":2,"eventId":9,"id":-5,"publisherName":1.5})",
             "TypeError: expected string, found floating-point number", envelope},
            {"eventId missing", R"({"clientname":"cli","commandid":2,"id":-5,"publisherName":"q"})",
             "TypeError: expected integer, found empty", publisher},
            {"eventId of a wrong kind",
             R"({"clientname":"cli","commandid":2,"eventId":"9","id":-5,"publisherName":"q"})",
             "TypeError: expected integer, found string", publisher},
        });
}

TEST(DeleteSubscriberCommand, WritesUnknownMembersOutAgain)
{
    DeleteSubscriberCommand command;
    command.fromJsonString(
        R"({"clientname":"ui","commandid":5,"eventId":7,"filterType":1,"id":-5,"publisherName":"p"})");
    EXPECT_EQ(command.toJsonString(),
              R"({"clientname":"ui","commandid":5,"eventId":7,"filterType":1,"id":-5,"publisherName":"p"})");
}

// ---- the log mode

TEST(EnableLogModeCommand, BeginsWithTheValueGiven)
{
    static_assert(std::is_base_of_v<NormalGlobalEventCommand<-3>, EnableLogModeCommand>);
    static_assert(!std::is_convertible_v<bool, EnableLogModeCommand>);
    EXPECT_FALSE(EnableLogModeCommand().value());
    EXPECT_FALSE(EnableLogModeCommand(false).value());
    EXPECT_TRUE(EnableLogModeCommand(true).value());
    EXPECT_EQ(EnableLogModeCommand(true).commandId(), 0u);
    EXPECT_EQ(EnableLogModeCommand(true).clientName(), "");
}

TEST(EnableLogModeCommand, WritesItsForm)
{
    EXPECT_EQ(switching(true).toJsonString(), R"({"clientname":"ui","commandid":0,"id":-3,"value":true})");
    EnableLogModeCommand command = switching(true);
    command.setValue(false);
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"id":-3,"value":false})");
}

TEST(EnableLogModeCommand, WritesNodesOfTheirKinds)
{
    EXPECT_EQ(formOf(switching(true)), object({{"commandid", integer(0)},
                                               {"clientname", text("ui")},
                                               {"id", integer(-3)},
                                               {"value", boolean(true)}}));
}

TEST(EnableLogModeCommand, ReadsItsForm)
{
    EnableLogModeCommand command;
    command.fromJsonString(R"({"clientname":"ui","commandid":5,"id":-3,"value":true})");
    EXPECT_EQ(command.commandId(), 5u);
    EXPECT_EQ(command.clientName(), "ui");
    EXPECT_TRUE(command.value());
}

TEST(EnableLogModeCommand, ReadsItsValueLeniently)
{
    expectReadings(EnableLogModeCommand(), formOf(switching(true)), "value", Tests::boolReadings(),
                   [](EnableLogModeCommand const& command) { return command.value(); });
}

TEST(EnableLogModeCommand, ReadsNumbersOfATextAsValues)
{
    EnableLogModeCommand command(true);
    command.fromJsonString(R"({"clientname":"ui","commandid":0,"id":-3,"value":0.000001})");
    EXPECT_FALSE(command.value());
    command.fromJsonString(R"({"clientname":"ui","commandid":0,"id":-3,"value":2})");
    EXPECT_TRUE(command.value());
    EXPECT_EQ(command.toJsonString(), R"({"clientname":"ui","commandid":0,"id":-3,"value":true})");
}

TEST(EnableLogModeCommand, ReadsItsMembersInTheOrderOfTheForm)
{
    std::string const none = R"({"clientname":"ui","commandid":0,"id":-3,"value":true})";
    std::string const commandId = R"({"clientname":"ui","commandid":2,"id":-3,"value":true})";
    std::string const envelope = R"({"clientname":"cli","commandid":2,"id":-3,"value":true})";
    expectRefusals(
        switching(true),
        {
            {"commandid missing", R"({"clientname":"cli","id":-3,"value":false})",
             "TypeError: expected integer, found empty", none},
            {"clientname missing", R"({"commandid":2,"id":-3,"value":false})",
             "TypeError: expected string, found empty", commandId},
            {"id missing", R"({"clientname":"cli","commandid":2,"value":false})",
             "TypeError: expected integer, found empty", envelope},
            {"another id", R"({"clientname":"cli","commandid":2,"id":-6,"value":false})", wrongId, envelope},
            {"value missing", R"({"clientname":"cli","commandid":2,"id":-3})",
             "TypeError: expected boolean, found empty", envelope},
            {"value is null", R"({"clientname":"cli","commandid":2,"id":-3,"value":null})",
             "TypeError: expected boolean, found empty", envelope},
            {"value is a string", R"({"clientname":"cli","commandid":2,"id":-3,"value":"false"})",
             "TypeError: expected boolean, found string", envelope},
            {"value is an object", R"({"clientname":"cli","commandid":2,"id":-3,"value":{}})",
             "TypeError: expected boolean, found object", envelope},
            {"value is an array", R"({"clientname":"cli","commandid":2,"id":-3,"value":[false]})",
             "TypeError: expected boolean, found array", envelope},
        });
}

TEST(EnableLogModeCommand, WritesUnknownMembersOutAgain)
{
    EnableLogModeCommand command;
    command.fromJsonString(R"({"Value":1,"clientname":"ui","commandid":5,"id":-3,"value":true})");
    command.setValue(false);
    EXPECT_EQ(command.toJsonString(), R"({"Value":1,"clientname":"ui","commandid":5,"id":-3,"value":false})");
}

} // namespace
} // namespace Zelk::Msgs::LegacyState
