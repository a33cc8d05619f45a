#include "tools/zelk-msg/drawing.h"

#include "tools/zelk-msg/mermaid.h"
#include "tools/zelk-msg/output.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace ZelkMsg {

namespace {

/// "open(force: int)"
std::string eventText(StateGraph::Transition const& transition)
{
    return transition.parameter.empty() ? transition.event
                                        : transition.event + '(' + transition.parameter + ')';
}

/// "3 opening": the transition itself, below its event.
std::string transitionText(StateGraph::Transition const& transition)
{
    std::string const id = std::to_string(transition.id);
    return transition.name.empty() ? id : id + ' ' + transition.name;
}

std::string stateId(std::size_t index)
{
    return "s" + std::to_string(index);
}

/// The text in lines that a drawing has room for, cut where names have their joints.
std::vector<std::string> wrapped(std::string_view text)
{
    constexpr std::size_t preferred = 28;
    constexpr std::size_t most = 40;
    constexpr std::size_t shortestRest = 8; // not worth a line of its own
    auto const isJoint = [](char c) {
        return std::string_view(" _-.:,(/").find(c) != std::string_view::npos;
    };
    auto const isLower = [](char c) { return c >= 'a' && c <= 'z'; };
    auto const isUpper = [](char c) { return c >= 'A' && c <= 'Z'; };
    std::vector<std::string> lines(1);
    std::size_t columns = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool const begins = (static_cast<unsigned char>(text[i]) & 0xC0u) != 0x80u; // a character
        bool const joint = i > 0 && ((isJoint(text[i - 1]) && !isJoint(text[i])) ||
                                     (isLower(text[i - 1]) && isUpper(text[i])));
        bool const full = columns >= most || (columns >= preferred && joint);
        if (begins && full && width(text.substr(i)) >= shortestRest) {
            lines.emplace_back();
            columns = 0;
        }
        lines.back() += text[i];
        columns += begins ? 1 : 0;
    }
    return lines;
}

/// Text for a quoted string of Graphviz, which knows escapes of its own and entities of HTML in it.
std::string dotText(std::string_view text)
{
    std::string result;
    for (char const c : harmless(text)) {
        if (c == '"' || c == '\\')
            result += '\\';
        if (c == '&')
            result += "&amp;";
        else
            result += c;
    }
    return result;
}

/// The event, and the transition below it; with room for the arrow on both sides.
std::string dotLabel(StateGraph::Transition const& transition)
{
    std::string label;
    for (std::string const& text : {eventText(transition), transitionText(transition)}) {
        for (std::string const& line : wrapped(text))
            label += (label.empty() ? " " : "\\n ") + dotText(line) + ' ';
    }
    return label;
}

std::string dotName(std::string const& name)
{
    std::string label;
    for (std::string const& line : wrapped(name))
        label += (label.empty() ? "" : "\\n") + dotText(line);
    return label;
}

std::string dotEdge(StateGraph::Transition const& transition, std::string const& label, bool ambiguous,
                    std::string const& where)
{
    std::string text = "    " + stateId(transition.from) + " -> " + stateId(transition.to) + " [label=\"" +
                       label + '"' + where;
    if (ambiguous)
        text +=
            ", color=\"#c0202c\", fontcolor=\"#c0202c\", penwidth=1.6, labeltooltip=\"non-deterministic\"";
    return text + "];\n";
}

/// Text for PlantUML labels: what has a meaning there, some of it only in pairs, is written as its number.
std::string plantUmlText(std::string_view text)
{
    std::string result;
    char previous = '\0';
    for (char const c : harmless(text)) {
        bool const special =
            std::string_view("\"<>&~\\[]{}|").find(c) != std::string_view::npos ||
            (c == previous && std::string_view("*_-/#=.^").find(c) != std::string_view::npos);
        previous = c;
        if (c == '\\')
            result += "<U+005C>"; // some versions stumble over its number
        else if (special)
            result += "&#" + std::to_string(static_cast<unsigned char>(c)) + ';';
        else
            result += c;
    }
    return result.empty() ? "&#8203;" : result; // an empty label would be a mistake of syntax
}

/// What is odd about a state, as the style of its border, and in words inside for versions without that
/// style.
std::string plantUmlMarks(StateGraph::State const& state, std::string const& id)
{
    std::string text = !state.reachable ? " #line.dashed\n" : state.deadEnd ? " #line.bold\n" : "\n";
    if (!state.reachable)
        text += id + " : unreachable\n";
    if (state.deadEnd)
        text += id + " : dead end\n";
    return text;
}

} // namespace

