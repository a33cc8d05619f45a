#include "framework/serializable.h"

#include "framework/json_text.h"
#include "framework/loan.h"

#include <utility>

namespace Zelk::Json {

using Detail::Loan;
using MetaData::Element;

// ---- Serializable

Serializable::~Serializable() = default;

void Serializable::toJson(std::ostream& stream) const
{
    Loan tree(*this);
    copyToMetaData(tree);
    printText(tree, stream);
}

std::string Serializable::toJsonString() const
{
    Loan tree(*this);
    copyToMetaData(tree);
    return printText(tree);
}

void Serializable::moveToJson(std::ostream& stream)
{
    Loan tree(*this);
    moveToMetaData(tree);
    printText(tree, stream);
    tree.keep();
}

std::string Serializable::moveToJsonString()
{
    Loan tree(*this);
    moveToMetaData(tree);
    std::string text = printText(tree);
    tree.keep();
    return text;
}

void Serializable::fromJson(std::istream& stream)
{
    moveFromMetaData(readText(stream));
}

void Serializable::fromJsonString(std::string const& text)
{
    moveFromMetaData(readText(text));
}

void Serializable::moveToMetaData(Element& target)
{
    copyToMetaData(target);
}

void Serializable::moveFromMetaData(Element&& source)
{
    copyFromMetaData(source);
}

// ---- PartiallyDeserializable

PartiallyDeserializable::~PartiallyDeserializable() = default;

void PartiallyDeserializable::toJson(std::ostream& stream) const
{
    copyToInternalMetaData();
    printText(internal_, stream);
}

void PartiallyDeserializable::moveToJson(std::ostream& stream)
{
    moveToInternalMetaData();
    printText(internal_, stream);
    internal_ = Element();
}

void PartiallyDeserializable::fromJson(std::istream& stream)
{
    moveFromMetaData(readText(stream));
}

void PartiallyDeserializable::copyToMetaData(Element& target) const
{
    copyToInternalMetaData();
    if (Loan* const loan = Loan::of(target, *this))
        loan->borrow(internal_);
    else
        target = internal_;
}

void PartiallyDeserializable::copyFromMetaData(Element const& source)
{
    Element tree(source);
    readInternal(tree);
}

void PartiallyDeserializable::moveToMetaData(Element& target)
{
    moveToInternalMetaData();
    if (Loan* const loan = Loan::of(target, *this))
        loan->borrow(internal_);
    else
        target = std::move(internal_);
}

void PartiallyDeserializable::moveFromMetaData(Element&& source)
{
    if (&source == &internal_)
        copyFromMetaData(source);
    else
        readInternal(source);
}

void PartiallyDeserializable::moveToInternalMetaData()
{
    copyToInternalMetaData();
}

Element& PartiallyDeserializable::elementImpl(Element& parent, std::string const& key)
{
    return parent[key];
}

void PartiallyDeserializable::readInternal(Element& source)
{
    // `source` may be a part of the internal metadata object, which `former` therefore keeps alive.
    Element former(std::move(internal_));
    internal_ = std::move(source);
    try {
        copyFromInternalMetaData();
    } catch (...) {
        source = std::move(internal_);
        internal_ = std::move(former);
        throw;
    }
}

} // namespace Zelk::Json
