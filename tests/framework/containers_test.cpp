// Objects and arrays by themselves, at the sizes where the memory behind them changes its shape.
#include "framework/element.h"
#include "nodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Zelk::MetaData {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;
using Tests::array;
using Tests::integer;
using Tests::object;
using Tests::text;

// ---- Object

/// Numbers of members around which an object changes: the linear search ends, a further block begins.
unsigned int const memberCounts[] = {0,   1,   2,   7,   8,   9,   11,  12,   13,   14,
                                     16,  17,  23,  24,  25,  26,  55,  56,   57,   119,
                                     120, 121, 247, 248, 249, 376, 377, 1000, 5000, 20000};

enum class Order { ascending, descending, random, fromBothEnds };

std::vector<unsigned int> inOrder(unsigned int count, Order order)
{
    std::vector<unsigned int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0u);
    switch (order) {
    case Order::ascending:
        break;
    case Order::descending:
        std::reverse(numbers.begin(), numbers.end());
        break;
    case Order::random: {
        std::mt19937 random(count);
        std::shuffle(numbers.begin(), numbers.end(), random);
        break;
    }
    case Order::fromBothEnds:
        for (unsigned int i = 0; i < count; ++i)
            numbers[i] = i % 2 == 0 ? i / 2 : count - 1 - i / 2;
        break;
    }
    return numbers;
}

/// A name whose order is that of the number, some so long that they stand outside the node.
std::string nameOf(unsigned int number)
{
    std::string digits = std::to_string(number);
    digits.insert(0, 6 - digits.size(), '0');
    return number % 3 == 0 ? digits + "-a name that does not fit into the string object itself" : digits;
}

class ObjectOrder : public testing::TestWithParam<Order> {};

std::string orderName(testing::TestParamInfo<Order> const& order)
{
    constexpr char const* names[] = {"Ascending", "Descending", "Random", "FromBothEnds"};
    return names[static_cast<int>(order.param)];
}

INSTANTIATE_TEST_SUITE_P(Insertion, ObjectOrder,
                         testing::Values(Order::ascending, Order::descending, Order::random,
                                         Order::fromBothEnds),
                         orderName);

TEST_P(ObjectOrder, DoesNotMatterForWhatTheObjectHolds)
{
    for (unsigned int const count : memberCounts) {
        SCOPED_TRACE(count);
        Object members;
        std::map<unsigned int, Element*> places;
        for (unsigned int const number : inOrder(count, GetParam())) {
            Element& place = members[nameOf(number)];
            ASSERT_EQ(place.GetElementType(), Element::empty);
            place = integer(number);
            places[number] = &place;
        }
        ASSERT_EQ(members.size(), count);
        EXPECT_EQ(members.empty(), count == 0);

        unsigned int number = 0;
        for (Object::Member const& member : members) {
            ASSERT_EQ(member.name(), nameOf(number));
            ASSERT_EQ(member.element().asInt64(), number);
            ++number;
        }
        EXPECT_EQ(number, count);
        Object const& constant = members;
        for (number = 0; number < count; ++number) {
            ASSERT_EQ(places[number]->asInt64(), number) << "a reference did not stay valid";
            ASSERT_EQ(&members[nameOf(number)], places[number]);
            ASSERT_EQ(&constant[nameOf(number)], places[number]);
            auto const found = constant.find(nameOf(number));
            ASSERT_NE(found, constant.end());
            ASSERT_EQ(found->name(), nameOf(number));
            ASSERT_EQ(&found->element(), places[number]);
        }
        EXPECT_EQ(members.size(), count) << "looking up a member that is there inserted one";
    }
}

