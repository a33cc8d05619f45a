/// Records of reflected fields, without the types of the fields: a record writes and reads all fields that
/// registered with it, each under its own key. framework/reflector.h has the fields themselves.
///
/// A record keeps no list of its own: its fields are linked to each other, in the order of their
/// registration, so registering allocates nothing.
///
///     MirroredObject   | vptr | first | last |
///     ReflectorBase    | vptr | owner | previous | next | key | required, set |
#pragma once

#include "framework/element.h"
#include "framework/export.h"

#include <string>
#include <vector>

namespace Zelk::MetaData {

class MirroredObject;

/// What has a form in the metadata tree. A virtual base wherever it is inherited, so that every field, every
/// record and every message has exactly one of it.
class ZELK_EXPORT PartiallySerializableInterface {
public:
    PartiallySerializableInterface() = default;
    PartiallySerializableInterface(PartiallySerializableInterface const&) = default;
    PartiallySerializableInterface& operator=(PartiallySerializableInterface const&) = default;
    virtual ~PartiallySerializableInterface();

    /// Writes itself into `target`.
    virtual void copyToMetaData(Element& target) const = 0;
    /// Reads itself from `source`.
    virtual void copyFromMetaData(Element const& source) = 0;
};

/// The untyped part of a reflected field: its key, whether it is required, and whether it is set.
///
/// A field is a data member of the record that owns it, so it is destroyed before its owner and never moves.
class ZELK_EXPORT ReflectorBase : public virtual PartiallySerializableInterface {
public:
    /// Registers the field with `owner`, which must not be null. A new field is set exactly when it is
    /// required.
    ReflectorBase(MirroredObject* owner, std::string const& name, bool required);
    ReflectorBase(ReflectorBase const&) = delete;
    ReflectorBase& operator=(ReflectorBase const&) = delete;
    /// Takes the field out of its owner.
    ~ReflectorBase() override;

    /// Marks the field set, its value as it is.
    void init() noexcept;
    /// Marks the field unset, its value as it is.
    void uninit() noexcept;
    /// Whether the field is set: its value can be read, and is written.
    bool initialized() const noexcept;

    /// Whether a record without this field is incomplete.
    bool isRequired() const noexcept;
    /// Makes the field required from now on; whether it is set does not change.
    void makeRequired() noexcept;

    /// The key: the name of the field's member in the object of its record.
    std::string const& name() const noexcept;

    /// Throws UnsetFieldError when the field is unset; what() is `where`, the accessor that refused, and then
    /// ": field \"KEY\" is not set".
    void throwIfUninited(std::string const& where) const;

private:
    friend class MirroredObject;

    MirroredObject* owner_;
    ReflectorBase* previous_ = nullptr;
    ReflectorBase* next_ = nullptr;
    std::string name_;
    bool required_;
    bool set_;
};

/// A record that owns reflected fields: derive from it, with the fields as data members that are constructed
/// with `this`. Its form is an object with one member for each field that is set.
///
///     struct Position : MirroredObject {
///         Reflector<double, false, true> Angle{this, "Angle", true};
///         Reflector<std::string, false, true> Unit{this, "Unit", false};
///         Position() = default;
///         Position(Position const& other) : Position() { *this = other; }
///         Position& operator=(Position const& other) = default;
///     };
///
/// Copying: the copy constructor first constructs the record's own fields and then assigns, as above; the
/// assignment assigns the base and then each field, in the order of declaration, by the copy rule of fields
/// (framework/reflector.h).
class ZELK_EXPORT MirroredObject : public virtual PartiallySerializableInterface {
public:
    /// What a record keeps for its fields: which ones have registered.
    class ZELK_EXPORT MembersStorage {
    public:
        MembersStorage() = default;
        MembersStorage(MembersStorage const&) = delete;
        /// Leaves the fields of this record registered, and none of the other's: each record has its own.
        MembersStorage& operator=(MembersStorage const& other) noexcept;

    private:
        friend class MirroredObject;
        friend class ReflectorBase;

        ReflectorBase* first_ = nullptr;
        ReflectorBase* last_ = nullptr;
    };

    /// A record without fields.
    MirroredObject() noexcept;
    MirroredObject(MirroredObject const&) = delete;
    /// Assigns the storage, which leaves every registration as it is; the fields are assigned by the record.
    MirroredObject& operator=(MirroredObject const&) = default;
    ~MirroredObject() override;

    /// Writes every field that is set into the object `target`, in the order of registration. An empty node
    /// becomes an object, even when nothing is written; a node of any other kind is a TypeError. Members that
    /// belong to no field, or to an unset one, stay as they are. Never throws because a field is unset.
    void copyToMetaData(Element& target) const override;

    /// Reads every field from the object `source`, in the order of registration. A field whose member is
    /// missing or cannot be read becomes unset, required or not, and nothing is thrown for it: see
    /// unsetRequired(). A node that is not an object is a TypeError before any field is read.
    void copyFromMetaData(Element const& source) override;

    /// The keys of the required fields that are unset, in the order of registration: what a receiver has to
    /// look at to refuse an incomplete record. Linear in the number of fields.
    std::vector<std::string> unsetRequired() const;

private:
    friend class ReflectorBase;

    MembersStorage members_;
};

} // namespace Zelk::MetaData
