/// What is asked and answered about a state: the payload of the request, and the answering message.
#pragma once

#include "framework/export.h"
#include "framework/mirrored_object.h"
#include "framework/reflector.h"
#include "msgs/common/payload_message.h"
#include "msgs/msgidstate/state_message.h"

#include <string>
#include <vector>

namespace Zelk::MetaData {
extern template class ReflectorNoWriteParend<bool, true>;
extern template class ReflectorNoWriteParend<std::string, true>;
extern template class Reflector<bool, false, true>;
extern template class Reflector<std::string, false, true>;
} // namespace Zelk::MetaData

namespace Zelk::Msgs::MsgIdState {

/// The payload of a request for information about a state.
///
///     {"AttribInfo":true,"StateName":"Running"}
class ZELK_EXPORT InfoRequestData : public MetaData::MirroredObject {
public:
    /// A request that names no state.
    explicit InfoRequestData(bool attribInfo);
    /// Not for a literal: it would be taken for true.
    template <typename Character>
    explicit InfoRequestData(Character const* stateName) = delete;
    /// A request about the state of that name.
    InfoRequestData(std::string stateName, bool attribInfo);
    /// Takes over the fields that are set; of those that are not, "AttribInfo" becomes false and set, since
    /// it is required, and "StateName" empty and unset.
    InfoRequestData(InfoRequestData const& other);
    /// As the copy constructor.
    InfoRequestData& operator=(InfoRequestData const& other);
    ~InfoRequestData() override;

    /// "StateName", optional: which state.
    MetaData::Reflector<std::string, false, true> StateName;
    /// "AttribInfo", required: whether information about attributes is wanted.
    MetaData::Reflector<bool, false, true> AttribInfo;
};

/// The payload of the answer: the name of a state.
///
///     {"StateName":"Running"}
class ZELK_EXPORT InfoResponseData : public MetaData::MirroredObject {
public:
    /// An answer that names the state; "StateName" is set whatever the name.
    explicit InfoResponseData(std::string stateName = "UnknownState");
    /// Takes over "StateName" when it is set; otherwise it becomes empty and set, since it is required.
    InfoResponseData(InfoResponseData const& other);
    /// As the copy constructor.
    InfoResponseData& operator=(InfoResponseData const& other);
    ~InfoResponseData() override;

    /// "StateName", required.
    MetaData::Reflector<std::string, false, true> StateName;
};

} // namespace Zelk::Msgs::MsgIdState

namespace Zelk::MetaData {
extern template class ReflectorNoWriteParend<Msgs::MsgIdState::InfoResponseData, true>;
extern template class Reflector<Msgs::MsgIdState::InfoResponseData, true, true>;
} // namespace Zelk::MetaData

namespace Zelk::Msgs::MsgIdState {

/// The answer: in which state the sender is. The sender address is required.
///
///     {"Data":{"StateName":"Running"},"MsgId":562949953486852,"SenderID":["plant","engine"]}
///
/// When "Data" is missing or no object in what is read, it is unset and names "UnknownState".
class ZELK_EXPORT InfoResponse
    : public SenderID_Required<PayloadMessageHelper<StateMessage, InfoResponseData, 4>> {
public:
    /// The answer of `senderId` that it is in the state `stateName`. Both are set and written, even when
    /// empty.
    InfoResponse(std::vector<std::string> const& senderId, std::string const& stateName);
    InfoResponse(InfoResponse const&) = default;
    InfoResponse& operator=(InfoResponse const&) = default;
    ~InfoResponse() override;
};

} // namespace Zelk::Msgs::MsgIdState
