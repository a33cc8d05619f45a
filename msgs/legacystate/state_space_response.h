/// The response that describes a state space as a list of transitions.
#pragma once

#include "framework/export.h"
#include "framework/json_array.h"
#include "msgs/legacystate/state_response.h"

#include <string>

namespace Zelk::Msgs::LegacyState {

/// The transitions of a state space. Bound to global event id -9.
///
///     {"body":{"id":-9,"statelist":[]},"header":"h"}
///
/// Reading throws std::runtime_error "event ID does not match expected value" unless "body"/"id" is -9, and
/// MetaData::TypeError or MetaData::MissingMemberError when a member is missing or is not of its kind. A
/// "statelist" that is not an array leaves the list as it was; when a transition cannot be read, those before
/// it are in the list.
class ZELK_EXPORT StateSpaceMetaDataResponse : public StateResponseWithEventId<-9> {
public:
    /// One transition, an item of "body"/"statelist", with at most one parameter of its event.
    ///
    ///     {"endState":"b","eventid":7,"eventname":"go","name":"t","parametername":"p","parametertype":"int",
    ///      "startstate":"a","transition_id":1}
    class ZELK_EXPORT State : public Json::Serializable {
    public:
        State();
        State(std::string const& name, int transitionId, std::string const& startState,
              std::string const& endState, std::string const& eventName, int eventId,
              std::string const& paramName, std::string const& paramType);
        State(State const&) = default;
        State(State&&) noexcept = default;
        State& operator=(State const&) = default;
        State& operator=(State&&) noexcept = default;
        ~State() override;

        /// "name".
        std::string const& name() const { return name_; }
        void setName(std::string const& name) { name_ = name; }
        /// "transition_id".
        int transitionId() const { return transitionId_; }
        void setTransitionId(int id) { transitionId_ = id; }
        /// "startstate".
        std::string const& startState() const { return startState_; }
        void setStartState(std::string const& state) { startState_ = state; }
        /// "endState".
        std::string const& endState() const { return endState_; }
        void setEndState(std::string const& state) { endState_ = state; }
        /// "eventname".
        std::string const& eventName() const { return eventName_; }
        void setEventName(std::string const& name) { eventName_ = name; }
        /// "eventid", any value.
        int eventId() const { return eventId_; }
        void setEventId(int eventId) { eventId_ = eventId; }
        /// "parametername"; empty when there is no parameter.
        std::string const& paramName() const { return paramName_; }
        void setParamName(std::string const& name) { paramName_ = name; }
        /// "parametertype".
        std::string const& paramType() const { return paramType_; }
        void setParamType(std::string const& type) { paramType_ = type; }

        /// Whether there is a parameter: one with a name, whatever its type.
        bool hasParam() const { return !paramName_.empty(); }
        /// Empties the name and the type of the parameter.
        void clearParam();

        /// The two keys of the parameter are written only when hasParam(); keys that are in `target` already
        /// and are not written stay.
        void copyToMetaData(MetaData::Element& target) const override;
        /// Without "parametername" there is no parameter afterwards, whatever "parametertype" is. Throws
        /// MetaData::MissingMemberError when another key is missing ("parametertype" only when there is a
        /// "parametername"), MetaData::TypeError when a member is not of its kind; members read before a
        /// failure keep their new values.
        void copyFromMetaData(MetaData::Element const& source) override;

    private:
        std::string name_;
        int transitionId_ = 0;
        std::string startState_;
        std::string endState_;
        std::string eventName_;
        int eventId_ = 0;
        std::string paramName_;
        std::string paramType_;
    };

    StateSpaceMetaDataResponse();
    ~StateSpaceMetaDataResponse() override;

    /// "body"/"statelist".
    Json::Array<State> const& states() const { return states_; }
    /// The list to fill.
    Json::Array<State>& states() { return states_; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    Json::Array<State> states_;
};

} // namespace Zelk::Msgs::LegacyState

namespace Zelk::Json {
extern template Msgs::LegacyState::StateSpaceMetaDataResponse::State
Serializable::fromElement<Msgs::LegacyState::StateSpaceMetaDataResponse::State>(MetaData::Element const&);
extern template class Array<Msgs::LegacyState::StateSpaceMetaDataResponse::State>;
} // namespace Zelk::Json
