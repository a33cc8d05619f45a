#include "framework/element.h"
#include "nodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::MetaData {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;
using Tests::array;
using Tests::boolean;
using Tests::integer;
using Tests::object;
using Tests::real;
using Tests::text;

struct Sample {
    std::string name;
    std::string kindName; // as error texts call it
    unsigned int kind;
    Element node;
};

std::string const longText(1000, 'x');

/// A node of each kind, containers also filled and nested.
std::vector<Sample> samples()
{
    return {
        {"floating point", "floating-point number", 0, real(2.5)},
        {"integer", "integer", 1, integer(-7)},
        {"boolean true", "boolean", 2, boolean(true)},
        {"boolean false", "boolean", 2, boolean(false)},
        {"short string", "string", 3, text("ui")},
        {"long string", "string", 3, text(longText)},
        {"empty string", "string", 3, text("")},
        {"empty object", "object", 4, Element(Object())},
        {"object", "object", 4, object({{"a", integer(1)}, {"b", object({{"c", text(longText)}})}})},
        {"empty array", "array", 5, Element(Array())},
        {"array", "array", 5, array({integer(1), array({text(longText), Element()})})},
        {"empty node", "empty", 6, Element()},
    };
}

// ---- kinds and accessors

TEST(Element, TellsItsKindByTheNumbersOfThePlatform)
{
    for (Sample const& sample : samples())
        EXPECT_EQ(sample.node.GetElementType(), sample.kind) << sample.name;
}

TEST(Element, FitsIntoFortyBytes)
{
    EXPECT_EQ(sizeof(Element), 40u);
}

TEST(Element, IsEmptyWhenDefaultConstructed)
{
    Element const node;
    EXPECT_EQ(node.GetElementType(), Element::empty);
}

TEST(Element, GivesBackTheValueThatItWasBuiltFrom)
{
    EXPECT_TRUE(Element(Trivial_T<bool>(true)).asBoolean());
    EXPECT_FALSE(Element(Trivial_T<bool>(false)).asBoolean());
    EXPECT_EQ(Element(Trivial_T<double>(-0.125)).asDouble(), -0.125);
    EXPECT_EQ(Element(Trivial_T<std::string>("clientname")).asString(), "clientname");
    EXPECT_EQ(Element(Trivial_T<std::string>(std::string("a\0b", 3))).asString(), std::string("a\0b", 3));
    for (long long value : {0LL, 1LL, -1LL, 3000000000LL, std::numeric_limits<long long>::min(),
                            std::numeric_limits<long long>::max()})
        EXPECT_EQ(Element(Trivial_T<long long>(value)).asInt64(), value);
}

TEST(Element, KeepsEveryBitOfADouble)
{
    EXPECT_TRUE(std::signbit(real(-0.0).asDouble()));
    EXPECT_TRUE(std::isnan(real(std::nan("")).asDouble()));
    EXPECT_EQ(real(std::numeric_limits<double>::infinity()).asDouble(),
              std::numeric_limits<double>::infinity());
    EXPECT_EQ(real(std::numeric_limits<double>::denorm_min()).asDouble(),
              std::numeric_limits<double>::denorm_min());
}

TEST(Element, CopiesOrMovesTheStringItIsBuiltFrom)
{
    Trivial_T<std::string> value(longText);
    EXPECT_EQ(Element(value).asString(), longText);
    EXPECT_EQ(value.value(), longText);
    EXPECT_EQ(Element(std::move(value)).asString(), longText);
}

TEST(TrivialT, HandsItsValueOut)
{
    EXPECT_EQ(Trivial_T<long long>(-4).value(), -4);
    EXPECT_EQ(Trivial_T<double>(0.5).value(), 0.5);
    EXPECT_TRUE(Trivial_T<bool>(true).value());
    Trivial_T<std::string> name(longText);
    EXPECT_EQ(name.value(), longText);
    std::string const taken = std::move(name).value();
    EXPECT_EQ(taken, longText);
}

