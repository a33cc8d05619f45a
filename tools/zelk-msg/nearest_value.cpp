#include "tools/zelk-msg/nearest_value.h"

#include "framework/json_text.h"
#include "tools/zelk-msg/suggest.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
using MetaData::Element;

namespace {

/// The number at the beginning of a text, when the rest has nothing to do with numbers: a unit, or nothing.
/// A decimal comma counts as a point.
std::optional<Element> numberIn(std::string text)
{
    if (std::size_t const comma = text.find(','); comma != std::string::npos)
        text[comma] = '.';
    std::size_t const end = std::min(text.find_first_not_of("+-.0123456789"), text.size());
    if (text.find_first_of("0123456789", end) != std::string::npos)
        return std::nullopt;
    std::size_t const begin = text.front() == '+' ? 1 : 0;
    try {
        return Zelk::Json::readText(std::string_view(text).substr(begin, end - begin));
    } catch (Zelk::Json::ParseError const&) {
        return std::nullopt;
    }
}

std::string quoted(std::string const& text)
{
    return "; did you mean '" + text + "'?";
}

std::string nearestInteger(Element const& value)
{
    constexpr double exact = 9007199254740992.0; // 2^53, up to where every integer is a double
    if (value.GetElementType() == Element::integer)
        return quoted(Zelk::Json::printText(value));
    double const rounded = std::round(value.asDouble());
    return std::abs(rounded) <= exact ? quoted(std::to_string(static_cast<long long>(rounded))) : "";
}

std::string nearestBoolean(Element const& value)
{
    if (value.GetElementType() == Element::integer)
        return value.asInt64() == 0 ? quoted("false") : value.asInt64() == 1 ? quoted("true") : "";
    if (value.GetElementType() != Element::string)
        return "";
    std::string const& text = value.asString();
    for (std::string_view const yes : {"yes", "on", "y"}) {
        if (text == yes)
            return quoted("true");
    }
    for (std::string_view const no : {"no", "off", "n"}) {
        if (text == no)
            return quoted("false");
    }
    return didYouMean(text, {"true", "false"});
}

} // namespace

std::string didYouMeanValue(Type type, Element const& value)
{
    auto const kind = value.GetElementType();
    if (type == Type::boolean)
        return nearestBoolean(value);
    if (type == Type::text)
        return kind <= Element::boolean ? quoted('"' + Zelk::Json::printText(value) + '"') : "";
    if (type == Type::anything)
        return "";
    std::optional<Element> number;
    if (kind == Element::string && !value.asString().empty())
        number = numberIn(value.asString());
    else if (kind == Element::boolean)
        number = MetaData::Trivial_T<long long>(value.asBoolean() ? 1 : 0);
    else if (kind == Element::real)
        number = value;
    if (!number)
        return "";
    return type == Type::integer ? nearestInteger(*number) : quoted(Zelk::Json::printText(*number));
}

} // namespace ZelkMsg
