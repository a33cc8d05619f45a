#include "framework/json_array.h"
#include "framework/json_text.h"
#include "nodes.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::Json {
namespace {

using MetaData::Element;
using MetaData::MissingMemberError;
using MetaData::TypeError;
using Tests::array;
using Tests::boolean;
using Tests::integer;
using Tests::object;
using Tests::real;
using Tests::text;

class Record : public Serializable {
public:
    Record() = default;
    Record(std::string recordName, int recordId) : name(std::move(recordName)), id(recordId) {}

    void copyToMetaData(Element& target) const override
    {
        target["name"] = text(name);
        target["id"] = integer(id);
    }
    void copyFromMetaData(Element const& source) override
    {
        name = source["name"].asString();
        if (static_cast<MetaData::Object const&>(source).find("id") !=
            static_cast<MetaData::Object const&>(source).end())
            id = static_cast<int>(source["id"].asInt64());
    }

    friend bool operator==(Record const& a, Record const& b) { return a.name == b.name && a.id == b.id; }

    std::string name = "default";
    int id = 42;
};

Element recordTree(std::string const& name, int id)
{
    return object({{"name", text(name)}, {"id", integer(id)}});
}

static_assert(std::is_nothrow_move_constructible_v<Array<int>> &&
              std::is_nothrow_move_assignable_v<Array<int>>);
static_assert(std::is_base_of_v<Serializable, Array<Record>>);

// ---- as a container

TEST(JsonArray, OffersWhatAVectorOffers)
{
    Array<Record> list;
    EXPECT_TRUE(list.empty());
    list.reserve(10);
    EXPECT_GE(list.items().capacity(), 10u);
    Record const first("a", 1);
    list.push_back(first);
    list.push_back(Record("b", 2));
    Record& third = list.emplace_back("c", 3);
    EXPECT_EQ(&third, &list.back());
    ASSERT_EQ(list.size(), 3u);
    EXPECT_FALSE(list.empty());
    EXPECT_EQ(list.front(), first);
    EXPECT_EQ(list.back(), Record("c", 3));
    EXPECT_EQ(list[1], Record("b", 2));
    EXPECT_EQ(list.at(1), Record("b", 2));
    EXPECT_THROW(list.at(3), std::out_of_range);
    list[1].id = 20;
    list.at(0).id = 10;
    list.front().name = "A";
    list.back().name = "C";

    Array<Record> const& constant = list;
    EXPECT_EQ(constant[1].id, 20);
    EXPECT_EQ(constant.at(0).id, 10);
    EXPECT_THROW(constant.at(3), std::out_of_range);
    EXPECT_EQ(constant.front().name, "A");
    EXPECT_EQ(constant.back().name, "C");
    std::string names;
    for (Record const& record : constant)
        names += record.name;
    EXPECT_EQ(names, "AbC");
    for (Record& record : list)
        record.id = 0;
    EXPECT_EQ(constant.items()[2].id, 0);
    EXPECT_EQ(constant.end() - constant.begin(), 3);
    list.items().pop_back();
    EXPECT_EQ(list.size(), 2u);
    list.clear();
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.begin(), list.end());
}

TEST(JsonArray, IsBuiltCopiedAndMoved)
{
    Array<int> const list{1, 2, 3};
    EXPECT_EQ(list.items(), (std::vector<int>{1, 2, 3}));
    Array<int> copy = list;
    EXPECT_TRUE(copy == list);
    copy.push_back(4);
    EXPECT_TRUE(copy != list);
    Array<int> moved = std::move(copy);
    EXPECT_EQ(moved.size(), 4u);
    Array<int> assigned;
    assigned = moved;
    EXPECT_EQ(assigned.size(), 4u);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.size(), 4u);
    EXPECT_EQ(Array<int>(), Array<int>{});
    EXPECT_TRUE((Array<Record>{Record("a", 1)} == Array<Record>{Record("a", 1)}));
}

// ---- writing

