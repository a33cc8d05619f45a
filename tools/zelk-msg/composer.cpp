#include "tools/zelk-msg/composer.h"

#include "framework/json_text.h"
#include "tools/zelk-msg/differences.h"
#include "tools/zelk-msg/nearest_value.h"
#include "tools/zelk-msg/reception.h"
#include "tools/zelk-msg/suggest.h"
#include "tools/zelk-msg/trouble.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
using MetaData::Element;

namespace {

Element& nodeAt(Element& tree, std::string const& path)
{
    Element* node = &tree;
    for (std::string_view const step : steps(path))
        node = &(*node)[std::string(step)];
    return *node;
}

std::string article(Type type)
{
    switch (type) {
    case Type::integer:
        return "an integer";
    case Type::number:
        return "a number";
    case Type::boolean:
        return "true or false";
    case Type::text:
        return "a string";
    case Type::anything:
        break;
    }
    return "a JSON value";
}

/// The value as JSON, or as a string when it is none.
Element jsonOrText(std::string const& value)
{
    try {
        return Zelk::Json::readText(value);
    } catch (Zelk::Json::ParseError const&) {
        return MetaData::Trivial_T<std::string>(value);
    }
}

Element splitAtCommas(std::string const& value, Type type)
{
    MetaData::Array items;
    for (std::size_t begin = 0; begin <= value.size() && !value.empty();) {
        std::size_t const end = std::min(value.find(',', begin), value.size());
        std::string const item = value.substr(begin, end - begin);
        items[items.size()] =
            type == Type::text ? Element(MetaData::Trivial_T<std::string>(item)) : jsonOrText(item);
        begin = end + 1;
    }
    return items;
}

} // namespace

Composer::Composer(Kind const& kind) : kind_(kind), tree_(kind.create()->written())
{
    for (Member const& member : kind.members) {
        std::size_t const star = member.path.find("/*");
        bool const list = star != std::string_view::npos;
        std::string const path(member.path.substr(0, star));
        if (places_.empty() || places_.back().path != path)
            places_.push_back({path, path.substr(path.rfind('/') + 1), member.type, list, {}});
        if (list && star + 2 < member.path.size())
            places_.back().columns.push_back(&member);
    }
}

Composer::Place const* Composer::find(std::string_view key) const
{
    Place const* open = nullptr;
    for (Place const& place : places_) {
        if (key == place.name || key == place.path)
            return &place;
        if (place.name == "?")
            open = &place;
    }
    return open;
}

void Composer::refuseKey(std::string const& key) const
{
    std::vector<std::string> names;
    for (Place const& place : places_)
        names.push_back(place.name);
    throw Trouble(std::string(kind_.name) + " has no member '" + key + "'" + didYouMean(key, names));
}

void Composer::set(std::string const& assignment)
{
    std::size_t const equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0)
        throw Trouble("--set wants KEY=VALUE, not '" + assignment + "'");
    std::string const key = assignment.substr(0, equals);
    std::string const value = assignment.substr(equals + 1);
    Place const* const place = find(key);
    if (place == nullptr)
        refuseKey(key);
    if (place->list && place->columns.empty() && (value.empty() || value.front() != '['))
        put(*place, key, splitAtCommas(value, place->type));
    else if (!place->list && place->type == Type::text)
        put(*place, key, MetaData::Trivial_T<std::string>(value));
    else
        put(*place, key, jsonOrText(value));
}

void Composer::edit(Element const& object)
{
    if (object.GetElementType() != Element::object)
        throw Trouble("the members to edit must be given as a JSON object");
    edit(object, "");
}

void Composer::edit(Element const& object, std::string const& prefix)
{
    for (auto const& member : static_cast<MetaData::Object const&>(object)) {
        std::string const path = prefix + '/' + member.name();
        bool const holds_others = std::any_of(places_.begin(), places_.end(), [&](Place const& place) {
            return place.path.compare(0, path.size() + 1, path + '/') == 0;
        });
        if (holds_others && member.element().GetElementType() == Element::object) {
            edit(member.element(), path);
            continue;
        }
        Place const* place = find(path);
        if ((place == nullptr || place->name == "?") && prefix.empty())
            place = find(member.name());
        if (place == nullptr)
            refuseKey(member.name());
        put(*place, member.name(), member.element());
    }
}