TEST(Object, TakesAMemberBeforeBetweenAndBehindOthersThatCameInOrder)
{
    for (unsigned int count = 0; count <= 30; ++count)
        for (unsigned int gap = 0; gap <= count; ++gap) {
            SCOPED_TRACE(std::to_string(gap) + " of " + std::to_string(count));
            Object members;
            for (unsigned int i = 0; i < count; ++i)
                members[nameOf(2 * i + 1)] = integer(2 * i + 1);
            std::vector<Object::const_iterator> places;
            for (auto place = members.begin(); place != members.end(); ++place)
                places.push_back(place);
            members[nameOf(2 * gap)] = integer(2 * gap);
            members[nameOf(2 * gap)] = integer(2 * gap); // found again, not inserted again

            std::vector<std::string> expected;
            for (unsigned int i = 0; i <= count; ++i) {
                if (i == gap)
                    expected.push_back(nameOf(2 * gap));
                if (i < count)
                    expected.push_back(nameOf(2 * i + 1));
            }
            std::vector<std::string> forwards;
            for (Object::Member const& member : members)
                forwards.push_back(member.name());
            ASSERT_EQ(forwards, expected);
            std::vector<std::string> backwards;
            for (auto place = members.end(); place != members.begin();)
                backwards.insert(backwards.begin(), (--place)->name());
            ASSERT_EQ(backwards, expected);
            for (unsigned int i = 0; i < count; ++i)
                ASSERT_EQ(places[i]->name(), nameOf(2 * i + 1)) << "an iterator did not stay valid";
        }
}

TEST_P(ObjectOrder, DoesNotMatterForWhatIsAbsent)
{
    for (unsigned int const count : memberCounts) {
        SCOPED_TRACE(count);
        Object members;
        for (unsigned int const number : inOrder(count, GetParam()))
            members[nameOf(number)] = integer(number);
        Object const& constant = members;
        std::vector<std::string> absent = {"", "0", " ", "zzz", std::string(1, '\0')};
        for (unsigned int const number : {0u, count / 2, count - 1})
            if (number < count) {
                absent.push_back(nameOf(number) + '\0');
                absent.push_back(nameOf(number) + "x");
                absent.push_back(nameOf(number).substr(0, 5));
            }
        for (std::string const& name : absent) {
            EXPECT_EQ(constant.find(name), constant.end());
            std::string const refusal = "no member named \"" + name + '"';
            EXPECT_THAT([&] { constant[name]; }, ThrowsMessage<MissingMemberError>(StrEq(refusal.c_str())));
        }
        EXPECT_EQ(members.size(), count);
    }
}

TEST_P(ObjectOrder, DoesNotMatterForCopies)
{
    for (unsigned int const count : memberCounts) {
        SCOPED_TRACE(count);
        auto members = std::make_unique<Object>();
        for (unsigned int const number : inOrder(count, GetParam()))
            (*members)[nameOf(number)] = integer(number);
        Object copy(*members);
        EXPECT_EQ(copy, *members);
        members.reset();
        ASSERT_EQ(copy.size(), count);

        // A copy has room for its members only, so the next ones need memory of their own.
        for (unsigned int number = count; number < count + 20; ++number)
            copy[nameOf(number)] = integer(number);
        ASSERT_EQ(copy.size(), count + 20);
        unsigned int number = 0;
        for (Object::Member const& member : copy) {
            ASSERT_EQ(member.name(), nameOf(number));
            ASSERT_EQ(member.element().asInt64(), number);
            ASSERT_EQ(&std::as_const(copy)[nameOf(number)], &member.element());
            ++number;
        }
    }
}

TEST(Object, KeepsItsMembersInTheOrderOfTheBytesOfTheirNames)
{
    std::vector<std::string> const ordered = {"",
                                              std::string(1, '\0'),
                                              std::string(2, '\0'),
                                              "\x01",
                                              " ",
                                              "0",
                                              "10",
                                              "2",
                                              "A",
                                              "B",
                                              "Ba",
                                              "a",
                                              "a ",
                                              "aa",
                                              "ab",
                                              "a\x7f",
                                              "a\x80",
                                              "b",
                                              "z",
                                              "\x7f",
                                              "\x80",
                                              "\xc3\xa4",
                                              "\xef\xbf\xbd",
                                              "\xff"};
    std::mt19937 random(1);
    for (int round = 0; round < 20; ++round) {
        std::vector<std::string> shuffled = ordered;
        std::shuffle(shuffled.begin(), shuffled.end(), random);
        Object members;
        for (std::string const& name : shuffled)
            members[name] = text(name);
        std::vector<std::string> names;
        for (Object::Member const& member : members) {
            names.push_back(member.name());
            EXPECT_EQ(member.element().asString(), member.name());
        }
        EXPECT_EQ(names, ordered);
    }
}

