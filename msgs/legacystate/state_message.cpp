#include "msgs/legacystate/state_message.h"

namespace Zelk::Msgs::LegacyState {

StateMessage::~StateMessage() = default;

} // namespace Zelk::Msgs::LegacyState
