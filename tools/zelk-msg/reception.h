/// Reads texts as messages: the text as a tree, the tree as a kind, the kind's class as an object.
#pragma once

#include "framework/element.h"
#include "framework/json_text.h"
#include "tools/zelk-msg/catalogue.h"
#include "tools/zelk-msg/text_source.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace ZelkMsg {

/// A place in a file: line and column from 1, columns in bytes.
struct Place {
    std::size_t line = 1;
    std::size_t column = 1;
};

/// What became of one text.
struct Reception {
    std::string_view text;               ///< the JSON text
    Place begin;                         ///< where it begins
    Kind const* kind = nullptr;          ///< what it is meant to be; null when that cannot be told
    std::unique_ptr<AnyMessage> message; ///< the object that has read it; null when it was refused

    // Of a refused message:
    Place place;        ///< of what it was refused for, as near as can be told
    std::string reason; ///< why; begins with the path of the culprit when that can be told
    std::string rule;   ///< the reason without what differs from message to message, for counting
    bool outOfMemory = false;

    bool accepted() const noexcept { return message != nullptr; }
};

/// Reads the text, and calls `visit` for every message in it (a line may hold several, one after the other).
/// What cannot be read is visited as refused; nothing but what `visit` throws leaves this function.
void receive(Text const& text, std::function<void(Reception&)> const& visit);

/// The place of the byte at `offset` in the text of the reception.
Place placeAt(Reception const& reception, std::size_t offset);

/// What is wrong with a text that is not JSON; the place is left out, see placeAt().
std::string notJson(std::string_view text, Zelk::Json::ParseError const& e);

/// Why a message is refused for which the memory does not suffice.
std::string tooMuchMemory();

/// "file:line:column: what"
std::string errorLine(std::string const& file, Place place, std::string_view what);

/// The tree of a text that was accepted, unchanged by the class.
Zelk::MetaData::Element treeOf(Reception const& reception);

/// The value at a path ("/body/statelist/0/name"), or null.
Zelk::MetaData::Element const* valueAt(Zelk::MetaData::Element const& tree, std::string_view path);

} // namespace ZelkMsg