TEST(Object, OrdersNamesByTheFirstByteThatDiffers)
{
    for (std::size_t size = 1; size <= 20; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            std::string const begin(at, 'n');
            std::string const lower = begin + '\x7f' + std::string(size - at - 1, '\xff');
            std::string const higher = begin + '\x80' + std::string(size - at - 1, ' ');
            Object members;
            members[higher];
            members[lower];
            members[begin];
            std::vector<std::string> names;
            for (Object::Member const& member : members)
                names.push_back(member.name());
            EXPECT_EQ(names, (std::vector<std::string>{begin, lower, higher})) << size << ' ' << at;
        }
    }
}

TEST(Object, IteratesAMemberInsertedLaterFirstWhenItsNameIsLower)
{
    Object members;
    members["b"];
    members["a"];
    EXPECT_EQ(members.begin()->name(), "a");
    EXPECT_EQ(std::next(members.begin())->name(), "b");
    EXPECT_EQ(std::next(members.begin(), 2), members.end());
}

TEST(Object, IsSteppedBackwardsToo)
{
    Object members;
    for (unsigned int number = 0; number < 100; ++number)
        members[nameOf(number)] = integer(number);
    unsigned int number = 100;
    for (auto member = members.end(); member != members.begin();)
        EXPECT_EQ((--member)->element().asInt64(), --number);
    EXPECT_EQ(number, 0u);
}

TEST(Object, IteratorsStayValidWhileMembersAreAdded)
{
    Object members;
    members["m"] = text("middle");
    auto const middle = members.find("m");
    auto const end = members.end();
    for (unsigned int number = 0; number < 1000; ++number) {
        members[nameOf(number)] = integer(number);
        members["n" + nameOf(number)] = integer(number);
        ASSERT_EQ(middle->element().asString(), "middle");
    }
    EXPECT_EQ(std::next(middle)->name(), "n" + nameOf(0));
    EXPECT_EQ(std::prev(middle)->name(), nameOf(999));
    EXPECT_EQ(end, members.end());
    EXPECT_EQ(std::prev(end)->name(), "n" + nameOf(999));
}

TEST(Object, HoldsANameOnce)
{
    for (unsigned int const count : {1u, 8u, 12u, 13u, 24u, 100u}) {
        Object members;
        for (int round = 0; round < 3; ++round)
            for (unsigned int number = 0; number < count; ++number)
                members[nameOf(number)] = integer(round);
        EXPECT_EQ(members.size(), count);
        for (Object::Member const& member : members)
            EXPECT_EQ(member.element().asInt64(), 2);
    }
}

TEST(Object, TellsNamesApartThatDifferInOneByte)
{
    for (std::size_t size = 1; size <= 40; ++size) {
        std::string const name(size, 'n');
        Object members;
        members[name] = integer(-1);
        for (std::size_t at = 0; at < size; ++at) {
            std::string other = name;
            other[at] = 'o';
            ASSERT_TRUE(members.find(other) == members.end()) << other;
            members[other] = integer(static_cast<long long>(at));
        }
        for (std::size_t at = 0; at < size; ++at) {
            std::string other = name;
            other[at] = 'o';
            ASSERT_EQ(members[other].asInt64(), static_cast<long long>(at)) << other;
        }
        EXPECT_EQ(members[name].asInt64(), -1);
        EXPECT_EQ(members.size(), size + 1);
    }
}

TEST(Object, EmptyOnesHaveNothingToWalk)
{
    Object const empty;
    EXPECT_EQ(empty.begin(), empty.end());
    EXPECT_EQ(empty.find("a"), empty.end());
    EXPECT_EQ(empty.find(""), empty.end());
    EXPECT_EQ(empty.size(), 0u);
    EXPECT_TRUE(empty.empty());
    EXPECT_THROW(empty["a"], MissingMemberError);
    EXPECT_EQ(empty, Object());
    EXPECT_EQ(Object(empty), empty);
}

