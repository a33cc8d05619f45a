/// Graphviz, when it is installed.
#pragma once

#include <string>

namespace ZelkMsg {

/// Lets the program dot make a drawing and write it to `file`. Throws Trouble when there is no dot, or it
/// fails.
void drawSvg(std::string const& drawing, std::string const& file);

} // namespace ZelkMsg
