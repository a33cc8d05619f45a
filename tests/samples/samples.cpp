#include "tests/samples/samples.h"

#include "framework/json_array.h"
#include "framework/json_text.h"
#include "msgs/legacystate/metadata_response.h"
#include "msgs/legacystate/queue_mapping_app_info.h"
#include "msgs/legacystate/registration_commands.h"
#include "msgs/legacystate/state_command.h"
#include "msgs/legacystate/state_response.h"
#include "msgs/legacystate/state_space_response.h"
#include "msgs/legacystate/subscriber_commands.h"
#include "msgs/msgidstate/info.h"

#include <cctype>
#include <fstream>
#include <istream>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace Zelk::Testing {

using namespace Msgs::LegacyState;
using Msgs::MsgIdState::InfoRequestData;
using Msgs::MsgIdState::InfoResponse;
using Msgs::MsgIdState::InfoResponseData;

using Event = RegisterCommand::Event;
using EventMetaData = MetaDataResponse::EventMetaData;
using ParamMetaData = EventMetaData::ParamMetaData;
using State = StateSpaceMetaDataResponse::State;
using Attr = XmlAttrToEventMappingResponse::Attr;

Subject::~Subject() = default;

namespace {

/// A command as people derive it: the event id is its own choice.
class EventCommand : public StateCommandWithEventId {
public:
    ~EventCommand() override = default;
};

template <typename T>
using Fill = void (*)(T&);

/// What is common to the classes of both families.
template <typename T>
class Holding : public Subject {
public:
    Holding(T const& object, Fill<T> filling) : object_(object), fill_(filling) {}

    void fill() override { fill_(object_); }
    void assign(Subject const& other) override { object_ = dynamic_cast<Holding const&>(other).object_; }
    void copyTo(MetaData::Element& target) const override { object_.copyToMetaData(target); }
    void copyFrom(MetaData::Element const& source) override { object_.copyFromMetaData(source); }

protected:
    T object_;
    Fill<T> fill_;
};

/// A class with a text of its own.
template <typename T>
class TextSubject : public Holding<T> {
public:
    using Holding<T>::Holding;

    std::unique_ptr<Subject> copy() const override
    {
        return std::make_unique<TextSubject>(this->object_, this->fill_);
    }
    void moveTo(MetaData::Element& target) override { this->object_.moveToMetaData(target); }
    void moveFrom(MetaData::Element&& source) override { this->object_.moveFromMetaData(std::move(source)); }
    std::string toText() const override { return this->object_.toJsonString(); }
    void toStream(std::ostream& stream) const override { this->object_.toJson(stream); }
    std::string moveToText() override { return this->object_.moveToJsonString(); }
    void moveToStream(std::ostream& stream) override { this->object_.moveToJson(stream); }
    void fromText(std::string const& text) override { this->object_.fromJsonString(text); }
    void fromStream(std::istream& stream) override { this->object_.fromJson(stream); }

    MetaData::Element* internal() const override
    {
        if constexpr (std::is_base_of_v<Json::PartiallyDeserializable, T>)
            return &this->object_.metaData();
        else
            return nullptr;
    }
    bool ofFields() const override { return false; }
};

/// A record of reflected fields, whose text goes through a tree.
template <typename T>
class RecordSubject : public Holding<T> {
public:
    using Holding<T>::Holding;

