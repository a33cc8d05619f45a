/// Reflected fields: typed data members of a record that know their key and whether they are set.
///
///     struct Position : MirroredObject {
///         Reflector<double, false, true> Angle{this, "Angle", true};
///     };
///
///     position.Angle = 1.5;            // assigns, and the field is set
///     double angle = position.Angle(); // reads; UnsetFieldError when the field is unset
///
/// The value is a bool, double, long long or std::string, any type that has a GetAs and a SetAs
/// (framework/element.h), or a record, whose form is then an object in the object. A record must have a
/// default constructor and copy assignment.
///
/// A field is set by an assignment, by reading a member that fits, and by init(); it is unset by reading a
/// member that is missing or of another kind, by reset(), and by uninit(). An unset field holds a valid value
/// and is not written.
#pragma once

#include "framework/element.h"
#include "framework/export.h"
#include "framework/mirrored_object.h"

#include <string>
#include <type_traits>

namespace Zelk::MetaData {

/// The value of a field and its way to and from the tree. Only the form with the flag `true` exists.
template <typename T, bool Flag>
class ZELK_EXPORT ReflectorNoWriteParend; // marked here too: clang++ goes by the first declaration alone

/// A field that is read by a call and written by assignment.
template <typename T>
class ZELK_EXPORT ReflectorNoWriteParend<T, true> : public ReflectorBase {
public:
    /// A field of `owner` under the key `name`, with the value T(); set exactly when it is required.
    ReflectorNoWriteParend(MirroredObject* owner, std::string const& name, bool required);
    /// As above, with the value `initial`; an optional field stays unset all the same.
    ReflectorNoWriteParend(MirroredObject* owner, std::string const& name, bool required, T const& initial);
    ReflectorNoWriteParend(ReflectorNoWriteParend const&) = delete;
    /// Takes over the value of a field that is set, and is set then. From an unset field it takes nothing:
    /// the value becomes T(), and this field is set exactly when it is required itself. Whether the other is
    /// required plays no part.
    ReflectorNoWriteParend& operator=(ReflectorNoWriteParend const& source);
    /// As assign.
    ReflectorNoWriteParend& operator=(T const& value);
    ~ReflectorNoWriteParend() override;

    /// Writes the value under the key into the object `target`; writes nothing when the field is unset. A
    /// record is written into the member that is there, and throws TypeError when that is neither an object
    /// nor empty.
    void copyToMetaData(Element& target) const override;
    /// As assign from a node.
    void copyFromMetaData(Element const& source) override;

    /// Makes `value` the value of the field, which is set then.
    virtual void assign(T const& value);
    /// Reads the value from the member of the object `source` that has the field's key. Throws nothing when
    /// it is missing or cannot be read, whatever the failure: the field is then as after reset().
    virtual void assign(Element const& source);

    /// Makes the value T() and the field unset.
    void reset();

    /// The value. Throws UnsetFieldError when the field is unset.
    T const& operator()() const;

private:
    T value_;
};

/// The fields that records declare. With WriteThrough a call on a field that is not const gives its value for
/// modification. Only the forms with the last flag `true` exist.
template <typename T, bool WriteThrough, bool Flag>
class ZELK_EXPORT Reflector;

/// A field whose value changes by assignment only.
template <typename T>
class ZELK_EXPORT Reflector<T, false, true> : public ReflectorNoWriteParend<T, true> {
public:
    using Base = ReflectorNoWriteParend<T, true>;

    /// A field of `owner` under the key `name`, with the value T(); set exactly when it is required.
    Reflector(MirroredObject* owner, std::string const& name, bool required);
    /// As above, with the value `initial`; an optional field stays unset all the same.
    Reflector(MirroredObject* owner, std::string const& name, bool required, T const& initial);
    /// As that of the base.
    Reflector& operator=(Reflector const& source);
    /// As assign.
    Reflector& operator=(T const& value);
    ~Reflector() override;
};

/// A field whose value can also be modified in place, for records.
template <typename T>
class ZELK_EXPORT Reflector<T, true, true> : public ReflectorNoWriteParend<T, true> {
public:
    using Base = ReflectorNoWriteParend<T, true>;

    /// A field of `owner` under the key `name`, with the value T(); set exactly when it is required.
    Reflector(MirroredObject* owner, std::string const& name, bool required);
    /// As above, with the value `initial`; an optional field stays unset all the same.
    Reflector(MirroredObject* owner, std::string const& name, bool required, T const& initial);
    /// As that of the base.
    Reflector& operator=(Reflector const& source);
    /// As assign.
    Reflector& operator=(T const& value);
    ~Reflector() override;

