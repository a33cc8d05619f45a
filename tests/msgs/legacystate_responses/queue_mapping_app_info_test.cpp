#include "msgs/legacystate/queue_mapping_app_info.h"
#include "tests/msgs/legacystate_responses/reading.h"
#include "tests/tree_edits.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace Zelk::Msgs::LegacyState {
namespace {

using Attr = XmlAttrToEventMappingResponse::Attr;
using MetaData::MissingMemberError;
using MetaData::TypeError;
using Testing::expectThrows;
using Testing::text;
using Testing::tree;

RegisterMessageQueueResponse queueResponse(std::string const& header, std::string const& name)
{
    RegisterMessageQueueResponse response;
    response.setHeader(header);
    response.setName(name);
    return response;
}

TEST(RegisterMessageQueueResponse, WritesItsNameInsideTheBody)
{
    EXPECT_EQ(RegisterMessageQueueResponse().toJsonString(), R"({"body":{"id":-2,"name":""},"header":""})");
    EXPECT_EQ(queueResponse("h", "q1").toJsonString(), R"({"body":{"id":-2,"name":"q1"},"header":"h"})");
}

TEST(RegisterMessageQueueResponse, ReadsWhatItWrites)
{
    RegisterMessageQueueResponse read = queueResponse("old", "old");
    read.fromJsonString(queueResponse("h", "q1").toJsonString());
    EXPECT_EQ(read.header(), "h");
    EXPECT_EQ(read.name(), "q1");
}

TEST(RegisterMessageQueueResponse, KeepsItsNameWhenTheIdIsWrong)
{
    RegisterMessageQueueResponse read = queueResponse("old", "old");
    expectThrows<std::runtime_error>(
        [&] { read.fromJsonString(R"({"header":"new","body":{"id":-1,"name":"new"}})"); },
        "event ID does not match expected value");
    EXPECT_EQ(read.header(), "new");
    EXPECT_EQ(read.name(), "old");
}

TEST(RegisterMessageQueueResponse, KeepsItsNameWhenItIsMissingOrNoString)
{
    auto const expectRefused = [](std::string const& json, std::string const& what) {
        SCOPED_TRACE(json);
        RegisterMessageQueueResponse read = queueResponse("old", "old");
        expectThrows<TypeError>([&] { read.fromJsonString(json); }, what);
        EXPECT_EQ(read.header(), "new");
        EXPECT_EQ(read.name(), "old");
        EXPECT_EQ(read.metaData(), MetaData::Element());
    };
    expectRefused(R"({"header":"new","body":{"id":-2}})", "expected string, found empty");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanString())
        expectRefused(std::string(R"({"header":"new","body":{"id":-2,"name":)") + kind.node + "}}",
                      std::string("expected string, found ") + kind.name);
}

TEST(RegisterMessageQueueResponse, KeepsMembersThatItDoesNotKnow)
{
    RegisterMessageQueueResponse read;
    read.fromJsonString(R"({"header":"h","body":{"id":-2,"name":"q1","x":1},"y":2})");
    read.setName("q2");
    EXPECT_EQ(read.toJsonString(), R"({"body":{"id":-2,"name":"q2","x":1},"header":"h","y":2})");
}

XmlAttrToEventMappingResponse mapping(std::string const& header, std::vector<Attr> const& attrs)
{
    XmlAttrToEventMappingResponse response;
    response.setHeader(header);
    response.attrs().items() = attrs;
    return response;
}

/// The attributes as "name=id", in list order.
std::vector<std::string> pairs(XmlAttrToEventMappingResponse const& response)
{
    std::vector<std::string> pairs;
    for (Attr const& attr : response.attrs())
        pairs.push_back(attr.name() + "=" + std::to_string(attr.eventId()));
    return pairs;
}

using Pairs = std::vector<std::string>;

TEST(Attr, StartsEmptyAndHoldsWhatItIsGiven)
{
    EXPECT_EQ(Attr().name(), "");
    EXPECT_EQ(Attr().eventId(), 0);
    Attr attr("mode", 12);
    EXPECT_EQ(attr.name(), "mode");
    EXPECT_EQ(attr.eventId(), 12);
    attr.setName("level");
    attr.setEventId(std::numeric_limits<int>::min());
    EXPECT_EQ(attr.name(), "level");
    EXPECT_EQ(attr.eventId(), std::numeric_limits<int>::min());
}

