#include "msgs/legacystate/metadata_response.h"
#include "tests/msgs/legacystate_responses/reading.h"
#include "tests/tree_edits.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

namespace Zelk::Msgs::LegacyState {
namespace {

using EventMetaData = MetaDataResponse::EventMetaData;
using ParamMetaData = EventMetaData::ParamMetaData;
using MetaData::MissingMemberError;
using MetaData::TypeError;
using Testing::expectThrows;
using Testing::text;
using Testing::tree;

EventMetaData event(std::string const& name, int id)
{
    EventMetaData event;
    event.setName(name);
    event.setEventId(id);
    return event;
}

ParamMetaData param(std::string const& name, std::string const& type, std::string const& defaultValue)
{
    return ParamMetaData(name, type, tree(defaultValue));
}

std::string written(Json::Serializable const& record)
{
    MetaData::Element target;
    record.copyToMetaData(target);
    return text(target);
}

TEST(MetaDataResponse, WritesAnEmptyListWhenItHasNoEvents)
{
    MetaDataResponse const response;
    EXPECT_TRUE(response.events().empty());
    EXPECT_EQ(response.toJsonString(), R"({"body":{"eventlist":[],"id":-1},"header":""})");
}

TEST(MetaDataResponse, WritesItsEventsInListOrder)
{
    MetaDataResponse response;
    response.setHeader("h");
    response.events().push_back(event("stop", 9));
    response.events().push_back(event("start", -7));
    EXPECT_EQ(
        response.toJsonString(),
        R"({"body":{"eventlist":[{"id":9,"name":"stop"},{"id":-7,"name":"start"}],"id":-1},"header":"h"})");
}

TEST(MetaDataResponse, WritesTheParameterOfAnEvent)
{
    MetaDataResponse response;
    response.events().push_back(event("start", 7));
    response.events()[0].params().push_back(param("speed", "int", "5"));
    EXPECT_EQ(response.toJsonString(),
              R"({"body":{"eventlist":[{"id":7,"name":"start","param0_default":5,"param0_name":"speed",)"
              R"("param0_type":"int"}],"id":-1},"header":""})");
}

TEST(MetaDataResponse, ReadsItsEventsInArrayOrderInPlaceOfThoseItHad)
{
    MetaDataResponse response;
    response.events() = {event("a", 1), event("b", 2), event("c", 3)};
    response.fromJsonString(
        R"({"header":"h","body":{"id":-1,"eventlist":[{"name":"stop","id":9},{"name":"start","id":-7}]}})");
    ASSERT_EQ(response.events().size(), 2u);
    EXPECT_EQ(response.events()[0].name(), "stop");
    EXPECT_EQ(response.events()[0].eventId(), 9);
    EXPECT_TRUE(response.events()[0].params().empty());
    EXPECT_EQ(response.events()[1].name(), "start");
    EXPECT_EQ(response.events()[1].eventId(), -7);
    response.fromJsonString(R"({"header":"h","body":{"id":-1,"eventlist":[]}})");
    EXPECT_TRUE(response.events().empty());
}

TEST(MetaDataResponse, ReplacesTheListInItsInternalObject)
{
    MetaDataResponse response;
    response.fromJsonString(
        R"({"header":"h","x":1,"body":{"id":-1,"y":2,"eventlist":[{"name":"a","id":1,"z":3},{"name":"b","id":2}]}})");
    response.events().items().pop_back();
    EXPECT_EQ(response.toJsonString(),
              R"({"body":{"eventlist":[{"id":1,"name":"a"}],"id":-1,"y":2},"header":"h","x":1})");
}

TEST(MetaDataResponse, WritesItsListOverANodeOfAnyKind)
{
    for (char const* former : {"7", R"("a")", "null", R"({"a":1})", "[1,2,3]"}) {
        SCOPED_TRACE(former);
        MetaDataResponse const response;
        response.metaData() = tree(std::string(R"({"body":{"eventlist":)") + former + "}}");
        EXPECT_EQ(response.toJsonString(), R"({"body":{"eventlist":[],"id":-1},"header":""})");
    }
}

TEST(MetaDataResponse, ReadsNoEventsWhenTheIdIsWrong)
{
    MetaDataResponse response;
    response.events().push_back(event("kept", 1));
    expectThrows<std::runtime_error>(
        [&] { response.fromJsonString(R"({"header":"new","body":{"id":-2,"eventlist":[]}})"); },
        "event ID does not match expected value");
    EXPECT_EQ(response.header(), "new");
    ASSERT_EQ(response.events().size(), 1u);
    EXPECT_EQ(response.events()[0].name(), "kept");
}

TEST(MetaDataResponse, KeepsItsEventsWhenTheListIsMissingOrNoArray)
{
    auto const expectRefused = [](std::string const& json, std::string const& what) {
        SCOPED_TRACE(json);
        MetaDataResponse response;
        response.events().push_back(event("kept", 1));
        expectThrows<TypeError>([&] { response.fromJsonString(json); }, what);
        EXPECT_EQ(response.header(), "new");
        ASSERT_EQ(response.events().size(), 1u);
        EXPECT_EQ(response.events()[0].name(), "kept");
    };
    expectRefused(R"({"header":"new","body":{"id":-1}})", "expected array, found empty");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanArray())
        expectRefused(std::string(R"({"header":"new","body":{"id":-1,"eventlist":)") + kind.node + "}}",
                      std::string("expected array, found ") + kind.name);
}

TEST(MetaDataResponse, HasTheEventsBeforeOneThatCannotBeRead)
{
    MetaDataResponse response;
    response.events() = {event("a", 1), event("b", 2)};
    expectThrows<MissingMemberError>(
        [&] {
            response.fromJsonString(
                R"({"header":"h","body":{"id":-1,"eventlist":[{"name":"read","id":5},{"name":"half"},{"name":"c","id":1}]}})");
        },
        R"(no member named "id")");
    ASSERT_EQ(response.events().size(), 1u);
    EXPECT_EQ(response.events()[0].name(), "read");
    EXPECT_EQ(response.events()[0].eventId(), 5);
}

TEST(MetaDataResponse, RefusesAnItemThatIsNoObject)
{
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanObject()) {
        SCOPED_TRACE(kind.node);
        MetaDataResponse response;
        expectThrows<TypeError>(
            [&] {
                response.fromJsonString(std::string(R"({"header":"h","body":{"id":-1,"eventlist":[)") +
                                        kind.node + "]}}");
            },
            std::string("expected object, found ") + kind.name);
    }
}

