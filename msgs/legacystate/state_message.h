/// The common root of the commands and responses of the legacy state protocol.
#pragma once

#include "framework/export.h"
#include "framework/serializable.h"

namespace Zelk::Msgs::LegacyState {

/// Any legacy command or response, so that a caller can hold either by one type. A message keeps the tree
/// that it was read from (Json::PartiallyDeserializable): members that its class does not know are written
/// out again.
class ZELK_EXPORT StateMessage : public Json::PartiallyDeserializable {
public:
    ~StateMessage() override = 0;
};

} // namespace Zelk::Msgs::LegacyState
