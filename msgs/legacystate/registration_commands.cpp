#include "msgs/legacystate/registration_commands.h"

#include "msgs/legacystate/wire_form.h"

#include <stdexcept>

namespace Zelk::Json {
template class Array<int>;
template class Array<Msgs::LegacyState::RegisterCommand::Event>;
template MetaData::Element& PartiallyDeserializable::element<10, 4>(char const (&)[10],
                                                                    char const (&)[4]) const;
template MetaData::Element& PartiallyDeserializable::element<11, 5>(char const (&)[11],
                                                                    char const (&)[5]) const;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

RegisterCommand::Event::Event(int id, int filterType, double filterFreq)
    : id_(id), filterType_(filterType), filterFreq_(filterFreq)
{}

RegisterCommand::Event::~Event() = default;

void RegisterCommand::Event::copyToMetaData(MetaData::Element&) const {}

void RegisterCommand::Event::copyFromMetaData(MetaData::Element const&) {}

RegisterCommand::RegisterCommand() = default;

RegisterCommand::~RegisterCommand() = default;

void RegisterCommand::copyToInternalMetaData() const
{
    StateCommand::copyToInternalMetaData();
    MetaData::Array& ids = element("eventlist", "ids");
    MetaData::Array& types = element("filterlist", "type");
    MetaData::Array& frequencies = element("filterlist", "freq");
    ids.clear();
    types.clear();
    frequencies.clear();
    unsigned int index = 0;
    for (Event const& event : events_) {
        put(ids[index], event.id());
        put(types[index], event.filterType());
        put(frequencies[index], event.filterFreq());
        ++index;
    }
}

void RegisterCommand::copyFromInternalMetaData()
{
    StateCommand::copyFromInternalMetaData();
    // Viewed for writing, as above, so that a missing array is an empty one.
    MetaData::Array& ids = element("eventlist", "ids");
    MetaData::Array& types = element("filterlist", "type");
    MetaData::Array& frequencies = element("filterlist", "freq");
    if (ids.size() != types.size() || ids.size() != frequencies.size())
        throw std::runtime_error("event ids and filter lists do not match");
    events_.clear();
    events_.reserve(ids.size());
    auto type = types.begin();
    auto frequency = frequencies.begin();
    for (MetaData::Element const& id : ids)
        events_.push_back(Event{low32(id.asInt64()), low32((type++)->asInt64()), (frequency++)->asDouble()});
}

UnregisterCommand::UnregisterCommand() = default;

UnregisterCommand::~UnregisterCommand() = default;

void UnregisterCommand::copyToInternalMetaData() const
{
    StateCommand::copyToInternalMetaData();
    events_.copyToMetaData(element("eventlist", "ids"));
}

void UnregisterCommand::copyFromInternalMetaData()
{
    StateCommand::copyFromInternalMetaData();
    events_.copyFromMetaData(element("eventlist", "ids"));
}

} // namespace Zelk::Msgs::LegacyState
