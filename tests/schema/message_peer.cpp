/// Lets scripts ask the library for its verdict on texts, and for texts that it writes.
///
///     message_peer read    standard input: lines "CLASS<tab>TEXT"; an answer a line: "written<tab>TEXT" with
///     what
///                          the object then writes, or "refused<tab>EXCEPTION<tab>WHAT"
///     message_peer write   lines "CLASS<tab>TEXT" of messages built through the setters
#include "framework/json_text.h"
#include "msgs/legacystate/metadata_response.h"
#include "msgs/legacystate/queue_mapping_app_info.h"
#include "msgs/legacystate/registration_commands.h"
#include "msgs/legacystate/state_command.h"
#include "msgs/legacystate/state_response.h"
#include "msgs/legacystate/state_space_response.h"
#include "msgs/legacystate/subscriber_commands.h"
#include "msgs/msgidstate/info.h"

#include <exception>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace {

using namespace Zelk::Msgs::LegacyState;
using namespace Zelk::Msgs::MsgIdState;
using Zelk::MetaData::Element;
using Zelk::MetaData::Trivial_T;

/// StateCommandWithEventId is abstract; this is the command of a service of its own.
class CommandWithEventId : public StateCommandWithEventId {
public:
    using StateCommandWithEventId::StateCommandWithEventId;
};

template <typename Message>
std::string rewrite(std::string const& text)
{
    Message message;
    message.fromJsonString(text);
    return message.toJsonString();
}

template <typename Record>
std::string rewriteRecord(Record record, std::string const& text)
{
    record.copyFromMetaData(Zelk::Json::readText(text));
    Element tree;
    record.copyToMetaData(tree);
    return Zelk::Json::printText(tree);
}

std::string rewriteInfoResponse(std::string const& text)
{
    InfoResponse response({}, "");
    response.copyFromMetaData(Zelk::Json::readText(text));
    Element tree;
    response.copyToMetaData(tree);
    return Zelk::Json::printText(tree);
}

std::map<std::string, std::function<std::string(std::string const&)>, std::less<>> const readers = {
    {"StateCommand", rewrite<StateCommand>},
    {"StateCommandWithEventId", rewrite<CommandWithEventId>},
    {"NormalGlobalEventCommand<-10>", rewrite<NormalGlobalEventCommand<-10>>},
    {"NormalGlobalEventCommand<-6>", rewrite<NormalGlobalEventCommand<-6>>},
    {"EnableLogModeCommand", rewrite<EnableLogModeCommand>},
    {"CreateSubscriberCommand", rewrite<CreateSubscriberCommand>},
    {"DeleteSubscriberCommand", rewrite<DeleteSubscriberCommand>},
    {"RegisterCommand", rewrite<RegisterCommand>},
    {"UnregisterCommand", rewrite<UnregisterCommand>},
    {"StateResponse", rewrite<StateResponse>},
    {"MetaDataResponse", rewrite<MetaDataResponse>},
    {"StateSpaceMetaDataResponse", rewrite<StateSpaceMetaDataResponse>},
    {"RegisterMessageQueueResponse", rewrite<RegisterMessageQueueResponse>},
    {"XmlAttrToEventMappingResponse", rewrite<XmlAttrToEventMappingResponse>},
    {"InfraMetaDataAppInfo", rewrite<InfraMetaDataAppInfo>},
    {"InfoRequestData", [](std::string const& text) { return rewriteRecord(InfoRequestData(false), text); }},
    {"InfoResponseData", [](std::string const& text) { return rewriteRecord(InfoResponseData(), text); }},
    {"InfoResponse", rewriteInfoResponse},
};

/// The public name of the exception's class: what a user would catch.
char const* exceptionName(std::exception const& error)
{
    if (dynamic_cast<Zelk::MetaData::MissingMemberError const*>(&error) != nullptr)
        return "Zelk::MetaData::MissingMemberError";
    if (dynamic_cast<Zelk::MetaData::TypeError const*>(&error) != nullptr)
        return "Zelk::MetaData::TypeError";
    if (dynamic_cast<Zelk::MetaData::UnsetFieldError const*>(&error) != nullptr)
        return "Zelk::MetaData::UnsetFieldError";
    if (dynamic_cast<Zelk::Json::ParseError const*>(&error) != nullptr)
        return "Zelk::Json::ParseError";
    if (dynamic_cast<Zelk::Json::PrintError const*>(&error) != nullptr)
        return "Zelk::Json::PrintError";
    if (dynamic_cast<std::runtime_error const*>(&error) != nullptr)
        return "std::runtime_error";
    return "std::exception";
}

int readAll()
{
    for (std::string line; std::getline(std::cin, line);) {
        auto const tab = line.find('\t');
        auto const reader = readers.find(std::string_view(line).substr(0, tab));
        if (tab == std::string::npos || reader == readers.end()) {
            std::cerr << "no such class: " << line << '\n';
            return 2;
        }
        try {
            std::string const written = reader->second(line.substr(tab + 1));
            std::cout << "written\t" << written << '\n';
        } catch (std::exception const& error) {
            std::cout << "refused\t" << exceptionName(error) << '\t' << error.what() << '\n';
        }
    }
    return 0;
}

