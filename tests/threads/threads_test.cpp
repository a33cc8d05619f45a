// Different objects are used by several threads at once, among them trees that were parts of one document: a
// long text is read into memory that its objects and arrays share, and whoever destroys the last of them
// frees it.
#include "framework/element.h"
#include "framework/error.h"
#include "framework/json_text.h"
#include "tests/samples/samples.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Zelk::Testing {
namespace {

using MetaData::Array;
using MetaData::Element;
using MetaData::Object;
using MetaData::Trivial_T;

constexpr unsigned int threadCount = 8;

/// Calls `work` with 0, 1, 2, ... in as many threads, all of which begin at the same time.
void inThreads(std::function<void(unsigned int)> const& work)
{
    std::atomic<unsigned int> waiting{0};
    std::vector<std::thread> threads;
    for (unsigned int index = 0; index < threadCount; ++index) {
        threads.emplace_back([&, index] {
            ++waiting;
            while (waiting < threadCount)
                std::this_thread::yield();
            work(index);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

/// A text of well over 64 KiB: as many entries as threads in "items" and "named", each with objects and
/// arrays of all sizes inside.
std::string longText()
{
    std::string entry = R"({"objects":[)";
    for (int i = 0; i < 150; ++i)
        entry += R"({"name":"a string that needs memory of its own","id":)" + std::to_string(i) +
                 R"(,"list":[1,[2.5]]},)";
    entry += R"({}],"wide":{)";
    for (int i = 0; i < 150; ++i)
        entry += R"("member )" + std::to_string(1000 + i) + R"(":[{"x":)" + std::to_string(i) + "}],";
    entry += R"("last":null}})";

    std::string items;
    std::string named;
    for (unsigned int index = 0; index < threadCount; ++index) {
        std::string const separator = index == 0 ? "" : ",";
        items += separator + entry;
        named += separator + "\"" + std::to_string(index) + "\":" + entry;
    }
    return R"({"items":[)" + items + R"(],"named":{)" + named + "}}";
}

/// Changes a subtree in every way that takes memory or gives it back.
void edit(Element& entry, unsigned int index)
{
    Array& objects = entry["objects"];
    for (unsigned int i = 0; i < 150; ++i) {
        Object& object = objects[i];
        object["name"] = Trivial_T<std::string>("changed by thread " + std::to_string(index));
        for (int member = 0; member < 10; ++member)
            object["new " + std::to_string(member)] = Trivial_T<long long>(member);
        Array& list = object["list"];
        list[20] = object["id"];
        if (i % 3 == 0)
            list.clear();
        if (i % 5 == 0)
            objects[i] = Element();
    }
    objects[400] = entry["wide"];
    entry["wide"]["last"] = std::move(objects[401]);
    entry["wide"] = entry["wide"]["member 1001"];
}

TEST(Threads, EditAndDestroyPartsOfOneDocument)
{
    std::string const text = longText();
    ASSERT_GT(text.size(), 64u * 1024u);
    Element expected = Json::readText(text)["items"];
    expected = Element(static_cast<Array const&>(expected)[0]);
    for (int round = 0; round < 3; ++round) {
        auto document = std::make_unique<Element>(Json::readText(text));
        std::vector<Element> items(threadCount);
        std::vector<Element> named(threadCount);
        for (unsigned int index = 0; index < threadCount; ++index) {
            items[index] = std::move(static_cast<Array&>((*document)["items"])[index]);
            named[index] = std::move((*document)["named"][std::to_string(index)]);
        }
        std::vector<std::string> results(threadCount);
        inThreads([&](unsigned int index) {
            // What is left of the document goes while the others work on what was in it.
            if (index == 0)
                document.reset();
            Element mine = std::move(items[index]);
            bool const same = mine == named[index] && mine == expected;
            Element copy = mine;
            edit(mine, 0);
            named[index] = Element();
            edit(copy, 0);
            results[index] = same && mine == copy ? Json::printText(mine) : "differs";
        });
        for (std::string const& result : results) {
            EXPECT_NE(result, "differs");
            EXPECT_EQ(result, results[0]);
        }
    }
}

TEST(Threads, DestroyTheMembersOfOneDocumentAllAtOnce)
{
    std::string const text = longText();
    for (int round = 0; round < 20; ++round) {
        Element document = Json::readText(text);
        std::vector<Element> parts(threadCount);
        for (unsigned int index = 0; index < threadCount; ++index)
            parts[index] = std::move(static_cast<Array&>(document["items"])[index]);
        parts[0] = std::move(document); // the root dies with the others
        inThreads([&](unsigned int index) { parts[index] = Element(); });
        for (Element const& part : parts)
            EXPECT_EQ(part, Element());
    }
}

TEST(Threads, FillTheItemsOfOneListWhichOneThreadMade)
{
    for (int round = 0; round < 20; ++round) {
        Array list;
        for (unsigned int i = 0; i < 100; ++i)
            list[i]["id"] = Trivial_T<long long>(i);
        std::vector<Element*> items;
        // Added by itself, as one of many at once, and by itself again, each behind an object.
        items.push_back(&list[100]);
        list[99 + threadCount]["id"] = Trivial_T<long long>(0);
        for (unsigned int i = 101; i < 99 + threadCount; ++i)
            items.push_back(&list[i]);
        items.push_back(&list[100 + threadCount]);
        inThreads([&](unsigned int index) {
            for (std::size_t i = index; i < items.size(); i += threadCount)
                for (int member = 0; member < 20; ++member)
                    (*items[i])["member " + std::to_string(member)] = Trivial_T<long long>(member);
        });
        for (Element const* item : items)
            EXPECT_EQ(*item, *items[0]);
    }
}

TEST(Threads, ReadOneTreeTogether)
{
    Element const document = Json::readText(longText());
    std::string const text = Json::printText(document);
    std::vector<int> agreed(threadCount);
    inThreads([&](unsigned int index) {
        Element const copy(document);
        agreed[index] =
            copy == document && Json::printText(document) == text &&
            document["named"][std::to_string(index)]["objects"].GetElementType() == Element::array;
    });
    EXPECT_EQ(agreed, std::vector<int>(threadCount, 1));
}

/// The texts of all messages as one array, repeated until it is long.
std::string batchText(std::size_t rounds)
{
    std::string text;
    for (std::size_t round = 0; round < rounds; ++round) {
        for (Kind const& kind : messages())
            text += (text.empty() ? "[" : ",") + kind.text;
    }
    return text + "]";
}

TEST(Threads, ReadMessagesOutOfOneDocument)
{
    std::size_t const rounds = 64;
    std::string const text = batchText(rounds);
    ASSERT_GT(text.size(), 64u * 1024u);
    auto document = std::make_unique<Element>(Json::readText(text));
    std::size_t const kinds = messages().size();
    std::vector<std::vector<Element>> shares(threadCount);
    std::vector<std::vector<Kind const*>> kindsOf(threadCount);
    Array& items = *document;
    for (std::size_t i = 0; i < rounds * kinds; ++i) {
        shares[i % threadCount].push_back(std::move(items[static_cast<unsigned int>(i)]));
        kindsOf[i % threadCount].push_back(&messages()[i % kinds]);
    }
    std::vector<std::size_t> wrong(threadCount);
    inThreads([&](unsigned int index) {
        if (index == 1)
            document.reset();
        std::vector<std::unique_ptr<Subject>> subjects;
        for (std::size_t i = 0; i < shares[index].size(); ++i) {
            Kind const& kind = *kindsOf[index][i];
            subjects.push_back(kind.blank());
            subjects.back()->moveFrom(std::move(shares[index][i]));
            wrong[index] += subjects.back()->toText() != kind.text;
        }
        // Some go in another order than they came.
        for (std::size_t i = 0; i < subjects.size(); i += 2)
            subjects[i].reset();
        for (std::size_t i = 1; i < subjects.size(); i += 2)
            subjects[i] = subjects[i]->copy();
    });
    EXPECT_EQ(wrong, std::vector<std::size_t>(threadCount, 0));
}

TEST(Threads, UseDifferentObjectsOfEveryClass)
{
    std::vector<std::size_t> wrong(threadCount);
    inThreads([&](unsigned int index) {
        for (int round = 0; round < 20; ++round) {
            for (Kind const& kind : allKinds()) {
                auto const subject = kind.filled();
                wrong[index] += subject->toText() != kind.text;
                subject->fromText(kind.text);
                Element tree;
                subject->copyTo(tree);
                auto const other = kind.blank();
                other->moveFrom(std::move(tree));
                wrong[index] += subject->copy()->toText() != kind.text;
                try {
                    other->fromText(index % 2 == 0 ? "[{}" : "7");
                    wrong[index] += kind.text != "null"; // these read anything
                } catch (MetaData::Error const&) {
                } catch (Json::ParseError const&) {
                }
            }
        }
    });
    EXPECT_EQ(wrong, std::vector<std::size_t>(threadCount, 0));
}

TEST(Threads, TakeOverAnObjectThatAnotherThreadMade)
{
    for (Kind const& kind : allKinds()) {
        SCOPED_TRACE(kind.name);
        std::unique_ptr<Subject> subject;
        std::thread([&] { subject = kind.blank(); }).join();
        std::thread([&] { subject->fromText(kind.text); }).join();
        std::string text;
        std::thread([&] {
            text = subject->toText();
            subject.reset();
        }).join();
        EXPECT_FALSE(text.empty());
    }
}

} // namespace
} // namespace Zelk::Testing
