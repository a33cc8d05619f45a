#include "tools/zelk-msg/culprit.h"

#include <cstddef>
#include <vector>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
using MetaData::Element;

namespace {

std::string_view kindOf(Element const& node)
{
    constexpr std::string_view names[] = {
        "floating-point number", "integer", "boolean", "string", "object", "array", "empty"};
    return names[node.GetElementType()];
}

class Search {
public:
    Search(Kind const& kind, std::string_view what) : kind_(kind), what_(what) {}

    std::optional<Culprit> run(Element const& tree)
    {
        for (Member const& member : kind_.members) {
            if (member.reading != Reading::ignored)
                descend(member, steps(member.path), 0, tree, "");
            if (found_)
                break;
        }
        return found_;
    }

private:
    using Steps = std::vector<std::string_view>;

    void descend(Member const& member, Steps const& path, std::size_t depth, Element const& node,
                 std::string const& here)
    {
        if (found_)
            return;
        if (depth == path.size()) {
            checkLeaf(member, node, here);
            return;
        }
        std::string_view const step = path[depth];
        if (step == "*") {
            if (node.GetElementType() != Element::array) {
                blame("array", node, here, false);
                return;
            }
            std::size_t index = 0;
            for (Element const& item : static_cast<MetaData::Array const&>(node))
                descend(member, path, depth + 1, item, here + '/' + std::to_string(index++));
            return;
        }
        if (node.GetElementType() != Element::object) {
            blame("object", node, here, false);
            return;
        }
        MetaData::Object const& members = node;
        if (step == "?") {
            for (auto const& entry : members) {
                if (entry.name() != "id")
                    descend(member, path, depth + 1, entry.element(), here + '/' + entry.name());
            }
            return;
        }
        auto const entry = members.find(std::string(step));
        std::string const there = here + '/' + std::string(step);
        if (entry != members.end()) {
            descend(member, path, depth + 1, entry->element(), there);
        } else if (member.presence != Presence::optional) {
            if (what_ == "no member named \"" + std::string(step) + '"')
                found_ = Culprit{there, true};
            else if (depth + 1 < path.size())
                blame(path[depth + 1] == "*" ? "array" : "object", Element(), there, true);
            if (!found_)
                checkMissingLeaf(member, there);
        }
    }

    void checkLeaf(Member const& member, Element const& node, std::string const& here)
    {
        bool const number = node.GetElementType() <= Element::boolean;
        if (member.reading == Reading::lenient && number)
            return;
        if (member.type != Type::anything)
            blame(expectedBy(member), node, here, false);
    }

    void checkMissingLeaf(Member const& member, std::string const& here)
    {
        blame(expectedBy(member), Element(), here, true);
    }

    static std::string_view expectedBy(Member const& member)
    {
        switch (member.type) {
        case Type::integer:
            return "integer";
        case Type::number:
            return "floating-point number";
        case Type::boolean:
            return "boolean";
        default:
            return "string";
        }
    }

    void blame(std::string_view expected, Element const& node, std::string const& here, bool missing)
    {
        if (expected == kindOf(node))
            return;
        if (what_ == "expected " + std::string(expected) + ", found " + std::string(kindOf(node)))
            found_ = Culprit{here, missing};
    }

    Kind const& kind_;
    std::string_view what_;
    std::optional<Culprit> found_;
};

} // namespace

std::optional<Culprit> findCulprit(Kind const& kind, Element const& tree, std::string_view what)
{
    return Search(kind, what).run(tree);
}

} // namespace ZelkMsg
