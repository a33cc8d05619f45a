/// In what two trees differ, member by member, by meaning.
#pragma once

#include "framework/element.h"

#include <string>
#include <vector>

namespace ZelkMsg {

/// One place where two trees differ.
struct Difference {
    enum class What { onlyLeft, onlyRight, changed };
    What what;
    std::string path;  ///< "/body/statelist/0/name"; empty for the whole tree
    std::string left;  ///< JSON text, empty when only the right tree has something
    std::string right; ///< likewise
};

/// How the items of two arrays are matched.
enum class Items {
    byIndex,   ///< the first with the first, and so on
    byContent, ///< equal ones with equal ones, so that an inserted item is one difference
};

/// The differences in the order of the members' names. Numbers are equal when their values are, whatever the
/// kind of their nodes: 5 and 5.0 do not differ, 9007199254740993 and 9007199254740992.0 do. With
/// Items::byContent the path of an item has its index in the left tree, or in the right one when it is only
/// there.
std::vector<Difference> differences(Zelk::MetaData::Element const& left, Zelk::MetaData::Element const& right,
                                    Items items = Items::byIndex);

} // namespace ZelkMsg