TEST(Attr, WritesAndReadsNothingByItself)
{
    Attr attr("mode", 12);
    MetaData::Element target = tree(R"({"left":"alone"})");
    attr.copyToMetaData(target);
    EXPECT_EQ(text(target), R"({"left":"alone"})");
    EXPECT_EQ(attr.toJsonString(), "null");
    for (char const* source : {R"({"name":"x","mode":1})", "7", "[]", "null", R"("s")"}) {
        SCOPED_TRACE(source);
        attr.copyFromMetaData(tree(source));
        EXPECT_EQ(attr.name(), "mode");
        EXPECT_EQ(attr.eventId(), 12);
    }
}

TEST(Attr, LeavesEmptyNodesInAListWrittenByItself)
{
    EXPECT_EQ((Json::Array<Attr>{Attr("mode", 12), Attr("level", 40)}.toJsonString()), "[null,null]");
}

TEST(XmlAttrToEventMappingResponse, WritesOneMemberOfTheBodyForEachAttribute)
{
    EXPECT_EQ(XmlAttrToEventMappingResponse().toJsonString(), R"({"body":{"id":-7},"header":""})");
    EXPECT_EQ(mapping("h", {Attr("mode", 12), Attr("level", 40)}).toJsonString(),
              R"({"body":{"id":-7,"level":40,"mode":12},"header":"h"})");
    EXPECT_EQ(mapping("", {Attr("", -1)}).toJsonString(), R"({"body":{"":-1,"id":-7},"header":""})");
}

TEST(XmlAttrToEventMappingResponse, WritesTheLaterOfTwoAttributesWithOneName)
{
    EXPECT_EQ(mapping("", {Attr("mode", 1), Attr("mode", 2)}).toJsonString(),
              R"({"body":{"id":-7,"mode":2},"header":""})");
}

TEST(XmlAttrToEventMappingResponse, WritesAnAttributeNamedIdOverTheEventIdAndDropsItOnReading)
{
    std::string const json = mapping("h", {Attr("id", 5), Attr("mode", 1)}).toJsonString();
    EXPECT_EQ(json, R"({"body":{"id":5,"mode":1},"header":"h"})");
    XmlAttrToEventMappingResponse read;
    read.fromJsonString(json);
    EXPECT_EQ(pairs(read), Pairs{"mode=1"});
}

TEST(XmlAttrToEventMappingResponse, ReadsTheAttributesInTheOrderOfTheirNames)
{
    for (std::vector<Attr> const& attrs : {std::vector<Attr>{Attr("level", 40), Attr("mode", 12)},
                                           std::vector<Attr>{Attr("mode", 12), Attr("level", 40)}}) {
        XmlAttrToEventMappingResponse read;
        read.fromJsonString(mapping("", attrs).toJsonString());
        EXPECT_EQ(pairs(read), (Pairs{"level=40", "mode=12"}));
    }
    XmlAttrToEventMappingResponse read;
    read.fromJsonString(R"({"body":{"b":1,"a":2,"B":3,"ID":4,"id":5,"id2":6,"":7}})");
    EXPECT_EQ(pairs(read), (Pairs{"=7", "B=3", "ID=4", "a=2", "b=1", "id2=6"}));
}

TEST(XmlAttrToEventMappingResponse, WritesItsOwnEnvelopeOverTheOneItReads)
{
    XmlAttrToEventMappingResponse read;
    read.setHeader("own");
    read.fromJsonString(R"({"header":"received","body":{"id":5,"x":1}})");
    EXPECT_EQ(read.header(), "own");
    EXPECT_EQ(pairs(read), Pairs{"x=1"});
    EXPECT_EQ(text(read.metaData()), R"({"body":{"id":-7,"x":1},"header":"own"})");
}

TEST(XmlAttrToEventMappingResponse, KeepsTheEmptyHeaderOfANewObject)
{
    XmlAttrToEventMappingResponse read;
    read.fromJsonString(R"({"header":"received","body":{"id":-7}})");
    EXPECT_EQ(read.header(), "");
    EXPECT_EQ(text(read.metaData()), R"({"body":{"id":-7},"header":""})");
}

