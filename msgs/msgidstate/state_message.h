/// The kinds of message that the state service speaks under 64-bit identifiers.
#pragma once

#include "framework/export.h"
#include "msgs/common/identifier.h"
#include "msgs/common/message.h"

#include <string>
#include <vector>

namespace Zelk::Msgs::MsgIdState {

/// A message of one of the engine's services. It starts without addresses.
class ZELK_EXPORT EngineMessage : public Message {
public:
    /// A message with that identifier.
    explicit EngineMessage(Identifier const& identifier)
        : Message(identifier, std::vector<std::string>(), std::vector<std::string>())
    {}
    EngineMessage(EngineMessage const&) = default;
    EngineMessage& operator=(EngineMessage const&) = default;
    ~EngineMessage() override;
};

/// A message of the state service: its identifier is made of 2, 0, 1 and the message number.
///
/// A message of one's own is this with a payload and a number:
///
///     using Moved = PayloadMessageHelper<StateMessage, Position, 200>;
class ZELK_EXPORT StateMessage : public EngineMessage {
public:
    /// A message with the identifier of that message number.
    explicit StateMessage(unsigned short number)
        : EngineMessage(Identifier(Identifier::toValue(2, 0, 1, number)))
    {}
    StateMessage(StateMessage const&) = default;
    StateMessage& operator=(StateMessage const&) = default;
    ~StateMessage() override;
};

} // namespace Zelk::Msgs::MsgIdState
