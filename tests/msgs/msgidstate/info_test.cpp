#include "framework/json_text.h"
#include "framework/nodes.h"
#include "msgs/msgidstate/info.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::Msgs::MsgIdState {
namespace {

using MetaData::Element;
using MetaData::TypeError;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;
using testing::ThrowsMessage;
using Address = std::vector<std::string>;

Element tree(std::string const& json)
{
    return Json::readText(json);
}

std::string written(MetaData::MirroredObject const& record)
{
    Element target;
    record.copyToMetaData(target);
    return Json::printText(target);
}

std::string const name100(100, 'n');

// ---- InfoRequestData

TEST(InfoRequestData, NamesNoStateUntilItIsTold)
{
    for (bool attribInfo : {false, true}) {
        InfoRequestData const request(attribInfo);
        EXPECT_FALSE(request.StateName.initialized());
        EXPECT_FALSE(request.StateName.isRequired());
        EXPECT_TRUE(request.AttribInfo.initialized());
        EXPECT_TRUE(request.AttribInfo.isRequired());
        EXPECT_EQ(request.AttribInfo(), attribInfo);
    }
    EXPECT_EQ(written(InfoRequestData(false)), R"({"AttribInfo":false})");
    EXPECT_EQ(written(InfoRequestData(true)), R"({"AttribInfo":true})");
}

TEST(InfoRequestData, WritesTheNameOfTheState)
{
    EXPECT_EQ(written(InfoRequestData("Running", true)), R"({"AttribInfo":true,"StateName":"Running"})");
    EXPECT_EQ(written(InfoRequestData("", false)), R"({"AttribInfo":false,"StateName":""})");
    EXPECT_EQ(written(InfoRequestData(name100, false)),
              R"({"AttribInfo":false,"StateName":")" + name100 + "\"}");
}

TEST(InfoRequestData, HoldsAnEmptyNameWhileNoneIsSet)
{
    InfoRequestData request(true);
    request.StateName.init();
    EXPECT_EQ(request.StateName(), "");
}

TEST(InfoRequestData, IsNotBuiltByAccident)
{
    static_assert(!std::is_constructible_v<InfoRequestData, char const*>);
    static_assert(!std::is_constructible_v<InfoRequestData, std::string>);
    static_assert(!std::is_default_constructible_v<InfoRequestData>);
    static_assert(!std::is_convertible_v<bool, InfoRequestData>);
    static_assert(std::is_constructible_v<InfoRequestData, char const*, bool>);
}

TEST(InfoRequestData, ReadsBothFields)
{
    InfoRequestData request(false);
    request.copyFromMetaData(tree(R"({"StateName":"Idle","AttribInfo":true})"));
    EXPECT_EQ(request.StateName(), "Idle");
    EXPECT_TRUE(request.AttribInfo());
}

TEST(InfoRequestData, UnsetsWhatItCannotRead)
{
    struct Case {
        char const* source;
        char const* form;
        std::vector<std::string> unsetRequired;
    };
    Case const cases[] = {
        {"{}", "{}", {"AttribInfo"}},
        {R"({"StateName":"a"})", R"({"StateName":"a"})", {"AttribInfo"}},
        {R"({"AttribInfo":true})", R"({"AttribInfo":true})", {}},
        {R"({"StateName":1,"AttribInfo":true})", R"({"AttribInfo":true})", {}},
        {R"({"StateName":null,"AttribInfo":false})", R"({"AttribInfo":false})", {}},
        {R"({"StateName":"a","AttribInfo":"true"})", R"({"StateName":"a"})", {"AttribInfo"}},
        {R"({"StateName":"a","AttribInfo":1})", R"({"StateName":"a"})", {"AttribInfo"}},
        {R"({"StateName":"a","AttribInfo":1.0})", R"({"StateName":"a"})", {"AttribInfo"}},
        {R"({"StateName":["a"],"AttribInfo":[true]})", "{}", {"AttribInfo"}},
        {R"({"statename":"a","attribInfo":true})", "{}", {"AttribInfo"}},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(c.source);
        InfoRequestData request("former", true);
        EXPECT_NO_THROW(request.copyFromMetaData(tree(c.source)));
        EXPECT_EQ(written(request), c.form);
        EXPECT_EQ(request.unsetRequired(), c.unsetRequired);
        if (!request.AttribInfo.initialized()) {
            request.AttribInfo.init();
            EXPECT_FALSE(request.AttribInfo());
        }
        if (!request.StateName.initialized()) {
            request.StateName.init();
            EXPECT_EQ(request.StateName(), "");
        }
    }
}

