#include "tools/zelk-msg/catalogue.h"

#include "framework/json_text.h"
#include "framework/number.h"
#include "framework/serializable.h"
#include "msgs/common/identifier.h"
#include "msgs/legacystate/metadata_response.h"
#include "msgs/legacystate/queue_mapping_app_info.h"
#include "msgs/legacystate/registration_commands.h"
#include "msgs/legacystate/state_command.h"
#include "msgs/legacystate/state_response.h"
#include "msgs/legacystate/state_space_response.h"
#include "msgs/legacystate/subscriber_commands.h"
#include "msgs/msgidstate/info.h"
#include "tools/zelk-msg/suggest.h"
#include "tools/zelk-msg/trouble.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <utility>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
namespace LegacyState = Zelk::Msgs::LegacyState;
namespace MsgIdState = Zelk::Msgs::MsgIdState;
using MetaData::Element;

AnyMessage::~AnyMessage() = default;

IncompleteRecord::IncompleteRecord(std::string path)
    : std::runtime_error("the required field is not set: it is missing or of another type"),
      path_(std::move(path))
{}

IncompleteRecord::~IncompleteRecord() = default;

namespace {

/// A command or response: keeps the tree that it was read from.
template <typename T>
class LegacyMessage final : public AnyMessage {
public:
    void read(Element&& tree) override { message_.moveFromMetaData(std::move(tree)); }
    Element written() const override
    {
        Element tree;
        message_.copyToMetaData(tree);
        return tree;
    }
    Element writtenKnown() override
    {
        message_.metaData() = Element();
        return written();
    }
    std::string textOfKnown() override
    {
        message_.metaData() = Element();
        return message_.toJsonString();
    }

private:
    T message_;
};

/// A plain record.
template <typename T>
class PlainRecord final : public AnyMessage {
public:
    void read(Element&& tree) override { record_.copyFromMetaData(tree); }
    Element written() const override
    {
        Element tree;
        record_.copyToMetaData(tree);
        return tree;
    }
    Element writtenKnown() override { return written(); }
    std::string textOfKnown() override { return record_.toJsonString(); }

private:
    T record_;
};

// What a record of fields needs to be built, and whether it is complete after reading.

void refuseUnset(MetaData::MirroredObject const& record, std::string const& path)
{
    auto const unset = record.unsetRequired();
    if (!unset.empty())
        throw IncompleteRecord(path + '/' + std::string(unset.front()));
}

struct InfoResponse : MsgIdState::InfoResponse {
    InfoResponse() : MsgIdState::InfoResponse({}, "UnknownState") {}
    void refuseIncomplete() const
    {
        refuseUnset(*this, "");
        refuseUnset(Data(), "/Data");
    }
};

struct InfoRequestData : MsgIdState::InfoRequestData {
    InfoRequestData() : MsgIdState::InfoRequestData(false) {}
    void refuseIncomplete() const { refuseUnset(*this, ""); }
};

struct InfoResponseData : MsgIdState::InfoResponseData {
    void refuseIncomplete() const { refuseUnset(*this, ""); }
};

/// A record or message of fields. Its fields swallow what they cannot read, so it is looked over afterwards.
template <typename T>
class FieldRecord final : public AnyMessage {
public:
    void read(Element&& tree) override
    {
        record_.copyFromMetaData(tree);
        record_.refuseIncomplete();
    }
    Element written() const override
    {
        Element tree;
        record_.copyToMetaData(tree);
        return tree;
    }
    Element writtenKnown() override { return written(); }
    std::string textOfKnown() override { return Zelk::Json::printText(written()); }

private:
    T record_;
};

/// The base of commands with a free event id; users derive theirs from it.
class CommandWithEventId final : public LegacyState::StateCommandWithEventId {
public:
    CommandWithEventId() = default;
};

template <typename Wrapper>
std::unique_ptr<AnyMessage> create()
{
    return std::make_unique<Wrapper>();
}

// The members of a kind as lists that are put together.

using Members = std::vector<Member>;

Members operator+(Members left, Members const& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

constexpr auto required = Presence::required;
constexpr auto strict = Reading::strict;
constexpr auto lenient = Reading::lenient;

Members commandEnvelope()
{
    return {{"/commandid", Type::integer, required, lenient, "command id, 0 to 4294967295"},
            {"/clientname", Type::text, required, strict, "name of the sending client"}};
}

Members commandId(std::string_view meaning = "global event id of the command")
{
    return {{"/id", Type::integer, required, lenient, meaning}};
}

Members responseEnvelope(Reading reading = strict,
                         std::string_view idMeaning = "global event id of the response")
{
    return {
        {"/header", Type::text, reading == strict ? required : Presence::optional, reading,
         "free text of the sender"},
        {"/body/id", Type::integer, reading == strict ? required : Presence::optional, reading, idMeaning}};
}

/// An event with a parameter is read without end: the reader looks for the same parameter again and again.
std::optional<Kind::Endless> eventWithParameter(Element const& tree)
{
    if (tree.GetElementType() != Element::object)
        return std::nullopt;
    MetaData::Object const& message = tree;
    auto const body = message.find("body");
    if (body == message.end() || body->element().GetElementType() != Element::object)
        return std::nullopt;
    MetaData::Object const& members = body->element();
    auto const list = members.find("eventlist");
    if (list == members.end() || list->element().GetElementType() != Element::array)
        return std::nullopt;
    MetaData::Array const& events = list->element();
    std::size_t index = 0;
    for (Element const& event : events) {
        if (event.GetElementType() == Element::object) {
            MetaData::Object const& event_members = event;
            if (event_members.find("param0_name") != event_members.end())
                return Kind::Endless{"/body/eventlist/" + std::to_string(index) + "/param0_name",
                                     "an event with a parameter cannot be received: reading it goes on until "
                                     "memory is exhausted"};
        }
        ++index;
    }
    return std::nullopt;
}

std::vector<Kind> makeKinds()
{
    std::vector<Kind> table;

    table.push_back({"StateCommand", Direction::command, std::nullopt,
                     "A command with nothing but its envelope.", commandEnvelope(),
                     R"({"clientname":"door-panel","commandid":3})",
                     create<LegacyMessage<LegacyState::StateCommand>>});
    table.push_back({"StateCommandWithEventId", Direction::command, std::nullopt,
                     "A command with an event id of the client's choice, from 0 on.",
                     commandEnvelope() + commandId("event id"),
                     R"({"clientname":"door-panel","commandid":4,"id":12})",
                     create<LegacyMessage<CommandWithEventId>>});
    table.push_back({"RegisterCommand", Direction::command, std::nullopt,
                     "Registers for events, each with a filter; the three lists run in parallel.",
                     commandEnvelope() +
                         Members{{"/eventlist/ids/*", Type::integer, Presence::optional, strict, "event ids"},
                                 {"/filterlist/type/*", Type::integer, Presence::optional, strict,
                                  "filter type of each event"},
                                 {"/filterlist/freq/*", Type::number, Presence::optional, strict,
                                  "filter frequency of each event, never an integer"}},
                     R"({"clientname":"door-panel","commandid":0,"eventlist":{"ids":[7,9]},)"
                     R"("filterlist":{"freq":[0.5,2.0],"type":[1,0]}})",
                     create<LegacyMessage<LegacyState::RegisterCommand>>, nullptr, true});
    table.push_back(
        {"UnregisterCommand", Direction::command, std::nullopt, "Withdraws registered events.",
         commandEnvelope() + Members{{"/eventlist/ids/*", Type::integer, required, lenient, "event ids"}},
         R"({"clientname":"door-panel","commandid":0,"eventlist":{"ids":[7,9]}})",
         create<LegacyMessage<LegacyState::UnregisterCommand>>});
    table.push_back({"EnableLogModeCommand", Direction::command, -3, "Switches the log mode on or off.",
                     commandEnvelope() + commandId() +
                         Members{{"/value", Type::boolean, required, lenient, "true switches it on"}},
                     R"({"clientname":"door-panel","commandid":0,"id":-3,"value":true})",
                     create<LegacyMessage<LegacyState::EnableLogModeCommand>>});
    table.push_back(
        {"CreateSubscriberCommand", Direction::command, -4, "Subscribes to an event of a named publisher.",
         commandEnvelope() + commandId() +
             Members{{"/publisherName", Type::text, required, strict, "publisher of the event"},
                     {"/eventId", Type::integer, required, lenient, "event subscribed to"},
                     {"/filterType", Type::integer, required, lenient, "filter type"},
                     {"/filterFreq", Type::number, required, lenient, "filter frequency"}},
         R"({"clientname":"door-panel","commandid":0,"eventId":7,"filterFreq":0.5,"filterType":1,)"
         R"("id":-4,"publisherName":"door"})",
         create<LegacyMessage<LegacyState::CreateSubscriberCommand>>});
    table.push_back(
        {"DeleteSubscriberCommand", Direction::command, -5, "Cancels a subscription.",
         commandEnvelope() + commandId() +
             Members{{"/publisherName", Type::text, required, strict, "publisher of the event"},
                     {"/eventId", Type::integer, required, lenient, "event subscribed to"}},
         R"({"clientname":"door-panel","commandid":0,"eventId":7,"id":-5,"publisherName":"door"})",
         create<LegacyMessage<LegacyState::DeleteSubscriberCommand>>});
    table.push_back({"NormalGlobalEventCommand<-6>", Direction::command, -6,
                     "A command that is its global event id and nothing more.",
                     commandEnvelope() + commandId(), R"({"clientname":"door-panel","commandid":0,"id":-6})",
                     create<LegacyMessage<LegacyState::NormalGlobalEventCommand<-6>>>});
    table.push_back({"NormalGlobalEventCommand<-10>", Direction::command, -10,
                     "A command that is its global event id and nothing more.",
                     commandEnvelope() + commandId(), R"({"clientname":"door-panel","commandid":0,"id":-10})",
                     create<LegacyMessage<LegacyState::NormalGlobalEventCommand<-10>>>});

    table.push_back({"StateResponse", Direction::response, std::nullopt,
                     "A response with nothing but its envelope; its event id is 0 or more.",
                     responseEnvelope(strict, "event id"), R"({"body":{"id":12},"header":"ok"})",
                     create<LegacyMessage<LegacyState::StateResponse>>});
    table.push_back(
        {"MetaDataResponse", Direction::response, -1, "Lists the events that a state machine knows.",
         responseEnvelope() +
             Members{{"/body/eventlist/*/name", Type::text, required, strict, "name of the event"},
                     {"/body/eventlist/*/id", Type::integer, required, strict, "event id"},
                     {"/body/eventlist/*/param0_name", Type::text, Presence::optional, strict,
                      "name of its last parameter; a message with one cannot be received"},
                     {"/body/eventlist/*/param0_type", Type::text, Presence::withPrevious, strict,
                      "type of its last parameter"},
                     {"/body/eventlist/*/param0_default", Type::anything, Presence::withPrevious, strict,
                      "default value of its last parameter"}},
         R"({"body":{"eventlist":[{"id":7,"name":"open"},{"id":9,"name":"close"}],"id":-1},"header":"door"})",
         create<LegacyMessage<LegacyState::MetaDataResponse>>, eventWithParameter});
    table.push_back(
        {"RegisterMessageQueueResponse", Direction::response, -2,
         "Answers a queue registration with the name of the queue.",
         responseEnvelope() + Members{{"/body/name", Type::text, required, strict, "name of the queue"}},
         R"({"body":{"id":-2,"name":"/door-panel.17"},"header":"door"})",
         create<LegacyMessage<LegacyState::RegisterMessageQueueResponse>>});
    table.push_back(
        {"XmlAttrToEventMappingResponse", Direction::response, -7,
         "Maps attribute names to event ids. The received header and id are not read.",
         responseEnvelope(Reading::ignored) + Members{{"/body/?", Type::integer, Presence::optional, strict,
                                                       "event id of the attribute of that name"}},
         R"({"body":{"id":-7,"level":40,"mode":12},"header":""})",
         create<LegacyMessage<LegacyState::XmlAttrToEventMappingResponse>>});
    table.push_back(
        {"StateSpaceMetaDataResponse", Direction::response, -9, "Describes a state space by its transitions.",
         responseEnvelope() +
             Members{{"/body/statelist/*/name", Type::text, required, strict, "name of the transition"},
                     {"/body/statelist/*/transition_id", Type::integer, required, strict, "transition id"},
                     {"/body/statelist/*/startstate", Type::text, required, strict, "state it leads from"},
                     {"/body/statelist/*/endState", Type::text, required, strict, "state it leads to"},
                     {"/body/statelist/*/eventname", Type::text, required, strict, "event that fires it"},
                     {"/body/statelist/*/eventid", Type::integer, required, strict, "id of that event"},
                     {"/body/statelist/*/parametername", Type::text, Presence::optional, strict,
                      "name of the event's parameter"},
                     {"/body/statelist/*/parametertype", Type::text, Presence::withPrevious, strict,
                      "type of the event's parameter"}},
         R"({"body":{"id":-9,"statelist":[{"endState":"Open","eventid":7,"eventname":"open","name":"opening",)"
         R"("startstate":"Closed","transition_id":1}]},"header":"door"})",
         create<LegacyMessage<LegacyState::StateSpaceMetaDataResponse>>});
    table.push_back(
        {"InfoResponse",
         Direction::response,
         std::nullopt,
         "Answers with the name of a state; addressed by a 64-bit identifier.",
         {{"/MsgId", Type::integer, Presence::optional, strict, "identifier, 562949953486852"},
          {"/SenderID/*", Type::text, required, strict, "address of the sender"},
          {"/ReceiverID/*", Type::text, Presence::optional, strict, "address of the receiver"},
          {"/Data/StateName", Type::text, required, strict, "name of the state"}},
         R"({"Data":{"StateName":"Closed"},"MsgId":562949953486852,"SenderID":["service","door"]})",
         create<FieldRecord<InfoResponse>>});

    table.push_back({"InfraMetaDataAppInfo",
                     Direction::record,
                     std::nullopt,
                     "Name and version of an application.",
                     {{"/name", Type::text, required, strict, "name of the application"},
                      {"/version", Type::text, required, strict, "its version"}},
                     R"({"name":"door-controller","version":"2.1.0"})",
                     create<PlainRecord<LegacyState::InfraMetaDataAppInfo>>});
    table.push_back({"InfoRequestData",
                     Direction::record,
                     std::nullopt,
                     "Payload of a request for information about a state.",
                     {{"/StateName", Type::text, Presence::optional, strict, "name of the state"},
                      {"/AttribInfo", Type::boolean, required, strict, "whether attributes are asked for"}},
                     R"({"AttribInfo":true,"StateName":"Closed"})",
                     create<FieldRecord<InfoRequestData>>});
    table.push_back({"InfoResponseData",
                     Direction::record,
                     std::nullopt,
                     "Payload of the answer about a state.",
                     {{"/StateName", Type::text, required, strict, "name of the state"}},
                     R"({"StateName":"Closed"})",
                     create<FieldRecord<InfoResponseData>>});
    return table;
}

// Recognition.

Element const* child(Element const& parent, std::string const& name)
{
    if (parent.GetElementType() != Element::object)
        return nullptr;
    MetaData::Object const& members = parent;
    auto const found = members.find(name);
    return found == members.end() ? nullptr : &found->element();
}

/// Where the global event id of a direction stands.
Element const* idOf(Direction direction, Element const& tree)
{
    if (direction == Direction::command)
        return child(tree, "id");
    Element const* const body = child(tree, "body");
    return body == nullptr ? nullptr : child(*body, "id");
}

/// The id as the classes of the direction read it.
std::optional<int> readId(Direction direction, Element const* node)
{
    if (node == nullptr)
        return std::nullopt;
    switch (node->GetElementType()) {
    case Element::integer:
        return MetaData::low32(node->asInt64());
    case Element::real:
    case Element::boolean:
        if (direction == Direction::command)
            return MetaData::numberAs<int>(*node);
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

/// The first step of a path, which is taken off it.
std::string_view takeStep(std::string_view& path)
{
    path.remove_prefix(1);
    std::string_view const step = path.substr(0, path.find('/'));
    path.remove_prefix(step.size());
    return step;
}

/// A member by which a kind may be told from others.
struct Mark {
    std::vector<std::string> steps; ///< to the member, or to the list that it belongs to
    bool anyName;                   ///< it has no name of its own to look for
    bool missed;                    ///< its absence speaks against the kind
};

struct Marks {
    Kind const* kind;
    std::vector<Mark> own; ///< those outside the envelope
};

/// The marks of every kind, cut into steps once and not for every message.
std::vector<Marks> const& marks()
{
    static std::vector<Marks> const table = [] {
        std::vector<Marks> result;
        for (Kind const& kind : kinds()) {
            result.push_back({&kind, {}});
            for (Member const& member : kind.members) {
                if (inEnvelope(kind, member))
                    continue;
                Mark mark{{}, false, member.presence != Presence::withPrevious};
                for (std::string_view path = member.path; !path.empty();) {
                    std::string_view const step = takeStep(path);
                    if (step == "*")
                        break;
                    mark.anyName = mark.anyName || step == "?";
                    mark.steps.emplace_back(step);
                }
                result.back().own.push_back(std::move(mark));
            }
        }
        return result;
    }();
    return table;
}

bool has(Element const& tree, Mark const& mark)
{
    if (mark.anyName)
        return false;
    Element const* node = &tree;
    for (std::string const& step : mark.steps) {
        node = child(*node, step);
        if (node == nullptr)
            return false;
    }
    return true;
}

struct Resemblance {
    int present = 0;
    int missing = 0;
};

/// How many of the kind's own members the tree has, and how many it lacks.
Resemblance resemblance(Marks const& candidate, Element const& tree)
{
    Resemblance result;
    for (Mark const& mark : candidate.own) {
        if (has(tree, mark))
            ++result.present;
        else if (mark.missed)
            ++result.missing;
    }
    return result;
}

Kind const* byMembers(Direction direction, Element const& tree)
{
    Kind const* best = nullptr;
    Resemblance best_resemblance;
    for (Marks const& candidate : marks()) {
        if (candidate.kind->direction != direction)
            continue;
        Resemblance const here = resemblance(candidate, tree);
        if (here.present > best_resemblance.present ||
            (here.present > 0 && here.present == best_resemblance.present &&
             here.missing < best_resemblance.missing)) {
            best = candidate.kind;
            best_resemblance = here;
        }
    }
    return best;
}

std::string knownIds(Direction direction)
{
    std::vector<int> ids;
    for (Kind const& kind : kinds()) {
        if (kind.direction == direction && kind.globalEventId)
            ids.push_back(*kind.globalEventId);
    }
    std::sort(ids.rbegin(), ids.rend());
    std::string text;
    for (int const id : ids)
        text += (text.empty() ? "" : ", ") + std::to_string(id);
    return text;
}

Kind const* byGlobalEventId(Direction direction, int id)
{
    using Bound = std::map<std::pair<Direction, int>, Kind const*>;
    static Bound const bound = [] {
        Bound result;
        for (Kind const& kind : kinds()) {
            if (kind.globalEventId)
                result.emplace(std::pair(kind.direction, *kind.globalEventId), &kind);
        }
        return result;
    }();
    auto const found = bound.find({direction, id});
    return found == bound.end() ? nullptr : found->second;
}

Kind const* recogniseEnveloped(Direction direction, Element const& tree, std::string& reason)
{
    Element const* const id_node = idOf(direction, tree);
    std::optional<int> const id = readId(direction, id_node);
    if (id) {
        if (Kind const* const kind = byGlobalEventId(direction, *id))
            return kind;
    }
    if (Kind const* const kind = byMembers(direction, tree))
        return kind;
    if (id && *id < 0) {
        reason = "no " + std::string(nameOf(direction)) + " has the global event id " + std::to_string(*id) +
                 " (known are " + knownIds(direction) + ")";
        return nullptr;
    }
    static Kind const* const command = findKind("StateCommand");
    static Kind const* const with_id = findKind("StateCommandWithEventId");
    static Kind const* const response = findKind("StateResponse");
    if (direction == Direction::response)
        return response;
    return id_node == nullptr ? command : with_id;
}

} // namespace

std::vector<Kind> const& kinds()
{
    static std::vector<Kind> const table = makeKinds();
    return table;
}

Kind const* findKind(std::string_view name)
{
    auto const plain = [](std::string_view text) {
        std::string result;
        for (char const c : text) {
            if (c != '<' && c != '>')
                result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        return result;
    };
    std::string const wanted = plain(name);
    auto const& table = kinds();
    auto const found = std::find_if(table.begin(), table.end(),
                                    [&](Kind const& kind) { return plain(kind.name) == wanted; });
    return found == table.end() ? nullptr : &*found;
}

Kind const& kindNamed(std::string const& name)
{
    if (Kind const* const kind = findKind(name))
        return *kind;
    std::vector<std::string> names;
    for (Kind const& kind : kinds())
        names.emplace_back(kind.name);
    throw Trouble("no kind of message is called '" + name + "'" + didYouMean(name, names));
}

Kind const* recognise(Element const& tree, std::string& reason)
{
    if (tree.GetElementType() != Element::object) {
        reason = "a message is a JSON object";
        return nullptr;
    }
    static std::string const command_id = "commandid"; // not built for every message
    if (child(tree, command_id) != nullptr || child(tree, "clientname") != nullptr)
        return recogniseEnveloped(Direction::command, tree, reason);
    if (child(tree, "MsgId") != nullptr || child(tree, "SenderID") != nullptr)
        return findKind("InfoResponse");
    if (child(tree, "header") != nullptr || child(tree, "body") != nullptr)
        return recogniseEnveloped(Direction::response, tree, reason);
    if (Kind const* const kind = byMembers(Direction::record, tree))
        return kind;
    reason = "no known message: neither \"clientname\" (command) nor \"header\" and \"body\" (response) nor "
             "\"MsgId\" is there";
    return nullptr;
}

std::string_view nameOf(Direction direction)
{
    switch (direction) {
    case Direction::command:
        return "command";
    case Direction::response:
        return "response";
    case Direction::record:
        break;
    }
    return "record";
}

std::string_view nameOf(Type type)
{
    switch (type) {
    case Type::integer:
        return "integer";
    case Type::number:
        return "number";
    case Type::boolean:
        return "boolean";
    case Type::text:
        return "string";
    case Type::anything:
        break;
    }
    return "any value";
}

std::vector<std::string_view> steps(std::string_view path)
{
    std::vector<std::string_view> result;
    while (!path.empty())
        result.push_back(takeStep(path));
    return result;
}

std::string_view shortName(Member const& member)
{
    auto const all = steps(member.path);
    auto const last =
        std::find_if(all.rbegin(), all.rend(), [](std::string_view step) { return step != "*"; });
    return last == all.rend() ? std::string_view() : *last;
}

bool inEnvelope(Kind const& kind, Member const& member)
{
    switch (kind.direction) {
    case Direction::command:
        return member.path == "/commandid" || member.path == "/clientname" || member.path == "/id";
    case Direction::response:
        return member.path == "/header" || member.path == "/body/id" || member.path == "/MsgId" ||
               member.path == "/SenderID/*" || member.path == "/ReceiverID/*";
    case Direction::record:
        break;
    }
    return false;
}

} // namespace ZelkMsg