TEST(XmlAttrToEventMappingResponse, LeavesTheReceivedTreeOfItsCallerAlone)
{
    MetaData::Element const received = tree(R"({"header":"received","body":{"id":5,"x":1}})");
    XmlAttrToEventMappingResponse read;
    read.copyFromMetaData(received);
    EXPECT_EQ(text(received), R"({"body":{"id":5,"x":1},"header":"received"})");
}

TEST(XmlAttrToEventMappingResponse, ReadsAnEnvelopeThatIsMissingOrOfAnyKind)
{
    for (char const* json : {"{}", "null", R"({"body":null})", R"({"body":{}})", R"({"header":5})",
                             R"({"header":[],"body":{"id":"x"}})", R"({"header":{},"body":{"id":{}}})"}) {
        SCOPED_TRACE(json);
        XmlAttrToEventMappingResponse read = mapping("own", {Attr("gone", 1)});
        read.fromJsonString(json);
        EXPECT_TRUE(read.attrs().empty());
        EXPECT_EQ(text(read.metaData()), R"({"body":{"id":-7},"header":"own"})");
    }
}

TEST(XmlAttrToEventMappingResponse, KeepsItsAttributesWhenTheBodyTakesNoMembers)
{
    for (Testing::OtherKind const& kind : Testing::kindsThatTakeNoMembers()) {
        SCOPED_TRACE(kind.node);
        XmlAttrToEventMappingResponse read = mapping("own", {Attr("kept", 1)});
        std::string const what = std::string("expected object, found ") + kind.name;
        expectThrows<TypeError>([&] { read.fromJsonString(std::string(R"({"body":)") + kind.node + "}"); },
                                what);
        expectThrows<TypeError>([&] { read.fromJsonString(kind.node); }, what);
        EXPECT_EQ(pairs(read), Pairs{"kept=1"});
        EXPECT_EQ(read.metaData(), MetaData::Element());
    }
}

TEST(XmlAttrToEventMappingResponse, HasTheAttributesBeforeOneThatIsNoInteger)
{
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanInteger()) {
        SCOPED_TRACE(kind.node);
        XmlAttrToEventMappingResponse read = mapping("own", {Attr("gone", 1)});
        expectThrows<TypeError>(
            [&] {
                read.fromJsonString(std::string(R"({"body":{"a":1,"b":2,"d":4,"c":)") + kind.node + "}}");
            },
            std::string("expected integer, found ") + kind.name);
        EXPECT_EQ(pairs(read), (Pairs{"a=1", "b=2"}));
        EXPECT_EQ(read.header(), "own");
    }
}

TEST(XmlAttrToEventMappingResponse, KeepsTheLow32BitsOfAnEventId)
{
    XmlAttrToEventMappingResponse read;
    read.fromJsonString(R"({"body":{"a":4294967296,"b":4294967295,"c":4294967301}})");
    EXPECT_EQ(pairs(read), (Pairs{"a=0", "b=-1", "c=5"}));
}

TEST(XmlAttrToEventMappingResponse, WritesAttributesOfAnEarlierReadAgain)
{
    // They are members of the internal object, like any that the response does not know.
    XmlAttrToEventMappingResponse read;
    read.fromJsonString(R"({"body":{"a":1,"b":2},"x":3})");
    read.attrs().clear();
    read.attrs().emplace_back("c", 4);
    EXPECT_EQ(read.toJsonString(), R"({"body":{"a":1,"b":2,"c":4,"id":-7},"header":"","x":3})");
}

TEST(XmlAttrToEventMappingResponse, WritesAnAttributeOverANodeOfAnyKind)
{
    XmlAttrToEventMappingResponse const response = mapping("", {Attr("a", 1), Attr("b", 2)});
    response.metaData() = tree(R"({"body":{"a":{"deep":[1]},"b":"text"}})");
    EXPECT_EQ(response.toJsonString(), R"({"body":{"a":1,"b":2,"id":-7},"header":""})");
}