    using Base::operator();
    /// The value, for modification. Marks the field set, so that what is put into the value is written; on a
    /// field that is not const a mere look does so too.
    T& operator()();
};

// ---- ReflectorNoWriteParend

template <typename T>
ReflectorNoWriteParend<T, true>::ReflectorNoWriteParend(MirroredObject* owner, std::string const& name,
                                                        bool required)
    : ReflectorBase(owner, name, required), value_()
{}

template <typename T>
ReflectorNoWriteParend<T, true>::ReflectorNoWriteParend(MirroredObject* owner, std::string const& name,
                                                        bool required, T const& initial)
    : ReflectorNoWriteParend(owner, name, required)
{
    value_ = initial;
}

template <typename T>
ReflectorNoWriteParend<T, true>&
ReflectorNoWriteParend<T, true>::operator=(ReflectorNoWriteParend const& source)
{
    if (source.initialized()) {
        assign(source());
    } else {
        // Kept on purpose: a required field is set after this, though the other was not.
        value_ = T();
        if (isRequired())
            init();
        else
            uninit();
    }
    return *this;
}

template <typename T>
ReflectorNoWriteParend<T, true>& ReflectorNoWriteParend<T, true>::operator=(T const& value)
{
    assign(value);
    return *this;
}

template <typename T>
ReflectorNoWriteParend<T, true>::~ReflectorNoWriteParend() = default;

template <typename T>
void ReflectorNoWriteParend<T, true>::copyToMetaData(Element& target) const
{
    if (!initialized())
        return;
    Element& member = target[name()];
    if constexpr (std::is_base_of_v<MirroredObject, T>)
        value_.copyToMetaData(member);
    else
        SetAs<T>(value_, member);
}

template <typename T>
void ReflectorNoWriteParend<T, true>::copyFromMetaData(Element const& source)
{
    assign(source);
}

template <typename T>
void ReflectorNoWriteParend<T, true>::assign(T const& value)
{
    value_ = value;
    init();
}

template <typename T>
void ReflectorNoWriteParend<T, true>::assign(Element const& source)
{
    try {
        Element const& member = source[name()];
        if constexpr (std::is_base_of_v<MirroredObject, T>)
            value_.copyFromMetaData(member);
        else
            GetAs<T>(member, value_);
        init();
    } catch (...) {
        // Kept on purpose: a member that cannot be read only leaves the field unset.
        reset();
    }
}

template <typename T>
void ReflectorNoWriteParend<T, true>::reset()
{
    uninit(); // first, so that a record which cannot be built anew is not left set
    value_ = T();
}

template <typename T>
T const& ReflectorNoWriteParend<T, true>::operator()() const
{
    if (!initialized()) // spares building the text for a field that is set
        throwIfUninited("Zelk::MetaData::Reflector::operator()()");
    return value_;
}

// ---- Reflector

template <typename T>
Reflector<T, false, true>::Reflector(MirroredObject* owner, std::string const& name, bool required)
    : Base(owner, name, required)
{}

template <typename T>
Reflector<T, false, true>::Reflector(MirroredObject* owner, std::string const& name, bool required,
                                     T const& initial)
    : Base(owner, name, required, initial)
{}

template <typename T>
Reflector<T, false, true>& Reflector<T, false, true>::operator=(Reflector const& source)
{
    Base::operator=(source);
    return *this;
}

template <typename T>
Reflector<T, false, true>& Reflector<T, false, true>::operator=(T const& value)
{
    this->assign(value);
    return *this;
}

template <typename T>
Reflector<T, false, true>::~Reflector() = default;

template <typename T>
Reflector<T, true, true>::Reflector(MirroredObject* owner, std::string const& name, bool required)
    : Base(owner, name, required)
{}

template <typename T>
Reflector<T, true, true>::Reflector(MirroredObject* owner, std::string const& name, bool required,
                                    T const& initial)
    : Base(owner, name, required, initial)
{}

template <typename T>
Reflector<T, true, true>& Reflector<T, true, true>::operator=(Reflector const& source)
{
    Base::operator=(source);
    return *this;
}

template <typename T>
Reflector<T, true, true>& Reflector<T, true, true>::operator=(T const& value)
{
    this->assign(value);
    return *this;
}

template <typename T>
Reflector<T, true, true>::~Reflector() = default;

template <typename T>
T& Reflector<T, true, true>::operator()()
{
    this->init();
    return const_cast<T&>(Base::operator()());
}

} // namespace Zelk::MetaData