TEST(Object, CanBeFilledAgainAfterClear)
{
    Object members;
    members.clear();
    EXPECT_TRUE(members.empty());
    for (unsigned int const count : {1u, 8u, 9u, 13u, 300u, 0u, 5u}) {
        for (unsigned int number = 0; number < count; ++number)
            members[nameOf(number)] = array({integer(number)});
        EXPECT_EQ(members.size(), count);
        members.clear();
        EXPECT_TRUE(members.empty());
        EXPECT_EQ(members.begin(), members.end());
        EXPECT_EQ(members.find(nameOf(0)), members.end());
        EXPECT_EQ(members, Object());
    }
}

TEST(Object, AssignmentReplacesAllMembers)
{
    for (unsigned int const before : {0u, 1u, 8u, 13u, 100u})
        for (unsigned int const after : {0u, 1u, 8u, 13u, 100u}) {
            SCOPED_TRACE(std::to_string(before) + " become " + std::to_string(after));
            Object target;
            for (unsigned int number = 0; number < before; ++number)
                target["former" + nameOf(number)] = array({integer(number)});
            Object source;
            for (unsigned int number = 0; number < after; ++number)
                source[nameOf(number)] = array({integer(number)});
            Object const expected = source;
            Object moved = target;
            target = source;
            EXPECT_EQ(target, expected);
            EXPECT_EQ(source, expected);
            moved = std::move(source);
            EXPECT_EQ(moved, expected);
            EXPECT_TRUE(source.empty());
            source["again"] = integer(1);
            EXPECT_EQ(source.size(), 1u);
            EXPECT_EQ(moved, expected);
        }
}

TEST(Object, SelfAssignmentSelfMoveAndSwapAreSafe)
{
    Object members;
    members["a"] = integer(1);
    Object const expected = members;
    Object& same = members;
    members = same;
    EXPECT_EQ(members, expected);
    members = std::move(same);
    EXPECT_EQ(members, expected);
    Object other;
    std::swap(members, other);
    EXPECT_TRUE(members.empty());
    EXPECT_EQ(other, expected);
}

TEST(Object, CanBeAssignedFromAPartOfItself)
{
    Object members;
    members["a"] = object({{"b", array({object({{"c", text("deep")}})})}, {"x", integer(1)}});
    members["z"] = integer(2);

    Object copied = members;
    copied = static_cast<Object const&>(std::as_const(copied)["a"]);
    EXPECT_EQ(Element(copied), members["a"]);
    Object moved = members;
    moved = std::move(static_cast<Object&>(moved["a"]));
    EXPECT_EQ(Element(moved), members["a"]);

    Object deep = members;
    deep = static_cast<Object&>(static_cast<Array&>(deep["a"]["b"])[0]);
    EXPECT_EQ(Element(deep), object({{"c", text("deep")}}));
    Object deepMoved = members;
    deepMoved = std::move(static_cast<Object&>(static_cast<Array&>(deepMoved["a"]["b"])[0]));
    EXPECT_EQ(Element(deepMoved), object({{"c", text("deep")}}));
}

TEST(Object, CanBeCopiedIntoAMemberOfItself)
{
    Object members;
    members["a"] = integer(1);
    Object const former = members;
    members["b"] = Element(members);
    EXPECT_EQ(members.size(), 2u);
    // The copy was made before or after "b" was inserted, which C++ leaves open no more: the right side is
    // first.
    EXPECT_EQ(members["b"], Element(former));
}

TEST(Object, ComparesNamesAndValues)
{
    Object a;
    Object b;
    EXPECT_TRUE(a == b);
    a["x"] = integer(1);
    EXPECT_TRUE(a != b);
    b["x"] = integer(1);
    EXPECT_TRUE(a == b);
    b["x"] = integer(2);
    EXPECT_FALSE(a == b);
    b["x"] = integer(1);
    b["y"] = Element();
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
}

// ---- Array

/// Numbers of items around which an array changes: the memory of the store itself is used up, the deque needs
/// a larger map, a map is no longer a small piece.
unsigned int const itemCounts[] = {0,   1,   2,   11,  12,  13,  23,  24,   25,   35,   36,
                                   37,  47,  48,  49,  71,  72,  73,  84,   95,   96,   97,
                                   108, 109, 144, 191, 192, 193, 400, 1000, 4000, 30000};

