/// The response that lists the events which a state machine knows.
#pragma once

#include "framework/export.h"
#include "framework/json_array.h"
#include "msgs/legacystate/state_response.h"

#include <string>

namespace Zelk::Msgs::LegacyState {

/// The events of a state machine, with their parameters. Bound to global event id -1.
///
///     {"body":{"eventlist":[{"id":7,"name":"start"}],"id":-1},"header":"h"}
///
/// Reading throws std::runtime_error "event ID does not match expected value" unless "body"/"id" is -1, and
/// MetaData::TypeError or MetaData::MissingMemberError when a member is missing or is not of its kind; what
/// was read before a failure stays.
///
/// Warning to receivers: an event that has a parameter ("param0_name") is never read to its end, see
/// EventMetaData. Reading such a text takes memory until there is none left. Refuse a text with such an event
/// before it is read, or read in a process with a limited address space.
class ZELK_EXPORT MetaDataResponse : public StateResponseWithEventId<-1> {
public:
    /// One event, an item of "body"/"eventlist".
    ///
    ///     {"id":7,"name":"start","param0_default":5,"param0_name":"speed","param0_type":"int"}
    ///
    /// Every parameter is written under the keys of the first, so of several only the last is left. An event
    /// without parameters has none of these keys.
    ///
    /// Warning: copyFromMetaData of an event that has "param0_name" appends this same parameter without end,
    /// until an allocation fails (std::bad_alloc). See MetaDataResponse for what a receiver can do.
    class ZELK_EXPORT EventMetaData : public Json::Serializable {
    public:
        /// One parameter of an event.
        class ZELK_EXPORT ParamMetaData : public Json::Serializable {
        public:
            ParamMetaData();
            /// A parameter with a default value of any kind.
            template <typename Node>
            ParamMetaData(std::string const& name, std::string const& type, Node defaultValue);
            ParamMetaData(ParamMetaData const&) = default;
            ParamMetaData(ParamMetaData&&) noexcept = default;
            ParamMetaData& operator=(ParamMetaData const&) = default;
            ParamMetaData& operator=(ParamMetaData&&) noexcept = default;
            ~ParamMetaData() override;

            /// "param0_name" of the event.
            std::string const& name() const { return name_; }
            void setName(std::string const& name) { name_ = name; }
            /// "param0_type" of the event, the name of a type; any text.
            std::string const& type() const { return type_; }
            void setType(std::string const& type) { type_ = type; }
            /// "param0_default" of the event, a node of any kind.
            MetaData::Element const& defaultValue() const { return defaultValue_; }
            void setDefaultValue(MetaData::Element const& value) { defaultValue_ = value; }

            /// Does nothing: a parameter has no form of its own, its event writes it.
            void copyToMetaData(MetaData::Element& target) const override;
            /// Does nothing: a parameter has no form of its own, its event reads it.
            void copyFromMetaData(MetaData::Element const& source) override;

        private:
            std::string name_;
            std::string type_;
            MetaData::Element defaultValue_;
        };

        EventMetaData();
        EventMetaData(EventMetaData const&) = default;
        EventMetaData(EventMetaData&&) noexcept = default;
        EventMetaData& operator=(EventMetaData const&) = default;
        EventMetaData& operator=(EventMetaData&&) noexcept = default;
        ~EventMetaData() override;

        /// "name".
        std::string const& name() const { return name_; }
        void setName(std::string const& name) { name_ = name; }
        /// "id", any value.
        int eventId() const { return eventId_; }
        void setEventId(int eventId) { eventId_ = eventId; }
        Json::Array<ParamMetaData> const& params() const { return params_; }
        /// The list to fill.
        Json::Array<ParamMetaData>& params() { return params_; }

        /// Keys that are in `target` already and are not written stay.
        void copyToMetaData(MetaData::Element& target) const override;
        /// Throws MetaData::MissingMemberError when "name" or "id" is missing, MetaData::TypeError when it is
        /// not of its kind. Does not end before memory does when there is a "param0_name".
        void copyFromMetaData(MetaData::Element const& source) override;

    private:
        std::string name_;
        int eventId_ = 0;
        Json::Array<ParamMetaData> params_;
    };

    MetaDataResponse();
    ~MetaDataResponse() override;

    /// "body"/"eventlist".
    Json::Array<EventMetaData> const& events() const { return events_; }
    /// The list to fill.
    Json::Array<EventMetaData>& events() { return events_; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    Json::Array<EventMetaData> events_;
};

template <typename Node>
MetaDataResponse::EventMetaData::ParamMetaData::ParamMetaData(std::string const& name,
                                                              std::string const& type, Node defaultValue)
    : name_(name), type_(type)
{
    setDefaultValue(defaultValue);
}

extern template MetaDataResponse::EventMetaData::ParamMetaData::ParamMetaData(std::string const&,
                                                                              std::string const&,
                                                                              MetaData::Element);

} // namespace Zelk::Msgs::LegacyState

namespace Zelk::Json {
extern template class Array<Msgs::LegacyState::MetaDataResponse::EventMetaData::ParamMetaData>;
extern template class Array<Msgs::LegacyState::MetaDataResponse::EventMetaData>;
} // namespace Zelk::Json