TEST(MetaDataResponse, IsCopiedWithItsEventsParametersAndDefaultValues)
{
    MetaDataResponse original;
    original.events().push_back(event("start", 7));
    original.events()[0].params().push_back(param("p", "t", R"({"deep":[1]})"));
    MetaDataResponse const copy(original);
    original.events()[0].setName("changed");
    original.events()[0].params()[0].setDefaultValue(tree("2"));
    EXPECT_EQ(copy.events()[0].name(), "start");
    EXPECT_EQ(text(copy.events()[0].params()[0].defaultValue()), R"({"deep":[1]})");
}

TEST(EventMetaData, StartsEmpty)
{
    EventMetaData const event;
    EXPECT_EQ(event.name(), "");
    EXPECT_EQ(event.eventId(), 0);
    EXPECT_TRUE(event.params().empty());
    EXPECT_EQ(written(event), R"({"id":0,"name":""})");
}

TEST(EventMetaData, TakesAnyEventId)
{
    for (int const id : {-1, 0, 1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_EQ(event("", id).eventId(), id);
    EXPECT_EQ(written(event("", std::numeric_limits<int>::min())), R"({"id":-2147483648,"name":""})");
}

TEST(EventMetaData, WritesOnlyTheLastOfSeveralParameters)
{
    EventMetaData start = event("start", 7);
    start.params() = {param("first", "t1", R"({"a":1})"), param("second", "t2", "[2]"),
                      param("third", "t3", "3")};
    EXPECT_EQ(written(start),
              R"({"id":7,"name":"start","param0_default":3,"param0_name":"third","param0_type":"t3"})");
    ASSERT_EQ(start.params().size(), 3u);
}

TEST(EventMetaData, WritesADefaultValueOfAnyKindUnchanged)
{
    for (char const* value : {"1.5", "-9223372036854775808", "true", R"("text")",
                              R"({"a":{"b":[1,2]},"c":null})", R"([[],{},"x"])", "null"}) {
        SCOPED_TRACE(value);
        EventMetaData start = event("e", 1);
        start.params().push_back(param("p", "t", value));
        EXPECT_EQ(written(start), std::string(R"({"id":1,"name":"e","param0_default":)") + value +
                                      R"(,"param0_name":"p","param0_type":"t"})");
    }
}

TEST(EventMetaData, RemovesNothingFromItsTarget)
{
    MetaData::Element target = tree(R"({"name":1,"other":2,"param0_name":"left","param1_name":"left"})");
    event("e", 3).copyToMetaData(target);
    EXPECT_EQ(text(target), R"({"id":3,"name":"e","other":2,"param0_name":"left","param1_name":"left"})");
}

TEST(EventMetaData, CannotBeWrittenIntoANodeThatIsNoObject)
{
    for (Testing::OtherKind const& kind : Testing::kindsThatTakeNoMembers()) {
        SCOPED_TRACE(kind.node);
        MetaData::Element target = tree(kind.node);
        expectThrows<TypeError>([&] { event("e", 3).copyToMetaData(target); },
                                std::string("expected object, found ") + kind.name);
        EXPECT_EQ(target, tree(kind.node));
    }
}

TEST(EventMetaData, ReadsWithoutParametersWhenThereIsNoParam0Name)
{
    EventMetaData read = event("old", 1);
    read.params().push_back(param("old", "t", "1"));
    read.fromJsonString(
        R"({"name":"e","id":5,"param0_type":"t","param0_default":1,"param1_name":"p","param1_type":"t",)"
        R"("param1_default":2,"param_name":"x","param00_name":"y"})");
    EXPECT_EQ(read.name(), "e");
    EXPECT_EQ(read.eventId(), 5);
    EXPECT_TRUE(read.params().empty());
}

TEST(EventMetaData, KeepsTheLow32BitsOfItsId)
{
    EventMetaData read;
    read.fromJsonString(R"({"name":"","id":4294967296})");
    EXPECT_EQ(read.eventId(), 0);
    read.fromJsonString(R"({"name":"","id":4294967295})");
    EXPECT_EQ(read.eventId(), -1);
}

TEST(EventMetaData, RefusesANameThatIsMissingOrNoStringBeforeAnythingIsRead)
{
    EventMetaData read = event("old", 1);
    expectThrows<MissingMemberError>([&] { read.fromJsonString(R"({"id":2})"); },
                                     R"(no member named "name")");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanString()) {
        SCOPED_TRACE(kind.node);
        expectThrows<TypeError>(
            [&] { read.fromJsonString(std::string(R"({"id":2,"name":)") + kind.node + "}"); },
            std::string("expected string, found ") + kind.name);
    }
    EXPECT_EQ(read.name(), "old");
    EXPECT_EQ(read.eventId(), 1);
}

TEST(EventMetaData, RefusesAnIdThatIsMissingOrNoIntegerAndHasTheNewName)
{
    auto const eventWithParam = [] {
        EventMetaData read = event("old", 1);
        read.params().push_back(param("kept", "t", "1"));
        return read;
    };
    auto const expectNameOnly = [](EventMetaData const& read) {
        EXPECT_EQ(read.name(), "new");
        EXPECT_EQ(read.eventId(), 1);
        EXPECT_EQ(read.params().size(), 1u);
    };
    EventMetaData read = eventWithParam();
    expectThrows<MissingMemberError>([&] { read.fromJsonString(R"({"name":"new"})"); },
                                     R"(no member named "id")");
    expectNameOnly(read);
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanInteger()) {
        SCOPED_TRACE(kind.node);
        read = eventWithParam();
        expectThrows<TypeError>(
            [&] { read.fromJsonString(std::string(R"({"name":"new","id":)") + kind.node + "}"); },
            std::string("expected integer, found ") + kind.name);
        expectNameOnly(read);
    }
}

