#include "msgs/legacystate/state_command.h"

#include "msgs/legacystate/wire_form.h"

#include <stdexcept>

namespace Zelk::Json {
template unsigned int PartiallyDeserializable::element<unsigned int, 10>(char const (&)[10]) const;
template int PartiallyDeserializable::element<int, 3>(char const (&)[3]) const;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

StateCommand::StateCommand() : StateCommand(0) {}

StateCommand::StateCommand(unsigned short commandId) : commandId_(commandId) {}

StateCommand::~StateCommand() = default;

unsigned int StateCommand::commandId() const
{
    return commandId_;
}

void StateCommand::copyToInternalMetaData() const
{
    // One after the other: the member is there before a class derived from this one is asked for the id.
    MetaData::Element& id = entry(*this, "commandid");
    put(id, commandId());
    put(entry(*this, "clientname"), clientName());
}

void StateCommand::copyFromInternalMetaData()
{
    commandId_ = element<unsigned int>("commandid");
    setClientName(entry(*this, "clientname").asString());
}

void StateCommand::requireGlobalEventId(int eventId, int expected)
{
    // Kept on purpose: the responses say "event ID" where the commands say "event id".
    if (eventId != expected)
        throw std::runtime_error("event id does not match expected value");
}

StateCommandWithEventId::StateCommandWithEventId(unsigned short commandId, int eventId)
    : StateCommand(commandId), eventId_(eventId)
{}

StateCommandWithEventId::~StateCommandWithEventId() = default;

void StateCommandWithEventId::copyToInternalMetaData() const
{
    StateCommand::copyToInternalMetaData();
    put(entry(*this, "id"), eventId());
}

void StateCommandWithEventId::copyFromInternalMetaData()
{
    StateCommand::copyFromInternalMetaData();
    setEventId(element<int>("id"));
}

template class StateCommandWithGlobalEventId<-3>;
template class StateCommandWithGlobalEventId<-4>;
template class StateCommandWithGlobalEventId<-5>;
template class StateCommandWithGlobalEventId<-6>;
template class StateCommandWithGlobalEventId<-10>;
template class NormalGlobalEventCommand<-3>;
template class NormalGlobalEventCommand<-4>;
template class NormalGlobalEventCommand<-5>;
template class NormalGlobalEventCommand<-6>;
template class NormalGlobalEventCommand<-10>;

} // namespace Zelk::Msgs::LegacyState