TEST(Element, IsBuiltFromAnObjectOrAnArrayByCopyOrByMove)
{
    Object members;
    members["a"] = integer(1);
    Element const copiedObject(members);
    EXPECT_EQ(members.size(), 1u);
    EXPECT_EQ(copiedObject["a"].asInt64(), 1);
    Element const movedObject(std::move(members));
    EXPECT_EQ(movedObject["a"].asInt64(), 1);

    Array items;
    items[0] = text("x");
    Element const copiedArray(items);
    EXPECT_EQ(items.size(), 1u);
    Element const movedArray(std::move(items));
    EXPECT_EQ(static_cast<Array const&>(copiedArray)[0].asString(), "x");
    EXPECT_EQ(static_cast<Array const&>(movedArray)[0].asString(), "x");
}

TEST(Element, AccessorsRefuseEveryOtherKind)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        Element const& node = sample.node;
        auto const refusal = [&sample](std::string const& expected) {
            return "expected " + expected + ", found " + sample.kindName;
        };
        if (sample.kind != Element::boolean) {
            EXPECT_THAT([&] { node.asBoolean(); }, ThrowsMessage<TypeError>(StrEq(refusal("boolean"))));
        }
        if (sample.kind != Element::real) {
            EXPECT_THAT([&] { node.asDouble(); },
                        ThrowsMessage<TypeError>(StrEq(refusal("floating-point number"))));
        }
        if (sample.kind != Element::integer) {
            EXPECT_THAT([&] { node.asInt64(); }, ThrowsMessage<TypeError>(StrEq(refusal("integer"))));
        }
        if (sample.kind != Element::string) {
            EXPECT_THAT([&] { node.asString(); }, ThrowsMessage<TypeError>(StrEq(refusal("string"))));
        }
    }
}

TEST(Element, ErrorsAreErrorsOfTheElementModelAndRuntimeErrors)
{
    Element const node;
    EXPECT_THROW(node.asInt64(), Error);
    EXPECT_THROW(node.asInt64(), std::runtime_error);
    Element const members = object({{"a", integer(1)}});
    EXPECT_THROW(members["b"], Error);
    EXPECT_THROW(members["b"], std::runtime_error);
}

// ---- members and conversions

TEST(Element, IndexingAnEmptyNodeMakesItAnObjectWithOneEmptyMember)
{
    Element node;
    Element const& member = node["id"];
    EXPECT_EQ(member.GetElementType(), Element::empty);
    ASSERT_EQ(node.GetElementType(), Element::object);
    Object const& members = node;
    EXPECT_EQ(members.size(), 1u);
    EXPECT_EQ(members.begin()->name(), "id");
    EXPECT_EQ(&members.begin()->element(), &member);
}

TEST(Element, IndexingAnEmptyObjectInsertsTheMember)
{
    Element node{Object()};
    node["id"] = integer(5);
    EXPECT_EQ(node, object({{"id", integer(5)}}));
}

TEST(Element, ConstIndexingFindsMembersAndNamesTheMissingOne)
{
    Element const node = object({{"a", integer(1)}, {"b", Element()}});
    EXPECT_EQ(node["a"].asInt64(), 1);
    EXPECT_EQ(node["b"].GetElementType(), Element::empty);
    EXPECT_THAT([&] { node["x"]; }, ThrowsMessage<MissingMemberError>(StrEq("no member named \"x\"")));
    EXPECT_THAT([&] { node[""]; }, ThrowsMessage<MissingMemberError>(StrEq("no member named \"\"")));
    Element const without{Object()};
    EXPECT_THAT([&] { without["id"]; }, ThrowsMessage<MissingMemberError>(StrEq("no member named \"id\"")));
}

TEST(Element, IndexingRefusesEveryKindThatHasNoMembers)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        std::string const refusal = "expected object, found " + sample.kindName;
        Element const& constant = sample.node;
        Element node = sample.node;
        if (sample.kind != Element::object) {
            EXPECT_THAT([&] { constant["a"]; }, ThrowsMessage<TypeError>(StrEq(refusal)));
        }
        if (sample.kind != Element::object && sample.kind != Element::empty) {
            EXPECT_THAT([&] { node["a"]; }, ThrowsMessage<TypeError>(StrEq(refusal)));
            EXPECT_EQ(node, sample.node);
        }
    }
}

