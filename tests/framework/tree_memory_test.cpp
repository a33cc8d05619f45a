// What the tree, its text and the serialisable bases do when memory runs out, and where they need none.
#include "failing_memory.h"
#include "framework/element.h"
#include "framework/json_array.h"
#include "framework/json_text.h"
#include "framework/serializable.h"
#include "nodes.h"

#include <gtest/gtest.h>

#include <ios>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>

namespace Zelk::MetaData {
namespace {

using Tests::allocations;
using Tests::array;
using Tests::failEveryAllocation;
using Tests::FailingMemory;
using Tests::integer;
using Tests::livePieces;
using Tests::object;
using Tests::real;
using Tests::text;

std::string const longText = "a text that is too long to stand in a node by itself";

/// Objects, arrays and strings of several sizes, larger than one block or chunk each.
Element richTree()
{
    Element tree;
    for (int i = 0; i < 30; ++i) {
        std::string const number = std::to_string(i);
        tree["member " + number + " with a name that is too long for the small form"] =
            text(longText + number);
        static_cast<Array&>(tree["items"])[static_cast<unsigned int>(i)] =
            object({{"n", integer(i)}, {longText, array({real(i)})}});
    }
    tree["empty object"] = Element(Object());
    tree["empty array"] = Element(Array());
    tree["null"] = Element();
    return tree;
}

// ---- where no memory is needed

TEST(TreeMemory, EmptyContainersTakeNone)
{
    std::size_t const before = allocations();
    Object const members;
    Array const items;
    Element node{Object()};
    node = Element(Array());
    Element filled;
    [[maybe_unused]] Object& asObject = filled;
    Element other;
    [[maybe_unused]] Array& asArray = other;
    Object const membersCopy(members);
    Array const itemsCopy(items);
    Element const copy(filled);
    EXPECT_TRUE(members == membersCopy && items == itemsCopy && copy == filled);
    EXPECT_EQ(allocations(), before);
}

TEST(TreeMemory, ShortTextsAndNumbersTakeNone)
{
    std::size_t const before = allocations();
    Element node(Trivial_T<std::string>("short text"));
    node = Element(Trivial_T<double>(0.5));
    SetAs<std::string>("short too", node);
    Element const copy(node);
    EXPECT_TRUE(copy == node);
    EXPECT_EQ(allocations(), before);
}

TEST(TreeMemory, MovesSwapsClearAndDestructionTakeNone)
{
    std::ptrdiff_t const live = livePieces();
    {
        Element a = richTree();
        Element b = richTree();
        Object object = richTree();
        Array array;
        array[100] = richTree();
        std::size_t const before = allocations();
        Element c = std::move(a);
        std::swap(b, c);
        a = std::move(b);
        a = std::move(a["items"]);
        Object otherObject = std::move(object);
        object = std::move(otherObject);
        Object& same = object;
        object = std::move(same);
        Array otherArray = std::move(array);
        array = std::move(otherArray);
        object.clear();
        array.clear();
        c = Element();
        a = Element();
        EXPECT_EQ(allocations(), before);
    }
    EXPECT_EQ(livePieces(), live);
}

// ---- where it runs out

void nothing() {}

TEST(ExhaustedMemory, CopyingIsAllOrNothing)
{
    Element const source = richTree();
    Element const former = array({text(longText), integer(1)});
    Element target;
    std::ptrdiff_t live = 0;
    std::size_t const failures = failEveryAllocation(
        [&] {
            target = former;
            live = livePieces();
        },
        [&] {
            Element const copy(source);
            target = source;
        },
        [&] {
            EXPECT_EQ(livePieces(), live);
            EXPECT_EQ(target, former);
        });
    EXPECT_GT(failures, 100u);
    EXPECT_EQ(target, source);
}

TEST(ExhaustedMemory, AssigningAPartOfATreeToItsWholeIsAllOrNothing)
{
    Element const source = richTree();
    Element target;
    std::ptrdiff_t live = 0;
    std::size_t const failures = failEveryAllocation(
        [&] {
            target = source;
            live = livePieces();
        },
        [&] { target = std::as_const(target)["items"]; },
        [&] {
            EXPECT_EQ(livePieces(), live);
            EXPECT_EQ(target, source);
        });
    EXPECT_GT(failures, 20u);
    EXPECT_EQ(target, source["items"]);
}

TEST(ExhaustedMemory, CopyingContainersIsAllOrNothing)
{
    Element const tree = richTree();
    Object const& members = tree;
    Array const& items = tree["items"];
    Object const formerObject = object({{"former", text(longText)}});
    Array const formerArray = array({text(longText)});

    Object targetObject;
    std::ptrdiff_t live = 0;
    EXPECT_GT(failEveryAllocation(
                  [&] {
                      targetObject = formerObject;
                      live = livePieces();
                  },
                  [&] { targetObject = members; },
                  [&] {
                      EXPECT_EQ(livePieces(), live);
                      EXPECT_EQ(targetObject, formerObject);
                  }),
              100u);
    EXPECT_EQ(targetObject, members);

    Array targetArray;
    EXPECT_GT(failEveryAllocation(
                  [&] {
                      targetArray = formerArray;
                      live = livePieces();
                  },
                  [&] { targetArray = items; },
                  [&] {
                      EXPECT_EQ(livePieces(), live);
                      EXPECT_EQ(targetArray, formerArray);
                  }),
              50u);
    EXPECT_EQ(targetArray, items);

    Element node;
    EXPECT_GT(failEveryAllocation([&] { node = Element(formerArray); }, [&] { node = Element(members); },
                                  [&] { EXPECT_EQ(node, Element(formerArray)); }),
              100u);
    EXPECT_EQ(node, tree);
}

TEST(ExhaustedMemory, ComparingLeavesBothTreesAlone)
{
    Element const a = richTree();
    Element const b = richTree();
    bool equal = false;
    std::ptrdiff_t const live = livePieces();
    EXPECT_GT(failEveryAllocation(
                  nothing, [&] { equal = a == b; }, [&] { EXPECT_EQ(livePieces(), live); }),
              0u);
    EXPECT_TRUE(equal);
}

TEST(ExhaustedMemory, AMemberIsInsertedOrNothingHasChanged)
{
    std::string const name = "the new one, " + longText;
    for (unsigned int const count : {0u, 1u, 7u, 8u, 9u, 12u, 13u, 23u, 24u, 25u, 56u, 120u, 248u}) {
        SCOPED_TRACE(count);
        Object former;
        for (unsigned int i = 0; i < count; ++i)
            former[longText + std::to_string(i)] = integer(i);
        // A copy has no room left, what was built member by member has.
        for (bool const copied : {false, true}) {
            Object members;
            std::size_t const failures = failEveryAllocation(
                [&] {
                    members.clear();
                    if (copied)
                        members = former;
                    else
                        for (unsigned int i = 0; i < count; ++i)
                            members[longText + std::to_string(i)] = integer(i);
                },
                [&] { members[name]; },
                [&] {
                    ASSERT_EQ(members, former);
                    EXPECT_EQ(members.size(), count);
                    EXPECT_EQ(members.find(name), members.end());
                    members[name] = integer(1); // what failed has left no trace
                    for (unsigned int i = 0; i < 40; ++i)
                        members["later " + std::to_string(i)] = integer(i);
                    EXPECT_EQ(members.size(), count + 41);
                    EXPECT_EQ(members[name], integer(1));
                    EXPECT_EQ(Object(members), members);
                });
            EXPECT_GT(failures, 0u);
            EXPECT_EQ(members.size(), count + 1);
        }
    }
}

TEST(ExhaustedMemory, AnEmptyNodeStaysEmptyWhenItsFirstMemberCannotBeInserted)
{
    Element node;
    EXPECT_GT(failEveryAllocation([&] { node = Element(); }, [&] { node[longText]; },
                                  [&] { EXPECT_EQ(node.GetElementType(), Element::empty); }),
              0u);
    EXPECT_EQ(node, object({{longText, Element()}}));
    Object members;
    EXPECT_GT(failEveryAllocation([&] { members = Object(); }, [&] { members[longText]; },
                                  [&] {
                                      EXPECT_TRUE(members.empty());
                                      EXPECT_EQ(members.begin(), members.end());
                                      EXPECT_EQ(members.find("a"), members.end());
                                      EXPECT_EQ(members, Object());
                                  }),
              0u);
    EXPECT_EQ(members.size(), 1u);
}

TEST(ExhaustedMemory, AnArrayGrowsOrNothingHasChanged)
{
    for (unsigned int const count : {0u, 1u, 11u, 12u, 13u, 47u, 48u, 49u, 95u, 96u, 97u, 400u})
        for (unsigned int const gap : {0u, 1u, 12u, 100u, 1000u}) {
            SCOPED_TRACE(std::to_string(count) + " and " + std::to_string(gap));
            Array former;
            for (unsigned int i = 0; i < count; ++i)
                former[i] = text(longText);
            Array items;
            failEveryAllocation([&] { items = former; }, [&] { items[count + gap]; },
                                [&] {
                                    ASSERT_EQ(items.size(), count);
                                    ASSERT_EQ(items, former);
                                    items[count + 50] = integer(1);
                                    ASSERT_EQ(items.size(), count + 51);
                                });
            EXPECT_EQ(items.size(), count + gap + 1);
        }
}

TEST(ExhaustedMemory, SetAsReplacesOrLeavesTheNodeAlone)
{
    for (Element const& former :
         {integer(1), text("short"), text(longText), object({{"a", text(longText)}})}) {
        Element node;
        std::string const value = longText + longText;
        EXPECT_GT(failEveryAllocation([&] { node = former; }, [&] { SetAs<std::string>(value, node); },
                                      [&] { EXPECT_EQ(node, former); }),
                  0u);
        EXPECT_EQ(node, text(value));
    }
}

TEST(ExhaustedMemory, ANewItemOfALongListIsStillEmptyWhenItCouldNotBeFilled)
{
    Array items;
    for (unsigned int i = 0; i < 100; ++i)
        items[i]["name"] = integer(i);
    Element& item = items[100];
    std::string const value = longText;
    failEveryAllocation([&] { item = Element(); }, [&] { SetAs<std::string>(value, item); },
                        [&] { EXPECT_EQ(item, Element()); });
    EXPECT_EQ(item, text(value));
    Element& next = items[101];
    failEveryAllocation([] {}, [&] { next[longText]; }, [&] { EXPECT_EQ(next, Element()); });
    next[longText] = integer(1);
    EXPECT_EQ(items[101], object({{longText, integer(1)}}));
}

TEST(ExhaustedMemory, AnObjectWhoseFirstMemberCouldNotBeInsertedIsEmpty)
{
    Object members;
    failEveryAllocation([&] { members = Object(); }, [&] { members[longText]; },
                        [&] {
                            EXPECT_EQ(members.size(), 0u);
                            EXPECT_TRUE(members.begin() == members.end());
                            EXPECT_TRUE(members.find(longText) == members.end());
                            EXPECT_EQ(members, Object());
                            EXPECT_EQ(Object(members).size(), 0u);
                            EXPECT_EQ(Json::printText(Element(members)), "{}");
                        });
    EXPECT_EQ(members.size(), 1u);
}

TEST(ExhaustedMemory, ReadingAndPrintingLeakNothing)
{
    Element const small = array({text(longText), object({{longText, real(1)}})});
    // One text below and one above the size from which memory is taken in chunks.
    for (Element const& tree : {small, richTree(), array({richTree(), richTree(), richTree()})}) {
        std::string const printed = Json::printText(tree);
        std::string const repeated =
            "[{\"a\":" + printed + ",\"a\":[" + printed + "]},\"\\u00e9" + longText + "\"]";
        std::string const cut = printed.substr(0, printed.size() - 1);
        std::ptrdiff_t const live = livePieces();
        auto const nothingLeaked = [&] { EXPECT_EQ(livePieces(), live); };
        EXPECT_GT(failEveryAllocation(
                      nothing, [&] { Json::readText(printed); }, nothingLeaked),
                  0u);
        EXPECT_GT(failEveryAllocation(
                      nothing, [&] { Json::readText(repeated); }, nothingLeaked),
                  0u);
        EXPECT_GT(failEveryAllocation(
                      nothing, [&] { Json::printText(tree); }, nothingLeaked),
                  0u);
        EXPECT_GT(failEveryAllocation(
                      nothing,
                      [&] {
                          try {
                              Json::readText(cut);
                          } catch (Json::ParseError const&) { // or no memory to say so
                          }
                      },
                      nothingLeaked),
                  0u);
        nothingLeaked();
    }
}

/// Counts what is written, and needs no memory for it.
class CountingTarget : public std::streambuf {
public:
    std::streamsize written = 0;

protected:
    std::streamsize xsputn(char const*, std::streamsize count) override
    {
        written += count;
        return count;
    }
    int_type overflow(int_type byte) override
    {
        ++written;
        return traits_type::not_eof(byte);
    }
};

TEST(ExhaustedMemory, AStreamGetsNothingOfATextThatFails)
{
    Element const tree = richTree();
    auto const size = static_cast<std::streamsize>(Json::printText(tree).size());
    CountingTarget target;
    std::ostream stream(&target);
    failEveryAllocation([&] { target.written = 0; }, [&] { Json::printText(tree, stream); },
                        [&] {
                            EXPECT_EQ(target.written, 0);
                            EXPECT_TRUE(stream.good());
                        });
    EXPECT_EQ(target.written, size);
}

TEST(ExhaustedMemory, ReadingAStreamReportsIt)
{
    Element const tree = richTree();
    std::istringstream stream(Json::printText(tree));
    Element read;
    EXPECT_GT(failEveryAllocation(
                  [&] {
                      read = Element();
                      stream.clear();
                      stream.seekg(0);
                  },
                  [&] { read = Json::readText(stream); }, [&] { EXPECT_EQ(read, Element()); }),
              10u);
    EXPECT_EQ(read, tree);
}

// ---- messages and lists

class Message : public Json::PartiallyDeserializable {
public:
    void copyToInternalMetaData() const override
    {
        elementImpl(metaData(), "name") = text(name);
        ids.copyToMetaData(element("body", "ids"));
    }
    void copyFromInternalMetaData() override
    {
        name = elementImpl(metaData(), "name").asString();
        ids.copyFromMetaData(element("body", "ids"));
    }