TEST(InfoRequestData, RefusesWhatIsNoObjectAndKeepsItsFields)
{
    InfoRequestData request("former", true);
    for (char const* source : {"null", "true", "[]", "\"former\"", "1", "1.5"}) {
        SCOPED_TRACE(source);
        EXPECT_THROW(request.copyFromMetaData(tree(source)), TypeError);
        EXPECT_EQ(written(request), R"({"AttribInfo":true,"StateName":"former"})");
    }
}

TEST(InfoRequestData, IsCopiedByTheCopyRuleOfFields)
{
    InfoRequestData const full("Idle", false);
    EXPECT_EQ(written(InfoRequestData(full)), R"({"AttribInfo":false,"StateName":"Idle"})");

    InfoRequestData nothing("former", true);
    nothing.copyFromMetaData(tree("{}"));
    InfoRequestData const copy = nothing;
    EXPECT_FALSE(copy.StateName.initialized());
    EXPECT_TRUE(copy.AttribInfo.initialized());
    EXPECT_EQ(written(copy), R"({"AttribInfo":false})");

    InfoRequestData assigned("former", true);
    assigned = nothing;
    EXPECT_EQ(written(assigned), R"({"AttribInfo":false})");
    assigned.StateName.init();
    EXPECT_EQ(assigned.StateName(), "");
    EXPECT_EQ(written(nothing), "{}") << "the source changed";
}

// ---- InfoResponseData

TEST(InfoResponseData, NamesTheUnknownStateByDefault)
{
    InfoResponseData const response;
    EXPECT_TRUE(response.StateName.isRequired());
    EXPECT_EQ(response.StateName(), "UnknownState");
    EXPECT_EQ(written(response), R"({"StateName":"UnknownState"})");
    EXPECT_EQ(written(InfoResponseData(response)), R"({"StateName":"UnknownState"})");
}

TEST(InfoResponseData, NamesTheStateItIsGiven)
{
    EXPECT_EQ(written(InfoResponseData("Running")), R"({"StateName":"Running"})");
    EXPECT_EQ(written(InfoResponseData("")), R"({"StateName":""})");
    static_assert(!std::is_convertible_v<std::string, InfoResponseData>);
}

TEST(InfoResponseData, IsUnsetAndEmptyAfterReadingWhatDoesNotFit)
{
    for (char const* source : {"{}", R"({"StateName":null})", R"({"StateName":1})", R"({"StateName":1.5})",
                               R"({"StateName":true})", R"({"StateName":["a"]})", R"({"StateName":{}})"}) {
        SCOPED_TRACE(source);
        InfoResponseData response("former");
        EXPECT_NO_THROW(response.copyFromMetaData(tree(source)));
        EXPECT_THAT(response.unsetRequired(), ElementsAre("StateName"));
        EXPECT_EQ(written(response), "{}");
        response.StateName.init();
        EXPECT_EQ(response.StateName(), "") << "not the default state";
    }
}

TEST(InfoResponseData, BecomesEmptyAndSetWhenCopiedFromAnUnsetOne)
{
    InfoResponseData nothing;
    nothing.StateName.uninit();
    InfoResponseData const copy = nothing;
    EXPECT_TRUE(copy.StateName.initialized());
    EXPECT_EQ(copy.StateName(), "");

    InfoResponseData assigned("former");
    assigned = nothing;
    EXPECT_TRUE(assigned.StateName.initialized());
    EXPECT_EQ(assigned.StateName(), "");
}

TEST(InfoResponseData, IsAssignedDeeply)
{
    InfoResponseData source(name100);
    InfoResponseData target;
    InfoResponseData& result = target = source;
    EXPECT_EQ(&result, &target);
    source.StateName = "changed";
    EXPECT_EQ(target.StateName(), name100);
}

// ---- InfoResponse

TEST(InfoResponse, SaysWhoIsInWhichState)
{
    InfoResponse const response({"plant", "engine"}, "Running");
    EXPECT_EQ(response.identifier(), Identifier::toValue(2, 0, 1, 4));
    EXPECT_TRUE(response.SenderID.isRequired());
    EXPECT_THAT(response.SenderID(), ElementsAre("plant", "engine"));
    EXPECT_FALSE(response.ReceiverID.initialized());
    EXPECT_FALSE(response.ReceiverID.isRequired());
    EXPECT_TRUE(response.Data.isRequired());
    EXPECT_EQ(response.payload().StateName(), "Running");
    EXPECT_EQ(written(response),
              R"({"Data":{"StateName":"Running"},"MsgId":562949953486852,"SenderID":["plant","engine"]})");
}

