#include "msgs/legacystate/metadata_response.h"

#include "msgs/legacystate/wire_form.h"

namespace Zelk::Json {
template class Array<Msgs::LegacyState::MetaDataResponse::EventMetaData::ParamMetaData>;
template class Array<Msgs::LegacyState::MetaDataResponse::EventMetaData>;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

using EventMetaData = MetaDataResponse::EventMetaData;
using ParamMetaData = EventMetaData::ParamMetaData;

template ParamMetaData::ParamMetaData(std::string const&, std::string const&, MetaData::Element);

ParamMetaData::ParamMetaData() = default;

ParamMetaData::~ParamMetaData() = default;

void ParamMetaData::copyToMetaData(MetaData::Element&) const {}

void ParamMetaData::copyFromMetaData(MetaData::Element const&) {}

EventMetaData::EventMetaData() = default;

EventMetaData::~EventMetaData() = default;

void EventMetaData::copyToMetaData(MetaData::Element& target) const
{
    put(target["name"], name());
    put(target["id"], eventId());
    // Kept on purpose: the index in the keys never advances, so each parameter overwrites the one before it.
    for (ParamMetaData const& param : params_) {
        put(target["param0_name"], param.name());
        put(target["param0_type"], param.type());
        target["param0_default"] = param.defaultValue();
    }
}

void EventMetaData::copyFromMetaData(MetaData::Element const& source)
{
    setName(source["name"].asString());
    setEventId(low32(source["id"].asInt64()));
    MetaData::Object const& members = source;
    params_.clear();
    // Kept on purpose: the index in the keys never advances, so only exhausted memory ends this loop.
    while (members.find("param0_name") != members.end())
        params_.push_back(ParamMetaData{members["param0_name"].asString(), members["param0_type"].asString(),
                                        members["param0_default"]});
}

MetaDataResponse::MetaDataResponse() = default;

MetaDataResponse::~MetaDataResponse() = default;

void MetaDataResponse::copyToInternalMetaData() const
{
    StateResponse::copyToInternalMetaData();
    events_.copyToMetaData(element("body", "eventlist"));
}

void MetaDataResponse::copyFromInternalMetaData()
{
    StateResponse::copyFromInternalMetaData();
    events_.copyFromMetaData(element("body", "eventlist"));
}

} // namespace Zelk::Msgs::LegacyState
