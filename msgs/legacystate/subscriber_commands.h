/// The commands that begin and end the subscription to a publisher's event, and the one that switches the log
/// mode. Their numbers are read leniently: any number or boolean will do (framework/number.h).
#pragma once

#include "framework/export.h"
#include "msgs/legacystate/state_command.h"

#include <string>

namespace Zelk::Json {
extern template double PartiallyDeserializable::element<double, 11>(char const (&)[11]) const;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

/// Asks the service to subscribe to an event of a named publisher.
///
///     {"clientname":"ui","commandid":0,"eventId":7,"filterFreq":0.5,"filterType":1,"id":-4,"publisherName":"p"}
///
/// Reading throws std::runtime_error "event id does not match expected value" unless "id" is -4, and
/// MetaData::TypeError when a member is missing or is not of its kind; members read before a failure keep
/// their new values. eventId() is the event subscribed to, not the "id" of the command.
class ZELK_EXPORT CreateSubscriberCommand : public NormalGlobalEventCommand<-4> {
public:
    CreateSubscriberCommand();
    ~CreateSubscriberCommand() override;

    /// "publisherName".
    std::string const& publisherName() const { return publisherName_; }
    void setPublisherName(std::string const& name) { publisherName_ = name; }
    /// "eventId".
    int eventId() const { return eventId_; }
    void setEventId(int eventId) { eventId_ = eventId; }
    /// "filterType"; its meaning is the service's.
    int filterType() const { return filterType_; }
    void setFilterType(int type) { filterType_ = type; }
    /// "filterFreq"; its meaning is the service's.
    double filterFreq() const { return filterFreq_; }
    void setFilterFreq(double frequency) { filterFreq_ = frequency; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    std::string publisherName_;
    int eventId_ = 0;
    double filterFreq_ = 0.0;
    int filterType_ = 0;
};

/// Asks the service to end such a subscription.
///
///     {"clientname":"ui","commandid":0,"eventId":7,"id":-5,"publisherName":"p"}
///
/// Reading throws std::runtime_error "event id does not match expected value" unless "id" is -5, and
/// MetaData::TypeError when a member is missing or is not of its kind; members read before a failure keep
/// their new values. eventId() is the event subscribed to, not the "id" of the command.
class ZELK_EXPORT DeleteSubscriberCommand : public NormalGlobalEventCommand<-5> {
public:
    DeleteSubscriberCommand();
    ~DeleteSubscriberCommand() override;

    /// "publisherName".
    std::string const& publisherName() const { return publisherName_; }
    void setPublisherName(std::string const& name) { publisherName_ = name; }
    /// "eventId".
    int eventId() const { return eventId_; }
    void setEventId(int eventId) { eventId_ = eventId; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    std::string publisherName_;
    int eventId_ = 0;
};

/// Switches the log mode of the service on or off.
///
///     {"clientname":"ui","commandid":0,"id":-3,"value":true}
///
/// Reading throws std::runtime_error "event id does not match expected value" unless "id" is -3, and
/// MetaData::TypeError when a member is missing or is not of its kind; members read before a failure keep
/// their new values. A number is true unless it is 0, a floating-point one unless its absolute value is at
/// most 1e-05.
class ZELK_EXPORT EnableLogModeCommand : public NormalGlobalEventCommand<-3> {
public:
    explicit EnableLogModeCommand(bool value = false);
    ~EnableLogModeCommand() override;

    /// "value".
    bool value() const { return value_; }
    void setValue(bool value) { value_ = value; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    bool value_;
};

} // namespace Zelk::Msgs::LegacyState
