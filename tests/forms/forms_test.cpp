// The golden texts pin what is written and what is read, each by itself: a wrong key that both directions
// agree on would pass every round trip.
#include "framework/json_text.h"
#include "msgs/legacystate/metadata_response.h"
#include "tests/samples/samples.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace Zelk::Testing {
namespace {

class Form : public ::testing::TestWithParam<Kind> {};

INSTANTIATE_TEST_SUITE_P(Messages, Form, ::testing::ValuesIn(messages()),
                         [](auto const& test) { return testName(test.param.name); });

TEST_P(Form, IsWritten)
{
    Kind const& kind = GetParam();
    EXPECT_EQ(kind.filled()->toText(), kind.text);
    std::ostringstream stream;
    kind.filled()->toStream(stream);
    EXPECT_EQ(stream.str(), kind.text);
    MetaData::Element tree;
    kind.filled()->copyTo(tree);
    EXPECT_EQ(tree, Json::readText(kind.text));
}

TEST_P(Form, IsWrittenByTheMovingOperations)
{
    Kind const& kind = GetParam();
    EXPECT_EQ(kind.filled()->moveToText(), kind.text);
    std::ostringstream stream;
    kind.filled()->moveToStream(stream);
    EXPECT_EQ(stream.str(), kind.text);
    MetaData::Element tree;
    kind.filled()->moveTo(tree);
    EXPECT_EQ(Json::printText(tree), kind.text);
}

/// What the members of the object say, without the tree that it was read from.
std::string textOfMembers(Subject& subject)
{
    if (subject.internal() != nullptr)
        *subject.internal() = MetaData::Element();
    return subject.toText();
}

TEST_P(Form, IsReadIntoEveryMember)
{
    Kind const& kind = GetParam();
    ASSERT_NE(kind.blank()->toText(), kind.text);
    {
        auto const subject = kind.blank();
        subject->fromText(kind.text);
        EXPECT_EQ(textOfMembers(*subject), kind.text);
    }
    {
        std::istringstream stream(kind.text + "\n");
        auto const subject = kind.blank();
        subject->fromStream(stream);
        EXPECT_EQ(textOfMembers(*subject), kind.text);
    }
    MetaData::Element tree = Json::readText(kind.text);
    {
        auto const subject = kind.blank();
        subject->copyFrom(tree);
        EXPECT_EQ(textOfMembers(*subject), kind.text);
    }
    {
        auto const subject = kind.blank();
        subject->moveFrom(std::move(tree));
        EXPECT_EQ(textOfMembers(*subject), kind.text);
    }
}

TEST_P(Form, IsThatOfACopy)
{
    Kind const& kind = GetParam();
    auto const subject = kind.filled();
    auto const copy = subject->copy();
    auto const assigned = kind.blank();
    assigned->assign(*subject);
    EXPECT_EQ(textOfMembers(*copy), kind.text);
    EXPECT_EQ(textOfMembers(*assigned), kind.text);
    EXPECT_EQ(subject->toText(), kind.text);
}

TEST(Forms, AreOneForEachMessage)
{
    std::set<std::string> expected;
    for (Kind const& kind : messages())
        expected.insert(kind.name + ".json");
    std::set<std::string> found;
    for (auto const& entry : std::filesystem::directory_iterator(ZELK_FORMS_DIR)) {
        if (entry.path().extension() == ".json")
            found.insert(entry.path().filename().string());
    }
    EXPECT_EQ(found, expected);
}

TEST(Forms, IncludeAnEventWithParametersThatIsOnlyWritten)
{
    using Event = Msgs::LegacyState::MetaDataResponse::EventMetaData;
    Msgs::LegacyState::MetaDataResponse response;
    response.setHeader("events");
    Event& event = response.events().emplace_back();
    event.setName("start");
    event.setEventId(7);
    event.params().emplace_back("overwritten", "by the next", MetaData::Element());
    event.params().emplace_back("throttle", "range", Json::readText(R"({"limits":[0,1.5]})"));

    std::ifstream file(std::string(ZELK_FORMS_DIR) + "/written_only/MetaDataResponse.json");
    std::string golden;
    ASSERT_TRUE(std::getline(file, golden));
    EXPECT_EQ(response.toJsonString(), golden);
}

} // namespace
} // namespace Zelk::Testing