    std::string name;
    Json::Array<int> ids;
};

std::string const messageText =
    R"({"body":{"ids":[1,2,3],"more":"a text of a later version that nobody here knows"},"name":")" +
    longText + "\"}";

TEST(ExhaustedMemory, AMessageIsUnchangedOrReadAndCanBeWrittenAfterwards)
{
    Message message;
    Element const formerTree = Json::readText(R"({"name":"former","body":{"ids":[9]},"kept":1})");
    Element source;
    auto const prepare = [&] {
        message = Message();
        message.copyFromMetaData(formerTree);
        source = Json::readText(messageText);
    };
    auto const formerTreeIsBack = [&] {
        EXPECT_EQ(message.metaData(), formerTree);
        Element written;
        message.copyToMetaData(written);
        EXPECT_EQ(written["kept"], integer(1));
    };
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { message.fromJsonString(messageText); }, formerTreeIsBack),
              5u);
    EXPECT_EQ(message.toJsonString(), messageText);
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { message.copyFromMetaData(source); }, formerTreeIsBack),
              5u);
    EXPECT_EQ(message.toJsonString(), messageText);
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { message.moveFromMetaData(std::move(source)); },
                  [&] {
                      formerTreeIsBack();
                      EXPECT_EQ(source, Json::readText(messageText));
                  }),
              1u);
    EXPECT_EQ(message.toJsonString(), messageText);
}

