/// Between the message classes and the plain structs that all libraries are compared with.
#pragma once

#include "bench/plain_messages.h"
#include "bench/verify.h"
#include "msgs/legacystate/registration_commands.h"
#include "msgs/legacystate/state_space_response.h"
#include "msgs/legacystate/subscriber_commands.h"

namespace bench {

using OurSubscriber = Zelk::Msgs::LegacyState::CreateSubscriberCommand;
using OurStateSpace = Zelk::Msgs::LegacyState::StateSpaceMetaDataResponse;
using OurRegistration = Zelk::Msgs::LegacyState::RegisterCommand;

inline void fill(OurSubscriber& command, Subscriber const& message)
{
    command.setClientName(message.clientName);
    command.setPublisherName(message.publisherName);
    command.setEventId(message.eventId);
    command.setFilterType(message.filterType);
    command.setFilterFreq(message.filterFreq);
}

inline void fill(OurStateSpace& response, StateSpace const& message)
{
    response.setHeader(message.header);
    response.states().reserve(message.transitions.size());
    for (Transition const& transition : message.transitions)
        response.states().emplace_back(transition.name, transition.transitionId, transition.startState,
                                       transition.endState, transition.eventName, transition.eventId,
                                       transition.paramName, transition.paramType);
}

inline void fill(OurRegistration& command, Registration const& message)
{
    command.setClientName(message.clientName);
    command.events().reserve(message.events.size());
    for (EventFilter const& event : message.events)
        command.events().emplace_back(event.id, event.filterType, event.filterFreq);
}

inline Subscriber plain(OurSubscriber const& command)
{
    return {command.commandId(), command.clientName(), command.publisherName(),
            command.eventId(),   command.filterType(), command.filterFreq()};
}

inline StateSpace plain(OurStateSpace const& response)
{
    StateSpace message;
    message.header = response.header();
    for (OurStateSpace::State const& state : response.states())
        message.transitions.push_back({state.name(), state.transitionId(), state.startState(),
                                       state.endState(), state.eventName(), state.eventId(),
                                       state.paramName(), state.paramType()});
    return message;
}

inline Registration plain(OurRegistration const& command)
{
    Registration message;
    message.commandId = command.commandId();
    message.clientName = command.clientName();
    for (OurRegistration::Event const& event : command.events())
        message.events.push_back({event.id(), event.filterType(), event.filterFreq()});
    return message;
}

/// The class of ours for a plain message.
template <typename Message>
struct OurClassFor;
template <>
struct OurClassFor<Subscriber> {
    using type = OurSubscriber;
};
template <>
struct OurClassFor<StateSpace> {
    using type = OurStateSpace;
};
template <>
struct OurClassFor<Registration> {
    using type = OurRegistration;
};
template <typename Message>
using OurClass = typename OurClassFor<Message>::type;

/// The measured work done with the message classes of this library.
struct Ours {
    static constexpr char const* name = "ours";
    static constexpr Numbers numbers = Numbers::exact;

    template <typename Message>
    static std::string write(Message const& message)
    {
        OurClass<Message> object;
        fill(object, message);
        return object.toJsonString();
    }
};

} // namespace bench
