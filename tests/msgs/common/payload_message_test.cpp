#include "framework/json_text.h"
#include "framework/nodes.h"
#include "msgs/common/payload_message.h"
#include "msgs/msgidstate/state_message.h"

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
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;
using testing::ThrowsMessage;
using Address = std::vector<std::string>;

struct Axis : MetaData::MirroredObject {
    Axis() = default;
    Axis(Axis const& other) : Axis() { *this = other; }
    Axis& operator=(Axis const& other) = default;
    MetaData::Reflector<double, false, true> Angle{this, "Angle", true, 90};
};

struct Position : MetaData::MirroredObject {
    Position() = default;
    Position(Position const& other) : Position() { *this = other; }
    Position& operator=(Position const& other) = default;
    MetaData::Reflector<double, false, true> X{this, "X", true};
    MetaData::Reflector<Axis, true, true> Turned{this, "Turned", false};
};

using Moved = PayloadMessageHelper<MsgIdState::StateMessage, Position, 200>;
using MovedBy = SenderID_Required<Moved>;

Element tree(std::string const& json)
{
    return Json::readText(json);
}

std::string written(MetaData::MirroredObject const& message)
{
    Element target;
    message.copyToMetaData(target);
    return Json::printText(target);
}

TEST(PayloadMessageHelper, StartsWithADefaultPayloadThatIsSet)
{
    Moved const message;
    EXPECT_TRUE(message.Data.initialized());
    EXPECT_TRUE(message.Data.isRequired());
    EXPECT_EQ(message.payload().X(), 0.0);
    EXPECT_FALSE(message.SenderID.initialized());
    EXPECT_FALSE(message.ReceiverID.initialized());
    EXPECT_THAT(message.unsetRequired(), IsEmpty());
    EXPECT_EQ(written(message), R"({"Data":{"X":0.0},"MsgId":562949953487048})");
}

TEST(PayloadMessageHelper, HasTheIdentifierOfItsMessageNumber)
{
    EXPECT_EQ(Moved().identifier(), 0x00020000000100C8ULL);
    EXPECT_EQ((PayloadMessageHelper<MsgIdState::StateMessage, Position, 65535>().identifier()),
              0x000200000001FFFFULL);
}

TEST(PayloadMessageHelper, ReadsBackWhatItWrote)
{
    Moved message;
    message.payload().X = 1.5;
    message.payload().Turned().Angle = -45;
    message.ReceiverID = Address{"ui"};
    std::string const form =
        R"({"Data":{"Turned":{"Angle":-45.0},"X":1.5},"MsgId":562949953487048,"ReceiverID":["ui"]})";
    EXPECT_EQ(written(message), form);
    Moved read;
    read.copyFromMetaData(tree(form));
    EXPECT_EQ(written(read), form);
    EXPECT_EQ(std::as_const(read).payload().Turned().Angle(), -45.0);
}

TEST(PayloadMessageHelper, RefusesTheMessageOfAnotherNumber)
{
    Moved message;
    message.payload().X = 1.5;
    Element const other = tree(R"({"Data":{"X":2.5},"MsgId":562949953487049})");
    EXPECT_THAT([&] { message.copyFromMetaData(other); },
                ThrowsMessage<std::runtime_error>(StrEq("message identifier does not match expected value")));
    EXPECT_EQ(message.payload().X(), 1.5);
}

TEST(PayloadMessageHelper, RegistersThePayloadAfterTheFieldsOfTheMessage)
{
    Moved message;
    message.SenderID.makeRequired();
    message.copyFromMetaData(tree("{}"));
    EXPECT_THAT(message.unsetRequired(), ElementsAre("SenderID", "Data"));
}

