// Trees far deeper than any stack: each test runs on a stack of 256 KiB.
#include "failing_memory.h"
#include "framework/element.h"
#include "framework/json_text.h"

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <new>
#include <pthread.h>
#include <string>
#include <utility>

namespace Zelk::MetaData {
namespace {

using Tests::allocations;
using Tests::FailingMemory;
using Tests::livePieces;

constexpr unsigned int objectLevels = 1000000;
constexpr unsigned int arrayLevels = 200000;

/// Runs `task` in a thread with a small stack and passes on what it throws.
void onSmallStack(std::function<void()> const& task)
{
    struct Run {
        std::function<void()> const& task;
        std::exception_ptr thrown;
    } run{task, nullptr};
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{256} << 10), 0);
    pthread_t thread;
    auto const body = [](void* argument) -> void* {
        auto* const running = static_cast<Run*>(argument);
        try {
            running->task();
        } catch (...) {
            running->thrown = std::current_exception();
        }
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, body, &run), 0);
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    if (run.thrown != nullptr)
        std::rethrow_exception(run.thrown);
}

Element deepObjects(unsigned int levels)
{
    Element root;
    Element* node = &root;
    for (unsigned int i = 0; i < levels; ++i)
        node = &(*node)["a"];
    *node = Element(Trivial_T<long long>(1));
    return root;
}

Element deepArrays(unsigned int levels)
{
    Element root;
    Element* node = &root;
    for (unsigned int i = 0; i < levels; ++i)
        node = &static_cast<Array&>(*node)[0];
    *node = Element(Trivial_T<long long>(1));
    return root;
}

/// Objects and arrays in turn, each with something before and behind the next level.
Element deepMixed(unsigned int levels)
{
    Element root;
    Element* node = &root;
    for (unsigned int i = 0; i < levels; ++i) {
        if (i % 2 == 0) {
            (*node)["a"] = Element(Trivial_T<std::string>("a text that is too long for a node"));
            (*node)["z"]["inside"] = Element(Trivial_T<bool>(true));
            node = &(*node)["m"];
        } else {
            Array& items = *node;
            items[2] = Element(Array());
            node = &items[1];
        }
    }
    return root;
}

unsigned int depthOf(Element const& root)
{
    unsigned int depth = 0;
    for (Element const* node = &root;
         node->GetElementType() == Element::object || node->GetElementType() == Element::array; ++depth)
        node =
            node->GetElementType() == Element::object ? &(*node)["a"] : &static_cast<Array const&>(*node)[0];
    return depth;
}

Element& innermostOf(Element& root)
{
    Element* node = &root;
    while (node->GetElementType() != Element::integer)
        node = node->GetElementType() == Element::object ? &(*node)["a"] : &static_cast<Array&>(*node)[0];
    return *node;
}

void copyCompareDestroy(Element tree, unsigned int levels)
{
    EXPECT_EQ(depthOf(tree), levels);
    Element copy = tree;
    EXPECT_EQ(depthOf(copy), levels);
    EXPECT_TRUE(copy == tree);
    innermostOf(copy) = Element(Trivial_T<long long>(2));
    EXPECT_FALSE(copy == tree);
    Element moved = std::move(tree);
    EXPECT_EQ(depthOf(moved), levels);
    moved = copy;
    EXPECT_TRUE(moved == copy);
    moved = Element();
}

TEST(DeepTree, OfObjectsIsBuiltCopiedComparedAndDestroyed)
{
    onSmallStack([] { copyCompareDestroy(deepObjects(objectLevels), objectLevels); });
}

TEST(DeepTree, OfArraysIsBuiltCopiedComparedAndDestroyed)
{
    onSmallStack([] { copyCompareDestroy(deepArrays(arrayLevels), arrayLevels); });
}

TEST(DeepTree, OfBothIsBuiltCopiedComparedAndDestroyed)
{
    onSmallStack([] {
        Element const tree = deepMixed(arrayLevels);
        Element const copy = tree;
        EXPECT_TRUE(copy == tree);
        EXPECT_FALSE(copy == deepMixed(arrayLevels + 1));
    });
}

