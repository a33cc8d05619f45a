#include "msgs/legacystate/queue_mapping_app_info.h"

#include "msgs/legacystate/wire_form.h"

namespace Zelk::Json {
template class Array<Msgs::LegacyState::XmlAttrToEventMappingResponse::Attr>;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

RegisterMessageQueueResponse::RegisterMessageQueueResponse() = default;

RegisterMessageQueueResponse::~RegisterMessageQueueResponse() = default;

void RegisterMessageQueueResponse::copyToInternalMetaData() const
{
    StateResponse::copyToInternalMetaData();
    put(element("body", "name"), name());
}

void RegisterMessageQueueResponse::copyFromInternalMetaData()
{
    StateResponse::copyFromInternalMetaData();
    setName(element("body", "name").asString());
}

XmlAttrToEventMappingResponse::Attr::Attr() = default;

XmlAttrToEventMappingResponse::Attr::Attr(std::string const& name, int eventId)
    : name_(name), eventId_(eventId)
{}

XmlAttrToEventMappingResponse::Attr::~Attr() = default;

void XmlAttrToEventMappingResponse::Attr::copyToMetaData(MetaData::Element&) const {}

void XmlAttrToEventMappingResponse::Attr::copyFromMetaData(MetaData::Element const&) {}

XmlAttrToEventMappingResponse::XmlAttrToEventMappingResponse() = default;

XmlAttrToEventMappingResponse::~XmlAttrToEventMappingResponse() = default;

void XmlAttrToEventMappingResponse::copyToInternalMetaData() const
{
    StateResponse::copyToInternalMetaData();
    MetaData::Element& body = metaData()["body"];
    for (Attr const& attr : attrs_)
        put(elementImpl(body, attr.name()), attr.eventId());
}

void XmlAttrToEventMappingResponse::copyFromInternalMetaData()
{
    // Kept on purpose: reading writes the envelope, over the one received, instead of reading it.
    StateResponse::copyToInternalMetaData();
    attrs_.clear();
    MetaData::Object const& body = entry(*this, "body");
    for (MetaData::Object::Member const& member : body) {
        if (member.name() != "id")
            attrs_.emplace_back(member.name(), low32(member.element().asInt64()));
    }
}

InfraMetaDataAppInfo::InfraMetaDataAppInfo() = default;

InfraMetaDataAppInfo::~InfraMetaDataAppInfo() = default;

void InfraMetaDataAppInfo::copyToMetaData(MetaData::Element& target) const
{
    MetaData::SetAs<std::string>(name_, target["name"]);
    MetaData::SetAs<std::string>(version_, target["version"]);
}

void InfraMetaDataAppInfo::copyFromMetaData(MetaData::Element const& source)
{
    MetaData::GetAs<std::string>(source["name"], name_);
    MetaData::GetAs<std::string>(source["version"], version_);
}

} // namespace Zelk::Msgs::LegacyState
