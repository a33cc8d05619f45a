/// The layers between a kind of message and one message of that kind: a payload, and addresses that must be
/// there.
#pragma once

#include "framework/export.h"
#include "framework/reflector.h"
#include "msgs/common/message.h"

#include <string>
#include <vector>

namespace Zelk::Msgs {

/// Access to the payload of a message that has its payload in a field `Data`.
template <typename MessageType, typename Payload>
class ZELK_EXPORT PayloadAccessorIf {
public:
    /// The payload, for modification. Marks the payload set.
    Payload& payload() { return static_cast<MessageType&>(*this).Data(); }
    /// The payload. Throws MetaData::UnsetFieldError when it is unset.
    Payload const& payload() const { return static_cast<MessageType const&>(*this).Data(); }
};

/// A message of the kind `BaseMessage`, with the message number `number` and a payload, which is a record
/// with a default constructor and copy assignment.
///
///     {"Data":{...},"MsgId":562949953486852}
///
/// The payload is required and starts as Payload(), set. When it is missing or no object in what is read, it
/// is unset, and the const payload() throws.
template <typename BaseMessage, typename Payload, unsigned short number>
class ZELK_EXPORT PayloadMessageHelper
    : public BaseMessage,
      public PayloadAccessorIf<PayloadMessageHelper<BaseMessage, Payload, number>, Payload> {
public:
    /// A message without addresses, whose payload is Payload() and set.
    PayloadMessageHelper() : BaseMessage(number), Data(this, "Data", true, Payload()) {}
    /// Copies field by field, by the copy rule of fields (framework/reflector.h).
    PayloadMessageHelper(PayloadMessageHelper const& other) : PayloadMessageHelper() { *this = other; }
    PayloadMessageHelper& operator=(PayloadMessageHelper const&) = default;

    /// "Data": the payload.
    MetaData::Reflector<Payload, true, true> Data;
};

/// A message of the kind `BaseMessage` whose sender address is required.
template <typename BaseMessage>
class ZELK_EXPORT SenderID_Required : public BaseMessage {
public:
    /// Sets the sender address; an empty list is an address too.
    explicit SenderID_Required(std::vector<std::string> const& sender)
    {
        this->SenderID = sender;
        this->SenderID.makeRequired();
    }
    /// Copies field by field; the sender address is required here too, and so it is set.
    SenderID_Required(SenderID_Required const& other) : SenderID_Required(std::vector<std::string>())
    {
        *this = other;
    }
    SenderID_Required& operator=(SenderID_Required const&) = default;
};

} // namespace Zelk::Msgs