TEST(ExhaustedMemory, AMessageCanBeWrittenAgainAfterItsWritingFailed)
{
    Message message;
    Element target;
    CountingTarget counted;
    std::ostream stream(&counted);
    std::string written;
    auto const prepare = [&] {
        message = Message();
        message.fromJsonString(messageText);
        target = integer(5);
        written = "former";
        counted.written = 0;
    };
    auto const canBeWritten = [&] {
        EXPECT_EQ(target, integer(5));
        EXPECT_EQ(written, "former");
        EXPECT_EQ(counted.written, 0);
        EXPECT_TRUE(stream.good());
        EXPECT_EQ(message.toJsonString(), messageText);
    };
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { message.copyToMetaData(target); }, canBeWritten),
              5u);
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { message.moveToMetaData(target); }, canBeWritten),
              1u);
    EXPECT_EQ(target, Json::readText(messageText));
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { written = message.toJsonString(); }, canBeWritten),
              1u);
    EXPECT_EQ(written, messageText);
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { written = message.moveToJsonString(); }, canBeWritten),
              1u);
    EXPECT_EQ(written, messageText);
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { message.toJson(stream); }, canBeWritten),
              1u);
    EXPECT_GT(failEveryAllocation(
                  prepare, [&] { message.moveToJson(stream); }, canBeWritten),
              1u);
    EXPECT_EQ(message.metaData(), Element());
}

} // namespace
} // namespace Zelk::MetaData