TEST(DeepTree, IsClearedAndReplaced)
{
    onSmallStack([] {
        Element objects = deepObjects(arrayLevels);
        static_cast<Object&>(objects).clear();
        EXPECT_EQ(objects, Element(Object()));
        Element arrays = deepArrays(arrayLevels);
        static_cast<Array&>(arrays).clear();
        EXPECT_EQ(arrays, Element(Array()));
        objects = deepObjects(arrayLevels);
        objects = Element(Trivial_T<long long>(1));
        EXPECT_EQ(objects.asInt64(), 1);
        Element inside = deepArrays(arrayLevels);
        inside = std::move(static_cast<Array&>(inside)[0]);
        EXPECT_EQ(depthOf(inside), arrayLevels - 1);
        Object object = deepObjects(arrayLevels);
        object = static_cast<Object&>(object["a"]);
        EXPECT_EQ(depthOf(Element(std::move(object))), arrayLevels - 1);
    });
}

TEST(DeepTree, BuiltFromTheInsideIsDestroyed)
{
    onSmallStack([] {
        Element tree;
        for (unsigned int i = 0; i < arrayLevels; ++i) {
            Element outer;
            outer["a"] = std::move(tree);
            tree = std::move(outer);
        }
        EXPECT_EQ(depthOf(tree), arrayLevels);
    });
}

TEST(DeepTree, IsRefusedByThePrinter)
{
    onSmallStack([] {
        EXPECT_THROW(Json::printText(deepObjects(arrayLevels)), Json::PrintError);
        EXPECT_THROW(Json::printText(deepArrays(arrayLevels)), Json::PrintError);
    });
}

TEST(DeepTree, TextIsReadAndPrintedUpToTheLimit)
{
    onSmallStack([] {
        std::string const text = std::string(1024, '[') + std::string(1024, ']');
        EXPECT_EQ(Json::printText(Json::readText(text)), text);
        EXPECT_THROW(Json::readText(std::string(1000000, '[')), Json::ParseError);
    });
}

TEST(DeepTree, IsDestroyedWithoutMemory)
{
    onSmallStack([] {
        std::ptrdiff_t const before = livePieces();
        {
            Element objects = deepObjects(arrayLevels);
            Element arrays = deepArrays(arrayLevels);
            Element mixed = deepMixed(arrayLevels);
            Element replaced = deepObjects(arrayLevels);
            Element cleared = deepArrays(arrayLevels);
            std::size_t const allocated = allocations();
            FailingMemory const memory(0);
            replaced = std::move(mixed);
            static_cast<Array&>(cleared).clear();
            {
                Element const dies = std::move(objects);
                Element const diesToo = std::move(arrays);
            }
            replaced = Element();
            EXPECT_FALSE(memory.failed());
            EXPECT_EQ(allocations(), allocated);
        }
        EXPECT_EQ(livePieces(), before);
    });
}

TEST(DeepTree, FailsToCopyWithoutMemoryAndStaysWhole)
{
    onSmallStack([] {
        std::ptrdiff_t const before = livePieces();
        {
            Element const objects = deepObjects(arrayLevels);
            Element const arrays = deepArrays(arrayLevels);
            Element const mixed = deepMixed(arrayLevels);
            Element target(Trivial_T<std::string>("the former text of the target"));
            std::ptrdiff_t const live = livePieces();
            auto const failsToAssign = [&target](Element const& source, std::size_t first, bool andAllAfter) {
                FailingMemory const memory(first, andAllAfter);
                EXPECT_THROW(target = source, std::bad_alloc) << first;
            };
            auto const failsToCopy = [](Element const& source, std::size_t first, bool andAllAfter) {
                FailingMemory const memory(first, andAllAfter);
                EXPECT_THROW(Element copy(source), std::bad_alloc) << first;
            };
            for (Element const* const source : {&objects, &arrays, &mixed})
                for (std::size_t const first : {0u, 1u, 2u, 3u, 1000u, 100001u})
                    for (bool const andAllAfter : {false, true}) {
                        failsToAssign(*source, first, andAllAfter);
                        failsToCopy(*source, first, andAllAfter);
                        EXPECT_EQ(target.asString(), "the former text of the target");
                        EXPECT_EQ(livePieces(), live);
                    }
            EXPECT_EQ(depthOf(objects), arrayLevels);
            EXPECT_EQ(depthOf(arrays), arrayLevels);
        }
        EXPECT_EQ(livePieces(), before);
    });
}

} // namespace
} // namespace Zelk::MetaData
