/// Which member made a class refuse a tree.
#pragma once

#include "framework/element.h"
#include "tools/zelk-msg/catalogue.h"

#include <optional>
#include <string>
#include <string_view>

namespace ZelkMsg {

/// The member that a class must have stumbled over.
struct Culprit {
    std::string path;
    bool missing;
};

/// The first member of the tree that does not fit the form of the kind and would be refused with the very
/// words `what`. The exceptions of the library say what was wrong, not where; nothing is returned where that
/// stays open.
std::optional<Culprit> findCulprit(Kind const& kind, Zelk::MetaData::Element const& tree,
                                   std::string_view what);

} // namespace ZelkMsg
