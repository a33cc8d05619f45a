#include "tools/zelk-msg/state_graph.h"

#include "tools/zelk-msg/output.h"
#include "tools/zelk-msg/suggest.h"
#include "tools/zelk-msg/trouble.h"

#include <map>
#include <tuple>
#include <unordered_map>

namespace ZelkMsg {

namespace {

/// What decides between transitions: the state and the event, by its number and its name.
using Choice = std::tuple<std::size_t, int, std::string>;

Choice choiceOf(StateGraph::Transition const& transition)
{
    return {transition.from, transition.eventId, transition.event};
}

} // namespace

StateGraph::StateGraph(Zelk::Msgs::LegacyState::StateSpaceMetaDataResponse const& response,
                       std::optional<std::string> const& initial)
    : title_(response.header())
{
    std::unordered_map<std::string, std::size_t> index_of;
    auto const indexOf = [&](std::string const& name) {
        auto const [entry, added] = index_of.emplace(name, states_.size());
        if (added)
            states_.push_back({name});
        return entry->second;
    };
    for (auto const& state : response.states()) {
        std::size_t const from = indexOf(state.startState());
        std::size_t const to = indexOf(state.endState());
        std::string parameter;
        if (state.hasParam())
            parameter = state.paramName() + ": " + state.paramType();
        transitions_.push_back(
            {from, to, state.name(), state.transitionId(), state.eventName(), state.eventId(), parameter});
        if (from != to)
            states_[from].deadEnd = false;
    }
    if (initial) {
        auto const entry = index_of.find(*initial);
        if (entry == index_of.end()) {
            std::vector<std::string> names;
            for (State const& state : states_)
                names.push_back(state.name);
            throw Trouble("no state is called '" + *initial + "'" + didYouMean(*initial, names));
        }
        initial_ = entry->second;
    }
    markReachable();
    markAmbiguous();
}

void StateGraph::markReachable()
{
    if (states_.empty())
        return;
    std::vector<std::vector<std::size_t>> targets(states_.size());
    for (Transition const& transition : transitions_)
        targets[transition.from].push_back(transition.to);
    std::vector<std::size_t> open{initial_};
    states_[initial_].reachable = true;
    while (!open.empty()) {
        std::size_t const state = open.back();
        open.pop_back();
        for (std::size_t const target : targets[state]) {
            if (!states_[target].reachable) {
                states_[target].reachable = true;
                open.push_back(target);
            }
        }
    }
}

void StateGraph::markAmbiguous()
{
    std::map<Choice, std::vector<Transition*>> by_choice;
    for (Transition& transition : transitions_)
        by_choice[choiceOf(transition)].push_back(&transition);
    for (auto const& [choice, alternatives] : by_choice) {
        for (Transition* const one : alternatives) {
            for (Transition const* const other : alternatives)
                one->ambiguous = one->ambiguous || one->to != other->to;
        }
    }
}

std::vector<std::string> StateGraph::oddities() const
{
    std::vector<std::string> lines;
    for (State const& state : states_) {
        if (!state.reachable)
            lines.push_back("unreachable: no way leads from " + readable(states_[initial_].name) + " to " +
                            readable(state.name));
    }
    for (State const& state : states_) {
        if (state.deadEnd)
            lines.push_back("dead end: no transition leads from " + readable(state.name) +
                            " to another state");
    }
    std::map<Choice, std::string> targets;
    std::vector<Transition const*> firsts;
    for (Transition const& transition : transitions_) {
        if (!transition.ambiguous)
            continue;
        std::string& text = targets[choiceOf(transition)];
        if (text.empty())
            firsts.push_back(&transition);
        text += (text.empty() ? "" : ", ") + readable(states_[transition.to].name);
        text += " (transition " + std::to_string(transition.id) + ")";
    }
    for (Transition const* const first : firsts)
        lines.push_back("non-deterministic: in " + readable(states_[first->from].name) + " the event " +
                        readable(first->event) + " (" + std::to_string(first->eventId) + ") leads to " +
                        targets[choiceOf(*first)]);
    return lines;
}

} // namespace ZelkMsg
