/// Messages as people read them.
#pragma once

#include "framework/element.h"
#include "tools/zelk-msg/output.h"
#include "tools/zelk-msg/reception.h"

#include <string>

namespace ZelkMsg {

/// A value on one line: text as it is, anything else as JSON; "-" for nothing.
std::string valueText(Zelk::MetaData::Element const* value);

/// The message with its kind, its envelope, its members in tables, and the members that its class does not
/// know. A refused message with the reason and the beginning of its text.
void printMessage(Output& output, std::string const& file, Reception& reception);

/// The members outside the envelope in few words: "publisherName door, eventId 7".
std::string summary(Kind const& kind, Zelk::MetaData::Element const& known);

} // namespace ZelkMsg