TEST(InfoResponse, WritesAnEmptyStateNameAndAnEmptySender)
{
    EXPECT_EQ(written(InfoResponse({}, "")),
              R"({"Data":{"StateName":""},"MsgId":562949953486852,"SenderID":[]})");
}

TEST(InfoResponse, ReadsBackWhatItWrote)
{
    InfoResponse response({"a"}, name100);
    response.ReceiverID = Address{"ui", "1"};
    Element form;
    response.copyToMetaData(form);
    InfoResponse read({}, "");
    read.copyFromMetaData(Json::readText(Json::printText(form)));
    EXPECT_EQ(written(read), Json::printText(form));
    EXPECT_EQ(std::as_const(read).payload().StateName(), name100);
}

TEST(InfoResponse, HasNoPayloadAndTheUnknownStateWhenDataCannotBeRead)
{
    for (char const* data : {"", R"(,"Data":null)", R"(,"Data":"Running")", R"(,"Data":1)", R"(,"Data":1.5)",
                             R"(,"Data":true)", R"(,"Data":[{"StateName":"Running"}])"}) {
        SCOPED_TRACE(data);
        InfoResponse response({"a"}, "former");
        EXPECT_NO_THROW(response.copyFromMetaData(
            tree(R"({"MsgId":562949953486852,"SenderID":["b"])" + std::string(data) + "}")));
        EXPECT_THAT(response.unsetRequired(), ElementsAre("Data"));
        EXPECT_EQ(written(response), R"({"MsgId":562949953486852,"SenderID":["b"]})");
        EXPECT_THAT([&] { std::as_const(response).payload(); },
                    ThrowsMessage<MetaData::UnsetFieldError>(
                        StrEq("Zelk::MetaData::Reflector::operator()(): field \"Data\" is not set")));
        EXPECT_EQ(response.payload().StateName(), "UnknownState");
    }
}

TEST(InfoResponse, HasAPayloadWhoseNameIsUnsetWhenOnlyTheNameCannotBeRead)
{
    for (char const* data : {"{}", R"({"StateName":7})"}) {
        SCOPED_TRACE(data);
        InfoResponse response({"a"}, "former");
        response.copyFromMetaData(tree(R"({"SenderID":["b"],"Data":)" + std::string(data) + "}"));
        EXPECT_THAT(response.unsetRequired(), IsEmpty());
        EXPECT_THAT(std::as_const(response).payload().unsetRequired(), ElementsAre("StateName"));
        EXPECT_EQ(written(response), R"({"Data":{},"MsgId":562949953486852,"SenderID":["b"]})");
    }
}

TEST(InfoResponse, RefusesTheMessageOfAnotherNumberBeforeAnyFieldIsRead)
{
    InfoResponse response({"a"}, "former");
    Element const other =
        tree(R"({"Data":{"StateName":"Running"},"MsgId":562949953486853,"SenderID":["b"]})");
    EXPECT_THAT([&] { response.copyFromMetaData(other); },
                ThrowsMessage<std::runtime_error>(StrEq("message identifier does not match expected value")));
    EXPECT_EQ(written(response),
              R"({"Data":{"StateName":"former"},"MsgId":562949953486852,"SenderID":["a"]})");
}

TEST(InfoResponse, IsCopiedDeeply)
{
    std::vector<InfoResponse> responses;
    for (char const* state : {"Idle", "Running", "Stopped"})
        responses.emplace_back(Address{"engine"}, state);
    responses.erase(responses.begin());
    InfoResponse copy = responses[0];
    responses[0].payload().StateName = "changed";
    EXPECT_EQ(written(copy),
              R"({"Data":{"StateName":"Running"},"MsgId":562949953486852,"SenderID":["engine"]})");
    copy = responses[1];
    EXPECT_EQ(copy.payload().StateName(), "Stopped");
    EXPECT_TRUE(copy.SenderID.isRequired());
}

TEST(InfoResponse, IsDestroyedThroughAnyOfItsBases)
{
    auto const asBase = [](MetaData::PartiallySerializableInterface* message) {
        Element form;
        message->copyToMetaData(form);
        delete message;
        return Json::printText(form);
    };
    EXPECT_EQ(asBase(new InfoResponse({name100}, name100)),
              R"({"Data":{"StateName":")" + name100 + R"("},"MsgId":562949953486852,"SenderID":[")" +
                  name100 + "\"]}");
    static_assert(std::is_base_of_v<StateMessage, InfoResponse>);
    static_assert(
        std::is_base_of_v<SenderID_Required<PayloadMessageHelper<StateMessage, InfoResponseData, 4>>,
                          InfoResponse>);
}

} // namespace
} // namespace Zelk::Msgs::MsgIdState
