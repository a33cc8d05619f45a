#include "msgs/msgidstate/info.h"

namespace Zelk::MetaData {
template class ReflectorNoWriteParend<bool, true>;
template class ReflectorNoWriteParend<std::string, true>;
template class ReflectorNoWriteParend<Msgs::MsgIdState::InfoResponseData, true>;
template class Reflector<bool, false, true>;
template class Reflector<std::string, false, true>;
template class Reflector<Msgs::MsgIdState::InfoResponseData, true, true>;
} // namespace Zelk::MetaData

namespace Zelk::Msgs::MsgIdState {

// ---- InfoRequestData

InfoRequestData::InfoRequestData(bool attribInfo)
    : StateName(this, "StateName", false), AttribInfo(this, "AttribInfo", true, attribInfo)
{}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value in the signature that programs link with
InfoRequestData::InfoRequestData(std::string stateName, bool attribInfo) : InfoRequestData(attribInfo)
{
    StateName = stateName;
}

InfoRequestData::InfoRequestData(InfoRequestData const& other) : InfoRequestData(true)
{
    *this = other;
}

InfoRequestData& InfoRequestData::operator=(InfoRequestData const&) = default;

InfoRequestData::~InfoRequestData() = default;

// ---- InfoResponseData

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value in the signature that programs link with
InfoResponseData::InfoResponseData(std::string stateName) : StateName(this, "StateName", true, stateName) {}

InfoResponseData::InfoResponseData(InfoResponseData const& other) : InfoResponseData(std::string())
{
    *this = other;
}

InfoResponseData& InfoResponseData::operator=(InfoResponseData const&) = default;

InfoResponseData::~InfoResponseData() = default;

// ---- InfoResponse

InfoResponse::InfoResponse(std::vector<std::string> const& senderId, std::string const& stateName)
    : SenderID_Required(senderId)
{
    payload().StateName = stateName;
}

InfoResponse::~InfoResponse() = default;

} // namespace Zelk::Msgs::MsgIdState