TEST(Element, ConstConversionsRefuseEveryOtherKindTheEmptyNodeIncluded)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        Element const& node = sample.node;
        if (sample.kind == Element::object) {
            Object const& members = node;
            EXPECT_EQ(Element(members), node);
        } else {
            EXPECT_THAT([&] { [[maybe_unused]] Object const& container = node; },
                        ThrowsMessage<TypeError>(StrEq("expected object, found " + sample.kindName)));
        }
        if (sample.kind == Element::array) {
            Array const& items = node;
            EXPECT_EQ(Element(items), node);
        } else {
            EXPECT_THAT([&] { [[maybe_unused]] Array const& container = node; },
                        ThrowsMessage<TypeError>(StrEq("expected array, found " + sample.kindName)));
        }
    }
}

TEST(Element, ConversionsToWritableContainersFillOnlyEmptyNodes)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        Element asObject = sample.node;
        if (sample.kind == Element::empty) {
            EXPECT_TRUE(static_cast<Object&>(asObject).empty());
            EXPECT_EQ(asObject, Element(Object()));
        } else if (sample.kind != Element::object) {
            EXPECT_THAT([&] { [[maybe_unused]] Object& container = asObject; },
                        ThrowsMessage<TypeError>(StrEq("expected object, found " + sample.kindName)));
            EXPECT_EQ(asObject, sample.node);
        }
        Element asArray = sample.node;
        if (sample.kind == Element::empty) {
            EXPECT_TRUE(static_cast<Array&>(asArray).empty());
            EXPECT_EQ(asArray, Element(Array()));
        } else if (sample.kind != Element::array) {
            EXPECT_THAT([&] { [[maybe_unused]] Array& container = asArray; },
                        ThrowsMessage<TypeError>(StrEq("expected array, found " + sample.kindName)));
            EXPECT_EQ(asArray, sample.node);
        }
    }
}

TEST(Element, WritableContainersAreThoseOfTheNode)
{
    Element members = object({{"a", integer(1)}});
    static_cast<Object&>(members)["b"] = integer(2);
    EXPECT_EQ(members["b"].asInt64(), 2);
    static_cast<Object&>(members).clear();
    EXPECT_EQ(members, Element(Object()));

    Element items = array({integer(1)});
    static_cast<Array&>(items)[1] = integer(2);
    EXPECT_EQ(items, array({integer(1), integer(2)}));
    static_cast<Array&>(items).clear();
    EXPECT_EQ(items, Element(Array()));
}

// ---- copying and moving

static_assert(std::is_nothrow_default_constructible_v<Element> &&
              std::is_nothrow_default_constructible_v<Object> &&
              std::is_nothrow_default_constructible_v<Array>);
static_assert(std::is_nothrow_move_constructible_v<Element> && std::is_nothrow_move_assignable_v<Element>);
static_assert(std::is_nothrow_move_constructible_v<Object> && std::is_nothrow_move_assignable_v<Object>);
static_assert(std::is_nothrow_move_constructible_v<Array> && std::is_nothrow_move_assignable_v<Array>);
static_assert(!std::is_convertible_v<int, Element> && !std::is_constructible_v<Element, int> &&
              !std::is_constructible_v<Element, char const*>);

TEST(Element, CopyOutlivesItsSource)
{
    for (Sample const& sample : samples()) {
        auto source = std::make_unique<Element>(sample.node);
        Element const constructed(*source);
        Element assigned;
        assigned = *source;
        source.reset();
        EXPECT_EQ(constructed, sample.node) << sample.name;
        EXPECT_EQ(assigned, sample.node) << sample.name;
    }
}

TEST(Element, CopiesAreIndependent)
{
    Element source = object({{"list", array({integer(1), object({{"x", text("y")}})})}});
    Element const original = source;
    Element copy = source;
    static_cast<Array&>(copy["list"])[1]["x"] = text("changed");
    EXPECT_EQ(source, original);
    static_cast<Array&>(source["list"])[0] = integer(2);
    EXPECT_EQ(copy, object({{"list", array({integer(1), object({{"x", text("changed")}})})}}));
}