std::string dotDrawing(StateGraph const& graph)
{
    std::string text = "digraph \"" + dotText(graph.title()) + "\" {\n";
    text += "    graph [rankdir=TB, nodesep=0.7, ranksep=0.8, fontname=\"Helvetica,Arial,sans-serif\"];\n"
            "    node [shape=box, style=\"rounded,filled\", fillcolor=\"#eef3fa\", color=\"#33557f\","
            " fontname=\"Helvetica,Arial,sans-serif\", fontsize=13, margin=\"0.2,0.1\"];\n"
            "    edge [color=\"#555555\", fontname=\"Helvetica,Arial,sans-serif\", fontsize=10, "
            "arrowsize=0.8];\n";
    auto const& states = graph.states();
    if (!states.empty()) {
        text += "    start [shape=circle, style=filled, fillcolor=\"#333333\", label=\"\", width=0.16, "
                "margin=0];\n";
        text += "    start -> " + stateId(graph.initial()) + ";\n";
    }
    for (std::size_t i = 0; i < states.size(); ++i) {
        text += "    " + stateId(i) + " [label=\"" + dotName(states[i].name) + '"';
        if (states[i].deadEnd)
            text += ", peripheries=2, tooltip=\"dead end\"";
        if (!states[i].reachable)
            text += ", style=\"rounded,filled,dashed\", fillcolor=\"#f2f2f2\", color=\"#999999\","
                    " fontcolor=\"#777777\", tooltip=\"unreachable\"";
        text += "];\n";
    }
    // Loops beyond the second would lie on each other: then all of a state share one, with their labels below
    // each other.
    std::vector<std::vector<StateGraph::Transition const*>> loops(states.size());
    for (auto const& transition : graph.transitions()) {
        if (transition.from == transition.to)
            loops[transition.from].push_back(&transition);
        else
            text += dotEdge(transition, dotLabel(transition), transition.ambiguous, "");
    }
    for (auto const& group : loops) {
        if (group.size() <= 2) {
            for (auto const* const loop : group)
                text += dotEdge(*loop, dotLabel(*loop), loop->ambiguous,
                                loop == group.front() ? "" : ", tailport=w, headport=w");
            continue;
        }
        std::string label;
        bool ambiguous = false;
        for (auto const* const loop : group) {
            label += (label.empty() ? "" : "\\n") + dotLabel(*loop);
            ambiguous = ambiguous || loop->ambiguous;
        }
        text += dotEdge(*group.front(), label, ambiguous, "");
    }
    return text + "}\n";
}

std::string mermaidDrawing(StateGraph const& graph)
{
    std::string text = "stateDiagram-v2\n"
                       "    classDef unreachable stroke-dasharray:4 4,color:#777\n"
                       "    classDef deadEnd stroke-width:3px\n";
    auto const& states = graph.states();
    for (std::size_t i = 0; i < states.size(); ++i)
        text += "    state \"" + mermaidText(states[i].name) + "\" as " + stateId(i) + "\n";
    if (!states.empty())
        text += "    [*] --> " + stateId(graph.initial()) + "\n";
    for (auto const& transition : graph.transitions()) {
        text += "    " + stateId(transition.from) + " --> " + stateId(transition.to) + " : " +
                mermaidText(eventText(transition)) + (transition.ambiguous ? " (ambiguous)" : "") + "\n";
    }
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (!states[i].reachable)
            text += "    class " + stateId(i) + " unreachable\n";
        if (states[i].deadEnd)
            text += "    class " + stateId(i) + " deadEnd\n";
    }
    return text;
}

std::string plantUmlDrawing(StateGraph const& graph)
{
    std::string text = "@startuml\nhide empty description\n";
    auto const& states = graph.states();
    for (std::size_t i = 0; i < states.size(); ++i) {
        text += "state \"" + plantUmlText(states[i].name) + "\" as " + stateId(i) +
                plantUmlMarks(states[i], stateId(i));
    }
    if (!states.empty())
        text += "[*] --> " + stateId(graph.initial()) + "\n";
    for (auto const& transition : graph.transitions()) {
        text += stateId(transition.from) + (transition.ambiguous ? " -[#red]-> " : " --> ") +
                stateId(transition.to) + " : " + plantUmlText(eventText(transition)) + "\\n" +
                plantUmlText(transitionText(transition)) + "\n";
    }
    return text + "@enduml\n";
}

} // namespace ZelkMsg