TEST(PayloadAccessor, ThrowsForAConstMessageWhosePayloadCouldNotBeRead)
{
    for (char const* source :
         {"{}", R"({"Data":null})", R"({"Data":[]})", R"({"Data":1})", R"({"Data":"text"})"}) {
        SCOPED_TRACE(source);
        Moved message;
        message.payload().X = 1.5;
        EXPECT_NO_THROW(message.copyFromMetaData(tree(source)));
        EXPECT_FALSE(message.Data.initialized());
        EXPECT_THAT([&] { std::as_const(message).payload(); },
                    ThrowsMessage<MetaData::UnsetFieldError>(
                        StrEq("Zelk::MetaData::Reflector::operator()(): field \"Data\" is not set")));
        EXPECT_FALSE(message.Data.initialized());
    }
}

TEST(PayloadAccessor, MarksThePayloadSetWhenItIsMutable)
{
    Moved message;
    message.copyFromMetaData(tree("{}"));
    EXPECT_EQ(written(message), R"({"MsgId":562949953487048})");
    EXPECT_EQ(message.payload().X(), 0.0) << "the payload was reset to Position()";
    EXPECT_TRUE(message.Data.initialized());
    EXPECT_EQ(written(message), R"({"Data":{"X":0.0},"MsgId":562949953487048})");
}

TEST(PayloadAccessor, IsAnEmptyMixin)
{
    using Accessor = PayloadAccessorIf<Moved, Position>;
    static_assert(std::is_empty_v<Accessor>);
    static_assert(!std::is_polymorphic_v<Accessor>);
    static_assert(std::is_base_of_v<Accessor, Moved>);
    static_assert(std::is_same_v<decltype(std::declval<Moved&>().payload()), Position&>);
    static_assert(std::is_same_v<decltype(std::declval<Moved const&>().payload()), Position const&>);
    Moved message;
    Accessor& accessor = message;
    accessor.payload().X = 3;
    EXPECT_EQ(message.Data().X(), 3.0);
}

TEST(SenderIdRequired, SetsTheSenderAndMakesItRequired)
{
    MovedBy const message({"plant", "axis"});
    EXPECT_TRUE(message.SenderID.isRequired());
    EXPECT_FALSE(message.ReceiverID.isRequired());
    EXPECT_EQ(written(message), R"({"Data":{"X":0.0},"MsgId":562949953487048,"SenderID":["plant","axis"]})");
}

TEST(SenderIdRequired, WritesAnEmptySender)
{
    EXPECT_EQ(written(MovedBy(Address())), R"({"Data":{"X":0.0},"MsgId":562949953487048,"SenderID":[]})");
}

TEST(SenderIdRequired, DoesNotThrowWhenTheSenderCannotBeRead)
{
    MovedBy message({"axis"});
    EXPECT_NO_THROW(message.copyFromMetaData(tree(R"({"Data":{"X":1.5},"MsgId":562949953487048})")));
    EXPECT_THAT(message.unsetRequired(), ElementsAre("SenderID"));
    EXPECT_EQ(written(message), R"({"Data":{"X":1.5},"MsgId":562949953487048})");
}

TEST(PayloadMessageCopy, IsDeepWithoutASenderToo)
{
    Moved source;
    source.payload().X = 1.5;
    Moved const copy = source;
    source.payload().X = 2.5;
    EXPECT_EQ(written(copy), R"({"Data":{"X":1.5},"MsgId":562949953487048})");
}

TEST(PayloadMessageCopy, IsDeepAndFollowsTheCopyRuleOfFields)
{
    MovedBy source({"axis"});
    source.payload().X = 1.5;
    MovedBy copy = source;
    source.payload().X = 2.5;
    EXPECT_EQ(written(copy), R"({"Data":{"X":1.5},"MsgId":562949953487048,"SenderID":["axis"]})");

    MovedBy unread({"axis"});
    unread.copyFromMetaData(tree("{}"));
    MovedBy const fromUnset = unread;
    EXPECT_EQ(written(fromUnset), R"({"Data":{"X":0.0},"MsgId":562949953487048,"SenderID":[]})");
    copy = unread;
    EXPECT_EQ(written(copy), R"({"Data":{"X":0.0},"MsgId":562949953487048,"SenderID":[]})");
}

} // namespace
} // namespace Zelk::Msgs
