/// The words in which the legacy messages state their form. Private to this folder.
///
///     put(entry(*this, "eventId"), eventId());       // writes a top-level member
///     put(element("body", "name"), name());          // writes a member of a top-level object
///     setEventId(element<int>("eventId"));           // reads leniently: any number or boolean will do
///     setEventId(low32(node.asInt64()));             // reads strictly: an integer node and nothing else
#pragma once

#include "framework/number.h"
#include "framework/serializable.h"

#include <string>

namespace Zelk::Msgs::LegacyState {

using MetaData::low32;

/// The top-level member `key` of a message, created empty when it is missing.
inline MetaData::Element& entry(Json::PartiallyDeserializable const& message, std::string const& key)
{
    return Json::PartiallyDeserializable::elementImpl(message.metaData(), key);
}

/// Makes `place` an integer node, sign-extended.
inline void put(MetaData::Element& place, int value)
{
    place = MetaData::Element(MetaData::Trivial_T<long long>(value));
}

/// Makes `place` an integer node, zero-extended.
inline void put(MetaData::Element& place, unsigned int value)
{
    place = MetaData::Element(MetaData::Trivial_T<long long>(value));
}

/// Makes `place` a floating-point node.
inline void put(MetaData::Element& place, double value)
{
    place = MetaData::Element(MetaData::Trivial_T<double>(value));
}

/// Makes `place` a boolean node.
inline void put(MetaData::Element& place, bool value)
{
    place = MetaData::Element(MetaData::Trivial_T<bool>(value));
}

/// Makes `place` a string node; the memory of a string that is there already is used again.
inline void put(MetaData::Element& place, std::string const& value)
{
    MetaData::SetAs<std::string>(value, place);
}

} // namespace Zelk::Msgs::LegacyState