TEST(Element, MoveLeavesAnEmptyNode)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        Element source = sample.node;
        Element target(std::move(source));
        EXPECT_EQ(target, sample.node);
        EXPECT_EQ(source.GetElementType(), Element::empty);
        source["reused"] = integer(1);
        EXPECT_EQ(source, object({{"reused", integer(1)}}));
    }
}

TEST(Element, AssignmentReplacesWhateverTheTargetHeld)
{
    for (Sample const& former : samples()) {
        for (Sample const& latter : samples()) {
            SCOPED_TRACE(former.name + " becomes " + latter.name);
            Element copied = former.node;
            copied = latter.node;
            EXPECT_EQ(copied, latter.node);
            EXPECT_EQ(copied.GetElementType(), latter.kind);

            Element source = latter.node;
            Element moved = former.node;
            moved = std::move(source);
            EXPECT_EQ(moved, latter.node);
            EXPECT_EQ(source.GetElementType(), Element::empty);
        }
    }
}

TEST(Element, EmptyArrayReplacesAnObject)
{
    Element node = object({{"a", integer(1)}});
    node = Element(Array());
    EXPECT_EQ(node.GetElementType(), Element::array);
    EXPECT_EQ(static_cast<Array const&>(node).size(), 0u);
}

TEST(Element, SelfAssignmentAndSelfMoveChangeNothing)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        Element node = sample.node;
        Element& same = node;
        node = same;
        EXPECT_EQ(node, sample.node);
        node = std::move(same);
        EXPECT_EQ(node, sample.node);
        std::swap(node, same);
        EXPECT_EQ(node, sample.node);
    }
}

TEST(Element, SwapExchangesEveryPairOfKinds)
{
    for (Sample const& first : samples())
        for (Sample const& second : samples()) {
            Element a = first.node;
            Element b = second.node;
            std::swap(a, b);
            EXPECT_EQ(a, second.node) << first.name << " and " << second.name;
            EXPECT_EQ(b, first.node) << first.name << " and " << second.name;
        }
}

TEST(Element, CanBeAssignedFromAMemberOfItself)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        Element const tree = object({{"a", sample.node}, {"b", integer(2)}, {"c", text(longText)}});
        Element copied = tree;
        copied = copied["a"];
        EXPECT_EQ(copied, sample.node);
        Element moved = tree;
        moved = std::move(moved["a"]);
        EXPECT_EQ(moved, sample.node);
        Element throughConst = tree;
        throughConst = static_cast<Element const&>(throughConst)["a"];
        EXPECT_EQ(throughConst, sample.node);
    }
}

TEST(Element, CanBeAssignedFromAnItemOfItself)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        Element const tree = array({integer(2), sample.node, text(longText)});
        Element copied = tree;
        copied = static_cast<Array&>(copied)[1];
        EXPECT_EQ(copied, sample.node);
        Element moved = tree;
        moved = std::move(static_cast<Array&>(moved)[1]);
        EXPECT_EQ(moved, sample.node);
    }
}

TEST(Element, CanBeAssignedFromADeepPartOfItself)
{
    Element const part = object({{"x", array({integer(1), text(longText)})}});
    Element const tree = object({{"a", array({object({{"b", object({{"c", part}})}})})}, {"z", integer(1)}});
    Element copied = tree;
    copied = static_cast<Array&>(copied["a"])[0]["b"]["c"];
    EXPECT_EQ(copied, part);
    Element moved = tree;
    moved = std::move(static_cast<Array&>(moved["a"])[0]["b"]["c"]);
    EXPECT_EQ(moved, part);
}

TEST(Element, CanBeAssignedFromAContainerInsideItself)
{
    Element const tree = object({{"o", object({{"x", integer(1)}})}, {"l", array({integer(2)})}});

    Element fromObject = tree;
    fromObject = static_cast<Object const&>(fromObject["o"]);
    EXPECT_EQ(fromObject, object({{"x", integer(1)}}));
    Element fromMovedObject = tree;
    fromMovedObject = std::move(static_cast<Object&>(fromMovedObject["o"]));
    EXPECT_EQ(fromMovedObject, object({{"x", integer(1)}}));

    Element fromArray = tree;
    fromArray = static_cast<Array const&>(fromArray["l"]);
    EXPECT_EQ(fromArray, array({integer(2)}));
    Element fromMovedArray = tree;
    fromMovedArray = std::move(static_cast<Array&>(fromMovedArray["l"]));
    EXPECT_EQ(fromMovedArray, array({integer(2)}));
}