TEST(EventMetaData, RefusesAParameterWithoutTypeOrDefaultValueInsteadOfReadingItForever)
{
    // The parameters are cleared before the first of them is looked up, and the failure ends the loop.
    auto const expectRefused = [](std::string const& members, auto error, std::string const& what) {
        SCOPED_TRACE(members);
        EventMetaData read = event("old", 1);
        read.params().push_back(param("gone", "t", "1"));
        expectThrows<decltype(error)>(
            [&] { read.fromJsonString(R"({"name":"new","id":2,)" + members + "}"); }, what);
        EXPECT_EQ(read.name(), "new");
        EXPECT_EQ(read.eventId(), 2);
        EXPECT_TRUE(read.params().empty());
    };
    MissingMemberError const missing("");
    TypeError const wrong("");
    expectRefused(R"("param0_name":"p","param0_default":1)", missing, R"(no member named "param0_type")");
    expectRefused(R"("param0_name":"p","param0_type":"t")", missing, R"(no member named "param0_default")");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanString()) {
        expectRefused(std::string(R"("param0_type":"t","param0_default":1,"param0_name":)") + kind.node,
                      wrong, std::string("expected string, found ") + kind.name);
        expectRefused(std::string(R"("param0_name":"p","param0_default":1,"param0_type":)") + kind.node,
                      wrong, std::string("expected string, found ") + kind.name);
    }
}