void Composer::put(Place const& place, std::string const& key, Element value)
{
    std::string path = place.path;
    if (place.name == "?")
        path.replace(path.size() - 1, 1, key, key.rfind('/') + 1, std::string::npos);
    std::string const name = path.substr(path.rfind('/') + 1);
    if (!place.list) {
        nodeAt(tree_, path) = checkedLeaf(place.type, name, std::move(value));
        return;
    }
    if (value.GetElementType() != Element::array)
        throw Trouble(name + " wants a list, not " + Zelk::Json::printText(value));
    MetaData::Array items;
    unsigned int index = 0;
    for (Element const& item : static_cast<MetaData::Array const&>(std::as_const(value))) {
        std::string const what = name + '/' + std::to_string(index);
        items[index++] =
            place.columns.empty() ? checkedLeaf(place.type, what, item) : checkedRecord(place, what, item);
    }
    nodeAt(tree_, path) = std::move(items);
}

Element Composer::checkedLeaf(Type type, std::string const& what, Element value) const
{
    auto const kind = value.GetElementType();
    bool fits = true;
    switch (type) {
    case Type::integer:
        fits = kind == Element::integer;
        break;
    case Type::number:
        if (kind == Element::integer)
            value = MetaData::Trivial_T<double>(static_cast<double>(value.asInt64()));
        else
            fits = kind == Element::real;
        break;
    case Type::boolean:
        fits = kind == Element::boolean;
        break;
    case Type::text:
        fits = kind == Element::string;
        break;
    case Type::anything:
        break;
    }
    if (!fits)
        throw Trouble(what + " wants " + article(type) + ", not " + Zelk::Json::printText(value) +
                      didYouMeanValue(type, value));
    return value;
}

Element Composer::checkedRecord(Place const& place, std::string const& what, Element const& value) const
{
    if (value.GetElementType() != Element::object)
        throw Trouble(what + " wants an object, not " + Zelk::Json::printText(value));
    Element record = value;
    for (auto const& member : static_cast<MetaData::Object const&>(value)) {
        auto const column =
            std::find_if(place.columns.begin(), place.columns.end(),
                         [&](Member const* candidate) { return shortName(*candidate) == member.name(); });
        if (column == place.columns.end()) {
            std::vector<std::string> names;
            for (Member const* const candidate : place.columns)
                names.emplace_back(shortName(*candidate));
            throw Trouble(what + " has no member '" + member.name() + "'" + didYouMean(member.name(), names));
        }
        record[member.name()] = checkedLeaf((*column)->type, what + '/' + member.name(), member.element());
    }
    for (Member const* const column : place.columns) {
        std::string const name(shortName(*column));
        MetaData::Object const& members = std::as_const(record);
        if (column->presence == Presence::required && members.find(name) == members.end())
            throw Trouble(what + " needs the member '" + name + "'");
    }
    return record;
}

Element Composer::finish() const
{
    if (kind_.endless != nullptr) {
        if (auto const endless = kind_.endless(tree_))
            throw Trouble(endless->path + ": " + endless->reason);
    }
    auto const message = kind_.create();
    try {
        message->read(Element(tree_));
    } catch (std::runtime_error const& e) {
        throw Trouble(std::string(kind_.name) + " refuses this: " + e.what() + rightId());
    }
    Element written = message->written();
    auto const changed = differences(tree_, written);
    if (!changed.empty()) {
        Difference const& first = changed.front();
        throw Trouble(first.path + ": " + (first.left.empty() ? "nothing" : first.left) +
                      " would be read as " + (first.right.empty() ? "nothing" : first.right) +
                      nearestInRange(first.path));
    }
    return written;
}

/// For a member that was set to another id than the one that the kind is bound to.
std::string Composer::rightId() const
{
    if (!kind_.globalEventId)
        return "";
    Element const* const id = valueAt(tree_, kind_.direction == Direction::command ? "/id" : "/body/id");
    bool const wrong = id != nullptr && id->asInt64() != *kind_.globalEventId;
    return wrong ? "; did you mean '" + std::to_string(*kind_.globalEventId) + "'?" : "";
}

/// For an integer that the class cuts off: the bound of its range that is nearest.
std::string Composer::nearestInRange(std::string const& path) const
{
    Element const* const value = valueAt(tree_, path);
    if (value == nullptr || value->GetElementType() != Element::integer)
        return "";
    bool const negative = value->asInt64() < 0;
    for (long long const bound : negative ? std::array<long long, 2>{-2147483648LL, 0}
                                          : std::array<long long, 2>{4294967295LL, 2147483647LL}) {
        Element tree = tree_;
        nodeAt(tree, path) = MetaData::Trivial_T<long long>(bound);
        auto const message = kind_.create();
        try {
            message->read(Element(tree));
        } catch (std::runtime_error const&) {
            continue;
        }
        if (differences(tree, message->written()).empty())
            return "; did you mean '" + std::to_string(bound) + "'?";
    }
    return "";
}

} // namespace ZelkMsg
