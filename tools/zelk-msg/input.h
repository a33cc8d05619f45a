/// The files that a command reads, one message after the other.
#pragma once

#include "tools/zelk-msg/reception.h"
#include "tools/zelk-msg/text_source.h"

#include <functional>
#include <string>
#include <vector>

namespace ZelkMsg {

/// Visits every message of the files in order; no files means standard input. Files that cannot be read are
/// reported, and the others are read all the same. Returns `fine`, `findings` when a message was refused,
/// `trouble` when a file could not be read. Shows the progress on a terminal. For `beforeWaiting` and
/// `follow` see TextSource.
int readMessages(std::vector<std::string> files,
                 std::function<void(TextSource const& source, Reception& reception)> const& visit,
                 std::function<void()> const& beforeWaiting = {}, bool follow = false);

/// One line to standard error, with what could disturb a terminal escaped.
void complain(std::string const& what);

} // namespace ZelkMsg
