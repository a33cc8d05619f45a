/// Shorthand for building trees in tests, and how googletest shows a node of a failed comparison.
#pragma once

#include "framework/element.h"
#include "framework/json_text.h"

#include <initializer_list>
#include <ostream>
#include <string>
#include <utility>

namespace Zelk::Tests {

inline MetaData::Element text(std::string value)
{
    return MetaData::Element(MetaData::Trivial_T<std::string>(std::move(value)));
}

inline MetaData::Element integer(long long value)
{
    return MetaData::Element(MetaData::Trivial_T<long long>(value));
}

inline MetaData::Element real(double value)
{
    return MetaData::Element(MetaData::Trivial_T<double>(value));
}

inline MetaData::Element boolean(bool value)
{
    return MetaData::Element(MetaData::Trivial_T<bool>(value));
}

inline MetaData::Element array(std::initializer_list<MetaData::Element> items)
{
    MetaData::Array result;
    for (MetaData::Element const& item : items)
        result[result.size()] = item;
    return MetaData::Element(std::move(result));
}

inline MetaData::Element object(std::initializer_list<std::pair<std::string, MetaData::Element>> members)
{
    MetaData::Object result;
    for (auto const& [name, value] : members)
        result[name] = value;
    return MetaData::Element(std::move(result));
}

} // namespace Zelk::Tests

namespace Zelk::MetaData {

inline void PrintTo(Element const& node, std::ostream* stream)
{
    try {
        *stream << Json::printText(node);
    } catch (Json::PrintError const& error) {
        *stream << "a tree without JSON text: " << error.what();
    }
}

} // namespace Zelk::MetaData
