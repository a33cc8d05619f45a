#include "framework/json_text.h"
#include "framework/nodes.h"
#include "msgs/common/message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::Msgs {
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

template <typename T>
std::string written(T const& source)
{
    Element target;
    source.copyToMetaData(target);
    return Json::printText(target);
}

// ---- ReflectedAddress

class AddressField : public testing::Test {
protected:
    MetaData::MirroredObject owner;
    ReflectedAddress field{&owner, "SenderID", false};

    Address const& valueOf()
    {
        field.init();
        return field();
    }
};

TEST_F(AddressField, StartsEmptyAndUnsetUnlessItIsRequired)
{
    EXPECT_FALSE(field.initialized());
    EXPECT_THAT(valueOf(), IsEmpty());
    ReflectedAddress const required(&owner, "r", true);
    EXPECT_TRUE(required.initialized());
    EXPECT_THAT(required(), IsEmpty());
}

TEST_F(AddressField, IsSetByAnyAddressTheEmptyOneIncluded)
{
    field = Address();
    EXPECT_TRUE(field.initialized());
    EXPECT_EQ(written(field), R"({"SenderID":[]})");
    ReflectedAddress& result = field = Address{"plant", "engine", ""};
    EXPECT_EQ(&result, &field);
    EXPECT_EQ(written(field), R"({"SenderID":["plant","engine",""]})");
}

TEST_F(AddressField, ReadsAnArrayOfStrings)
{
    field.copyFromMetaData(tree(R"({"SenderID":["a","","c"]})"));
    EXPECT_THAT(field(), ElementsAre("a", "", "c"));
    field.copyFromMetaData(tree(R"({"SenderID":[]})"));
    EXPECT_TRUE(field.initialized());
    EXPECT_THAT(field(), IsEmpty());
}

TEST_F(AddressField, IsUnsetAndEmptyAfterReadingWhatDoesNotFit)
{
    for (char const* source :
         {"{}", R"({"SenderID":null})", R"({"SenderID":"a"})", R"({"SenderID":{"a":"b"}})",
          R"({"SenderID":1})", R"({"SenderID":1.5})", R"({"SenderID":true})", R"({"SenderID":["a",1]})",
          R"({"SenderID":["a",null]})", R"({"SenderID":[["a"]]})", "null", "[]", R"(["SenderID"])"}) {
        SCOPED_TRACE(source);
        field = Address{"former"};
        EXPECT_NO_THROW(field.copyFromMetaData(tree(source)));
        EXPECT_FALSE(field.initialized());
        EXPECT_THAT(valueOf(), IsEmpty());
    }
}

TEST_F(AddressField, WritesOverAMemberOfAnyKind)
{
    field = Address{"a"};
    for (char const* former : {"null", "1", "\"text\"", R"({"a":1})", R"(["x","y","z"])"}) {
        SCOPED_TRACE(former);
        Element target = tree(std::string(R"({"SenderID":)") + former + "}");
        field.copyToMetaData(target);
        EXPECT_EQ(target, tree(R"({"SenderID":["a"]})"));
    }
}

TEST_F(AddressField, FollowsTheCopyRuleOfFields)
{
    ReflectedAddress required(&owner, "r", true);
    required = Address{"former"};
    required = field;
    EXPECT_TRUE(required.initialized());
    EXPECT_THAT(required(), IsEmpty());

    field = Address{"a", "b"};
    required = field;
    EXPECT_THAT(required(), ElementsAre("a", "b"));
    field.uninit();
    ReflectedAddress optional(&owner, "o", false);
    optional = Address{"former"};
    optional = field;
    EXPECT_FALSE(optional.initialized());
    static_assert(!std::is_copy_constructible_v<ReflectedAddress>);
}

TEST_F(AddressField, CanBecomeRequired)
{
    field.makeRequired();
    EXPECT_TRUE(field.isRequired());
    EXPECT_THAT(owner.unsetRequired(), ElementsAre("SenderID"));
}