    std::unique_ptr<Subject> copy() const override
    {
        return std::make_unique<RecordSubject>(this->object_, this->fill_);
    }
    void moveTo(MetaData::Element& target) override { this->copyTo(target); }
    void moveFrom(MetaData::Element&& source) override
    {
        MetaData::Element const taken(std::move(source));
        this->copyFrom(taken);
    }
    std::string toText() const override { return Json::printText(written()); }
    void toStream(std::ostream& stream) const override { Json::printText(written(), stream); }
    std::string moveToText() override { return toText(); }
    void moveToStream(std::ostream& stream) override { toStream(stream); }
    void fromText(std::string const& text) override { this->copyFrom(Json::readText(text)); }
    void fromStream(std::istream& stream) override { this->copyFrom(Json::readText(stream)); }
    MetaData::Element* internal() const override { return nullptr; }
    bool ofFields() const override { return true; }

private:
    MetaData::Element written() const
    {
        MetaData::Element tree;
        this->copyTo(tree);
        return tree;
    }
};

template <typename T, template <typename> class SubjectOf, typename Make>
Kind kindOf(std::string name, std::string text, Make make, Fill<T> fill)
{
    return {std::move(name), std::move(text),
            [make, fill] { return std::make_unique<SubjectOf<T>>(make(), fill); }};
}

/// A class that is default-constructed and has a text of its own.
template <typename T>
Kind kind(std::string name, std::string text, Fill<T> fill)
{
    return kindOf<T, TextSubject>(
        std::move(name), std::move(text), [] { return T(); }, fill);
}

std::string goldenText(std::string const& name)
{
    std::ifstream file(std::string(ZELK_FORMS_DIR) + "/" + name + ".json", std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (text.empty() || text.back() != '\n')
        throw std::runtime_error("no golden text of " + name);
    text.pop_back();
    return text;
}

template <typename T>
Kind message(std::string const& name, Fill<T> fill)
{
    return kind<T>(name, goldenText(name), fill);
}

// Some texts are longer than a string holds without memory of its own.
char const* const longName = "engine room, port side";

void fillEvent(EventMetaData& event, std::string const& name, int id)
{
    event.setName(name);
    event.setEventId(id);
}

void addStates(Json::Array<State>& states)
{
    states.emplace_back("ignite", 1, "Off", "Running", "start", 7, "throttle", "double");
    states.emplace_back("halt", -2, "Running", "Off and cooling slowly down", "stop", 9, "", "");
}

std::vector<Kind> makeMessages()
{
    std::vector<Kind> kinds;
    kinds.push_back(kindOf<StateCommand, TextSubject>(
        "StateCommand", goldenText("StateCommand"), [] { return StateCommand(65535); },
        [](StateCommand& command) { command.setClientName(longName); }));
    kinds.push_back(message<EventCommand>("StateCommandWithEventId", [](EventCommand& command) {
        command.setClientName(longName);
        command.setEventId(-1);
    }));
    kinds.push_back(message<NormalGlobalEventCommand<-6>>(
        "NormalGlobalEventCommand-6",
        [](NormalGlobalEventCommand<-6>& command) { command.setClientName(longName); }));
    kinds.push_back(message<NormalGlobalEventCommand<-10>>(
        "NormalGlobalEventCommand-10",
        [](NormalGlobalEventCommand<-10>& command) { command.setClientName(longName); }));
    kinds.push_back(message<RegisterCommand>("RegisterCommand", [](RegisterCommand& command) {
        command.setClientName(longName);
        command.events().emplace_back(7, 1, 0.5);
        command.events().emplace_back(-9, 0, 2.0);
        command.events().emplace_back(11, -3, 1e30);
    }));
    kinds.push_back(message<UnregisterCommand>("UnregisterCommand", [](UnregisterCommand& command) {
        command.setClientName(longName);
        command.events() = {7, -9, 2147483647};
    }));
    kinds.push_back(
        message<CreateSubscriberCommand>("CreateSubscriberCommand", [](CreateSubscriberCommand& command) {
            command.setClientName("ui");
            command.setPublisherName(longName);
            command.setEventId(7);
            command.setFilterType(-1);
            command.setFilterFreq(0.25);
        }));
    kinds.push_back(
        message<DeleteSubscriberCommand>("DeleteSubscriberCommand", [](DeleteSubscriberCommand& command) {
            command.setClientName("ui");
            command.setPublisherName(longName);
            command.setEventId(7);
        }));
    kinds.push_back(message<EnableLogModeCommand>("EnableLogModeCommand", [](EnableLogModeCommand& command) {
        command.setClientName(longName);
        command.setValue(true);
    }));
    kinds.push_back(message<StateResponse>("StateResponse", [](StateResponse& response) {
        response.setHeader("answer of the engine room");
        response.setEventId(5);
    }));
    kinds.push_back(message<MetaDataResponse>("MetaDataResponse", [](MetaDataResponse& response) {
        response.setHeader("events");
        fillEvent(response.events().emplace_back(), "start the main engine", 7);
        fillEvent(response.events().emplace_back(), "stop", -9);
    }));
    kinds.push_back(message<RegisterMessageQueueResponse>("RegisterMessageQueueResponse",
                                                          [](RegisterMessageQueueResponse& response) {
                                                              response.setHeader("queue");
                                                              response.setName("/queues/engine-room/port");
                                                          }));
    kinds.push_back(kindOf<XmlAttrToEventMappingResponse, TextSubject>(
        "XmlAttrToEventMappingResponse", goldenText("XmlAttrToEventMappingResponse"),
        [] {
            // Reading does not take the header, so the object that is read into must have it.
            XmlAttrToEventMappingResponse response;
            response.setHeader("attributes");
            return response;
        },
        [](XmlAttrToEventMappingResponse& response) {
            response.attrs().emplace_back("level", 40);
            response.attrs().emplace_back("mode of the main engine", -12);
        }));
    kinds.push_back(message<StateSpaceMetaDataResponse>("StateSpaceMetaDataResponse",
                                                        [](StateSpaceMetaDataResponse& response) {
                                                            response.setHeader("transitions");
                                                            addStates(response.states());
                                                        }));
    kinds.push_back(message<InfraMetaDataAppInfo>("InfraMetaDataAppInfo", [](InfraMetaDataAppInfo& info) {
        info.setName("engine room monitor");
        info.setVersion("1.2.0");
    }));
    kinds.push_back(kindOf<InfoRequestData, RecordSubject>(
        "InfoRequestData", goldenText("InfoRequestData"), [] { return InfoRequestData(false); },
        [](InfoRequestData& data) {
            data.StateName = "Off and cooling slowly down";
            data.AttribInfo = true;
        }));
    kinds.push_back(kindOf<InfoResponseData, RecordSubject>(
        "InfoResponseData", goldenText("InfoResponseData"), [] { return InfoResponseData(); },
        [](InfoResponseData& data) { data.StateName = "Off and cooling slowly down"; }));
    kinds.push_back(kindOf<InfoResponse, RecordSubject>(
        "InfoResponse", goldenText("InfoResponse"), [] { return InfoResponse({}, ""); },
        [](InfoResponse& response) {
            response.SenderID = std::vector<std::string>{"plant", longName};
            response.payload().StateName = "Running";
        }));
    return kinds;
}

std::vector<Kind> makeAllKinds()
{
    std::vector<Kind> kinds = messages();
    kinds.push_back(
        kind<EventMetaData>("EventMetaData", R"({"id":7,"name":"start the main engine"})",
                            [](EventMetaData& event) { fillEvent(event, "start the main engine", 7); }));
    kinds.push_back(kind<State>(
        "State",
        R"({"endState":"Off and cooling slowly down","eventid":9,"eventname":"stop","name":"halt",)"
        R"("parametername":"p","parametertype":"int","startstate":"Running","transition_id":-2})",
        [](State& state) {
            state = State("halt", -2, "Running", "Off and cooling slowly down", "stop", 9, "p", "int");
        }));
    // These have no form of their own.
    kinds.push_back(kind<ParamMetaData>("ParamMetaData", "null", [](ParamMetaData& param) {
        param = ParamMetaData(longName, "int",
                              Json::readText(R"({"default":[1,2,{"deep":"engine room, port side"}]})"));
    }));
    kinds.push_back(kind<Attr>("Attr", "null", [](Attr& attr) { attr = Attr(longName, 40); }));
    kinds.push_back(kindOf<Event, TextSubject>(
        "Event", "null", [] { return Event(0, 0, 0.0); }, [](Event& event) { event = Event(7, 1, 0.5); }));
    kinds.push_back(kind<Json::Array<int>>("Array<int>", "[7,-9,2147483647]", [](Json::Array<int>& list) {
        list = {7, -9, 2147483647};
    }));
    kinds.push_back(kind<Json::Array<State>>(
        "Array<State>",
        R"([{"endState":"Running","eventid":7,"eventname":"start","name":"ignite","parametername":"throttle",)"
        R"("parametertype":"double","startstate":"Off","transition_id":1},)"
        R"({"endState":"Off and cooling slowly down","eventid":9,"eventname":"stop","name":"halt",)"
        R"("startstate":"Running","transition_id":-2}])",
        [](Json::Array<State>& list) {
            list.clear();
            addStates(list);
        }));
    kinds.push_back(kind<Json::Array<EventMetaData>>(
        "Array<EventMetaData>", R"([{"id":7,"name":"start the main engine"},{"id":-9,"name":"stop"}])",
        [](Json::Array<EventMetaData>& list) {
            list.clear();
            fillEvent(list.emplace_back(), "start the main engine", 7);
            fillEvent(list.emplace_back(), "stop", -9);
        }));
    kinds.push_back(kind<Json::Array<ParamMetaData>>(
        "Array<ParamMetaData>", "[null]", [](Json::Array<ParamMetaData>& list) {
            list = {ParamMetaData(longName, "int", Json::readText("[[1]]"))};
        }));
    kinds.push_back(kind<Json::Array<Attr>>("Array<Attr>", "[null,null]", [](Json::Array<Attr>& list) {
        list = {Attr(longName, 40), Attr("mode", 12)};
    }));
    kinds.push_back(kind<Json::Array<Event>>("Array<Event>", "[null,null]", [](Json::Array<Event>& list) {
        list = {Event(7, 1, 0.5), Event(9, 0, 2.0)};
    }));
    return kinds;
}

} // namespace

std::unique_ptr<Subject> Kind::filled() const
{
    std::unique_ptr<Subject> subject = blank();
    subject->fill();
    return subject;
}

void PrintTo(Kind const& kind, std::ostream* stream)
{
    *stream << kind.name;
}

std::vector<Kind> const& messages()
{
    static std::vector<Kind> const kinds = makeMessages();
    return kinds;
}

std::vector<Kind> const& allKinds()
{
    static std::vector<Kind> const kinds = makeAllKinds();
    return kinds;
}

Kind const& kindNamed(std::string const& name)
{
    for (Kind const& kind : allKinds()) {
        if (kind.name == name)
            return kind;
    }
    throw std::out_of_range("no class is called " + name);
}

std::string testName(std::string name)
{
    for (char& c : name) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0)
            c = '_';
    }
    return name;
}

} // namespace Zelk::Testing
