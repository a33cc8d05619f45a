#include "bench/verify.h"

#include <cmath>
#include <stdexcept>

namespace bench {
namespace {

using nlohmann::json;

bool same(json const& a, json const& b)
{
    if (a.is_number_float() || b.is_number_float()) {
        if (!a.is_number() || !b.is_number())
            return false;
        double const expected = b.get<double>();
        return std::fabs(a.get<double>() - expected) <= 1e-15 * std::fabs(expected);
    }
    if (a.type() != b.type() && !(a.is_number() && b.is_number()))
        return false;
    if (!a.is_structured())
        return a == b;
    if (a.size() != b.size())
        return false;
    for (auto left = a.begin(), right = b.begin(); left != a.end(); ++left, ++right)
        if ((a.is_object() && left.key() != right.key()) || !same(*left, *right))
            return false;
    return true;
}

} // namespace

void requireJson(std::string_view text, json const& expected, std::string const& what, Numbers numbers)
{
    json const actual = json::parse(text);
    require(numbers == Numbers::exact ? actual == expected : same(actual, expected), what);
}

void require(bool right, std::string const& what)
{
    if (!right)
        throw std::runtime_error(what + " gives a wrong result");
}

} // namespace bench