TEST_F(AddressField, ThrowsWhenItIsReadWhileUnset)
{
    EXPECT_THAT([this] { field(); },
                ThrowsMessage<MetaData::UnsetFieldError>(
                    StrEq("Zelk::MetaData::Reflector::operator()(): field \"SenderID\" is not set")));
}

TEST(ListOfStrings, IsReadWhollyOrNotAtAll)
{
    Address value{"former"};
    EXPECT_THROW(MetaData::GetAs<Address>(tree(R"(["a",1])"), value), TypeError);
    EXPECT_THAT(value, ElementsAre("former"));
}

// ---- Message

TEST(Message, WritesItsIdentifierAndTheAddressesThatAreSet)
{
    EXPECT_EQ(written(Message(7, {}, {})), R"({"MsgId":7})");
    EXPECT_EQ(written(Message(7, {"a", "b"}, {})), R"({"MsgId":7,"SenderID":["a","b"]})");
    EXPECT_EQ(written(Message(7, {}, {"c"})), R"({"MsgId":7,"ReceiverID":["c"]})");
    EXPECT_EQ(written(Message(7, {"a"}, {"c"})), R"({"MsgId":7,"ReceiverID":["c"],"SenderID":["a"]})");
}

TEST(Message, HasOptionalAddressesThatAreUnsetWhileTheirListsAreEmpty)
{
    Message const message(7, {}, {""});
    EXPECT_FALSE(message.SenderID.initialized());
    EXPECT_FALSE(message.SenderID.isRequired());
    EXPECT_TRUE(message.ReceiverID.initialized());
    EXPECT_FALSE(message.ReceiverID.isRequired());
    EXPECT_THAT(message.ReceiverID(), ElementsAre(""));
}

TEST(Message, WritesAndReadsAll64BitsOfItsIdentifier)
{
    struct Case {
        unsigned long long identifier;
        char const* form;
    };
    Case const cases[] = {
        {0, R"({"MsgId":0})"},
        {0x0002000000010004ULL, R"({"MsgId":562949953486852})"},
        {0x7FFFFFFFFFFFFFFFULL, R"({"MsgId":9223372036854775807})"},
        {0x8000000000000000ULL, R"({"MsgId":-9223372036854775808})"},
        {0xFFFFFFFFFFFFFFFFULL, R"({"MsgId":-1})"},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(c.form);
        Message message(c.identifier, {}, {});
        EXPECT_EQ(message.identifier(), c.identifier);
        EXPECT_EQ(written(message), c.form);
        EXPECT_NO_THROW(message.copyFromMetaData(tree(c.form)));
        EXPECT_EQ(message.identifier(), c.identifier);
    }
}

TEST(Message, RefusesAnotherIdentifierBeforeAnyFieldIsRead)
{
    Message message(7, {"former"}, {});
    for (char const* source : {R"({"MsgId":8,"SenderID":["a"],"ReceiverID":["b"]})", R"({"MsgId":-7})",
                               R"({"MsgId":4294967303})", R"({"MsgId":562949953421319})"}) {
        SCOPED_TRACE(source);
        Element const node = tree(source);
        EXPECT_THAT(
            [&] { message.copyFromMetaData(node); },
            ThrowsMessage<std::runtime_error>(StrEq("message identifier does not match expected value")));
        EXPECT_EQ(written(message), R"({"MsgId":7,"SenderID":["former"]})");
    }
}

TEST(Message, RefusesAnIdentifierThatIsNoIntegerBeforeAnyFieldIsRead)
{
    std::vector<std::pair<std::string, std::string>> const cases = {
        {"7.0", "expected integer, found floating-point number"},
        {"\"7\"", "expected integer, found string"},
        {"true", "expected integer, found boolean"},
        {"null", "expected integer, found empty"},
        {"[7]", "expected integer, found array"},
        {"{}", "expected integer, found object"},
    };
    Message message(7, {"former"}, {});
    for (auto const& [identifier, text] : cases) {
        SCOPED_TRACE(identifier);
        Element const node = tree("{\"MsgId\":" + identifier + ",\"SenderID\":[\"a\"]}");
        EXPECT_THAT([&] { message.copyFromMetaData(node); }, ThrowsMessage<TypeError>(StrEq(text)));
        EXPECT_EQ(written(message), R"({"MsgId":7,"SenderID":["former"]})");
    }
}

