/// The base of the messages that are addressed by a 64-bit identifier.
#pragma once

#include "framework/export.h"
#include "framework/mirrored_object.h"
#include "framework/reflector.h"

#include <string>
#include <vector>

namespace Zelk::MetaData {

/// Reads the items of an array of strings; TypeError, with `value` unchanged, when the node or one of its
/// items is of another kind.
template <>
ZELK_EXPORT void GetAs<std::vector<std::string>>(Element const& element, std::vector<std::string>& value);
/// Makes `element` an array of strings, whatever it was before.
template <>
ZELK_EXPORT void SetAs<std::vector<std::string>>(std::vector<std::string> const& value, Element& element);

extern template class ReflectorNoWriteParend<std::vector<std::string>, true>;
extern template class Reflector<std::vector<std::string>, false, true>;

} // namespace Zelk::MetaData

namespace Zelk::Msgs {

/// A field that holds an address: a list of strings, written as an array of strings. An empty list is an
/// address too; it is the field's being set or unset that tells whether there is one.
class ZELK_EXPORT ReflectedAddress : public MetaData::Reflector<std::vector<std::string>, false, true> {
public:
    /// A field of `owner` under the key `name`, with an empty list; set exactly when it is required.
    ReflectedAddress(MetaData::MirroredObject* owner, std::string const& name, bool required);
    ReflectedAddress& operator=(ReflectedAddress const&) = default;
    /// Stores the address; the field is set then, for an empty list too.
    ReflectedAddress& operator=(std::vector<std::string> const& address);
    ~ReflectedAddress() override;
};

/// A record that says which message it is, from whom and to whom. Fields that a derived message registers are
/// written and read with its own.
///
///     {"MsgId":562949953486852,"ReceiverID":["plant","ui"],"SenderID":["plant","engine"]}
///
/// Both addresses are optional and written when they are set. "MsgId", the identifier, is an integer node
/// with all 64 bits, so from 2^63 on it is negative; no field of a message may have that key.
class ZELK_EXPORT Message : public MetaData::MirroredObject {
public:
    /// A message with that identifier; each address field is set unless its list is empty.
    Message(unsigned long long identifier, std::vector<std::string> const& sender,
            std::vector<std::string> const& receiver);
    /// A message with the identifier and the addresses of the other; of a derived message nothing else.
    Message(Message const& other);
    Message& operator=(Message const&) = default;
    ~Message() override;

    /// Which message it is, see Identifier.
    unsigned long long identifier() const noexcept;

    /// Writes "MsgId" and then every field that is set, as MirroredObject does.
    void copyToMetaData(MetaData::Element& target) const override;

    /// Reads every field, as MirroredObject does; the identifier stays. A "MsgId" other than the message's
    /// own throws std::runtime_error "message identifier does not match expected value", one that is not an
    /// integer TypeError, both before any field is read. A missing "MsgId" is accepted.
    void copyFromMetaData(MetaData::Element const& source) override;

    /// "SenderID", optional: where the message comes from.
    ReflectedAddress SenderID;
    /// "ReceiverID", optional: where the message goes.
    ReflectedAddress ReceiverID;

private:
    unsigned long long identifier_;
};

} // namespace Zelk::Msgs
