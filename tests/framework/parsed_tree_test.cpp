// Trees that were read from text keep their memory in large pieces that they share. Nobody may see that: a
// part may be taken out and live on, be edited like any other tree, and be destroyed wherever it is.
#include "framework/element.h"
#include "framework/json_text.h"
#include "nodes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Zelk::MetaData {
namespace {

using Json::printText;
using Json::readText;
using Tests::array;
using Tests::integer;
using Tests::object;
using Tests::text;

/// An array of `count` records of several shapes.
std::string listText(unsigned int count)
{
    std::string result = "[";
    for (unsigned int i = 0; i < count; ++i) {
        std::string const number = std::to_string(i);
        result += i == 0 ? "" : ",";
        result += R"({"id":)" + number + R"(,"name":"record )" + number +
                  R"( with a name beyond the node","more":[)" + number + R"(,{"deep":[[],{},)" + number +
                  "]}]";
        for (unsigned int member = 0; member < i % 20; ++member)
            result += ",\"m" + std::to_string(member * 7 % 20) + "\":" + std::to_string(member);
        result += '}';
    }
    return result + "]";
}

/// The same record, built by hand.
Element record(unsigned int i)
{
    Element result;
    result["id"] = integer(i);
    result["name"] = text("record " + std::to_string(i) + " with a name beyond the node");
    result["more"] =
        array({integer(i), object({{"deep", array({Element(Array()), Element(Object()), integer(i)})}})});
    for (unsigned int member = 0; member < i % 20; ++member)
        result["m" + std::to_string(member * 7 % 20)] = integer(member);
    return result;
}

/// From texts far below a kilobyte to some that fill many pieces of memory.
unsigned int const listSizes[] = {1, 5, 8, 9, 10, 11, 12, 15, 30, 100, 1000, 5000};

TEST(ParsedTree, EqualsTheSameTreeBuiltByHand)
{
    for (unsigned int const count : listSizes) {
        Element const tree = readText(listText(count));
        Array const& items = tree;
        ASSERT_EQ(items.size(), count);
        for (unsigned int i = 0; i < count; ++i)
            ASSERT_EQ(items[i], record(i)) << count;
    }
}

TEST(ParsedTree, IsReadWhateverTheLengthOfTheText)
{
    for (std::size_t padding = 0; padding<2200; padding += padding> 850 && padding < 1100 ? 1 : 37) {
        std::string const content(padding, 'p');
        std::string const whole =
            "{\"padding\":\"" + content + R"(","list":[1,{"a":[2]}],"o":{"x":{"y":"z"}}})";
        Element const tree = readText(whole);
        ASSERT_EQ(tree, object({{"padding", text(content)},
                                {"list", array({integer(1), object({{"a", array({integer(2)})}})})},
                                {"o", object({{"x", object({{"y", text("z")}})}})}}));
    }
}

TEST(ParsedTree, HoldsContainersLargerThanAPieceOfMemory)
{
    for (unsigned int const count : {100u, 127u, 128u, 129u, 150u, 300u, 1000u, 20000u}) {
        std::string members = "{";
        std::string items = "[";
        for (unsigned int i = 0; i < count; ++i) {
            members += (i == 0 ? "\"m" : ",\"m") + std::to_string(i) + "\":[" + std::to_string(i) + "]";
            items += (i == 0 ? "{\"a\":" : ",{\"a\":") + std::to_string(i) + "}";
        }
        Element tree = readText("[" + members + "}," + items + "]]");
        Element object = std::move(static_cast<Array&>(tree)[0]);
        Element list = std::move(static_cast<Array&>(tree)[1]);
        tree = Element();
        ASSERT_EQ(static_cast<Object&>(object).size(), count);
        ASSERT_EQ(static_cast<Array&>(list).size(), count);
        for (unsigned int i = 0; i < count; ++i) {
            ASSERT_EQ(object["m" + std::to_string(i)], array({integer(i)}));
            ASSERT_EQ(static_cast<Array&>(list)[i]["a"].asInt64(), i);
        }
    }
}

TEST(ParsedTree, PartsOutliveTheRoot)
{
    for (unsigned int const count : listSizes)
        for (unsigned int const step : {1u, 2u, 7u}) {
            std::vector<std::pair<unsigned int, Element>> taken;
            {
                Element tree = readText(listText(count));
                for (unsigned int i = 0; i < count; i += step)
                    taken.emplace_back(i, std::move(static_cast<Array&>(tree)[i]));
            }
            std::mt19937 random(count);
            std::shuffle(taken.begin(), taken.end(), random);
            while (!taken.empty()) {
                ASSERT_EQ(taken.back().second, record(taken.back().first));
                taken.pop_back();
            }
        }
}