TEST(XmlAttrToEventMappingResponse, IsCopiedWithItsAttributes)
{
    XmlAttrToEventMappingResponse original = mapping("h", {Attr("a", 1)});
    XmlAttrToEventMappingResponse const copy(original);
    original.attrs()[0].setName("changed");
    EXPECT_EQ(pairs(copy), Pairs{"a=1"});
}

InfraMetaDataAppInfo appInfo(std::string const& name, std::string const& version)
{
    InfraMetaDataAppInfo info;
    info.setName(name);
    info.setVersion(version);
    return info;
}

TEST(InfraMetaDataAppInfo, StartsEmptyAndIsChangedThroughItsAccessors)
{
    InfraMetaDataAppInfo info;
    EXPECT_EQ(info.name(), "");
    EXPECT_EQ(info.version(), "");
    info.name() = "app";
    info.version() += "1.2";
    EXPECT_EQ(info.toJsonString(), R"({"name":"app","version":"1.2"})");
}

TEST(InfraMetaDataAppInfo, WritesNameAndVersionWithoutAnEnvelope)
{
    EXPECT_EQ(InfraMetaDataAppInfo().toJsonString(), R"({"name":"","version":""})");
    EXPECT_EQ(appInfo("app", "1.2").toJsonString(), R"({"name":"app","version":"1.2"})");
}

TEST(InfraMetaDataAppInfo, LeavesOtherKeysInItsTarget)
{
    MetaData::Element target = tree(R"({"name":[1],"other":2})");
    appInfo("app", "1.2").copyToMetaData(target);
    EXPECT_EQ(text(target), R"({"name":"app","other":2,"version":"1.2"})");
}

TEST(InfraMetaDataAppInfo, ReadsWhatItWritesAndNothingElse)
{
    InfraMetaDataAppInfo read;
    read.fromJsonString(R"({"name":"app","version":"1.2","other":[]})");
    EXPECT_EQ(read.name(), "app");
    EXPECT_EQ(read.version(), "1.2");
    EXPECT_EQ(read.toJsonString(), R"({"name":"app","version":"1.2"})");
}

TEST(InfraMetaDataAppInfo, RefusesANameThatIsMissingOrNoStringBeforeTheVersionIsRead)
{
    InfraMetaDataAppInfo read = appInfo("old", "0");
    expectThrows<MissingMemberError>([&] { read.fromJsonString(R"({"version":"1"})"); },
                                     R"(no member named "name")");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanString()) {
        SCOPED_TRACE(kind.node);
        expectThrows<TypeError>(
            [&] { read.fromJsonString(std::string(R"({"version":"1","name":)") + kind.node + "}"); },
            std::string("expected string, found ") + kind.name);
    }
    EXPECT_EQ(read.name(), "old");
    EXPECT_EQ(read.version(), "0");
}

TEST(InfraMetaDataAppInfo, HasTheNewNameWhenTheVersionIsMissingOrNoString)
{
    InfraMetaDataAppInfo missing = appInfo("old", "0");
    expectThrows<MissingMemberError>([&] { missing.fromJsonString(R"({"name":"new"})"); },
                                     R"(no member named "version")");
    EXPECT_EQ(missing.name(), "new");
    EXPECT_EQ(missing.version(), "0");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanString()) {
        SCOPED_TRACE(kind.node);
        InfraMetaDataAppInfo read = appInfo("old", "0");
        expectThrows<TypeError>(
            [&] { read.fromJsonString(std::string(R"({"name":"new","version":)") + kind.node + "}"); },
            std::string("expected string, found ") + kind.name);
        EXPECT_EQ(read.name(), "new");
        EXPECT_EQ(read.version(), "0");
    }
}

TEST(InfraMetaDataAppInfo, RefusesANodeThatIsNoObject)
{
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanObject()) {
        SCOPED_TRACE(kind.node);
        InfraMetaDataAppInfo read = appInfo("old", "0");
        expectThrows<TypeError>([&] { read.copyFromMetaData(tree(kind.node)); },
                                std::string("expected object, found ") + kind.name);
        EXPECT_EQ(read.name(), "old");
    }
}

} // namespace
} // namespace Zelk::Msgs::LegacyState
