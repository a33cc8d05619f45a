/// What somebody may have meant who gave a value of the wrong type.
#pragma once

#include "framework/element.h"
#include "tools/zelk-msg/catalogue.h"

#include <string>

namespace ZelkMsg {

/// "; did you mean 'true'?", or nothing when no value of the type is near.
std::string didYouMeanValue(Type type, Zelk::MetaData::Element const& value);

} // namespace ZelkMsg
