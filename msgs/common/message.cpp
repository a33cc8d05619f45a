#include "msgs/common/message.h"

#include <stdexcept>
#include <utility>

namespace Zelk::MetaData {

template <>
void GetAs<std::vector<std::string>>(Element const& element, std::vector<std::string>& value)
{
    Array const& nodes = element;
    std::vector<std::string> items;
    items.reserve(nodes.size());
    for (Element const& node : nodes)
        items.push_back(node.asString());
    value = std::move(items);
}

template <>
void SetAs<std::vector<std::string>>(std::vector<std::string> const& value, Element& element)
{
    Array nodes;
    unsigned int index = 0;
    for (std::string const& item : value)
        nodes[index++] = Element(Trivial_T<std::string>(item));
    element = Element(std::move(nodes));
}

template class ReflectorNoWriteParend<std::vector<std::string>, true>;
template class Reflector<std::vector<std::string>, false, true>;

} // namespace Zelk::MetaData

namespace Zelk::Msgs {

ReflectedAddress::ReflectedAddress(MetaData::MirroredObject* owner, std::string const& name, bool required)
    : Reflector(owner, name, required)
{}

ReflectedAddress& ReflectedAddress::operator=(std::vector<std::string> const& address)
{
    assign(address);
    return *this;
}

ReflectedAddress::~ReflectedAddress() = default;

Message::Message(unsigned long long identifier, std::vector<std::string> const& sender,
                 std::vector<std::string> const& receiver)
    : SenderID(this, "SenderID", false), ReceiverID(this, "ReceiverID", false), identifier_(identifier)
{
    if (!sender.empty())
        SenderID = sender;
    if (!receiver.empty())
        ReceiverID = receiver;
}

Message::Message(Message const& other) : Message(other.identifier_, {}, {})
{
    *this = other;
}

Message::~Message() = default;

unsigned long long Message::identifier() const noexcept
{
    return identifier_;
}

void Message::copyToMetaData(MetaData::Element& target) const
{
    target["MsgId"] = MetaData::Element(MetaData::Trivial_T<long long>(static_cast<long long>(identifier_)));
    MirroredObject::copyToMetaData(target);
}

void Message::copyFromMetaData(MetaData::Element const& source)
{
    MetaData::Object const& members = source;
    auto const found = members.find("MsgId");
    if (found != members.end() && static_cast<unsigned long long>(found->element().asInt64()) != identifier_)
        throw std::runtime_error("message identifier does not match expected value");
    MirroredObject::copyFromMetaData(source);
}

} // namespace Zelk::Msgs