TEST(Array, GrowsOneByOne)
{
    for (unsigned int const count : itemCounts) {
        SCOPED_TRACE(count);
        Array items;
        std::vector<Element*> places;
        for (unsigned int index = 0; index < count; ++index) {
            Element& place = items[index];
            ASSERT_EQ(place.GetElementType(), Element::empty);
            place = text("item " + std::to_string(index) + " with more text than a node holds");
            places.push_back(&place);
            ASSERT_EQ(items.size(), index + 1);
        }
        EXPECT_EQ(items.size(), count);
        EXPECT_EQ(items.empty(), count == 0);
        Array const& constant = items;
        unsigned int index = 0;
        for (Element const& item : constant) {
            ASSERT_EQ(&item, places[index]) << "a reference did not stay valid";
            ASSERT_EQ(&constant[index], places[index]);
            ASSERT_EQ(&items[index], places[index]);
            ASSERT_EQ(item.asString(), "item " + std::to_string(index) + " with more text than a node holds");
            ++index;
        }
        EXPECT_EQ(index, count);
        EXPECT_EQ(static_cast<std::ptrdiff_t>(count), constant.end() - constant.begin());
        Array const copy = items;
        EXPECT_EQ(copy, items);
        items.clear();
        EXPECT_EQ(copy.size(), count);
    }
}

TEST(Array, GrowsUpToTheIndexUsed)
{
    for (unsigned int const before : {0u, 1u, 11u, 12u, 13u, 96u, 97u})
        for (unsigned int const gap : {0u, 1u, 2u, 11u, 12u, 13u, 95u, 96u, 97u, 1000u}) {
            SCOPED_TRACE(std::to_string(before) + " and " + std::to_string(gap));
            Array items;
            for (unsigned int index = 0; index < before; ++index)
                items[index] = integer(index);
            Element* const first = before == 0 ? nullptr : &items[0];
            items[before + gap] = text("last");
            ASSERT_EQ(items.size(), before + gap + 1);
            for (unsigned int index = 0; index < before; ++index)
                EXPECT_EQ(items[index].asInt64(), index);
            for (unsigned int index = before; index < before + gap; ++index)
                EXPECT_EQ(items[index].GetElementType(), Element::empty);
            EXPECT_EQ(items[before + gap].asString(), "last");
            if (first != nullptr) {
                EXPECT_EQ(&items[0], first);
            }
        }
}

TEST(Array, IndexingZeroThenOneOnAnEmptyArrayLeavesTwoItems)
{
    Array items;
    items[0];
    items[1];
    EXPECT_EQ(items.size(), 2u);
}

TEST(Array, RefusesAnIndexAtOrPastTheEndWhenConst)
{
    for (unsigned int const count : {0u, 1u, 12u, 13u, 100u}) {
        Array items;
        if (count > 0)
            items[count - 1];
        Array const& constant = items;
        for (unsigned int const index : {count, count + 1, std::numeric_limits<unsigned int>::max()})
            EXPECT_THROW(constant[index], std::out_of_range) << count << " items, index " << index;
        EXPECT_EQ(items.size(), count);
    }
}

TEST(Array, EmptyOnesHaveNothingToWalk)
{
    Array const empty;
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(empty.size(), 0u);
    EXPECT_TRUE(empty.begin() == empty.end());
    EXPECT_EQ(empty, Array());
    EXPECT_EQ(Array(empty), empty);
}

TEST(Array, CanBeFilledAgainAfterClear)
{
    Array items;
    items.clear();
    EXPECT_TRUE(items.empty());
    for (unsigned int const count : {1u, 12u, 13u, 500u, 0u, 5u}) {
        for (unsigned int index = 0; index < count; ++index)
            items[index] = object({{"n", integer(index)}});
        EXPECT_EQ(items.size(), count);
        items.clear();
        EXPECT_TRUE(items.empty());
        EXPECT_TRUE(items.begin() == items.end());
        EXPECT_EQ(items, Array());
    }
}

