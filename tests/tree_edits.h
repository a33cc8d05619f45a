/// Trees with one thing changed, to be handed to a reader.
///
/// A place in a tree is named by the way to it from the root: names of members and indexes of items, as in
/// {"body", "statelist", "0", "eventid"}.
#pragma once

#include "framework/element.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Zelk::Testing {

using Path = std::vector<std::string>;

/// The node at `path`, which must exist.
inline MetaData::Element& nodeAt(MetaData::Element& tree, Path const& path)
{
    MetaData::Element* node = &tree;
    for (std::string const& step : path) {
        if (node->GetElementType() == MetaData::Element::array)
            node = &static_cast<MetaData::Array&>(*node)[static_cast<unsigned int>(std::stoul(step))];
        else
            node = &(*node)[step];
    }
    return *node;
}

/// The tree with `node` at `path`, the last step of which need not exist.
inline MetaData::Element with(MetaData::Element tree, Path const& path, MetaData::Element const& node)
{
    nodeAt(tree, path) = node;
    return tree;
}

/// The tree without the member at `path`.
inline MetaData::Element without(MetaData::Element tree, Path path)
{
    std::string const name = path.back();
    path.pop_back();
    MetaData::Element& parent = nodeAt(tree, path);
    MetaData::Object const& members = parent;
    MetaData::Object kept;
    for (auto const& member : members) {
        if (member.name() != name)
            kept[member.name()] = member.element();
    }
    parent = MetaData::Element(kept);
    return tree;
}

/// The ways to all members of all objects below `tree`, those inside of arrays included.
inline std::vector<Path> membersOf(MetaData::Element const& tree)
{
    std::vector<Path> paths;
    auto const append = [&paths](std::string const& step, MetaData::Element const& child) {
        for (Path path : membersOf(child)) {
            path.insert(path.begin(), step);
            paths.push_back(path);
        }
    };
    if (tree.GetElementType() == MetaData::Element::object) {
        for (auto const& member : static_cast<MetaData::Object const&>(tree)) {
            paths.push_back({member.name()});
            append(member.name(), member.element());
        }
    } else if (tree.GetElementType() == MetaData::Element::array) {
        unsigned int index = 0;
        for (MetaData::Element const& item : static_cast<MetaData::Array const&>(tree))
            append(std::to_string(index++), item);
    }
    return paths;
}

/// The path as people write it: "/body/statelist/0/eventid".
inline std::string toString(Path const& path)
{
    std::string text;
    for (std::string const& step : path)
        text += "/" + step;
    return text;
}

} // namespace Zelk::Testing