TEST(Element, CanBeCopiedIntoAPartOfItself)
{
    Element const tree = object({{"a", integer(1)}, {"b", text(longText)}});
    Element existing = tree;
    existing["a"] = existing;
    EXPECT_EQ(existing, object({{"a", tree}, {"b", text(longText)}}));

    Element const list = array({integer(1), integer(2)});
    Element item = list;
    static_cast<Array&>(item)[1] = item;
    EXPECT_EQ(item, array({integer(1), list}));
}

TEST(Element, PartsCanBeMovedAroundInsideOneTree)
{
    Element tree = object({{"a", object({{"x", text(longText)}})}, {"b", array({integer(1)})}});
    std::swap(tree["a"], tree["b"]);
    EXPECT_EQ(tree, object({{"a", array({integer(1)})}, {"b", object({{"x", text(longText)}})}}));
    tree["a"] = std::move(tree["b"]["x"]);
    EXPECT_EQ(tree, object({{"a", text(longText)}, {"b", object({{"x", Element()}})}}));
}

TEST(Element, MovesOutOfATreeLeaveTheRestInPlace)
{
    Element tree = object({{"keep", text("k")}, {"take", array({text(longText), integer(3)})}});
    Element const taken = std::move(tree["take"]);
    EXPECT_EQ(tree, object({{"keep", text("k")}, {"take", Element()}}));
    tree = Element();
    EXPECT_EQ(taken, array({text(longText), integer(3)}));
}

// ---- equality

TEST(Element, EqualsOnlyANodeOfTheSameKindAndContent)
{
    std::vector<Sample> const all = samples();
    for (std::size_t i = 0; i < all.size(); ++i)
        for (std::size_t j = 0; j < all.size(); ++j) {
            Element const other = all[j].node;
            EXPECT_EQ(all[i].node == other, i == j) << all[i].name << " and " << all[j].name;
            EXPECT_EQ(all[i].node != other, i != j) << all[i].name << " and " << all[j].name;
        }
}

struct Difference {
    char const* name;
    Element first;
    Element second;
};

TEST(Element, DiffersInTheSmallestPart)
{
    Difference const differences[] = {
        {"numbers of two kinds", integer(1), real(1.0)},
        {"boolean and integer", integer(1), boolean(true)},
        {"null and empty object", Element(), Element(Object())},
        {"null and empty array", Element(), Element(Array())},
        {"empty containers of two kinds", Element(Object()), Element(Array())},
        {"null and empty string", Element(), text("")},
        {"strings that differ behind a NUL", text(std::string("a\0b", 3)), text(std::string("a\0c", 3))},
        {"strings of two lengths", text("a"), text(std::string("a\0", 2))},
        {"neighbouring integers", integer(9007199254740992), integer(9007199254740993)},
        {"neighbouring doubles", real(1.0), real(std::nextafter(1.0, 2.0))},
        {"a number that is not equal to itself", real(std::nan("")), real(std::nan(""))},
        {"names", object({{"a", integer(1)}}), object({{"b", integer(1)}})},
        {"one more member", object({{"a", integer(1)}}), object({{"a", integer(1)}, {"b", Element()}})},
        {"order of items", array({integer(1), integer(2)}), array({integer(2), integer(1)})},
        {"one more item", array({integer(1)}), array({integer(1), Element()})},
        {"deep inside", object({{"a", array({object({{"b", integer(1)}})})}}),
         object({{"a", array({object({{"b", integer(2)}})})}})},
        {"deep inside, names", object({{"a", array({object({{"b", integer(1)}})})}}),
         object({{"a", array({object({{"c", integer(1)}})})}})},
        {"behind an equal container", array({array({integer(1)}), integer(2)}),
         array({array({integer(1)}), integer(3)})},
        {"object and array inside", array({Element(Object())}), array({Element(Array())})},
    };
    for (Difference const& difference : differences) {
        EXPECT_FALSE(difference.first == difference.second) << difference.name;
        EXPECT_TRUE(difference.first != difference.second) << difference.name;
        EXPECT_FALSE(difference.second == difference.first) << difference.name;
    }
}

