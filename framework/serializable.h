/// What makes a class convertible to metadata trees and to JSON text.
///
/// Serializable is for plain records and lists; PartiallyDeserializable is for messages, which keep the whole
/// tree that they were read from, so that members which they do not know are written out again.
#pragma once

#include "framework/element.h"
#include "framework/export.h"
#include "framework/number.h"

#include <cstddef>
#include <iosfwd>
#include <string>

namespace Zelk::Json {

/// Root of everything that has a metadata form. A class overrides copyToMetaData and copyFromMetaData and
/// inherits the rest.
///
/// The text operations throw ParseError, PrintError, std::ios_base::failure and std::bad_alloc as readText
/// and printText do, and whatever the two overrides throw. When a text does not parse, the object is
/// unchanged.
class ZELK_EXPORT Serializable {
public:
    Serializable() = default;
    Serializable(Serializable const&) = default;
    Serializable& operator=(Serializable const&) = default;
    virtual ~Serializable();

    /// Writes the object as JSON text. The stream gets the whole text or nothing of it.
    virtual void toJson(std::ostream& stream) const;
    /// The object as JSON text.
    virtual std::string toJsonString() const;
    /// As toJson, and may move the content of the object out.
    virtual void moveToJson(std::ostream& stream);
    /// As toJsonString, and may move the content of the object out.
    virtual std::string moveToJsonString();
    /// Fills the object from the JSON text that makes up the rest of the stream.
    virtual void fromJson(std::istream& stream);
    /// Fills the object from JSON text.
    virtual void fromJsonString(std::string const& text);
    /// Writes the object into `target`.
    virtual void copyToMetaData(MetaData::Element& target) const = 0;
    /// Fills the object from `source`.
    virtual void copyFromMetaData(MetaData::Element const& source) = 0;
    /// As copyToMetaData, which it calls unless overridden, and may move the content of the object out.
    virtual void moveToMetaData(MetaData::Element& target);
    /// As copyFromMetaData, which it calls unless overridden, and may move the content of `source` out.
    virtual void moveFromMetaData(MetaData::Element&& source);

    /// A default-constructed T filled by its own copyFromMetaData (statically bound), whose failure passes
    /// on.
    template <typename T>
    static T fromElement(MetaData::Element const& element);
};

/// Base of the messages that keep the tree they were read from: the internal metadata object.
///
/// A message class overrides copyToInternalMetaData and copyFromInternalMetaData. Each override first calls
/// that of its direct base, so that base levels are written and read first; the first message level calls
/// none. Reading is not transactional: members read before a failure keep their new values. The internal
/// metadata object, however, is put back when a read fails, so a message can be written after a failed read
/// as before it.
///
/// Writing changes the internal metadata object even where it is const: one thread at a time.
class ZELK_EXPORT PartiallyDeserializable : public virtual Serializable {
public:
    PartiallyDeserializable() = default;
    PartiallyDeserializable(PartiallyDeserializable const&) = default;
    PartiallyDeserializable& operator=(PartiallyDeserializable const&) = default;
    ~PartiallyDeserializable() override;

    void toJson(std::ostream& stream) const override;
    /// Writes the message as JSON text and leaves the internal metadata object empty; one that cannot be
    /// printed leaves it filled.
    void moveToJson(std::ostream& stream) override;
    void fromJson(std::istream& stream) override;
    /// Writes the members into the internal metadata object, which stays filled, and copies it to `target`.
    void copyToMetaData(MetaData::Element& target) const override;
    /// Copies `source` into the internal metadata object and reads the members out of it.
    void copyFromMetaData(MetaData::Element const& source) override;
    /// Writes the members into the internal metadata object and moves it to `target`; the members stay.
    void moveToMetaData(MetaData::Element& target) override;
    /// Moves `source` into the internal metadata object and reads the members out of it; when that fails,
    /// `source` gets its tree back.
    void moveFromMetaData(MetaData::Element&& source) override;

    /// Writes the members of the message into the internal metadata object.
    virtual void copyToInternalMetaData() const = 0;
    /// As copyToInternalMetaData, which it calls unless overridden, and may move the members out.
    virtual void moveToInternalMetaData();
    /// Reads the members of the message out of the internal metadata object. Called directly it restores
    /// nothing when it throws.
    virtual void copyFromInternalMetaData() = 0;

    /// The internal metadata object, writable even of a const message, since writing goes through it.
    MetaData::Element& metaData() const noexcept { return internal_; }

    /// The member `key` of `parent`, created empty when it is missing, when reading too: the accessor then
    /// throws MetaData::TypeError on the empty node.
    static MetaData::Element& elementImpl(MetaData::Element& parent, std::string const& key);

    /// The top-level member `key` as double, int, unsigned int or bool, read leniently (framework/number.h).
    template <typename T, std::size_t N>
    T element(char const (&key)[N]) const;

    /// The member `key` of the top-level member `name`; whichever of them is missing is created.
    template <std::size_t M, std::size_t N>
    MetaData::Element& element(char const (&name)[M], char const (&key)[N]) const;

private:
    void readInternal(MetaData::Element& source);

    mutable MetaData::Element internal_;
};

template <typename T>
T Serializable::fromElement(MetaData::Element const& element)
{
    T record{};
    record.T::copyFromMetaData(element);
    return record;
}

template <typename T, std::size_t N>
T PartiallyDeserializable::element(char const (&key)[N]) const
{
    return MetaData::numberAs<T>(elementImpl(metaData(), std::string(key, N - 1)));
}

template <std::size_t M, std::size_t N>
MetaData::Element& PartiallyDeserializable::element(char const (&name)[M], char const (&key)[N]) const
{
    return elementImpl(metaData()[std::string(name, M - 1)], std::string(key, N - 1));
}

} // namespace Zelk::Json
