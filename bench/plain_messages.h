/// The content of the measured messages as plain structs: what every peer reads into and writes from, and
/// what the results of all are compared as.
#pragma once

#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

namespace bench {

struct Subscriber {
    unsigned int commandId = 0;
    std::string clientName;
    std::string publisherName;
    int eventId = 0;
    int filterType = 0;
    double filterFreq = 0;

    auto members() const
    {
        return std::tie(commandId, clientName, publisherName, eventId, filterType, filterFreq);
    }
    friend bool operator==(Subscriber const& a, Subscriber const& b) { return a.members() == b.members(); }
};

struct Transition {
    std::string name;
    int transitionId = 0;
    std::string startState;
    std::string endState;
    std::string eventName;
    int eventId = 0;
    std::string paramName;
    std::string paramType;

    bool hasParam() const { return !paramName.empty(); }
    auto members() const
    {
        return std::tie(name, transitionId, startState, endState, eventName, eventId, paramName, paramType);
    }
    friend bool operator==(Transition const& a, Transition const& b) { return a.members() == b.members(); }
};

struct StateSpace {
    std::string header;
    std::vector<Transition> transitions;

    friend bool operator==(StateSpace const& a, StateSpace const& b)
    {
        return a.header == b.header && a.transitions == b.transitions;
    }
};

struct EventFilter {
    int id = 0;
    int filterType = 0;
    double filterFreq = 0;

    auto members() const { return std::tie(id, filterType, filterFreq); }
    friend bool operator==(EventFilter const& a, EventFilter const& b) { return a.members() == b.members(); }
};

struct Registration {
    unsigned int commandId = 0;
    std::string clientName;
    std::vector<EventFilter> events;

    friend bool operator==(Registration const& a, Registration const& b)
    {
        return a.commandId == b.commandId && a.clientName == b.clientName && a.events == b.events;
    }
};

/// A subscription whose text has about 130 bytes.
Subscriber sampleSubscriber();
/// A state space of `count` transitions: one in four has a parameter, and about one string a transition is
/// longer than a std::string keeps without the heap.
StateSpace sampleStateSpace(std::size_t count);
/// A registration for `count` events.
Registration sampleRegistration(std::size_t count);

/// The order of the members of the objects in a text.
enum class MemberOrder { byName, asInTheForm };

std::string textOf(Subscriber const& message);
std::string textOf(StateSpace const& message, MemberOrder order);
std::string textOf(Registration const& message);

/// Throws std::runtime_error: the reader of every peer refuses a message with the wrong event id, as ours
/// does.
[[noreturn]] void refuseMessage(char const* why);

} // namespace bench
