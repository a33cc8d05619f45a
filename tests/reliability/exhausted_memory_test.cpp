// Memory runs out at every allocation that an operation makes: at that one alone, and from that one on. Each
// time the operation throws std::bad_alloc or, where failures are swallowed by design, ends; nothing leaks,
// and what was worked on is as it is promised to be.
#include "framework/element.h"
#include "framework/json_array.h"
#include "framework/json_text.h"
#include "msgs/legacystate/state_command.h"
#include "tests/reliability/failing_new.h"
#include "tests/samples/samples.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace Zelk::Testing {
namespace {

using MetaData::Array;
using MetaData::Element;
using MetaData::Object;
using MetaData::Trivial_T;

/// Puts `operation`, on what `setUp` makes, through a shortage at each of its allocations. `check` is told,
/// with memory again at hand, what the operation worked on and whether it threw.
///
/// Returns how many allocations the operation makes.
template <typename SetUp, typename Operation, typename Check>
long runOutEverywhere(SetUp setUp, Operation operation, Check check)
{
    long allocations = 0;
    for (Failing const mode : {Failing::once, Failing::onwards}) {
        for (long allowed = 0;; ++allowed) {
            long const before = liveAllocations();
            bool threw = false;
            bool shortage = false;
            bool wrongException = false;
            {
                auto state = setUp();
                {
                    MemoryShortage const limit(mode, allowed);
                    try {
                        operation(*state);
                    } catch (std::bad_alloc const&) {
                        threw = true;
                    } catch (...) {
                        wrongException = true;
                    }
                    shortage = MemoryShortage::occurred();
                }
                check(*state, threw);
            }
            long const leaked = liveAllocations() - before;
            EXPECT_EQ(leaked, 0) << "leaked, allocation " << allowed << " failed";
            EXPECT_FALSE(wrongException) << "another exception, allocation " << allowed << " failed";
            if (!shortage) {
                EXPECT_FALSE(threw);
                allocations = allowed;
                break;
            }
            if (::testing::Test::HasFailure())
                return allowed;
        }
    }
    return allocations;
}

/// The same for an operation on a copy of `initial`, which `check` compares with it.
template <typename T, typename Operation, typename Check>
long runOutEverywhereOn(T const& initial, Operation operation, Check check)
{
    return runOutEverywhere([&] { return std::make_unique<T>(initial); }, operation, check);
}

Element tree(std::string const& text)
{
    return Json::readText(text);
}

/// A tree with several members, long strings, and objects and arrays inside of each other.
std::string const treeText =
    R"({"a":[1,2.5,"a string that needs memory",{"b":{"c":[[],[null,{}]]}}],"d":{"e":"another of those strings",)"
    R"("f":{},"g":[[[1]]]},"h":true,"name longer than fifteen bytes":"x","i":1,"j":2,"k":3,"l":4,"m":5,"n":6,"o":7})";

/// Takes what is written without allocating, and counts it.
class CountingBuffer : public std::streambuf {
public:
    std::size_t count() const { return count_; }

protected:
    int_type overflow(int_type byte) override
    {
        ++count_;
        return traits_type::not_eof(byte);
    }
    std::streamsize xsputn(char const*, std::streamsize size) override
    {
        count_ += static_cast<std::size_t>(size);
        return size;
    }

private:
    std::size_t count_ = 0;
};

/// A stream that needs no memory to be written to.
struct CountingStream {
    CountingBuffer buffer;
    std::ostream stream{&buffer};
};

// ---- trees

TEST(ExhaustedMemory, LeavesTheTargetOfACopyAssignmentUnchanged)
{
    Element const source = tree(treeText);
    for (char const* former : {"null", "7", R"("a string that needs memory, too")",
                               R"({"x":[1,2,{"y":"z"}]})", R"([[1],{"x":{}}])"}) {
        SCOPED_TRACE(former);
        Element const initial = tree(former);
        EXPECT_GT(
            runOutEverywhereOn(
                initial, [&](Element& target) { target = source; },
                [&](Element const& target, bool threw) { EXPECT_EQ(target, threw ? initial : source); }),
            1);
    }
}

TEST(ExhaustedMemory, LeavesTheTargetUnchangedWhenItIsAssignedFromAPartOfItself)
{
    Element const initial = tree(treeText);
    Element const part = initial["a"];
    runOutEverywhereOn(
        initial, [](Element& target) { target = std::as_const(target)["a"]; },
        [&](Element const& target, bool threw) { EXPECT_EQ(target, threw ? initial : part); });
}

TEST(ExhaustedMemory, LeavesObjectsAndArraysUnchangedWhenTheyAreAssigned)
{
    Object const object = tree(treeText);
    Object const formerObject = tree(R"({"x":[1,2,{"y":"z"}]})");
    EXPECT_GT(
        runOutEverywhereOn(
            formerObject, [&](Object& target) { target = object; },
            [&](Object const& target, bool threw) { EXPECT_EQ(target, threw ? formerObject : object); }),
        1);
    Array const array = object["a"];
    Array const formerArray = tree(R"([[1],{"x":{}}])");
    EXPECT_GT(runOutEverywhereOn(
                  formerArray, [&](Array& target) { target = array; },
                  [&](Array const& target, bool threw) { EXPECT_EQ(target, threw ? formerArray : array); }),
              1);
}

TEST(ExhaustedMemory, LeavesNothingOfATreeThatCannotBeCopied)
{
    Element const source = tree(treeText);
    EXPECT_GT(runOutEverywhereOn(
                  0, [&](int&) { Element const copy(source); }, [](int, bool) {}),
              1);
    Object const object = source;
    Array const array = source["a"];
    runOutEverywhereOn(
        0, [&](int&) { Element const copy(object); }, [](int, bool) {});
    runOutEverywhereOn(
        0, [&](int&) { Element const copy(array); }, [](int, bool) {});
    EXPECT_EQ(source, tree(treeText));
}

TEST(ExhaustedMemory, DoesNotMatterToMovingClearingAndDestroying)
{
    auto object = std::make_unique<Element>(tree(treeText));
    auto array = std::make_unique<Element>(tree("[" + treeText + "," + treeText + "]"));
    Element target = tree(treeText);
    bool occurred = false;
    {
        MemoryShortage const none(Failing::onwards, 0);
        Element moved(std::move(*object));
        target = std::move(moved);
        Element part(std::move(static_cast<Array&>(*array)[0]));
        std::swap(part, target);
        static_cast<Array&>(*array).clear();
        static_cast<Object&>(target).clear();
        object.reset();
        array.reset();
        occurred = MemoryShortage::occurred();
    }
    EXPECT_FALSE(occurred);
    EXPECT_EQ(target, Element(Object()));
}

TEST(ExhaustedMemory, InsertsAMemberOrChangesNothing)
{
    std::string const name = "the name of a member that is new";
    for (char const* former : {"null", "{}", R"({"a":1})", treeText.c_str()}) {
        SCOPED_TRACE(former);
        Element const initial = tree(former);
        runOutEverywhereOn(
            initial, [&](Element& target) { target[name] = Trivial_T<bool>(true); },
            [&](Element const& target, bool threw) {
                if (threw && initial.GetElementType() == Element::empty)
                    EXPECT_TRUE(target == initial || target == Element(Object()));
                else if (threw)
                    EXPECT_EQ(target, initial);
                else
                    EXPECT_TRUE(target[name].asBoolean());
            });
    }
    // So many that every way in which an object gets memory is taken.
    Object const empty;
    runOutEverywhereOn(
        empty,
        [](Object& target) {
            char member[] = "member 000, which is a long name";
            for (int i = 0; i < 300; ++i) {
                member[7] = static_cast<char>('0' + i / 100);
                member[8] = static_cast<char>('0' + i / 10 % 10);
                member[9] = static_cast<char>('0' + i % 10);
                target[member] = Trivial_T<long long>(i);
            }
        },
        [](Object const& target, bool threw) {
            if (!threw) {
                EXPECT_EQ(target.size(), 300u);
            }
            long long expected = 0;
            for (Object::Member const& member : target) {
                // Only the member whose value was being made may still be empty.
                EXPECT_TRUE(member.element() == Element(Trivial_T<long long>(expected)));
                ++expected;
            }
        });
}

TEST(ExhaustedMemory, GrowsAnArrayOrChangesNothing)
{
    for (unsigned int const index : {0u, 1u, 11u, 12u, 13u, 100u, 5000u}) {
        SCOPED_TRACE(index);
        for (char const* former : {"[]", R"([1,"a string that needs memory"])"}) {
            Array const initial = tree(former);
            runOutEverywhereOn(
                initial, [&](Array& target) { target[index]; },
                [&](Array const& target, bool threw) {
                    if (threw)
                        EXPECT_EQ(target, initial);
                    else
                        EXPECT_GT(target.size(), index);
                });
        }
    }
}

TEST(ExhaustedMemory, LeavesEqualTreesEqual)
{
    Element const a = tree(treeText);
    Element const b = tree(treeText);
    runOutEverywhereOn(
        false, [&](bool& equal) { equal = a == b; }, [](bool equal, bool threw) { EXPECT_NE(equal, threw); });
}

TEST(ExhaustedMemory, KeepsTheKindWhenAStringCannotBeStored)
{
    std::string const value(100, 'x');
    Element const initial = tree(R"({"former":1})");
    EXPECT_GT(runOutEverywhereOn(
                  initial, [&](Element& target) { MetaData::SetAs<std::string>(value, target); },
                  [&](Element const& target, bool threw) {
                      EXPECT_EQ(target, threw ? initial : Element(Trivial_T<std::string>(value)));
                  }),
              0);
    Element const node{Trivial_T<std::string>(value)};
    EXPECT_GT(
        runOutEverywhereOn(
            std::string("former"), [&](std::string& target) { MetaData::GetAs<std::string>(node, target); },
            [&](std::string const& target, bool threw) { EXPECT_EQ(target, threw ? "former" : value); }),
        0);
}

TEST(ExhaustedMemory, LeavesNothingOfADeepTreeThatCannotBeCopied)
{
    std::string const opening(1000, '[');
    std::string const closing(1000, ']');
    Element const arrays = tree(opening + closing);
    Element objects;
    for (int level = 0; level < 1000; ++level) {
        Element outer;
        outer["x"] = std::move(objects);
        objects = std::move(outer);
    }
    for (Element const* source : {&arrays, &std::as_const(objects)}) {
        EXPECT_GT(runOutEverywhereOn(
                      Element(), [&](Element& target) { target = *source; },
                      [](Element const& target, bool threw) { EXPECT_EQ(target == Element(), threw); }),
                  1);
    }
}

// ---- text

TEST(ExhaustedMemory, LeavesNothingOfATextThatCannotBeRead)
{
    // The long ones are read into memory that is taken in larger pieces, the items of the last one in one by
    // itself.
    std::string longText = "[" + treeText;
    while (longText.size() < 20000)
        longText += "," + treeText;
    longText += "]";
    std::string manyItems = "[[]";
    while (manyItems.size() < 10000)
        manyItems += ",0";
    manyItems += "]";
    for (std::string const& text : {treeText, longText, manyItems}) {
        Element const expected = tree(text);
        EXPECT_GT(
            runOutEverywhereOn(
                Element(), [&](Element& target) { target = Json::readText(text); },
                [&](Element const& target, bool threw) { EXPECT_EQ(target, threw ? Element() : expected); }),
            1);
    }
}

TEST(ExhaustedMemory, WritesAWholeTextOrNothing)
{
    Element const source = tree("[" + treeText + "," + treeText + "]");
    std::string const text = Json::printText(source);
    EXPECT_GT(runOutEverywhereOn(
                  std::string(), [&](std::string& target) { target = Json::printText(source); },
                  [&](std::string const& target, bool threw) { EXPECT_EQ(target, threw ? "" : text); }),
              0);
    runOutEverywhere([] { return std::make_unique<CountingStream>(); },
                     [&](CountingStream& target) { Json::printText(source, target.stream); },
                     [&](CountingStream const& target, bool threw) {
                         EXPECT_EQ(target.buffer.count(), threw ? 0 : text.size());
                     });
}

TEST(ExhaustedMemory, FailsWithoutTextsOfErrorsToo)
{
    // The text of an error needs memory as well; then it is the lack of memory that is reported.
    for (char const* text : {R"({"a":[1,2,{"b":tru}]})", "[1,2", "\"\xff\""}) {
        SCOPED_TRACE(text);
        runOutEverywhereOn(
            false,
            [&](bool& refused) {
                try {
                    Json::readText(text);
                } catch (Json::ParseError const&) {
                    refused = true;
                }
            },
            [](bool refused, bool threw) { EXPECT_NE(refused, threw); });
    }
    Element const number{Trivial_T<long long>(1)};
    runOutEverywhereOn(
        false,
        [&](bool& refused) {
            try {
                number.asString();
            } catch (MetaData::TypeError const&) {
                refused = true;
            }
        },
        [](bool refused, bool threw) { EXPECT_NE(refused, threw); });
}

// ---- lists

TEST(ExhaustedMemory, KeepsAListThatCannotGrow)
{
    Json::Array<int> const initial{1, 2, 3};
    runOutEverywhereOn(
        initial, [](Json::Array<int>& list) { list.push_back(4); },
        [&](Json::Array<int> const& list, bool threw) {
            EXPECT_EQ(list, threw ? initial : (Json::Array<int>{1, 2, 3, 4}));
        });
}

// ---- every message, record and list

class ShortOfMemory : public ::testing::TestWithParam<Kind> {
protected:
    /// An object that holds a tree and what was read from it.
    std::unique_ptr<Subject> subjectThatHasRead() const
    {
        auto subject = kind_.blank();
        subject->fromText(kind_.text);
        return subject;
    }

