#include "msgs/msgidstate/state_message.h"

namespace Zelk::Msgs::MsgIdState {

EngineMessage::~EngineMessage() = default;
StateMessage::~StateMessage() = default;

} // namespace Zelk::Msgs::MsgIdState
