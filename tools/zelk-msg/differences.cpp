#include "tools/zelk-msg/differences.h"

#include "framework/json_text.h"
#include "tools/zelk-msg/alignment.h"

#include <cstddef>
#include <deque>
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
    explicit Comparison(Items items) : items_(items) {}

    std::vector<Difference> take() { return std::move(found_); }

    void compare(Element const& left, Element const& right)
    {
        auto const kind = left.GetElementType();
        if (kind == right.GetElementType() && kind == Element::object)
            compareObjects(left, right);
        else if (kind == right.GetElementType() && kind == Element::array)
            compareArrays(left, right);
        else if (!equalLeaves(left, right))
            add(Difference::What::changed, &left, &right);
    }

private:
    /// Goes down to a member for the time of `visit`.
    template <typename Visit>
    void at(std::string const& step, Visit const& visit)
    {
        std::size_t const length = path_.size();
        path_ += '/';
        path_ += step;
        visit();
        path_.resize(length);
    }

    void add(Difference::What what, Element const* left, Element const* right)
    {
        found_.push_back({what, path_, left == nullptr ? "" : Zelk::Json::printText(*left),
                          right == nullptr ? "" : Zelk::Json::printText(*right)});
    }

    void compareObjects(MetaData::Object const& left, MetaData::Object const& right)
    {
        auto a = left.begin();
        auto b = right.begin();
        while (a != left.end() || b != right.end()) {
            if (b == right.end() || (a != left.end() && a->name() < b->name())) {
                at(a->name(), [&] { add(Difference::What::onlyLeft, &a->element(), nullptr); });
                ++a;
            } else if (a == left.end() || b->name() < a->name()) {
                at(b->name(), [&] { add(Difference::What::onlyRight, nullptr, &b->element()); });
                ++b;
            } else {
                at(a->name(), [&] { compare(a->element(), b->element()); });
                ++a;
                ++b;
            }
        }
    }

    void compareArrays(MetaData::Array const& left, MetaData::Array const& right)
    {
        if (items_ == Items::byContent) {
            compareByContent(left, right);
            return;
        }
        auto a = left.begin();
        auto b = right.begin();
        for (std::size_t index = 0; a != left.end() || b != right.end(); ++index) {
            at(std::to_string(index), [&] {
                if (b == right.end())
                    add(Difference::What::onlyLeft, &*a++, nullptr);
                else if (a == left.end())
                    add(Difference::What::onlyRight, nullptr, &*b++);
                else
                    compare(*a++, *b++);
            });
        }
    }

    void compareByContent(MetaData::Array const& left, MetaData::Array const& right)
    {
        auto const item = [](MetaData::Array const& array, std::size_t index) -> Element const& {
            return array[static_cast<unsigned int>(index)];
        };
        std::deque<std::string> texts;
        Identities identities;
        auto const itemsOf = [&](MetaData::Array const& array) {
            std::vector<Item> items;
            for (Element const& element : array)
                items.push_back({identities.of(texts.emplace_back(Zelk::Json::printText(element))), 0});
            return items;
        };
        for (Alignment const& pair : align(itemsOf(left), itemsOf(right))) {
            if (pair.equal)
                continue;
            at(std::to_string(pair.left ? *pair.left : *pair.right), [&] {
                if (!pair.right)
                    add(Difference::What::onlyLeft, &item(left, *pair.left), nullptr);
                else if (!pair.left)
                    add(Difference::What::onlyRight, nullptr, &item(right, *pair.right));
                else
                    compare(item(left, *pair.left), item(right, *pair.right));
            });
        }
    }

    Items items_;
    std::string path_;
    std::vector<Difference> found_;
};

} // namespace

std::vector<Difference> differences(Element const& left, Element const& right, Items items)
{
    Comparison comparison(items);
    comparison.compare(left, right);
    return comparison.take();
}

} // namespace ZelkMsg
