/// Three small forms: the answer to the registration of a message queue, the mapping of attributes to events,
/// and the record of an application's name and version.
#pragma once

#include "framework/export.h"
#include "framework/json_array.h"
#include "msgs/legacystate/state_response.h"

#include <string>

namespace Zelk::Msgs::LegacyState {

/// Answers the registration of a message queue with the name of the queue. Bound to global event id -2.
///
///     {"body":{"id":-2,"name":"q1"},"header":"h"}
///
/// Reading throws std::runtime_error "event ID does not match expected value" unless "body"/"id" is -2, and
/// MetaData::TypeError when a member is missing or is not of its kind; members read before a failure keep
/// their new values.
class ZELK_EXPORT RegisterMessageQueueResponse : public StateResponseWithEventId<-2> {
public:
    RegisterMessageQueueResponse();
    ~RegisterMessageQueueResponse() override;

    /// "body"/"name".
    std::string const& name() const { return name_; }
    void setName(std::string const& name) { name_ = name; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    std::string name_;
};

/// Maps attributes of the service's XML description to event ids. Bound to global event id -7.
///
///     {"body":{"id":-7,"level":40,"mode":12},"header":"h"}
///
/// Every member of "body" but "id" is an attribute; they are read in the order of their names, and of two
/// with one name the later is written. An attribute named "id" is written over the event id and not read.
///
/// Reading neither takes the header nor checks the event id: it writes its own over those received. It throws
/// MetaData::TypeError when "body" is not an object or an attribute is not an integer; the attributes before
/// a wrong one are in the list.
class ZELK_EXPORT XmlAttrToEventMappingResponse : public StateResponseWithEventId<-7> {
public:
    /// One attribute and the event that it stands for.
    class ZELK_EXPORT Attr : public Json::Serializable {
    public:
        Attr();
        Attr(std::string const& name, int eventId);
        Attr(Attr const&) = default;
        Attr(Attr&&) noexcept = default;
        Attr& operator=(Attr const&) = default;
        Attr& operator=(Attr&&) noexcept = default;
        ~Attr() override;

        /// A key of "body".
        std::string const& name() const { return name_; }
        void setName(std::string const& name) { name_ = name; }
        /// The value under that key.
        int eventId() const { return eventId_; }
        void setEventId(int eventId) { eventId_ = eventId; }

        /// Does nothing: an attribute has no form of its own, the response writes it.
        void copyToMetaData(MetaData::Element& target) const override;
        /// Does nothing: an attribute has no form of its own, the response reads it.
        void copyFromMetaData(MetaData::Element const& source) override;

    private:
        std::string name_;
        int eventId_ = 0;
    };

    XmlAttrToEventMappingResponse();
    ~XmlAttrToEventMappingResponse() override;

    Json::Array<Attr> const& attrs() const { return attrs_; }
    /// The list to fill.
    Json::Array<Attr>& attrs() { return attrs_; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    Json::Array<Attr> attrs_;
};

/// Name and version of an application: a record by itself, without an envelope.
///
///     {"name":"app","version":"1.2"}
class ZELK_EXPORT InfraMetaDataAppInfo : public Json::Serializable {
public:
    InfraMetaDataAppInfo();
    InfraMetaDataAppInfo(InfraMetaDataAppInfo const&) = default;
    InfraMetaDataAppInfo(InfraMetaDataAppInfo&&) noexcept = default;
    InfraMetaDataAppInfo& operator=(InfraMetaDataAppInfo const&) = default;
    InfraMetaDataAppInfo& operator=(InfraMetaDataAppInfo&&) noexcept = default;
    ~InfraMetaDataAppInfo() override;

    /// "name", to read or to change.
    std::string& name() { return name_; }
    void setName(std::string const& name) { name_ = name; }
    /// "version", to read or to change.
    std::string& version() { return version_; }
    void setVersion(std::string const& version) { version_ = version; }

    /// Other keys of `target` stay.
    void copyToMetaData(MetaData::Element& target) const override;
    /// Throws MetaData::MissingMemberError when a key is missing, MetaData::TypeError when it is not a
    /// string; a name read before that stays.
    void copyFromMetaData(MetaData::Element const& source) override;

private:
    std::string name_;
    std::string version_;
};

} // namespace Zelk::Msgs::LegacyState

namespace Zelk::Json {
extern template class Array<Msgs::LegacyState::XmlAttrToEventMappingResponse::Attr>;
} // namespace Zelk::Json
