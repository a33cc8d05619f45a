#include "framework/json_text.h"
#include "msgs/msgidstate/state_message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace Zelk::Msgs::MsgIdState {
namespace {

std::string written(Message const& message)
{
    MetaData::Element target;
    message.copyToMetaData(target);
    return Json::printText(target);
}

TEST(EngineMessage, CarriesTheIdentifierAndNoAddresses)
{
    EngineMessage const message(Identifier(0x8000000000000001ULL));
    EXPECT_EQ(message.identifier(), 0x8000000000000001ULL);
    EXPECT_EQ(written(message), R"({"MsgId":-9223372036854775807})");
    static_assert(!std::is_convertible_v<Identifier, EngineMessage>);
}

TEST(StateMessage, HasAnIdentifierOf2And0And1AndItsNumber)
{
    for (unsigned int number : {0U, 1U, 4U, 255U, 256U, 32768U, 65535U})
        EXPECT_EQ(StateMessage(static_cast<unsigned short>(number)).identifier(),
                  0x0002000000010000ULL + number);
    static_assert(!std::is_convertible_v<unsigned short, StateMessage>);
}

TEST(StateMessage, DiffersFromAnotherInTheFourthPartOnly)
{
    EXPECT_EQ(StateMessage(4).identifier() ^ StateMessage(5).identifier(), 1U);
    EXPECT_EQ(StateMessage(0).identifier() ^ StateMessage(65535).identifier(), 0xFFFFU);
}

TEST(StateMessage, StartsWithoutAddresses)
{
    EXPECT_EQ(written(StateMessage(4)), R"({"MsgId":562949953486852})");
    EXPECT_THAT(StateMessage(4).unsetRequired(), testing::IsEmpty());
}

TEST(StateMessage, IsCopied)
{
    StateMessage source(4);
    source.SenderID = std::vector<std::string>{"a"};
    StateMessage const copy = source;
    EXPECT_EQ(written(copy), R"({"MsgId":562949953486852,"SenderID":["a"]})");
    EngineMessage const engineMessage = source;
    EXPECT_EQ(written(engineMessage), written(copy));
}

} // namespace
} // namespace Zelk::Msgs::MsgIdState