    /// Whatever became of the object, it can be copied, written and read into.
    void expectUsable(Subject& subject) const
    {
        auto const copy = subject.copy();
        if (!subject.ofFields()) {
            EXPECT_EQ(copy->toText(), subject.toText());
        }
        subject.fill();
        subject.fromText(kind_.text);
        subject.toText();
    }

    /// That an object which was worked on is usable, and nothing more.
    auto usable() const
    {
        return [this](Subject& subject, bool) { expectUsable(subject); };
    }

    /// That the object writes the text of its class, whether the operation threw or not.
    auto writesItsText() const
    {
        return [this](Subject& subject, bool) {
            EXPECT_EQ(subject.toText(), kind_.text);
            expectUsable(subject);
        };
    }

    auto blank() const
    {
        return [this] { return kind_.blank(); };
    }
    auto filled() const
    {
        return [this] { return kind_.filled(); };
    }

    Kind const kind_ = GetParam();
    Element const good_ = Json::readText(kind_.text);
};

INSTANTIATE_TEST_SUITE_P(Classes, ShortOfMemory, ::testing::ValuesIn(allKinds()),
                         [](auto const& test) { return testName(test.param.name); });

TEST_P(ShortOfMemory, MakesAWholeObjectOrNone)
{
    runOutEverywhereOn(
        0, [&](int&) { kind_.filled(); }, [](int, bool) {});
}

TEST_P(ShortOfMemory, LeavesAnEditedObjectUsable)
{
    runOutEverywhere(
        blank(), [](Subject& subject) { subject.fill(); }, usable());
    runOutEverywhere(
        filled(), [](Subject& subject) { subject.fill(); }, usable());
}

TEST_P(ShortOfMemory, LeavesTheTargetOfACopyUsable)
{
    auto const source = kind_.filled();
    source->toText(); // so that there is a tree to be copied too
    runOutEverywhereOn(
        0, [&](int&) { source->copy(); }, [](int, bool) {});
    runOutEverywhere(
        blank(), [&](Subject& target) { target.assign(*source); }, usable());
    runOutEverywhere([&] { return subjectThatHasRead(); }, [&](Subject& target) { target.assign(*source); },
                     usable());
    EXPECT_EQ(source->toText(), kind_.text);
}

TEST_P(ShortOfMemory, KeepsTheMembersOfAnObjectThatIsWrittenIntoATree)
{
    runOutEverywhere(
        filled(),
        [](Subject const& subject) {
            Element target;
            subject.copyTo(target);
        },
        writesItsText());
    runOutEverywhere(
        filled(),
        [](Subject& subject) {
            Element target;
            subject.moveTo(target);
        },
        writesItsText());
    runOutEverywhere(
        filled(),
        [&](Subject const& subject) {
            Element target(good_);
            subject.copyTo(target);
        },
        writesItsText());
}

TEST_P(ShortOfMemory, KeepsTheMembersOfAnObjectThatIsWrittenAsText)
{
    runOutEverywhere(
        filled(), [](Subject const& subject) { subject.toText(); }, writesItsText());
    runOutEverywhere(
        filled(), [](Subject& subject) { subject.moveToText(); }, writesItsText());
}

TEST_P(ShortOfMemory, GivesAStreamTheWholeTextOrNothing)
{
    struct Writing {
        std::unique_ptr<Subject> subject;
        CountingStream target;
    };
    auto const setUp = [&] {
        auto writing = std::make_unique<Writing>();
        writing->subject = kind_.filled();
        return writing;
    };
    auto const check = [&](Writing& writing, bool threw) {
        EXPECT_EQ(writing.target.buffer.count(), threw ? 0 : kind_.text.size());
        EXPECT_EQ(writing.subject->toText(), kind_.text);
    };
    runOutEverywhere(
        setUp, [](Writing& writing) { writing.subject->toStream(writing.target.stream); }, check);
    runOutEverywhere(
        setUp, [](Writing& writing) { writing.subject->moveToStream(writing.target.stream); }, check);
}

TEST_P(ShortOfMemory, HasTheFormerTreeBackWhenReadingFails)
{
    // The object has read another tree before, which it must have back when reading fails.
    Element former(good_);
    if (former.GetElementType() == Element::object)
        former["kept"] = Trivial_T<std::string>("a string that needs memory");
    auto const setUp = [&] {
        auto subject = kind_.blank();
        subject->copyFrom(former);
        return subject;
    };
    auto const untouched = setUp();
    Element const expectedInternal = untouched->internal() == nullptr ? Element() : *untouched->internal();
    auto const check = [&](Subject& subject, bool threw) {
        if (threw && subject.internal() != nullptr) {
            EXPECT_EQ(*subject.internal(), expectedInternal);
        }
        expectUsable(subject);
    };
    runOutEverywhere(
        setUp, [&](Subject& subject) { subject.copyFrom(good_); }, check);
    long const allocations = runOutEverywhere(
        setUp, [&](Subject& subject) { subject.fromText(kind_.text); }, check);
    EXPECT_EQ(allocations > 0, kind_.text != "null");

    struct Moving {
        std::unique_ptr<Subject> subject;
        Element source;
    };
    runOutEverywhere(
        [&] {
            auto moving = std::make_unique<Moving>();
            moving->subject = setUp();
            moving->source = good_;
            return moving;
        },
        [](Moving& moving) { moving.subject->moveFrom(std::move(moving.source)); },
        [&](Moving& moving, bool threw) { check(*moving.subject, threw); });
}

TEST_P(ShortOfMemory, LeavesAnObjectThatReadsAStreamUsable)
{
    struct Reading {
        std::unique_ptr<Subject> subject;
        std::istringstream source;
    };
    runOutEverywhere(
        [&] {
            auto reading = std::make_unique<Reading>();
            reading->subject = subjectThatHasRead();
            reading->source.str(kind_.text);
            return reading;
        },
        [](Reading& reading) { reading.subject->fromStream(reading.source); },
        [&](Reading& reading, bool) { expectUsable(*reading.subject); });
}

TEST_P(ShortOfMemory, DestroysAnObject)
{
    auto subject = subjectThatHasRead();
    auto const copy = subject->copy();
    bool occurred = false;
    {
        MemoryShortage const none(Failing::onwards, 0);
        subject.reset();
        occurred = MemoryShortage::occurred();
    }
    EXPECT_FALSE(occurred);
    EXPECT_EQ(copy->toText(), kind_.text);
}

} // namespace
} // namespace Zelk::Testing
