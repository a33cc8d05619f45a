#include "framework/mirrored_object.h"

namespace Zelk::MetaData {

PartiallySerializableInterface::~PartiallySerializableInterface() = default;

// ---- ReflectorBase

ReflectorBase::ReflectorBase(MirroredObject* owner, std::string const& name, bool required)
    : owner_(owner), previous_(owner->members_.last_), name_(name), required_(required), set_(required)
{
    (previous_ == nullptr ? owner_->members_.first_ : previous_->next_) = this;
    owner_->members_.last_ = this;
}

ReflectorBase::~ReflectorBase()
{
    // A base of the record that is destroyed later may still write or read what is left of the record.
    (previous_ == nullptr ? owner_->members_.first_ : previous_->next_) = next_;
    (next_ == nullptr ? owner_->members_.last_ : next_->previous_) = previous_;
}

// Not inline: where a field keeps its state is known to this library only.
void ReflectorBase::init() noexcept
{
    set_ = true;
}

void ReflectorBase::uninit() noexcept
{
    set_ = false;
}

bool ReflectorBase::initialized() const noexcept
{
    return set_;
}

bool ReflectorBase::isRequired() const noexcept
{
    return required_;
}

void ReflectorBase::makeRequired() noexcept
{
    required_ = true;
}

std::string const& ReflectorBase::name() const noexcept
{
    return name_;
}

void ReflectorBase::throwIfUninited(std::string const& where) const
{
    if (!set_)
        throw UnsetFieldError(where + ": field \"" + name_ + "\" is not set");
}

// ---- MirroredObject

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned, each record keeps its own fields
MirroredObject::MembersStorage& MirroredObject::MembersStorage::operator=(MembersStorage const&) noexcept
{
    return *this;
}

MirroredObject::MirroredObject() noexcept = default;

MirroredObject::~MirroredObject() = default;

void MirroredObject::copyToMetaData(Element& target) const
{
    static_cast<void>(static_cast<Object&>(target)); // makes an empty node an object
    for (ReflectorBase const* field = members_.first_; field != nullptr; field = field->next_)
        field->copyToMetaData(target);
}

void MirroredObject::copyFromMetaData(Element const& source)
{
    static_cast<void>(static_cast<Object const&>(source)); // throws when it is none
    for (ReflectorBase* field = members_.first_; field != nullptr; field = field->next_)
        field->copyFromMetaData(source);
}

std::vector<std::string> MirroredObject::unsetRequired() const
{
    std::vector<std::string> keys;
    for (ReflectorBase const* field = members_.first_; field != nullptr; field = field->next_)
        if (field->isRequired() && !field->initialized())
            keys.push_back(field->name());
    return keys;
}

} // namespace Zelk::MetaData