TEST(Array, AssignmentReplacesAllItems)
{
    for (unsigned int const before : {0u, 1u, 12u, 13u, 200u})
        for (unsigned int const after : {0u, 1u, 12u, 13u, 200u}) {
            SCOPED_TRACE(std::to_string(before) + " become " + std::to_string(after));
            Array target;
            for (unsigned int index = 0; index < before; ++index)
                target[index] = text("former");
            Array source;
            for (unsigned int index = 0; index < after; ++index)
                source[index] = object({{"n", integer(index)}});
            Array const expected = source;
            Array moved = target;
            target = source;
            EXPECT_EQ(target, expected);
            EXPECT_EQ(source, expected);
            moved = std::move(source);
            EXPECT_EQ(moved, expected);
            EXPECT_TRUE(source.empty());
            source[0] = integer(1);
            EXPECT_EQ(source.size(), 1u);
            EXPECT_EQ(moved, expected);
        }
}

TEST(Array, SelfAssignmentSelfMoveAndSwapAreSafe)
{
    Array items;
    items[0] = object({{"a", integer(1)}});
    Array const expected = items;
    Array& same = items;
    items = same;
    EXPECT_EQ(items, expected);
    items = std::move(same);
    EXPECT_EQ(items, expected);
    Array other;
    std::swap(items, other);
    EXPECT_TRUE(items.empty());
    EXPECT_EQ(other, expected);
}

TEST(Array, CanBeAssignedFromAPartOfItself)
{
    Array items;
    items[0] = array({object({{"c", array({text("deep")})}}), integer(1)});
    items[1] = integer(2);

    Array copied = items;
    copied = static_cast<Array const&>(std::as_const(copied)[0]);
    EXPECT_EQ(Element(copied), items[0]);
    Array moved = items;
    moved = std::move(static_cast<Array&>(moved[0]));
    EXPECT_EQ(Element(moved), items[0]);

    Array deep = items;
    deep = static_cast<Array&>(static_cast<Array&>(deep[0])[0]["c"]);
    EXPECT_EQ(Element(deep), array({text("deep")}));
    Array deepMoved = items;
    deepMoved = std::move(static_cast<Array&>(static_cast<Array&>(deepMoved[0])[0]["c"]));
    EXPECT_EQ(Element(deepMoved), array({text("deep")}));
}

TEST(Array, ComparesItemsInOrder)
{
    Array a;
    Array b;
    EXPECT_TRUE(a == b);
    a[0] = integer(1);
    EXPECT_TRUE(a != b);
    b[0] = integer(1);
    EXPECT_TRUE(a == b);
    b[1] = integer(2);
    EXPECT_FALSE(a == b);
    a[1] = integer(3);
    EXPECT_TRUE(a != b);
}

// ---- many random edits against a model

/// What a tree should be: the simplest structure that can hold one.
struct Model {
    unsigned int kind = Element::empty;
    long long number = 0;
    std::string characters;
    std::map<std::string, std::unique_ptr<Model>> members;
    std::vector<std::unique_ptr<Model>> items;
};

std::unique_ptr<Model> clone(Model const& model)
{
    auto copy = std::make_unique<Model>();
    copy->kind = model.kind;
    copy->number = model.number;
    copy->characters = model.characters;
    for (auto const& [name, value] : model.members)
        copy->members[name] = clone(*value);
    for (auto const& item : model.items)
        copy->items.push_back(clone(*item));
    return copy;
}

void expectEqual(Element const& node, Model const& model)
{
    ASSERT_EQ(node.GetElementType(), model.kind);
    switch (model.kind) {
    case Element::integer:
        ASSERT_EQ(node.asInt64(), model.number);
        break;
    case Element::string:
        ASSERT_EQ(node.asString(), model.characters);
        break;
    case Element::object: {
        Object const& members = node;
        ASSERT_EQ(members.size(), model.members.size());
        auto expected = model.members.begin();
        for (Object::Member const& member : members) {
            ASSERT_EQ(member.name(), expected->first);
            ASSERT_NO_FATAL_FAILURE(expectEqual(member.element(), *expected->second));
            ASSERT_EQ(&members[expected->first], &member.element());
            ++expected;
        }
        break;
    }
    case Element::array: {
        Array const& items = node;
        ASSERT_EQ(items.size(), model.items.size());
        for (unsigned int index = 0; index < items.size(); ++index)
            ASSERT_NO_FATAL_FAILURE(expectEqual(items[index], *model.items[index]));
        break;
    }
    default:
        break;
    }
}

