/// JSON text for people: a member a line, indented.
#pragma once

#include "framework/element.h"

#include <string>

namespace ZelkMsg {

/// The tree as indented JSON text, without a newline at the end.
std::string prettyText(Zelk::MetaData::Element const& tree);

} // namespace ZelkMsg