TEST(ParsedTree, DeepPartsOutliveTheRoot)
{
    for (unsigned int const count : listSizes) {
        Element kept;
        {
            Element tree = readText(listText(count));
            for (unsigned int i = 0; i < count; ++i)
                static_cast<Array&>(kept)[i] =
                    std::move(static_cast<Array&>(static_cast<Array&>(tree)[i]["more"])[1]["deep"]);
        }
        for (unsigned int i = 0; i < count; ++i)
            ASSERT_EQ(static_cast<Array&>(kept)[i], array({Element(Array()), Element(Object()), integer(i)}));
    }
}

TEST(ParsedTree, CanBeReplacedByAPartOfItself)
{
    for (unsigned int const count : listSizes) {
        Element moved = readText(listText(count));
        moved = std::move(static_cast<Array&>(moved)[count / 2]);
        ASSERT_EQ(moved, record(count / 2));
        Element copied = readText(listText(count));
        copied = static_cast<Array&>(copied)[count / 2];
        ASSERT_EQ(copied, record(count / 2));
    }
}

TEST(ParsedTree, IsEditedLikeAnyOther)
{
    for (unsigned int const size : {0u, 1u, 2u, 7u, 8u, 9u, 12u, 13u, 16u, 23u, 24u, 25u, 60u, 150u})
        for (bool const large : {false, true}) {
            SCOPED_TRACE(std::to_string(size) + (large ? " in a large text" : " in a small text"));
            std::string members;
            std::string items;
            for (unsigned int i = 0; i < size; ++i) {
                members += (i == 0 ? "\"m" : ",\"m") + std::to_string(i) + "\":" + std::to_string(i);
                items += (i == 0 ? "" : ",") + std::to_string(i);
            }
            std::string const padding(large ? 2000 : 1, 'p');
            Element tree =
                readText("{\"o\":{" + members + "},\"a\":[" + items + "],\"padding\":\"" + padding + "\"}");
            Element& objectNode = tree["o"];
            Element& arrayNode = tree["a"];
            Element* const first = size == 0 ? nullptr : &objectNode["m0"];
            std::vector<Element*> places;
            for (unsigned int i = 0; i < size; ++i)
                places.push_back(&static_cast<Array&>(arrayNode)[i]);
            for (unsigned int i = size; i < size + 200; ++i) {
                objectNode["m" + std::to_string(i)] = integer(i);
                Array& grown = arrayNode;
                grown[i] = integer(i);
            }
            ASSERT_EQ(static_cast<Object&>(objectNode).size(), size + 200);
            ASSERT_EQ(static_cast<Array&>(arrayNode).size(), size + 200);
            for (unsigned int i = 0; i < size + 200; ++i) {
                ASSERT_EQ(objectNode["m" + std::to_string(i)].asInt64(), i);
                ASSERT_EQ(static_cast<Array&>(arrayNode)[i].asInt64(), i);
                if (i < size) {
                    ASSERT_EQ(&static_cast<Array&>(arrayNode)[i], places[i]);
                }
            }
            if (first != nullptr) {
                EXPECT_EQ(&objectNode["m0"], first);
            }
            std::string last;
            for (Object::Member const& member : static_cast<Object&>(objectNode)) {
                ASSERT_LT(last, member.name());
                last = member.name();
            }
            static_cast<Object&>(objectNode).clear();
            static_cast<Array&>(arrayNode).clear();
            objectNode["again"] = integer(1);
            EXPECT_EQ(printText(tree), "{\"a\":[],\"o\":{\"again\":1},\"padding\":\"" + padding + "\"}");
        }
}

/// Whether an array is stepped through in every way as a std::deque of the integers from 0 on is.
void expectSteppedThroughAsADeque(Array const& items)
{
    std::deque<long long> numbers;
    for (unsigned int i = 0; i < items.size(); ++i)
        numbers.push_back(i);
    auto const same = [](Element const& node, long long number) { return node.asInt64() == number; };
    ASSERT_EQ(items.end() - items.begin(), numbers.end() - numbers.begin());
    EXPECT_TRUE(std::equal(items.begin(), items.end(), numbers.begin(), numbers.end(), same));
    EXPECT_TRUE(std::equal(std::make_reverse_iterator(items.end()), std::make_reverse_iterator(items.begin()),
                           numbers.rbegin(), numbers.rend(), same));
    auto const size = static_cast<std::ptrdiff_t>(items.size());
    for (std::ptrdiff_t from = 0; from <= size; ++from)
        for (std::ptrdiff_t to = 0; to <= size; to += 1 + size / 40) {
            Array::const_iterator const there = (items.begin() + from) + (to - from);
            ASSERT_EQ(there - items.begin(), to);
            ASSERT_EQ(items.end() - there, size - to);
            ASSERT_EQ(there == items.end(), to == size);
            if (to != size) {
                ASSERT_EQ(there->asInt64(), to);
                ASSERT_EQ(items.begin()[to].asInt64(), to);
            }
        }
}

