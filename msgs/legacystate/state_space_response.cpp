#include "msgs/legacystate/state_space_response.h"

#include "msgs/legacystate/wire_form.h"

namespace Zelk::Json {
template Msgs::LegacyState::StateSpaceMetaDataResponse::State
Serializable::fromElement<Msgs::LegacyState::StateSpaceMetaDataResponse::State>(MetaData::Element const&);
template class Array<Msgs::LegacyState::StateSpaceMetaDataResponse::State>;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

using State = StateSpaceMetaDataResponse::State;

State::State() = default;

State::State(std::string const& name, int transitionId, std::string const& startState,
             std::string const& endState, std::string const& eventName, int eventId,
             std::string const& paramName, std::string const& paramType)
    : name_(name), transitionId_(transitionId), startState_(startState), endState_(endState),
      eventName_(eventName), eventId_(eventId), paramName_(paramName), paramType_(paramType)
{}

State::~State() = default;

void State::clearParam()
{
    paramName_.clear();
    paramType_.clear();
}

void State::copyToMetaData(MetaData::Element& target) const
{
    put(target["name"], name());
    put(target["transition_id"], transitionId());
    put(target["startstate"], startState());
    put(target["endState"], endState());
    put(target["eventname"], eventName());
    put(target["eventid"], eventId());
    if (hasParam()) {
        put(target["parametername"], paramName());
        put(target["parametertype"], paramType());
    }
}

void State::copyFromMetaData(MetaData::Element const& source)
{
    setName(source["name"].asString());
    setTransitionId(low32(source["transition_id"].asInt64()));
    setStartState(source["startstate"].asString());
    setEndState(source["endState"].asString());
    setEventName(source["eventname"].asString());
    setEventId(low32(source["eventid"].asInt64()));
    MetaData::Object const& members = source;
    if (members.find("parametername") == members.end()) {
        clearParam();
    } else {
        setParamName(members["parametername"].asString());
        setParamType(members["parametertype"].asString());
    }
}

StateSpaceMetaDataResponse::StateSpaceMetaDataResponse() = default;

StateSpaceMetaDataResponse::~StateSpaceMetaDataResponse() = default;

void StateSpaceMetaDataResponse::copyToInternalMetaData() const
{
    StateResponse::copyToInternalMetaData();
    states_.copyToMetaData(element("body", "statelist"));
}

void StateSpaceMetaDataResponse::copyFromInternalMetaData()
{
    StateResponse::copyFromInternalMetaData();
    states_.copyFromMetaData(element("body", "statelist"));
}

} // namespace Zelk::Msgs::LegacyState