TEST(JsonArray, WritesIntegersAsIntegerNodes)
{
    Array<int> const list{-1, 0, 7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
    Element target;
    list.copyToMetaData(target);
    EXPECT_EQ(target,
              array({integer(-1), integer(0), integer(7), integer(-2147483648LL), integer(2147483647)}));
    EXPECT_EQ(list.toJsonString(), "[-1,0,7,-2147483648,2147483647]");
}

TEST(JsonArray, MakesAnyTargetAnArray)
{
    for (Element const& former : {Element(), integer(1), text("x"), object({{"a", integer(1)}}),
                                  array({integer(1), integer(2), integer(3)})}) {
        Element target = former;
        Array<int>().copyToMetaData(target);
        EXPECT_EQ(target, array({}));
        target = former;
        Array<int>{5}.copyToMetaData(target);
        EXPECT_EQ(target, array({integer(5)}));
        target = former;
        Array<int>{6}.moveToMetaData(target);
        EXPECT_EQ(target, array({integer(6)}));
    }
    EXPECT_EQ(Array<int>().toJsonString(), "[]");
}

TEST(JsonArray, WritesEachRecordIntoAnEmptyNode)
{
    Array<Record> const list{Record("a", 1), Record("b", -2)};
    Element target = array({object({{"left over", integer(1)}})});
    list.copyToMetaData(target);
    EXPECT_EQ(target, array({recordTree("a", 1), recordTree("b", -2)}));
    EXPECT_EQ(list.toJsonString(), R"([{"id":1,"name":"a"},{"id":-2,"name":"b"}])");
}

TEST(JsonArray, WritesRecordsThroughTheirVirtualHook)
{
    struct Silent : Record {
        using Record::Record;
        void copyToMetaData(Element&) const override {}
    };
    Array<Silent> list;
    list.emplace_back();
    Element target;
    list.copyToMetaData(target);
    EXPECT_EQ(target, array({Element()}));
}

// ---- reading

TEST(JsonArray, ReadsIntegersLeniently)
{
    Array<int> list;
    list.copyFromMetaData(array({real(1.9), boolean(true), integer(5), real(-1.9), boolean(false),
                                 integer(4294967297), real(1e300), integer(-1)}));
    EXPECT_EQ(list.items(), (std::vector<int>{1, 1, 5, -1, 0, 1, std::numeric_limits<int>::max(), -1}));
}

TEST(JsonArray, ReplacesItsItems)
{
    Array<int> list{7, 8, 9};
    list.copyFromMetaData(array({integer(1)}));
    EXPECT_EQ(list, (Array<int>{1}));
    list.copyFromMetaData(array({}));
    EXPECT_TRUE(list.empty());
    list.fromJsonString("[1, 2.5, true]");
    EXPECT_EQ(list, (Array<int>{1, 2, 1}));
    Element source = array({integer(3)});
    list.moveFromMetaData(std::move(source));
    EXPECT_EQ(list, (Array<int>{3}));
}

TEST(JsonArray, KeepsItsItemsWhenTheSourceIsNotAnArray)
{
    for (Element const& source : {Element(), integer(1), real(1), boolean(true), text("[1]"),
                                  Element(MetaData::Object()), object({{"0", integer(1)}})}) {
        Array<int> list{7, 8, 9};
        EXPECT_THROW(list.copyFromMetaData(source), TypeError);
        EXPECT_EQ(list, (Array<int>{7, 8, 9}));
    }
    Array<int> list{7};
    EXPECT_THROW(list.fromJsonString("[1"), ParseError);
    EXPECT_THROW(list.fromJsonString("{}"), TypeError);
    EXPECT_EQ(list, (Array<int>{7}));
}

TEST(JsonArray, KeepsTheItemsReadBeforeOneThatCannotBeRead)
{
    for (Element const& bad : {text("2"), Element(), array({}), object({})}) {
        Array<int> list{7, 8, 9};
        EXPECT_THROW(list.copyFromMetaData(array({integer(1), integer(2), bad, integer(4)})), TypeError);
        EXPECT_EQ(list, (Array<int>{1, 2}));
    }
    Array<Record> records{Record("former", 1)};
    EXPECT_THROW(records.copyFromMetaData(
                     array({recordTree("a", 1), object({{"id", integer(2)}}), recordTree("c", 3)})),
                 MissingMemberError);
    EXPECT_EQ(records, (Array<Record>{Record("a", 1)}));
    EXPECT_THROW(records.copyFromMetaData(array({integer(1)})), TypeError);
    EXPECT_TRUE(records.empty());
}

TEST(JsonArray, ReadsEachRecordIntoADefaultOne)
{
    Array<Record> list{Record("former", 1)};
    list.copyFromMetaData(array({recordTree("a", 7), object({{"name", text("b")}})}));
    EXPECT_EQ(list, (Array<Record>{Record("a", 7), Record("b", 42)}));
}

TEST(JsonArray, ReadsBackWhatItWrites)
{
    for (unsigned int count = 0; count < 200; count += count < 30 ? 1 : 37) {
        Array<int> numbers;
        Array<Record> records;
        for (unsigned int i = 0; i < count; ++i) {
            numbers.push_back(static_cast<int>(i * 7919) - 3);
            records.emplace_back("record " + std::to_string(i), static_cast<int>(i));
        }
        Array<int> numbersBack;
        numbersBack.fromJsonString(numbers.toJsonString());
        EXPECT_EQ(numbersBack, numbers);
        Array<Record> recordsBack;
        recordsBack.fromJsonString(records.toJsonString());
        EXPECT_EQ(recordsBack, records);
    }
}

} // namespace
} // namespace Zelk::Json