TEST(ParsedTree, ArraysAreSteppedThroughAsADequeIs)
{
    for (unsigned int const size : {0u, 1u, 2u, 3u, 4u, 5u, 11u, 12u, 13u, 16u, 23u, 24u, 25u, 28u, 100u})
        for (bool const large : {false, true})
            for (bool const nested : {false, true}) {
                SCOPED_TRACE(std::to_string(size) + (large ? " in a large text" : " in a small text"));
                std::string items;
                for (unsigned int i = 0; i < size; ++i)
                    items += (i == 0 ? "" : ",") + std::to_string(i);
                if (nested) // an array whose first item takes memory behind it
                    items = size == 0 ? "[0]" : "[0]," + items;
                std::string const padding(large ? 2000 : 1, ' ');
                Element tree = readText("[" + items + "]" + padding);
                if (nested) {
                    Array& rest = tree;
                    for (unsigned int i = 0; i <= size; ++i)
                        rest[i] = integer(i);
                }
                expectSteppedThroughAsADeque(tree);
                expectSteppedThroughAsADeque(Element(tree));
                for (unsigned int i = static_cast<Array&>(tree).size(); i < size + 30; ++i) {
                    static_cast<Array&>(tree)[i] = integer(i);
                    expectSteppedThroughAsADeque(tree);
                }
            }
}

TEST(ParsedTree, MixesWithTreesFromElsewhere)
{
    Element first = readText(listText(100));
    Element second = readText(listText(50));
    Element built;
    for (unsigned int i = 0; i < 50; ++i) {
        Element& fromFirst = static_cast<Array&>(first)[i];
        Element& fromSecond = static_cast<Array&>(second)[i];
        std::swap(fromFirst["more"], fromSecond["more"]);
        built["b" + std::to_string(i)] = std::move(fromSecond["name"]);
        fromFirst["name"] = text("new name of record, beyond the node");
        fromFirst["added"] = fromSecond;
    }
    Element const copy = first;
    second = std::move(first);
    ASSERT_EQ(copy, second);
    second = Element();
    EXPECT_EQ(built["b49"].asString(), "record 49 with a name beyond the node");
    EXPECT_EQ(static_cast<Array const&>(copy)[7]["more"], record(7)["more"]);
    EXPECT_EQ(static_cast<Array const&>(copy)[7]["added"]["name"], Element());
}

TEST(ParsedTree, RefusedTextsGiveTheirMemoryBack)
{
    for (unsigned int const count : {3u, 10u, 40u, 400u}) {
        std::string const whole = listText(count);
        for (std::size_t length = 1; length < whole.size(); length += whole.size() / 97 + 1)
            ASSERT_THROW(readText(whole.substr(0, length)), Json::ParseError);
        ASSERT_THROW(readText(whole + "]"), Json::ParseError);
    }
}

TEST(ParsedTree, PartsAreReleasedByDifferentThreadsAtOnce)
{
    constexpr unsigned int threadCount = 4;
    for (int round = 0; round < 20; ++round) {
        Element tree = readText(listText(400));
        std::vector<std::vector<Element>> shares(threadCount);
        for (unsigned int i = 0; i < 400; ++i)
            shares[i % threadCount].push_back(std::move(static_cast<Array&>(tree)[i]));
        std::vector<std::thread> threads;
        for (unsigned int number = 0; number < threadCount; ++number)
            threads.emplace_back([share = std::move(shares[number]), number]() mutable {
                for (unsigned int i = 0; i < share.size(); ++i) {
                    EXPECT_EQ(share[i]["id"].asInt64(), i * threadCount + number);
                    share[i]["added by a thread"] = integer(i);
                    share[i] = Element();
                }
            });
        tree = Element();
        for (std::thread& thread : threads)
            thread.join();
    }
}

} // namespace
} // namespace Zelk::MetaData
