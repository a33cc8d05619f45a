#include "msgs/legacystate/state_response.h"

#include "msgs/legacystate/wire_form.h"

#include <stdexcept>

namespace Zelk::Json {
template MetaData::Element& PartiallyDeserializable::element<5, 3>(char const (&)[5],
                                                                   char const (&)[3]) const;
template MetaData::Element& PartiallyDeserializable::element<5, 5>(char const (&)[5],
                                                                   char const (&)[5]) const;
template MetaData::Element& PartiallyDeserializable::element<5, 10>(char const (&)[5],
                                                                    char const (&)[10]) const;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

StateResponse::StateResponse() = default;

StateResponse::~StateResponse() = default;

int StateResponse::eventId() const
{
    return eventId_;
}

void StateResponse::setEventId(int eventId)
{
    eventId_ = eventId;
}

void StateResponse::copyToInternalMetaData() const
{
    put(entry(*this, "header"), header());
    // One after the other: the member is there before a class derived from this one is asked for the id.
    MetaData::Element& id = element("body", "id");
    put(id, eventId());
}

void StateResponse::copyFromInternalMetaData()
{
    setHeader(entry(*this, "header").asString());
    setEventId(low32(element("body", "id").asInt64()));
}

void StateResponse::requireEventId(int eventId, int expected)
{
    // Kept on purpose: the commands say "event id" where the responses say "event ID".
    if (eventId != expected)
        throw std::runtime_error("event ID does not match expected value");
}

template class StateResponseWithEventId<-1>;
template class StateResponseWithEventId<-2>;
template class StateResponseWithEventId<-7>;
template class StateResponseWithEventId<-9>;

} // namespace Zelk::Msgs::LegacyState
