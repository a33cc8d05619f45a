// What the libraries throw is caught by its type in a program whose own names are all hidden.
#include "framework/json_text.h"
#include "framework/mirrored_object.h"
#include "framework/reflector.h"
#include "msgs/legacystate/registration_commands.h"
#include "msgs/legacystate/state_command.h"
#include "msgs/legacystate/state_response.h"
#include "msgs/msgidstate/info.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Zelk {
namespace {

using MetaData::Element;

/// Which of the handlers caught what `action` threw, most derived first.
template <typename Action>
std::string caughtAs(Action action)
{
    try {
        action();
    } catch (MetaData::TypeError const&) {
        return "TypeError";
    } catch (MetaData::MissingMemberError const&) {
        return "MissingMemberError";
    } catch (MetaData::UnsetFieldError const&) {
        return "UnsetFieldError";
    } catch (MetaData::Error const&) {
        return "Error";
    } catch (Json::ParseError const&) {
        return "ParseError";
    } catch (Json::PrintError const&) {
        return "PrintError";
    } catch (std::runtime_error const& error) {
        return typeid(error) == typeid(std::runtime_error) ? "runtime_error"
                                                           : "a runtime_error of an unknown type";
    } catch (...) {
        return "something else";
    }
    return "nothing";
}

template <typename Base, typename Action>
bool isCaughtAs(Action action)
{
    try {
        action();
    } catch (Base const&) {
        return true;
    } catch (...) {
        return false;
    }
    return false;
}

Element tree(std::string const& json)
{
    return Json::readText(json);
}

void throwsTypeError()
{
    Element().asInt64();
}

void throwsMissingMember()
{
    Element const node = tree("{}");
    node["a"];
}

void throwsUnsetField()
{
    MetaData::MirroredObject owner;
    MetaData::Reflector<bool, false, true> const field(&owner, "k", false);
    field();
}

void throwsParseError()
{
    Json::readText("{");
}

void throwsPrintError()
{
    Json::printText(Element(MetaData::Trivial_T<double>(std::numeric_limits<double>::infinity())));
}

TEST(Catching, WorksByTheTypeThatWasThrown)
{
    EXPECT_EQ(caughtAs(throwsTypeError), "TypeError");
    EXPECT_EQ(caughtAs(throwsMissingMember), "MissingMemberError");
    EXPECT_EQ(caughtAs(throwsUnsetField), "UnsetFieldError");
    EXPECT_EQ(caughtAs(throwsParseError), "ParseError");
    EXPECT_EQ(caughtAs(throwsPrintError), "PrintError");
}

TEST(Catching, WorksByTheBaseOfWhatWasThrown)
{
    for (auto* action : {throwsTypeError, throwsMissingMember, throwsUnsetField}) {
        EXPECT_TRUE(isCaughtAs<MetaData::Error>(action));
        EXPECT_TRUE(isCaughtAs<std::runtime_error>(action));
        EXPECT_TRUE(isCaughtAs<std::exception>(action));
    }
    for (auto* action : {throwsParseError, throwsPrintError}) {
        EXPECT_FALSE(isCaughtAs<MetaData::Error>(action));
        EXPECT_TRUE(isCaughtAs<std::runtime_error>(action));
    }
}

TEST(Catching, WorksForWhatComesThroughAnotherLibrary)
{
    using namespace Msgs;
    EXPECT_EQ(caughtAs([] { LegacyState::NormalGlobalEventCommand<-10>().copyFromMetaData(tree("[]")); }),
              "TypeError");
    EXPECT_EQ(caughtAs([] { LegacyState::StateCommand().fromJsonString("{]"); }), "ParseError");
    EXPECT_EQ(caughtAs([] {
                  LegacyState::StateCommand command;
                  command.setClientName("\xFF");
                  command.toJsonString();
              }),
              "PrintError");
    EXPECT_EQ(caughtAs([] { MsgIdState::InfoResponse({}, "").copyFromMetaData(tree(R"({"MsgId":"4"})")); }),
              "TypeError");
    EXPECT_EQ(caughtAs([] {
                  MsgIdState::InfoResponse response({}, "");
                  response.Data.reset();
                  std::as_const(response).payload();
              }),
              "UnsetFieldError");
}

TEST(Catching, WorksForTheFixedTexts)
{
    using namespace Msgs;
    EXPECT_EQ(caughtAs([] {
                  LegacyState::NormalGlobalEventCommand<-10> command;
                  command.fromJsonString(R"({"commandid":0,"clientname":"","id":-9})");
              }),
              "runtime_error");
    EXPECT_EQ(caughtAs([] { MsgIdState::InfoResponse({}, "").copyFromMetaData(tree(R"({"MsgId":5})")); }),
              "runtime_error");
}

/// A program's own error of a library's kind.
class OwnError : public MetaData::Error {
public:
    using Error::Error;
};

TEST(Catching, WorksForTypesThatTheProgramDerives)
{
    struct Refusing : MetaData::MirroredObject {
        void copyFromMetaData(Element const&) override { throw OwnError("own"); }
    };
    Refusing refusing;
    EXPECT_EQ(caughtAs([&] { refusing.copyFromMetaData(Element()); }), "Error");
    EXPECT_TRUE(isCaughtAs<OwnError>([&] { refusing.copyFromMetaData(Element()); }));
}

TEST(Casting, WorksAcrossTheLibraries)
{
    Msgs::MsgIdState::InfoResponse response({}, "");
    MetaData::PartiallySerializableInterface& form = response;
    EXPECT_NE(dynamic_cast<Msgs::MsgIdState::StateMessage*>(&form), nullptr);
    EXPECT_NE(dynamic_cast<Msgs::Message*>(&form), nullptr);
    EXPECT_EQ(dynamic_cast<MetaData::ReflectorBase*>(&form), nullptr);

    MetaData::PartiallySerializableInterface& field = response.Data;
    EXPECT_NE((dynamic_cast<MetaData::Reflector<Msgs::MsgIdState::InfoResponseData, true, true>*>(&field)),
              nullptr);

    Msgs::LegacyState::NormalGlobalEventCommand<-6> command;
    Json::Serializable& serializable = command;
    EXPECT_NE(dynamic_cast<Msgs::LegacyState::StateMessage*>(&serializable), nullptr);
    EXPECT_NE(dynamic_cast<Msgs::LegacyState::StateCommandWithGlobalEventId<-6>*>(&serializable), nullptr);
    EXPECT_EQ(dynamic_cast<Msgs::LegacyState::StateResponse*>(&serializable), nullptr);
}

} // namespace
} // namespace Zelk
