#include "msgs/legacystate/metadata_response.h"
#include "msgs/legacystate/queue_mapping_app_info.h"
#include "msgs/legacystate/state_response.h"
#include "msgs/legacystate/state_space_response.h"
#include "tests/msgs/legacystate_responses/reading.h"
#include "tests/tree_edits.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

namespace Zelk::Msgs::LegacyState {
namespace {

using MetaData::TypeError;
using Testing::expectThrows;
using Testing::text;
using Testing::tree;

StateResponse response(std::string const& header, int eventId)
{
    StateResponse response;
    response.setHeader(header);
    response.setEventId(eventId);
    return response;
}

TEST(StateResponse, StartsWithIdZeroAnEmptyHeaderAndAnEmptyInternalObject)
{
    StateResponse const response;
    EXPECT_EQ(response.eventId(), 0);
    EXPECT_EQ(response.header(), "");
    EXPECT_EQ(response.metaData(), MetaData::Element());
}

TEST(StateResponse, WritesExactlyHeaderAndBodyWithId)
{
    EXPECT_EQ(StateResponse().toJsonString(), R"({"body":{"id":0},"header":""})");
    EXPECT_EQ(response("h", 5).toJsonString(), R"({"body":{"id":5},"header":"h"})");
}

TEST(StateResponse, WritesTheIdSignExtended)
{
    EXPECT_EQ(response("", -1).toJsonString(), R"({"body":{"id":-1},"header":""})");
    EXPECT_EQ(response("", std::numeric_limits<int>::min()).toJsonString(),
              R"({"body":{"id":-2147483648},"header":""})");
    EXPECT_EQ(response("", std::numeric_limits<int>::max()).toJsonString(),
              R"({"body":{"id":2147483647},"header":""})");
}

TEST(StateResponse, WritesNodesOfStringAndIntegerKind)
{
    MetaData::Element target;
    response("7", 7).copyToMetaData(target);
    EXPECT_EQ(target["header"].GetElementType(), MetaData::Element::string);
    EXPECT_EQ(target["body"].GetElementType(), MetaData::Element::object);
    EXPECT_EQ(target["body"]["id"].GetElementType(), MetaData::Element::integer);
}

TEST(StateResponse, ReadsWhatItWrites)
{
    StateResponse read;
    read.fromJsonString(response("a \"header\"\n\xc3\xa9", -77).toJsonString());
    EXPECT_EQ(read.header(), "a \"header\"\n\xc3\xa9");
    EXPECT_EQ(read.eventId(), -77);
}

TEST(StateResponse, StoresAnyId)
{
    StateResponse read;
    read.fromJsonString(R"({"header":"","body":{"id":5}})");
    EXPECT_EQ(read.eventId(), 5);
    read.setEventId(std::numeric_limits<int>::min());
    EXPECT_EQ(read.eventId(), std::numeric_limits<int>::min());
}

TEST(StateResponse, KeepsTheLow32BitsOfTheId)
{
    struct Case {
        char const* id;
        int expected;
    };
    for (Case const& c : {Case{"4294967295", -1}, Case{"4294967296", 0}, Case{"4294967301", 5},
                          Case{"2147483648", std::numeric_limits<int>::min()}, Case{"-4294967297", -1},
                          Case{"3000000000", -1294967296}, Case{"9223372036854775807", -1},
                          Case{"-9223372036854775808", 0}}) {
        SCOPED_TRACE(c.id);
        StateResponse read;
        read.fromJsonString(std::string(R"({"header":"","body":{"id":)") + c.id + "}}");
        EXPECT_EQ(read.eventId(), c.expected);
    }
}

/// Notes what the hooks have done by the time the id is asked for, and by the time it is set.
class Witness : public StateResponse {
public:
    int eventId() const override
    {
        treeWhenIdWasWritten = metaData();
        return 31;
    }
    void setEventId(int eventId) override
    {
        headerWhenIdWasRead = header();
        idRead = eventId;
    }

