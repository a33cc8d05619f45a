/// What the drawings for Mermaid have in common.
#pragma once

#include <string>
#include <string_view>

namespace ZelkMsg {

/// Text for a label: what has a meaning to Mermaid is written as its number. Never empty, since an empty
/// label would end a line too early.
std::string mermaidText(std::string_view text);

} // namespace ZelkMsg