TEST(Element, EqualsAsDoublesDo)
{
    EXPECT_EQ(real(0.0), real(-0.0));
    Element const notANumber = array({real(std::nan(""))});
    EXPECT_NE(notANumber, notANumber);
}

TEST(Element, EqualityDoesNotSeeTheWayATreeWasBuilt)
{
    Element ascending;
    Element descending;
    for (int i = 0; i < 40; ++i) {
        ascending["m" + std::to_string(i)] = integer(i);
        descending["m" + std::to_string(39 - i)] = integer(39 - i);
    }
    EXPECT_EQ(ascending, descending);

    Element cleared = object({{"a", integer(1)}});
    static_cast<Object&>(cleared).clear();
    EXPECT_EQ(cleared, Element(Object()));
    Element clearedArray = array({integer(1)});
    static_cast<Array&>(clearedArray).clear();
    EXPECT_EQ(clearedArray, Element(Array()));
}

// ---- values in and out

TEST(GetAs, ReadsTheValueOfANodeOfItsKind)
{
    bool flag = false;
    GetAs<bool>(boolean(true), flag);
    EXPECT_TRUE(flag);
    double number = 0;
    GetAs<double>(real(0.5), number);
    EXPECT_EQ(number, 0.5);
    long long count = 0;
    GetAs<long long>(integer(-1), count);
    EXPECT_EQ(count, -1);
    std::string name;
    GetAs<std::string>(text("ui"), name);
    EXPECT_EQ(name, "ui");

    EXPECT_TRUE(GetAs<bool>(boolean(true)));
    EXPECT_EQ(GetAs<double>(real(0.5)), 0.5);
    EXPECT_EQ(GetAs<long long>(integer(-1)), -1);
    EXPECT_EQ(GetAs<std::string>(text(longText)), longText);
}

template <typename T>
void expectRefusedUnchanged(Sample const& sample, T const& former)
{
    T value = former;
    EXPECT_THROW(GetAs<T>(sample.node, value), TypeError) << sample.name;
    EXPECT_EQ(value, former) << sample.name;
    EXPECT_THROW(GetAs<T>(sample.node), TypeError) << sample.name;
}

TEST(GetAs, LeavesTheValueAloneWhenTheNodeIsOfAnotherKind)
{
    for (Sample const& sample : samples()) {
        if (sample.kind != Element::boolean)
            expectRefusedUnchanged<bool>(sample, true);
        if (sample.kind != Element::real)
            expectRefusedUnchanged<double>(sample, 8.5);
        if (sample.kind != Element::integer)
            expectRefusedUnchanged<long long>(sample, 85);
        if (sample.kind != Element::string)
            expectRefusedUnchanged<std::string>(sample, "former");
    }
}

TEST(SetAs, MakesEveryNodeOneOfTheKindOfTheValue)
{
    for (Sample const& sample : samples()) {
        SCOPED_TRACE(sample.name);
        Element node = sample.node;
        SetAs<bool>(false, node);
        EXPECT_EQ(node, boolean(false));
        node = sample.node;
        SetAs<double>(1.5, node);
        EXPECT_EQ(node, real(1.5));
        node = sample.node;
        SetAs<long long>(-3, node);
        EXPECT_EQ(node, integer(-3));
        node = sample.node;
        SetAs<std::string>("short", node);
        EXPECT_EQ(node, text("short"));
        node = sample.node;
        SetAs<std::string>(longText, node);
        EXPECT_EQ(node, text(longText));
    }
}

TEST(SetAs, TakesAStringOutOfTheNodeItself)
{
    Element own = text(longText);
    SetAs<std::string>(own.asString(), own);
    EXPECT_EQ(own, text(longText));
    Element part = object({{"a", text(longText)}});
    SetAs<std::string>(part["a"].asString(), part);
    EXPECT_EQ(part, text(longText));
}

} // namespace
} // namespace Zelk::MetaData
