#include "tools/zelk-msg/pretty.h"

#include "framework/json_text.h"
#include "tools/zelk-msg/output.h"

#include <algorithm>
#include <cstddef>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
using MetaData::Element;

namespace {

constexpr std::size_t longestRow = 80;

/// A short array of plain values, which needs no lines of its own.
bool isRow(Element const& node)
{
    if (node.GetElementType() != Element::array)
        return false;
    MetaData::Array const& items = node;
    auto const isLeaf = [](Element const& item) {
        return item.GetElementType() != Element::object && item.GetElementType() != Element::array;
    };
    return std::all_of(items.begin(), items.end(), isLeaf) &&
           Zelk::Json::printText(node).size() <= longestRow;
}

/// What could disturb a terminal is escaped, which means the same in JSON.
std::string leafText(Element const& node)
{
    return harmless(Zelk::Json::printText(node));
}

void print(std::string& text, Element const& node, std::size_t depth)
{
    auto const newLine = [&](std::size_t level) { text.append("\n").append(2 * level, ' '); };
    bool first = true;
    if (node.GetElementType() == Element::object && !static_cast<MetaData::Object const&>(node).empty()) {
        text += '{';
        for (auto const& member : static_cast<MetaData::Object const&>(node)) {
            text += first ? "" : ",";
            first = false;
            newLine(depth + 1);
            text += leafText(Element(MetaData::Trivial_T<std::string>(member.name()))) + ": ";
            print(text, member.element(), depth + 1);
        }
        newLine(depth);
        text += '}';
    } else if (node.GetElementType() == Element::array && !isRow(node)) {
        text += '[';
        for (Element const& item : static_cast<MetaData::Array const&>(node)) {
            text += first ? "" : ",";
            first = false;
            newLine(depth + 1);
            print(text, item, depth + 1);
        }
        newLine(depth);
        text += ']';
    } else {
        text += leafText(node);
    }
}

} // namespace

std::string prettyText(Element const& tree)
{
    std::string text;
    print(text, tree, 0);
    return text;
}

} // namespace ZelkMsg
