/// Graphs of states in the languages of drawing programs.
#pragma once

#include "tools/zelk-msg/state_graph.h"

#include <string>

namespace ZelkMsg {

/// For Graphviz. Unreachable states are dashed, dead ends have a double border, ambiguous transitions are
/// red.
std::string dotDrawing(StateGraph const& graph);

/// A Mermaid state diagram, with the same marks.
std::string mermaidDrawing(StateGraph const& graph);

/// A PlantUML state diagram, with the same marks.
std::string plantUmlDrawing(StateGraph const& graph);

} // namespace ZelkMsg
