#include "tools/zelk-msg/differences.h"

#include "framework/json_text.h"

#include <utility>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
using MetaData::Element;

namespace {

bool equalNumbers(long long integer, double real)
{
    constexpr double limit = 9223372036854775808.0; // 2^63; beyond it the cast below has no meaning
    return real >= -limit && real < limit && static_cast<long long>(real) == integer &&
           static_cast<double>(static_cast<long long>(real)) == real;
}

bool equalLeaves(Element const& left, Element const& right)
{
    auto const left_kind = left.GetElementType();
    auto const right_kind = right.GetElementType();
    if (left_kind == Element::integer && right_kind == Element::real)
        return equalNumbers(left.asInt64(), right.asDouble());
    if (left_kind == Element::real && right_kind == Element::integer)
        return equalNumbers(right.asInt64(), left.asDouble());
    return left == right;
}

// As deep as the trees, which come from texts: at most 1,024 levels.
class Comparison {
public:
    std::vector<Difference> take() { return std::move(found_); }

    void compare(Element const& left, Element const& right, std::string const& path)
    {
        auto const kind = left.GetElementType();
        if (kind == right.GetElementType() && kind == Element::object)
            compareObjects(left, right, path);
        else if (kind == right.GetElementType() && kind == Element::array)
            compareArrays(left, right, path);
        else if (!equalLeaves(left, right))
            add(Difference::What::changed, path, &left, &right);
    }

private:
    void add(Difference::What what, std::string path, Element const* left, Element const* right)
    {
        found_.push_back({what, std::move(path), left == nullptr ? "" : Zelk::Json::printText(*left),
                          right == nullptr ? "" : Zelk::Json::printText(*right)});
    }

    void compareObjects(MetaData::Object const& left, MetaData::Object const& right, std::string const& path)
    {
        auto a = left.begin();
        auto b = right.begin();
        while (a != left.end() || b != right.end()) {
            if (b == right.end() || (a != left.end() && a->name() < b->name())) {
                add(Difference::What::onlyLeft, path + '/' + a->name(), &a->element(), nullptr);
                ++a;
            } else if (a == left.end() || b->name() < a->name()) {
                add(Difference::What::onlyRight, path + '/' + b->name(), nullptr, &b->element());
                ++b;
            } else {
                compare(a->element(), b->element(), path + '/' + a->name());
                ++a;
                ++b;
            }
        }
    }

    void compareArrays(MetaData::Array const& left, MetaData::Array const& right, std::string const& path)
    {
        auto a = left.begin();
        auto b = right.begin();
        for (std::size_t index = 0; a != left.end() || b != right.end(); ++index) {
            std::string const here = path + '/' + std::to_string(index);
            if (b == right.end())
                add(Difference::What::onlyLeft, here, &*a++, nullptr);
            else if (a == left.end())
                add(Difference::What::onlyRight, here, nullptr, &*b++);
            else
                compare(*a++, *b++, here);
        }
    }

    std::vector<Difference> found_;
};

} // namespace

std::vector<Difference> differences(Element const& left, Element const& right)
{
    Comparison comparison;
    comparison.compare(left, right, "");
    return comparison.take();
}

} // namespace ZelkMsg
