// Every class is given every tree that differs from a good one in one place: a member or item is missing, or
// is something else. Whatever that is, only the documented exceptions leave, the four ways of reading agree,
// and the object is as good as before.
//
// No event of the trees has a "param0_name": reading one does not end before memory does.
#include "framework/element.h"
#include "framework/error.h"
#include "framework/json_text.h"
#include "tests/samples/samples.h"
#include "tests/tree_edits.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Zelk::Testing {
namespace {

using MetaData::Element;
using MetaData::Trivial_T;

Element nested(unsigned int levels, bool objects)
{
    Element tree;
    for (unsigned int level = 0; level < levels; ++level) {
        Element outer;
        if (objects)
            outer["id"] = std::move(tree);
        else
            static_cast<MetaData::Array&>(outer)[0] = std::move(tree);
        tree = std::move(outer);
    }
    return tree;
}

/// Nodes of every kind that a reader may find where it expects something else.
std::vector<Element> strangeValues()
{
    std::vector<Element> values;
    for (char const* text : {"null",
                             "true",
                             "false",
                             "0",
                             "1",
                             "-1",
                             "-3",
                             "-4",
                             "-5",
                             "-6",
                             "-7",
                             "-9",
                             "-10",
                             "2147483647",
                             "2147483648",
                             "-2147483648",
                             "-2147483649",
                             "4294967295",
                             "4294967296",
                             "4294967292",
                             "-4294967297",
                             "9223372036854775807",
                             "-9223372036854775808",
                             "0.0",
                             "-0.0",
                             "1.0",
                             "-4.7",
                             "0.00001",
                             "0.000011",
                             "2147483647.5",
                             "-2147483649.5",
                             "4294967296.5",
                             "1e300",
                             "-1e300",
                             "5e-324",
                             R"("")",
                             R"("0")",
                             R"("id")",
                             R"("\u0000")",
                             R"("\ud83d\ude00")",
                             R"("{\"id\":1}")",
                             "[]",
                             "[null]",
                             "[[]]",
                             "[{}]",
                             "[1]",
                             "[0.5]",
                             R"([1,"a",true,null,{"name":"n","id":1}])",
                             "{}",
                             R"({"":null})",
                             R"({"id":1})",
                             R"({"ids":[1,2,3]})",
                             R"({"name":"n","id":"x"})",
                             R"({"StateName":[]})"})
        values.push_back(Json::readText(text));
    for (double const number :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()})
        values.emplace_back(Trivial_T<double>(number));
    for (char const* bytes : {"\xff", "\xc0\x80", "\xed\xa0\x80"})
        values.emplace_back(Trivial_T<std::string>(bytes));
    values.emplace_back(Trivial_T<std::string>(std::string(100000, 'x')));
    values.push_back(nested(1000, true));
    values.push_back(nested(3000, true));
    values.push_back(nested(3000, false));
    Element manyItems;
    static_cast<MetaData::Array&>(manyItems)[9999] = Trivial_T<long long>(1);
    values.push_back(manyItems);
    return values;
}

/// The ways to all nodes below the root: members and items.
std::vector<Path> placesIn(Element const& tree)
{
    std::vector<Path> places = membersOf(tree);
    std::vector<Path> arrays = places;
    arrays.emplace_back(); // the root may be an array
    for (Path const& path : arrays) {
        Element copy(tree);
        Element const& node = nodeAt(copy, path);
        if (node.GetElementType() != Element::array)
            continue;
        for (unsigned int index = 0; index < static_cast<MetaData::Array const&>(node).size(); ++index) {
            places.push_back(path);
            places.back().push_back(std::to_string(index));
        }
    }
    return places;
}

struct BadTree {
    std::string description;
    Element tree;
};

/// All trees that differ from `good` in one place.
std::vector<BadTree> badTrees(Element const& good)
{
    std::vector<BadTree> trees;
    for (Path const& path : membersOf(good))
        trees.push_back({"without " + toString(path), without(good, path)});
    std::vector<Path> places = placesIn(good);
    places.emplace_back();
    std::vector<Element> const values = strangeValues();
    for (Path const& path : places) {
        for (std::size_t i = 0; i < values.size(); ++i)
            trees.push_back(
                {"value " + std::to_string(i) + " at " + toString(path), with(good, path, values[i])});
    }
    return trees;
}

/// How a reading ended: an empty text when it returned, or the type and text of the documented exception.
template <typename Read>
std::string outcomeOf(Read read)
{
    static std::set<std::string> const texts = {
        "event id does not match expected value", "event ID does not match expected value",
        "event ids and filter lists do not match", "message identifier does not match expected value"};
    try {
        read();
        return "";
    } catch (MetaData::TypeError const& error) {
        return std::string("TypeError: ") + error.what();
    } catch (MetaData::MissingMemberError const& error) {
        return std::string("MissingMemberError: ") + error.what();
    } catch (std::runtime_error const& error) {
        if (typeid(error) != typeid(std::runtime_error) || texts.count(error.what()) == 0)
            ADD_FAILURE() << "threw " << typeid(error).name() << ": " << error.what();
        return error.what();
    } catch (std::exception const& error) {
        ADD_FAILURE() << "threw " << typeid(error).name() << ": " << error.what();
        return typeid(error).name();
    }
}

/// The tree as text, or nothing when it has no text.
std::optional<std::string> textOf(Element const& tree)
{
    try {
        return Json::printText(tree);
    } catch (Json::PrintError const&) {
        return std::nullopt;
    }
}

/// The same number in two trees, or both not a number, which no tree is equal to.
bool sameTree(Element const& a, Element const& b)
{
    if (a == b)
        return true;
    // Only a tree with a number that is not a number in it differs from a copy of itself.
    return Element(a) != a && Element(b) != b;
}

