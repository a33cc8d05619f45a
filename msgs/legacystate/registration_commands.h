/// The commands with which a client says which events it wants to receive, and which no longer.
#pragma once

#include "framework/export.h"
#include "framework/json_array.h"
#include "msgs/legacystate/state_command.h"

namespace Zelk::Msgs::LegacyState {

/// Registers for a list of events, each with a filter of its own.
///
///     {"clientname":"ui","commandid":0,"eventlist":{"ids":[7,9]},"filterlist":{"freq":[0.5,2.0],"type":[1,0]}}
///
/// The events are written as three arrays in step. Reading takes a missing array as an empty one, throws
/// std::runtime_error "event ids and filter lists do not match" when the lengths differ, before the events
/// change and after command id and client name did, and is strict about the items: MetaData::TypeError unless
/// "ids" and "type" hold integers and "freq" floating-point numbers (a frequency of 2 is not one, 2.0 is).
/// The events read before a wrong item stay in the list.
class ZELK_EXPORT RegisterCommand : public StateCommand {
public:
    /// One event to register for.
    class ZELK_EXPORT Event : public Json::Serializable {
    public:
        Event() = default;
        Event(int id, int filterType, double filterFreq);
        ~Event() override;

        /// An item of "eventlist"/"ids".
        int id() const { return id_; }
        void setId(int id) { id_ = id; }
        /// An item of "filterlist"/"type"; its meaning is the service's.
        int filterType() const { return filterType_; }
        void setFilterType(int type) { filterType_ = type; }
        /// An item of "filterlist"/"freq"; its meaning is the service's.
        double filterFreq() const { return filterFreq_; }
        void setFilterFreq(double frequency) { filterFreq_ = frequency; }

        /// Does nothing: an event has no form of its own, the command writes it.
        void copyToMetaData(MetaData::Element& target) const override;
        /// Does nothing: an event has no form of its own, the command reads it.
        void copyFromMetaData(MetaData::Element const& source) override;

    private:
        int id_ = 0;
        int filterType_ = 0;
        double filterFreq_ = 0.0;
    };

    RegisterCommand();
    ~RegisterCommand() override;

    Json::Array<Event> const& events() const { return events_; }
    /// The list to fill.
    Json::Array<Event>& events() { return events_; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    Json::Array<Event> events_;
};

/// Withdraws the registration for a list of events.
///
///     {"clientname":"ui","commandid":0,"eventlist":{"ids":[7,9]}}
///
/// Reading takes any number or boolean as an event id. It throws MetaData::TypeError when "ids" is missing or
/// not an array, and the list keeps its items; when an item is not a number, those before it are in the list.
class ZELK_EXPORT UnregisterCommand : public StateCommand {
public:
    UnregisterCommand();
    ~UnregisterCommand() override;

    /// "eventlist"/"ids".
    Json::Array<int> const& events() const { return events_; }
    /// The list to fill.
    Json::Array<int>& events() { return events_; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    Json::Array<int> events_;
};

} // namespace Zelk::Msgs::LegacyState

namespace Zelk::Json {
extern template class Array<int>;
extern template class Array<Msgs::LegacyState::RegisterCommand::Event>;
// "eventlist" with "ids"; "filterlist" with "type" or "freq".
extern template MetaData::Element& PartiallyDeserializable::element<10, 4>(char const (&)[10],
                                                                           char const (&)[4]) const;
extern template MetaData::Element& PartiallyDeserializable::element<11, 5>(char const (&)[11],
                                                                           char const (&)[5]) const;
} // namespace Zelk::Json