TEST(EventMetaData, RefusesANodeThatIsNoObject)
{
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanObject()) {
        SCOPED_TRACE(kind.node);
        EventMetaData read = event("old", 1);
        expectThrows<TypeError>([&] { read.copyFromMetaData(tree(kind.node)); },
                                std::string("expected object, found ") + kind.name);
        EXPECT_EQ(read.name(), "old");
    }
}

TEST(ParamMetaData, StartsEmpty)
{
    ParamMetaData const param;
    EXPECT_EQ(param.name(), "");
    EXPECT_EQ(param.type(), "");
    EXPECT_EQ(param.defaultValue(), MetaData::Element());
}

TEST(ParamMetaData, HoldsWhatItIsGiven)
{
    MetaData::Element value = tree(R"({"a":[1,2]})");
    ParamMetaData param("n", "t", value);
    value["a"] = tree("0");
    EXPECT_EQ(param.name(), "n");
    EXPECT_EQ(param.type(), "t");
    EXPECT_EQ(text(param.defaultValue()), R"({"a":[1,2]})");
    param.setName("m");
    param.setType("u");
    param.setDefaultValue(tree("true"));
    EXPECT_EQ(param.name(), "m");
    EXPECT_EQ(param.type(), "u");
    EXPECT_EQ(param.defaultValue(), tree("true"));
    param.setDefaultValue(MetaData::Element());
    EXPECT_EQ(param.defaultValue(), MetaData::Element());
}

TEST(ParamMetaData, WritesAndReadsNothingByItself)
{
    ParamMetaData written = param("n", "t", "5");
    MetaData::Element target = tree(R"({"left":"alone"})");
    written.copyToMetaData(target);
    EXPECT_EQ(text(target), R"({"left":"alone"})");
    EXPECT_EQ(written.toJsonString(), "null");

    for (char const* source : {R"({"name":"x","type":"y","param0_name":"x"})", "7", "[]", "null", R"("s")"}) {
        SCOPED_TRACE(source);
        written.copyFromMetaData(tree(source));
        EXPECT_EQ(written.name(), "n");
        EXPECT_EQ(written.type(), "t");
        EXPECT_EQ(written.defaultValue(), tree("5"));
    }
}

TEST(ParamMetaData, LeavesEmptyNodesInAListWrittenByItself)
{
    Json::Array<ParamMetaData> params{param("n", "t", "5"), param("m", "u", "6")};
    EXPECT_EQ(params.toJsonString(), "[null,null]");
    params.fromJsonString(R"([{"name":"x"},5,"s"])");
    ASSERT_EQ(params.size(), 3u);
    for (ParamMetaData const& read : params) {
        EXPECT_EQ(read.name(), "");
        EXPECT_EQ(read.defaultValue(), MetaData::Element());
    }
}

} // namespace
} // namespace Zelk::Msgs::LegacyState
