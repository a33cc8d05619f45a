/// How the protocol reads numbers leniently: any number or boolean is accepted for any number type.
///
/// Used by the typed lookups of messages and by lists of integers. Everything else reads strictly, through
/// the accessors of Element.
///
///     node             double              int and unsigned int         bool
///     floating-point   as it is            toward zero, saturating      |x| > 1e-05
///     integer          nearest double      low 32 bits                  not 0
///     boolean          1 or 0              1 or 0                       as it is
///     any other        asDouble() throws   asInt64() throws             asBoolean() throws
#pragma once

#include "framework/element.h"

#include <cmath>
#include <limits>
#include <type_traits>

namespace Zelk::MetaData {

/// The low 32 bits of a 64-bit integer; no range is checked, 4294967297 gives 1.
constexpr int low32(long long value) noexcept
{
    return static_cast<int>(static_cast<unsigned int>(value & 0xFFFFFFFF));
}

/// The value of a node as double, int, unsigned int or bool by the table above. TypeError from the element
/// model for a string, an object, an array or an empty node.
template <typename T>
T numberAs(Element const& node);

namespace Detail {
/// Truncates toward zero; values beyond the range of T become its limits, NaN becomes 0.
template <typename T>
T truncateTo(double value) noexcept
{
    if (std::isnan(value))
        return 0;
    if (value <= static_cast<double>(std::numeric_limits<T>::min()))
        return std::numeric_limits<T>::min();
    if (value >= static_cast<double>(std::numeric_limits<T>::max()))
        return std::numeric_limits<T>::max();
    return static_cast<T>(value);
}
} // namespace Detail

template <typename T>
T numberAs(Element const& node)
{
    static_assert(std::is_same_v<T, double> || std::is_same_v<T, int> || std::is_same_v<T, unsigned int> ||
                      std::is_same_v<T, bool>,
                  "the protocol reads double, int, unsigned int and bool");
    if constexpr (std::is_same_v<T, double>) {
        switch (node.GetElementType()) {
        case Element::integer:
            return static_cast<double>(node.asInt64());
        case Element::boolean:
            return node.asBoolean() ? 1.0 : 0.0;
        default:
            return node.asDouble();
        }
    } else if constexpr (std::is_same_v<T, bool>) {
        switch (node.GetElementType()) {
        case Element::real:
            return std::fabs(node.asDouble()) > 1e-05;
        case Element::integer:
            return node.asInt64() != 0;
        default:
            return node.asBoolean();
        }
    } else {
        switch (node.GetElementType()) {
        case Element::real:
            return Detail::truncateTo<T>(node.asDouble());
        case Element::boolean:
            return node.asBoolean() ? 1 : 0;
        default:
            return static_cast<T>(low32(node.asInt64()));
        }
    }
}

} // namespace Zelk::MetaData
