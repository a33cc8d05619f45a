#include "bench/plain_messages.h"

#include "bench/random.h"

#include <charconv>
#include <stdexcept>

namespace bench {
namespace {

std::string quoted(std::string const& content)
{
    return "\"" + content + "\"";
}

std::string number(double value)
{
    char digits[32];
    std::string text(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string textOf(Transition const& transition, MemberOrder order)
{
    std::string const name = "\"name\":" + quoted(transition.name);
    std::string const id = "\"transition_id\":" + std::to_string(transition.transitionId);
    std::string const start = "\"startstate\":" + quoted(transition.startState);
    std::string const end = "\"endState\":" + quoted(transition.endState);
    std::string const event = "\"eventid\":" + std::to_string(transition.eventId) +
                              ",\"eventname\":" + quoted(transition.eventName);
    std::string parameter;
    if (transition.hasParam())
        parameter = ",\"parametername\":" + quoted(transition.paramName) +
                    ",\"parametertype\":" + quoted(transition.paramType);
    if (order == MemberOrder::byName)
        return "{" + end + "," + event + "," + name + parameter + "," + start + "," + id + "}";
    std::string const eventInTheForm = "\"eventname\":" + quoted(transition.eventName) +
                                       ",\"eventid\":" + std::to_string(transition.eventId);
    return "{" + name + "," + id + "," + start + "," + end + "," + eventInTheForm + parameter + "}";
}

template <typename Project>
std::string listOf(std::vector<EventFilter> const& events, Project project)
{
    std::string out = "[";
    for (EventFilter const& event : events) {
        out += out.size() == 1 ? "" : ",";
        out += project(event);
    }
    return out + "]";
}

} // namespace

Subscriber sampleSubscriber()
{
    Subscriber message;
    message.clientName = "instrument-cluster";
    message.publisherName = "navigation";
    message.eventId = 1207;
    message.filterType = 2;
    message.filterFreq = 12.5;
    return message;
}

StateSpace sampleStateSpace(std::size_t count)
{
    static char const* const states[] = {
        "Idle", "Running",    "Paused", "Booting", "Shutdown",  "Error",  "RouteGuidance", "RouteCalculation",
        "Menu", "MapDisplay", "Muted",  "Standby", "Diagnosis", "Update", "PhoneCall",     "Parking"};
    static char const* const events[] = {"KeyPressed", "Timeout", "SignalLost", "DestinationReached",
                                         "Ignition",   "Wakeup",  "VoiceCmd",   "SpeedChanged"};
    static char const* const types[] = {"int", "bool", "string", "double"};
    Random random(4);
    StateSpace message;
    message.header = "state space of the head unit";
    message.transitions.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        Transition transition;
        std::string const start = random.pick(states);
        std::string const end = random.pick(states);
        transition.name = start + "To" + end;
        transition.transitionId = static_cast<int>(i);
        transition.startState = start + std::to_string(random.below(30));
        transition.endState = end + std::to_string(random.below(30));
        std::size_t const event = random.below(1000);
        transition.eventName = events[event % std::size(events)] + std::to_string(event % 100);
        transition.eventId = static_cast<int>(event);
        if (random.below(4) == 0) {
            transition.paramName = "param" + std::to_string(random.below(10));
            transition.paramType = random.pick(types);
        }
        message.transitions.push_back(transition);
    }
    return message;
}

Registration sampleRegistration(std::size_t count)
{
    static double const frequencies[] = {0.5, 1.0, 2.0, 12.5, 0.1, 60.0, 33.333, 0.25};
    Random random(5);
    Registration message;
    message.clientName = "logger";
    message.events.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        EventFilter event;
        event.id = static_cast<int>(random.below(50000));
        event.filterType = static_cast<int>(random.below(4));
        event.filterFreq = random.below(8) == 0 ? 100 * random.unit() : random.pick(frequencies);
        message.events.push_back(event);
    }
    return message;
}

std::string textOf(Subscriber const& message)
{
    return "{\"clientname\":" + quoted(message.clientName) +
           ",\"commandid\":" + std::to_string(message.commandId) +
           ",\"eventId\":" + std::to_string(message.eventId) +
           ",\"filterFreq\":" + number(message.filterFreq) +
           ",\"filterType\":" + std::to_string(message.filterType) +
           ",\"id\":-4,\"publisherName\":" + quoted(message.publisherName) + "}";
}

std::string textOf(StateSpace const& message, MemberOrder order)
{
    std::string list = "[";
    for (Transition const& transition : message.transitions) {
        list += list.size() == 1 ? "" : ",";
        list += textOf(transition, order);
    }
    list += "]";
    std::string const header = "\"header\":" + quoted(message.header);
    std::string const body = "\"body\":{\"id\":-9,\"statelist\":" + list + "}";
    return order == MemberOrder::byName ? "{" + body + "," + header + "}" : "{" + header + "," + body + "}";
}

std::string textOf(Registration const& message)
{
    return "{\"clientname\":" + quoted(message.clientName) +
           ",\"commandid\":" + std::to_string(message.commandId) + ",\"eventlist\":{\"ids\":" +
           listOf(message.events, [](EventFilter const& event) { return std::to_string(event.id); }) +
           "},\"filterlist\":{\"freq\":" +
           listOf(message.events, [](EventFilter const& event) { return number(event.filterFreq); }) +
           ",\"type\":" +
           listOf(message.events, [](EventFilter const& event) { return std::to_string(event.filterType); }) +
           "}}";
}

void refuseMessage(char const* why)
{
    throw std::runtime_error(why);
}

} // namespace bench
