/// Graphviz, when it is installed.
#pragma once

#include <string>

namespace ZelkMsg {

/// The picture that the program dot makes of a drawing. Throws Trouble when there is no dot, or it fails.
std::string svgOf(std::string const& drawing);

} // namespace ZelkMsg