    mutable MetaData::Element treeWhenIdWasWritten;
    std::string headerWhenIdWasRead;
    int idRead = 0;
};

TEST(StateResponse, WritesTheHeaderFirstAndTheIdThroughTheVirtualGetter)
{
    Witness witness;
    witness.setHeader("h");
    EXPECT_EQ(witness.toJsonString(), R"({"body":{"id":31},"header":"h"})");
    MetaData::Element const& tree = witness.treeWhenIdWasWritten;
    EXPECT_EQ(tree["header"].asString(), "h");
}

TEST(StateResponse, ReadsTheHeaderFirstAndTheIdThroughTheVirtualSetter)
{
    Witness witness;
    witness.fromJsonString(R"({"header":"new","body":{"id":8}})");
    EXPECT_EQ(witness.headerWhenIdWasRead, "new");
    EXPECT_EQ(witness.idRead, 8);
}

TEST(StateResponse, DoesNotReadTheIdWhenTheHeaderFails)
{
    Witness witness;
    expectThrows<TypeError>([&] { witness.fromJsonString(R"({"header":1,"body":{"id":8}})"); },
                            "expected string, found integer");
    EXPECT_EQ(witness.idRead, 0);
}

TEST(StateResponse, WritesTheHeaderBeforeABodyThatTakesNoMembersFails)
{
    StateResponse const response = LegacyState::response("h", 3);
    response.metaData() = tree(R"({"body":7})");
    expectThrows<TypeError>([&] { response.copyToInternalMetaData(); }, "expected object, found integer");
    EXPECT_EQ(text(response.metaData()), R"({"body":7,"header":"h"})");
}

TEST(StateResponse, RefusesAHeaderThatIsMissingOrNoStringAndKeepsBothMembers)
{
    auto const expectRefused = [](std::string const& json, std::string const& what) {
        SCOPED_TRACE(json);
        StateResponse read = response("old", 3);
        expectThrows<TypeError>([&] { read.fromJsonString(json); }, what);
        EXPECT_EQ(read.header(), "old");
        EXPECT_EQ(read.eventId(), 3);
    };
    expectRefused(R"({"body":{"id":8}})", "expected string, found empty");
    expectRefused("{}", "expected string, found empty");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanString())
        expectRefused(std::string(R"({"body":{"id":8},"header":)") + kind.node + "}",
                      std::string("expected string, found ") + kind.name);
}

TEST(StateResponse, RefusesAnIdThatIsMissingOrNoIntegerAndHasTheNewHeader)
{
    auto const expectRefused = [](std::string const& json, std::string const& what) {
        SCOPED_TRACE(json);
        StateResponse read = response("old", 3);
        expectThrows<TypeError>([&] { read.fromJsonString(json); }, what);
        EXPECT_EQ(read.header(), "new");
        EXPECT_EQ(read.eventId(), 3);
    };
    expectRefused(R"({"header":"new"})", "expected integer, found empty");
    expectRefused(R"({"header":"new","body":{}})", "expected integer, found empty");
    expectRefused(R"({"header":"new","body":null})", "expected integer, found empty");
    for (Testing::OtherKind const& kind : Testing::kindsOtherThanInteger())
        expectRefused(std::string(R"({"header":"new","body":{"id":)") + kind.node + "}}",
                      std::string("expected integer, found ") + kind.name);
    for (Testing::OtherKind const& kind : Testing::kindsThatTakeNoMembers())
        expectRefused(std::string(R"({"header":"new","body":)") + kind.node + "}",
                      std::string("expected object, found ") + kind.name);
}

TEST(StateResponse, RefusesATreeThatIsNoObject)
{
    for (Testing::OtherKind const& kind : Testing::kindsThatTakeNoMembers()) {
        SCOPED_TRACE(kind.node);
        StateResponse read = response("old", 3);
        expectThrows<TypeError>([&] { read.fromJsonString(kind.node); },
                                std::string("expected object, found ") + kind.name);
        EXPECT_EQ(read.header(), "old");
    }
    // An empty tree becomes an object when the header is looked up in it.
    expectThrows<TypeError>([] { StateResponse().fromJsonString("null"); }, "expected string, found empty");
}

TEST(StateResponse, KeepsMembersThatItDoesNotKnowAndWritesThemAgain)
{
    StateResponse read;
    read.fromJsonString(R"({"body":{"extra":[1,{"deep":null}],"id":5},"header":"h","more":2.5})");
    read.setHeader("changed");
    read.setEventId(6);
    EXPECT_EQ(read.toJsonString(),
              R"({"body":{"extra":[1,{"deep":null}],"id":6},"header":"changed","more":2.5})");
}

TEST(StateResponse, ForgetsUnknownMembersOfAnEarlierTree)
{
    StateResponse read;
    read.fromJsonString(R"({"body":{"id":5},"header":"h","first":1})");
    read.fromJsonString(R"({"body":{"id":5},"header":"h","second":2})");
    EXPECT_EQ(read.toJsonString(), R"({"body":{"id":5},"header":"h","second":2})");
}

TEST(StateResponse, HasItsFormerInternalObjectBackAfterAFailedRead)
{
    StateResponse read;
    read.fromJsonString(R"({"body":{"id":5},"header":"h","first":1})");
    EXPECT_THROW(read.fromJsonString(R"({"header":"new","body":{"id":"x"},"second":2})"), TypeError);
    EXPECT_EQ(text(read.metaData()), R"({"body":{"id":5},"first":1,"header":"h"})");
    EXPECT_EQ(read.toJsonString(), R"({"body":{"id":5},"first":1,"header":"new"})");
}

TEST(StateResponse, GivesAMovedInTreeBackWhenItCannotBeRead)
{
    MetaData::Element source = tree(R"({"header":"new","body":{"id":"x"}})");
    StateResponse read;
    EXPECT_THROW(read.moveFromMetaData(std::move(source)), TypeError);
    EXPECT_EQ(text(source), R"({"body":{"id":"x"},"header":"new"})");
    EXPECT_EQ(read.metaData(), MetaData::Element());
}

TEST(StateResponse, IsUnchangedByATextThatDoesNotParse)
{
    StateResponse read;
    read.fromJsonString(R"({"body":{"id":5},"header":"h","first":1})");
    EXPECT_THROW(read.fromJsonString(R"({"body":{"id":6},"header":"x")"), Json::ParseError);
    EXPECT_EQ(read.header(), "h");
    EXPECT_EQ(read.eventId(), 5);
    EXPECT_EQ(text(read.metaData()), R"({"body":{"id":5},"first":1,"header":"h"})");
}

TEST(StateResponse, RestoresNothingWhenTheReadingHookIsCalledDirectly)
{
    StateResponse read;
    read.metaData() = tree(R"({"header":"new"})");
    EXPECT_THROW(read.copyFromInternalMetaData(), TypeError);
    EXPECT_EQ(read.header(), "new");
    EXPECT_EQ(text(read.metaData()), R"({"body":{"id":null},"header":"new"})");
}

TEST(StateResponse, MovesItsTreeOutAndKeepsItsMembers)
{
    StateResponse moved = response("h", 5);
    MetaData::Element target = tree(R"(["replaced"])");
    moved.moveToMetaData(target);
    EXPECT_EQ(text(target), R"({"body":{"id":5},"header":"h"})");
    EXPECT_EQ(moved.metaData(), MetaData::Element());
    EXPECT_EQ(moved.header(), "h");
    EXPECT_EQ(moved.moveToJsonString(), R"({"body":{"id":5},"header":"h"})");
    EXPECT_EQ(moved.metaData(), MetaData::Element());
}

TEST(StateResponse, KeepsItsTreeWhenItIsCopiedOut)
{
    StateResponse const copied = response("h", 5);
    MetaData::Element target;
    copied.copyToMetaData(target);
    EXPECT_EQ(target, copied.metaData());
    EXPECT_EQ(text(target), R"({"body":{"id":5},"header":"h"})");
}

TEST(StateResponse, GoesThroughStreams)
{
    std::stringstream stream;
    response("h", 5).toJson(stream);
    StateResponse read;
    read.fromJson(stream);
    EXPECT_EQ(read.header(), "h");
    EXPECT_EQ(read.eventId(), 5);
}

TEST(StateResponse, IsCopiedWhole)
{
    StateResponse original;
    original.fromJsonString(R"({"body":{"id":5},"header":"h","extra":1})");
    StateResponse copy(original);
    original.fromJsonString(R"({"body":{"id":6},"header":"other"})");
    EXPECT_EQ(copy.toJsonString(), R"({"body":{"id":5},"extra":1,"header":"h"})");
    copy = original;
    EXPECT_EQ(copy.toJsonString(), R"({"body":{"id":6},"header":"other"})");
}

TEST(StateResponse, IsAStateMessage)
{
    StateResponse response = LegacyState::response("h", 5);
    StateMessage& message = response;
    EXPECT_EQ(message.toJsonString(), R"({"body":{"id":5},"header":"h"})");
    EXPECT_TRUE(std::is_abstract_v<StateMessage>);
    EXPECT_FALSE(std::is_abstract_v<StateResponse>);
}

TEST(StateResponse, ReadsAndWritesItsOwnInternalObject)
{
    StateResponse response;
    response.metaData() = tree(R"({"body":{"id":9},"header":"own"})");
    response.copyFromMetaData(response.metaData());
    EXPECT_EQ(response.eventId(), 9);
    response.copyToMetaData(response.metaData());
    EXPECT_EQ(text(response.metaData()), R"({"body":{"id":9},"header":"own"})");
    response.moveFromMetaData(std::move(response.metaData()));
    EXPECT_EQ(response.header(), "own");
    EXPECT_EQ(response.toJsonString(), R"({"body":{"id":9},"header":"own"})");
}

template <typename T>
class BoundResponse : public ::testing::Test {};

template <typename Class, int N>
struct Bound {
    using Type = Class;
    static constexpr int id = N;
};

struct BoundName {
    template <typename T>
    static std::string GetName(int index)
    {
        return std::to_string(index) + "_bound_to_minus_" + std::to_string(-T::id);
    }
};

using BoundResponses =
    ::testing::Types<Bound<StateResponseWithEventId<-1>, -1>, Bound<StateResponseWithEventId<-2>, -2>,
                     Bound<StateResponseWithEventId<-7>, -7>, Bound<StateResponseWithEventId<-9>, -9>,
                     Bound<MetaDataResponse, -1>, Bound<RegisterMessageQueueResponse, -2>,
                     Bound<XmlAttrToEventMappingResponse, -7>, Bound<StateSpaceMetaDataResponse, -9>>;
TYPED_TEST_SUITE(BoundResponse, BoundResponses, BoundName);

std::string envelope(long long id)
{
    return R"({"header":"new","body":{"eventlist":[],"name":"","statelist":[],"id":)" + std::to_string(id) +
           "}}";
}

TYPED_TEST(BoundResponse, ReportsItsIdWhateverIsStored)
{
    typename TypeParam::Type response;
    EXPECT_EQ(response.eventId(), TypeParam::id);
    EXPECT_EQ(response.StateResponse::eventId(), 0);
    StateResponse const& base = response;
    EXPECT_EQ(base.eventId(), TypeParam::id);
    response.StateResponse::setEventId(99);
    EXPECT_EQ(response.eventId(), TypeParam::id);
}

TYPED_TEST(BoundResponse, AcceptsItsIdWithoutStoringIt)
{
    typename TypeParam::Type response;
    response.setEventId(TypeParam::id);
    EXPECT_EQ(response.StateResponse::eventId(), 0);
}

TYPED_TEST(BoundResponse, RefusesEveryOtherId)
{
    typename TypeParam::Type response;
    StateResponse& base = response;
    for (int const id : {0, 1, TypeParam::id - 1, TypeParam::id + 1, -TypeParam::id,
                         std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        SCOPED_TRACE(id);
        expectThrows<std::runtime_error>([&] { response.setEventId(id); },
                                         "event ID does not match expected value");
        expectThrows<std::runtime_error>([&] { base.setEventId(id); },
                                         "event ID does not match expected value");
        EXPECT_EQ(response.StateResponse::eventId(), 0);
    }
}

TYPED_TEST(BoundResponse, WritesItsId)
{
    typename TypeParam::Type response;
    MetaData::Element target;
    response.copyToMetaData(target);
    EXPECT_EQ(target["body"]["id"], tree(std::to_string(TypeParam::id)));
    EXPECT_EQ(target["header"], tree(R"("")"));
}

TYPED_TEST(BoundResponse, DerivesVirtuallyFromTheOneStateResponse)
{
    typename TypeParam::Type response;
    response.setHeader("h");
    StateMessage& message = response;
    auto* base = dynamic_cast<StateResponse*>(&message);
    ASSERT_NE(base, nullptr);
    EXPECT_EQ(base->header(), "h");
    EXPECT_NE(dynamic_cast<StateResponseWithEventId<TypeParam::id>*>(base), nullptr);
}

TYPED_TEST(BoundResponse, IsCopiedWhole)
{
    typename TypeParam::Type original;
    original.setHeader("h");
    original.metaData()["extra"] = tree("1");
    typename TypeParam::Type const copy(original);
    original.setHeader("other");
    original.metaData()["extra"] = tree("2");
    EXPECT_EQ(copy.header(), "h");
    EXPECT_EQ(copy.metaData()["extra"], tree("1"));
    typename TypeParam::Type assigned;
    assigned = copy;
    EXPECT_EQ(assigned.toJsonString(), copy.toJsonString());
}

template <typename T>
class CheckedResponse : public ::testing::Test {};

// All but the attribute mapping, which does not check what it reads.
using CheckedResponses =
    ::testing::Types<Bound<StateResponseWithEventId<-1>, -1>, Bound<StateResponseWithEventId<-7>, -7>,
                     Bound<MetaDataResponse, -1>, Bound<RegisterMessageQueueResponse, -2>,
                     Bound<StateSpaceMetaDataResponse, -9>>;
TYPED_TEST_SUITE(CheckedResponse, CheckedResponses, BoundName);

TYPED_TEST(CheckedResponse, ReadsItsId)
{
    typename TypeParam::Type response;
    response.fromJsonString(envelope(TypeParam::id));
    EXPECT_EQ(response.header(), "new");
    EXPECT_EQ(response.StateResponse::eventId(), 0);
}

TYPED_TEST(CheckedResponse, ReadsAnIdWhoseLow32BitsAreIts)
{
    for (long long const high : {1LL, -1LL, 0x7fffffffLL}) {
        SCOPED_TRACE(high);
        typename TypeParam::Type response;
        response.fromJsonString(envelope(high * 0x100000000LL + (TypeParam::id & 0xffffffffLL)));
        EXPECT_EQ(response.header(), "new");
    }
}

TYPED_TEST(CheckedResponse, StoresTheHeaderBeforeAWrongIdIsRefused)
{
    for (long long const id : {5LL, 0LL, TypeParam::id - 1LL, TypeParam::id + 0x80000000LL}) {
        SCOPED_TRACE(id);
        typename TypeParam::Type response;
        response.setHeader("old");
        expectThrows<std::runtime_error>([&] { response.fromJsonString(envelope(id)); },
                                         "event ID does not match expected value");
        EXPECT_EQ(response.header(), "new");
        EXPECT_EQ(response.metaData(), MetaData::Element());
    }
}

TYPED_TEST(CheckedResponse, DoesNotTakeAFloatingPointNumberForItsId)
{
    typename TypeParam::Type response;
    expectThrows<TypeError>(
        [&] {
            response.fromJsonString(R"({"header":"new","body":{"id":)" + std::to_string(TypeParam::id) +
                                    ".0}}");
        },
        "expected integer, found floating-point number");
}

} // namespace
} // namespace Zelk::Msgs::LegacyState
