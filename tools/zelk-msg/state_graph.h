/// A state space as a graph, and what is odd about it.
#pragma once

#include "msgs/legacystate/state_space_response.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ZelkMsg {

/// States and transitions, with the oddities found when the graph is built.
class StateGraph {
public:
    struct State {
        std::string name;
        bool reachable = false; ///< from the initial state
        bool deadEnd = true;    ///< no transition leads on to another state
    };

    struct Transition {
        std::size_t from;
        std::size_t to;
        std::string name;
        int id;
        std::string event;
        int eventId;
        std::string parameter;  ///< "name: type", or empty
        bool ambiguous = false; ///< another transition leads from the same state by the same event elsewhere
    };

    /// The states in the order in which they are first mentioned. The initial state is the one named, or the
    /// start of the first transition. Throws Trouble when there is no state of that name.
    StateGraph(Zelk::Msgs::LegacyState::StateSpaceMetaDataResponse const& response,
               std::optional<std::string> const& initial);

    std::string const& title() const noexcept { return title_; }
    std::vector<State> const& states() const noexcept { return states_; }
    std::vector<Transition> const& transitions() const noexcept { return transitions_; }
    /// Index of the initial state; there is one when there is any state.
    std::size_t initial() const noexcept { return initial_; }

    /// The oddities in words, one a line: unreachable states, dead ends, and events with more than one
    /// target.
    std::vector<std::string> oddities() const;

private:
    void markReachable();
    void markAmbiguous();

    std::string title_;
    std::vector<State> states_;
    std::vector<Transition> transitions_;
    std::size_t initial_ = 0;
};

} // namespace ZelkMsg