/// What the object holds now, as a tree. Writing is possible in every state.
Element written(Subject const& subject)
{
    Element tree;
    subject.copyTo(tree);
    return tree;
}

class BadTrees : public ::testing::TestWithParam<Kind> {
protected:
    /// An object that was filled by reading the good tree with a member that its class does not know.
    std::unique_ptr<Subject> subjectThatHasRead() const
    {
        auto subject = kind_.blank();
        subject->copyFrom(formerTree());
        return subject;
    }

    Element formerTree() const
    {
        Element tree = good_;
        if (tree.GetElementType() == Element::object)
            tree["kept"] = Trivial_T<long long>(1);
        return tree;
    }

    /// Whatever became of the object, it can be copied, written, read into and destroyed.
    void expectUsable(Subject& subject)
    {
        auto const copy = subject.copy();
        Element const tree = written(subject);
        auto const assigned = kind_.blank();
        assigned->assign(subject);
        EXPECT_TRUE(sameTree(written(*assigned), written(*copy)));
        EXPECT_TRUE(sameTree(written(*copy->copy()), written(*copy)));
        if (!subject.ofFields()) {
            EXPECT_TRUE(sameTree(written(*copy), tree));
        }
        if (std::optional<std::string> const text = textOf(tree)) {
            EXPECT_EQ(subject.toText(), *text);
        } else {
            EXPECT_THROW(subject.toText(), Json::PrintError);
        }
        subject.fill();
        subject.copyFrom(good_);
        if (kind_.text != "null" && kind_.name.find("Array<") == std::string::npos) {
            EXPECT_EQ(subject.toText(), kind_.text);
        }
        copy->fromText(kind_.text);
    }

    Kind const kind_ = GetParam();
    Element const good_ = Json::readText(kind_.text);
};

INSTANTIATE_TEST_SUITE_P(Classes, BadTrees, ::testing::ValuesIn(allKinds()),
                         [](auto const& test) { return testName(test.param.name); });

TEST_P(BadTrees, LetOnlyDocumentedExceptionsLeaveAndTheObjectUsable)
{
    std::size_t refused = 0;
    std::size_t read = 0;
    for (BadTree const& bad : badTrees(good_)) {
        SCOPED_TRACE(bad.description);

        auto const copied = subjectThatHasRead();
        std::string const outcome = outcomeOf([&] { copied->copyFrom(bad.tree); });
        (outcome.empty() ? read : refused) += 1;

        auto const moved = subjectThatHasRead();
        Element source(bad.tree);
        EXPECT_EQ(outcomeOf([&] { moved->moveFrom(std::move(source)); }), outcome);
        EXPECT_TRUE(sameTree(written(*moved), written(*copied)));

        if (std::optional<std::string> const text = textOf(bad.tree)) {
            auto const parsed = subjectThatHasRead();
            EXPECT_EQ(outcomeOf([&] { parsed->fromText(*text); }), outcome);
            EXPECT_TRUE(sameTree(written(*parsed), written(*copied)));
            auto const streamed = subjectThatHasRead();
            std::istringstream stream(*text);
            EXPECT_EQ(outcomeOf([&] { streamed->fromStream(stream); }), outcome);
            EXPECT_TRUE(sameTree(written(*streamed), written(*copied)));
        }

        expectUsable(*copied);
        expectUsable(*moved);
        if (HasFailure())
            return;
    }
    // Classes without a form of their own read anything; every other class refuses some trees and not others.
    if (kind_.text == "null") {
        EXPECT_EQ(refused, 0u);
    } else {
        EXPECT_GT(refused, 0u);
    }
    EXPECT_GT(read, 0u);
}

TEST_P(BadTrees, LeaveTheFormerInternalObjectAndTheTreeOfTheCaller)
{
    for (BadTree const& bad : badTrees(good_)) {
        SCOPED_TRACE(bad.description);
        auto const subject = subjectThatHasRead();
        if (subject->internal() == nullptr)
            return;
        Element const former(*subject->internal());
        Element const copySource(bad.tree);
        bool const copyFailed = !outcomeOf([&] { subject->copyFrom(copySource); }).empty();
        EXPECT_TRUE(sameTree(copySource, bad.tree));
        if (copyFailed) {
            EXPECT_EQ(*subject->internal(), former);
        }

        auto const moving = subjectThatHasRead();
        Element moveSource(bad.tree);
        if (!outcomeOf([&] { moving->moveFrom(std::move(moveSource)); }).empty()) {
            EXPECT_EQ(*moving->internal(), former);
            // Members that were looked up and missing have been created in it.
            EXPECT_TRUE(bad.tree.GetElementType() == moveSource.GetElementType() ||
                        bad.tree.GetElementType() == Element::empty);
        } else {
            EXPECT_EQ(moveSource, Element());
        }

        if (std::optional<std::string> const text = textOf(bad.tree)) {
            auto const parsing = subjectThatHasRead();
            if (!outcomeOf([&] { parsing->fromText(*text); }).empty()) {
                EXPECT_EQ(*parsing->internal(), former);
            }
        }
        if (HasFailure())
            return;
    }
}

TEST_P(BadTrees, AreRefusedAsTextWithoutAnyChangeWhereverTheTextIsCut)
{
    auto const subject = subjectThatHasRead();
    std::string const former = subject->toText();
    for (std::size_t length = 0; length < kind_.text.size(); ++length) {
        SCOPED_TRACE(length);
        EXPECT_THROW(subject->fromText(kind_.text.substr(0, length)), Json::ParseError);
        std::istringstream stream(kind_.text.substr(0, length));
        EXPECT_THROW(subject->fromStream(stream), Json::ParseError);
    }
    EXPECT_EQ(subject->toText(), former);
}

} // namespace
} // namespace Zelk::Testing