void write(char const* name, Zelk::Json::Serializable const& message)
{
    std::cout << name << '\t' << message.toJsonString() << '\n';
}

template <typename Command>
Command commandFrom(std::string const& client)
{
    Command command;
    command.setClientName(client);
    return command;
}

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

void writeCommands(std::string const& client)
{
    StateCommand command(65535);
    command.setClientName(client);
    write("StateCommand", command);
    write("StateCommand", StateCommand());
    CommandWithEventId withEventId(3, lowest);
    withEventId.setClientName(client);
    write("StateCommandWithEventId", withEventId);
    write("NormalGlobalEventCommand<-10>", commandFrom<NormalGlobalEventCommand<-10>>(client));
    write("NormalGlobalEventCommand<-6>", commandFrom<NormalGlobalEventCommand<-6>>(client));

    auto logMode = commandFrom<EnableLogModeCommand>(client);
    write("EnableLogModeCommand", logMode);
    logMode.setValue(true);
    write("EnableLogModeCommand", logMode);

    auto subscribe = commandFrom<CreateSubscriberCommand>(client);
    write("CreateSubscriberCommand", subscribe);
    subscribe.setPublisherName("door");
    subscribe.setEventId(lowest);
    subscribe.setFilterType(highest);
    subscribe.setFilterFreq(-2.5e-300);
    write("CreateSubscriberCommand", subscribe);

    auto unsubscribe = commandFrom<DeleteSubscriberCommand>(client);
    unsubscribe.setPublisherName("door");
    unsubscribe.setEventId(-1);
    write("DeleteSubscriberCommand", unsubscribe);

    auto registering = commandFrom<RegisterCommand>(client);
    write("RegisterCommand", registering);
    registering.events().push_back(RegisterCommand::Event(7, 1, 0.5));
    registering.events().push_back(RegisterCommand::Event(lowest, highest, 1e300));
    write("RegisterCommand", registering);

    auto unregistering = commandFrom<UnregisterCommand>(client);
    write("UnregisterCommand", unregistering);
    unregistering.events() = {7, -1, highest};
    write("UnregisterCommand", unregistering);
}

template <typename Response>
Response responseWith(std::string const& header)
{
    Response response;
    response.setHeader(header);
    return response;
}

void writeResponses(std::string const& header)
{
    auto envelope = responseWith<StateResponse>(header);
    envelope.setEventId(lowest);
    write("StateResponse", envelope);

    auto metaData = responseWith<MetaDataResponse>(header);
    write("MetaDataResponse", metaData);
    MetaDataResponse::EventMetaData event;
    event.setName("open");
    event.setEventId(-12);
    metaData.events().push_back(event);
    write("MetaDataResponse", metaData);
    Element defaultValue;
    defaultValue["unit"] = Trivial_T<std::string>("m/s");
    using Param = MetaDataResponse::EventMetaData::ParamMetaData;
    event.params().push_back(Param("speed", "double", defaultValue));
    event.params().push_back(Param("force", "int", Element(Trivial_T<long long>(3))));
    metaData.events().push_back(event);
    write("MetaDataResponse", metaData);

    auto stateSpace = responseWith<StateSpaceMetaDataResponse>(header);
    write("StateSpaceMetaDataResponse", stateSpace);
    using State = StateSpaceMetaDataResponse::State;
    stateSpace.states().push_back(State("opens", 1, "Closed", "Opening", "open", 12, "", "unused"));
    stateSpace.states().push_back(State("sets", -1, "Open", "Open", "set", lowest, "speed", "int"));
    write("StateSpaceMetaDataResponse", stateSpace);

    auto queue = responseWith<RegisterMessageQueueResponse>(header);
    write("RegisterMessageQueueResponse", queue);
    queue.setName("q1");
    write("RegisterMessageQueueResponse", queue);

    auto mapping = responseWith<XmlAttrToEventMappingResponse>(header);
    write("XmlAttrToEventMappingResponse", mapping);
    using Attr = XmlAttrToEventMappingResponse::Attr;
    mapping.attrs().push_back(Attr("mode", 12));
    mapping.attrs().push_back(Attr("level", -40));
    mapping.attrs().push_back(Attr("", 0));
    write("XmlAttrToEventMappingResponse", mapping);

    InfraMetaDataAppInfo info;
    write("InfraMetaDataAppInfo", info);
    info.setName("door");
    info.setVersion("2.1");
    write("InfraMetaDataAppInfo", info);
}

} // namespace

int main(int argc, char** argv)
{
    std::string_view const task = argc == 2 ? argv[1] : "";
    if (task == "read")
        return readAll();
    if (task == "write") {
        for (char const* text : {"", "ui", "T\xc3\xbcr \"1\"\t\x01"}) {
            writeCommands(text);
            writeResponses(text);
        }
        return 0;
    }
    std::cerr << "usage: message_peer read|write\n";
    return 2;
}
