// Whole virtual tables of the classes that the libraries build only as a part of others, and so may have no
// whole table for.
#include "msgs/msgidstate/info.h"

using Zelk::Msgs::MsgIdState::InfoResponseData;
using Zelk::Msgs::MsgIdState::StateMessage;

template class Zelk::Msgs::PayloadMessageHelper<StateMessage, InfoResponseData, 4>;
template class Zelk::Msgs::SenderID_Required<
    Zelk::Msgs::PayloadMessageHelper<StateMessage, InfoResponseData, 4>>;