TEST(Message, AcceptsAMissingIdentifier)
{
    Message message(7, {}, {});
    message.copyFromMetaData(tree(R"({"SenderID":["a"],"ReceiverID":["b","c"]})"));
    EXPECT_EQ(message.identifier(), 7U);
    EXPECT_THAT(message.SenderID(), ElementsAre("a"));
    EXPECT_THAT(message.ReceiverID(), ElementsAre("b", "c"));
}

TEST(Message, UnsetsTheAddressesItCannotRead)
{
    Message message(7, {"a"}, {"b"});
    message.SenderID.makeRequired();
    EXPECT_NO_THROW(message.copyFromMetaData(tree(R"({"MsgId":7,"ReceiverID":"b"})")));
    EXPECT_EQ(written(message), R"({"MsgId":7})");
    EXPECT_THAT(message.unsetRequired(), ElementsAre("SenderID"));
}

TEST(Message, RefusesWhatIsNoObject)
{
    Message message(7, {"a"}, {});
    for (char const* source : {"null", "[]", "7", "\"MsgId\""}) {
        SCOPED_TRACE(source);
        EXPECT_THROW(message.copyFromMetaData(tree(source)), TypeError);
        EXPECT_EQ(written(message), R"({"MsgId":7,"SenderID":["a"]})");
    }
    Element array = tree("[]");
    EXPECT_THROW(message.copyToMetaData(array), TypeError);
}

TEST(Message, WritesOverTheFormOfAnother)
{
    Element target = tree(R"({"MsgId":"eight","Other":true,"ReceiverID":["kept"]})");
    Message(7, {"a"}, {}).copyToMetaData(target);
    EXPECT_EQ(target, tree(R"({"MsgId":7,"Other":true,"ReceiverID":["kept"],"SenderID":["a"]})"));
}

/// A user's message with a field beside those of the base.
struct Alarm : Message {
    Alarm() : Message(0xFF, {}, {}) {}
    Alarm(Alarm const& other) : Alarm() { *this = other; }
    Alarm& operator=(Alarm const& other) = default;
    MetaData::Reflector<double, false, true> Level{this, "Level", true};
};

TEST(Message, WritesAndReadsTheFieldsOfDerivedMessages)
{
    Alarm alarm;
    alarm.Level = 2.5;
    alarm.SenderID = Address{"a"};
    EXPECT_EQ(written(alarm), R"({"Level":2.5,"MsgId":255,"SenderID":["a"]})");
    Message& base = alarm;
    base.copyFromMetaData(tree(R"({"MsgId":255,"Level":"high"})"));
    EXPECT_FALSE(alarm.Level.initialized());
    EXPECT_THAT(alarm.unsetRequired(), ElementsAre("Level"));
    EXPECT_EQ(written(base), R"({"MsgId":255})");
}

TEST(Message, IsCopiedWithItsIdentifierAndByTheCopyRuleOfFields)
{
    Message source(7, {"a"}, {});
    source.SenderID.makeRequired();
    Message copy = source;
    EXPECT_EQ(written(copy), R"({"MsgId":7,"SenderID":["a"]})");
    EXPECT_FALSE(copy.SenderID.isRequired());
    copy.SenderID = Address{"b"};
    EXPECT_THAT(source.SenderID(), ElementsAre("a"));

    Message assigned(8, {}, {"c"});
    assigned = source;
    EXPECT_EQ(written(assigned), R"({"MsgId":7,"SenderID":["a"]})");

    Alarm alarm;
    alarm.Level = 1.5;
    Alarm const copiedAlarm = alarm;
    EXPECT_EQ(written(copiedAlarm), R"({"Level":1.5,"MsgId":255})");
}

} // namespace
} // namespace Zelk::Msgs