class Editor {
public:
    explicit Editor(unsigned int seed) : random_(seed) {}

    void edit(Element& tree, Model& model)
    {
        std::vector<std::pair<Element*, Model*>> nodes;
        collect(tree, model, nodes);
        auto [node, expected] = nodes[below(nodes.size())];
        switch (below(11)) {
        case 0:
            *node = integer(static_cast<long long>(below(1000)));
            *expected = Model();
            expected->kind = Element::integer;
            expected->number = node->asInt64();
            break;
        case 1:
            *node = text(std::string(below(60), 'c'));
            *expected = Model();
            expected->kind = Element::string;
            expected->characters = node->asString();
            break;
        case 2: // a copy of a part, or of the same node
        case 3: {
            auto const [part, model2] = inside(*node, *expected);
            *node = *part;
            *expected = std::move(*clone(*model2));
            break;
        }
        case 4: { // a part moved up
            auto const [part, model2] = inside(*node, *expected);
            *node = std::move(*part);
            auto kept = std::make_unique<Model>(std::move(*model2));
            *expected = std::move(*kept);
            break;
        }
        case 5: { // any node copied to any place, also below itself
            if (nodes.size() > 400)
                break;
            auto const [source, model2] = nodes[below(nodes.size())];
            auto copy = clone(*model2);
            *node = *source;
            *expected = std::move(*copy);
            break;
        }
        case 6:
            if (node->GetElementType() == Element::object) {
                static_cast<Object&>(*node).clear();
                expected->members.clear();
            } else if (node->GetElementType() == Element::array) {
                static_cast<Array&>(*node).clear();
                expected->items.clear();
            }
            break;
        case 7:
        case 8:
            if (expected->kind == Element::empty || expected->kind == Element::object) {
                expected->kind = Element::object;
                for (auto count = below(20); count != 0; --count) {
                    std::string const name = nameOf(static_cast<unsigned int>(below(30)));
                    (*node)[name] = Element();
                    expected->members[name] = std::make_unique<Model>();
                }
                [[maybe_unused]] Object& members = *node; // an object even when nothing was inserted
            }
            break;
        default:
            if (expected->kind == Element::empty || expected->kind == Element::array) {
                expected->kind = Element::array;
                Array& items = *node;
                for (auto count = below(20); count != 0; --count) {
                    items[items.size()];
                    expected->items.push_back(std::make_unique<Model>());
                }
            }
            break;
        }
    }

private:
    std::size_t below(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

    std::pair<Element*, Model*> inside(Element& node, Model& model)
    {
        std::vector<std::pair<Element*, Model*>> parts;
        collect(node, model, parts);
        return parts[below(parts.size())];
    }

    static void collect(Element& node, Model& model, std::vector<std::pair<Element*, Model*>>& nodes)
    {
        nodes.emplace_back(&node, &model);
        for (auto& [name, value] : model.members)
            collect(node[name], *value, nodes);
        for (unsigned int index = 0; index < model.items.size(); ++index)
            collect(static_cast<Array&>(node)[index], *model.items[index], nodes);
    }

    std::mt19937 random_;
};

TEST(Element, BehavesAsAModelUnderRandomEdits)
{
    for (unsigned int seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        Editor editor(seed);
        Element tree;
        Model model;
        for (int step = 0; step < 150; ++step) {
            ASSERT_NO_FATAL_FAILURE(editor.edit(tree, model));
            ASSERT_NO_FATAL_FAILURE(expectEqual(tree, model)) << "step " << step;
        }
        Element const copy = tree;
        ASSERT_NO_FATAL_FAILURE(expectEqual(copy, model));
        EXPECT_EQ(copy, tree);
    }
}

} // namespace
} // namespace Zelk::MetaData
