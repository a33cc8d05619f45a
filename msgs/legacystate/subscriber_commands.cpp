#include "msgs/legacystate/subscriber_commands.h"

#include "msgs/legacystate/wire_form.h"

namespace Zelk::Json {
template double PartiallyDeserializable::element<double, 11>(char const (&)[11]) const;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

CreateSubscriberCommand::CreateSubscriberCommand() = default;

CreateSubscriberCommand::~CreateSubscriberCommand() = default;

void CreateSubscriberCommand::copyToInternalMetaData() const
{
    NormalGlobalEventCommand<-4>::copyToInternalMetaData();
    put(entry(*this, "publisherName"), publisherName());
    put(entry(*this, "eventId"), eventId());
    put(entry(*this, "filterType"), filterType());
    put(entry(*this, "filterFreq"), filterFreq());
}

void CreateSubscriberCommand::copyFromInternalMetaData()
{
    NormalGlobalEventCommand<-4>::copyFromInternalMetaData();
    setPublisherName(entry(*this, "publisherName").asString());
    setEventId(element<int>("eventId"));
    setFilterType(element<int>("filterType"));
    setFilterFreq(element<double>("filterFreq"));
}

DeleteSubscriberCommand::DeleteSubscriberCommand() = default;

DeleteSubscriberCommand::~DeleteSubscriberCommand() = default;

void DeleteSubscriberCommand::copyToInternalMetaData() const
{
    NormalGlobalEventCommand<-5>::copyToInternalMetaData();
    put(entry(*this, "publisherName"), publisherName());
    put(entry(*this, "eventId"), eventId());
}

void DeleteSubscriberCommand::copyFromInternalMetaData()
{
    NormalGlobalEventCommand<-5>::copyFromInternalMetaData();
    setPublisherName(entry(*this, "publisherName").asString());
    setEventId(element<int>("eventId"));
}

EnableLogModeCommand::EnableLogModeCommand(bool value) : value_(value) {}

EnableLogModeCommand::~EnableLogModeCommand() = default;

void EnableLogModeCommand::copyToInternalMetaData() const
{
    NormalGlobalEventCommand<-3>::copyToInternalMetaData();
    put(entry(*this, "value"), value());
}

void EnableLogModeCommand::copyFromInternalMetaData()
{
    NormalGlobalEventCommand<-3>::copyFromInternalMetaData();
    setValue(element<bool>("value"));
}

} // namespace Zelk::Msgs::LegacyState
