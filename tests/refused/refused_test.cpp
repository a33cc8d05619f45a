#include "framework/error.h"
#include "framework/json_text.h"
#include "tests/samples/samples.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace Zelk::Testing {
namespace {

std::string const folder = ZELK_REFUSED_DIR;

/// A line of the table.
struct Refusal {
    std::string text;
    std::string message;
    std::string exception;
    std::string what;
};

void PrintTo(Refusal const& refusal, std::ostream* stream)
{
    *stream << refusal.text;
}

std::vector<Refusal> readTable()
{
    std::ifstream file(folder + "/errors.tsv");
    std::string line;
    std::getline(file, line); // the heading
    std::vector<Refusal> table;
    while (std::getline(file, line)) {
        std::istringstream columns(line);
        Refusal refusal;
        std::getline(columns, refusal.text, '\t');
        std::getline(columns, refusal.message, '\t');
        std::getline(columns, refusal.exception, '\t');
        std::getline(columns, refusal.what, '\t');
        table.push_back(refusal);
    }
    return table;
}

std::string contentOf(std::string const& name)
{
    std::ifstream file(folder + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string nameOf(std::exception const& error)
{
    if (typeid(error) == typeid(std::runtime_error))
        return "std::runtime_error";
    if (typeid(error) == typeid(MetaData::TypeError))
        return "Zelk::MetaData::TypeError";
    if (typeid(error) == typeid(MetaData::MissingMemberError))
        return "Zelk::MetaData::MissingMemberError";
    if (typeid(error) == typeid(Json::ParseError))
        return "Zelk::Json::ParseError";
    return typeid(error).name();
}

class RefusedText : public ::testing::TestWithParam<Refusal> {};

INSTANTIATE_TEST_SUITE_P(Table, RefusedText, ::testing::ValuesIn(readTable()), [](auto const& test) {
    return testName(std::filesystem::path(test.param.text).stem().string());
});

TEST_P(RefusedText, IsRefusedByItsMessageWithItsError)
{
    Refusal const& refusal = GetParam();
    std::string const text = contentOf(refusal.text);
    ASSERT_NE(text, "");
    auto const subject = kindNamed(refusal.message).filled();
    MetaData::Element former;
    if (subject->internal() != nullptr)
        former = *subject->internal();
    try {
        subject->fromText(text);
        FAIL() << "read " << text;
    } catch (std::exception const& error) {
        EXPECT_EQ(nameOf(error), refusal.exception);
        EXPECT_EQ(error.what(), refusal.what);
    }
    if (subject->internal() != nullptr) {
        EXPECT_EQ(*subject->internal(), former);
    }
    if (refusal.exception == "Zelk::Json::ParseError") {
        EXPECT_EQ(subject->toText(), kindNamed(refusal.message).text);
    }
}

TEST(RefusedTexts, AreAllInTheTable)
{
    std::set<std::string> listed;
    for (Refusal const& refusal : readTable())
        listed.insert(refusal.text);
    std::set<std::string> found;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".json")
            found.insert(entry.path().filename().string());
    }
    EXPECT_EQ(found, listed);
}

TEST(RefusedTexts, ExistForEveryMessage)
{
    std::set<std::string> refusing;
    for (Refusal const& refusal : readTable())
        refusing.insert(refusal.message);
    for (Kind const& kind : messages())
        EXPECT_EQ(refusing.count(kind.name), 1u) << kind.name;
}

} // namespace
} // namespace Zelk::Testing
