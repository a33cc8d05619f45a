/// What the tests of the responses say about reading: short words for trees, and tables of nodes of the wrong
/// kind.
#pragma once

#include "framework/element.h"
#include "framework/error.h"
#include "framework/json_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace Zelk::Testing {

/// The tree of a JSON text.
inline MetaData::Element tree(std::string const& text)
{
    return Json::readText(text);
}

/// The JSON text of a tree.
inline std::string text(MetaData::Element const& element)
{
    return Json::printText(element);
}

/// A node that a reader does not expect, and what it is called in the texts of errors.
struct OtherKind {
    char const* node;
    char const* name;
};

/// A node of each kind but strings.
inline std::vector<OtherKind> kindsOtherThanString()
{
    return {{"7", "integer"},  {"1.5", "floating-point number"}, {"true", "boolean"},
            {"null", "empty"}, {R"({"a":1})", "object"},         {R"(["a"])", "array"}};
}

/// A node of each kind but integers, floating-point integers among them: nothing is converted.
inline std::vector<OtherKind> kindsOtherThanInteger()
{
    return {{R"("7")", "string"}, {"-1.0", "floating-point number"}, {"true", "boolean"},
            {"null", "empty"},    {R"({"a":1})", "object"},          {"[7]", "array"}};
}

/// A node of each kind but arrays.
inline std::vector<OtherKind> kindsOtherThanArray()
{
    return {{"7", "integer"},  {"1.5", "floating-point number"}, {"true", "boolean"},
            {"null", "empty"}, {R"({"0":1})", "object"},         {R"("a")", "string"}};
}

/// A node of each kind but objects.
inline std::vector<OtherKind> kindsOtherThanObject()
{
    return {{"7", "integer"},      {"1.5", "floating-point number"},
            {"true", "boolean"},   {"null", "empty"},
            {R"(["a"])", "array"}, {R"("a")", "string"}};
}

/// A node of each kind but objects and empty nodes, which become objects where members are looked up to be
/// written.
inline std::vector<OtherKind> kindsThatTakeNoMembers()
{
    std::vector<OtherKind> kinds;
    for (OtherKind const& kind : kindsOtherThanObject()) {
        if (std::string(kind.name) != "empty")
            kinds.push_back(kind);
    }
    return kinds;
}

/// Expects `action` to throw exactly `Exception`, no class derived from it, with exactly this text.
template <typename Exception, typename Action>
void expectThrows(Action action, std::string const& what)
{
    try {
        action();
    } catch (Exception const& error) {
        EXPECT_EQ(typeid(error), typeid(Exception)) << error.what();
        EXPECT_EQ(error.what(), what);
        return;
    } catch (std::exception const& error) {
        ADD_FAILURE() << "threw another exception: " << typeid(error).name() << " " << error.what();
        return;
    }
    ADD_FAILURE() << "threw nothing, expected: " << what;
}

} // namespace Zelk::Testing
