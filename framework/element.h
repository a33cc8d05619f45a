/// The metadata tree: what every message is written into and read from.
///
/// A tree is made of nodes (Element). A node is a number, a boolean, a string, an object (named nodes in the
/// order of their names), an array, or empty. Trees are values: copies are deep, moves are cheap and leave an
/// empty node behind, and nothing is shared between two trees.
///
///     Element tree;                                        // empty
///     tree["clientname"] = Trivial_T<std::string>("ui");   // now an object with one member
///     tree["id"] = Trivial_T<long long>(-4);
///     long long id = tree["id"].asInt64();
///
/// A node is 40 bytes: a string stands in the node itself, objects and arrays behind one pointer.
///
///     Element     | string, number, or Object / Array                         32 | kind 4 | 4 |
///     Object      | pointer to its members, none while it is empty     8 |
///     Array       | pointer to its items, none while it is empty       8 |
///
/// Accessors are strict: they never convert, a node of another kind is a TypeError. No operation recurses
/// over the depth of a tree, so depth is bounded by memory only; destruction, clear() and moves neither
/// allocate nor throw. Different trees may be used by different threads at once, one tree by one thread at a
/// time (any number, while all of them only read).
#pragma once

#include "framework/error.h"
#include "framework/export.h"

#include <cstddef>
#include <cstring>
#include <deque>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace Zelk::MetaData {

class Element;

namespace Detail {
class Arena;
class Characters;
struct ObjectStore;
struct ArrayStore;
struct TreeAccess;
} // namespace Detail

/// One value on its way into a node: bool, double, long long or std::string. The type of the value decides
/// the kind of the node, so that an int never becomes a boolean or a floating-point node by accident.
template <typename T>
class Trivial_T {
public:
    explicit Trivial_T(T value) : value_(std::move(value)) {}

    T const& value() const& noexcept { return value_; }
    T&& value() && noexcept { return std::move(value_); }

private:
    T value_;
};

/// Named nodes, in ascending order of their names (byte by byte). A name occurs once.
///
/// A search tree of the standard library's nodes, stepped through by the iterators of a std::set: they
/// stay valid until the object is cleared, assigned or destroyed (of an empty object, until the first member
/// comes); references to members likewise.
class ZELK_EXPORT Object {
public:
    class Member;
    using const_iterator = std::set<Member>::const_iterator;
    using iterator = const_iterator;

    /// An empty object; allocates nothing.
    Object() noexcept : store_(nullptr) {}
    /// A deep copy. Throws std::bad_alloc. Linear.
    Object(Object const& other);
    Object(Object&& other) noexcept : store_(other.store_) { other.store_ = nullptr; }
    /// Replaces the members by a deep copy; the object is unchanged when memory runs out.
    Object& operator=(Object const& other);
    Object& operator=(Object&& other) noexcept
    {
        Object incoming(std::move(other));
        std::swap(store_, incoming.store_);
        return *this;
    }
    ~Object();

    /// The member of that name, or end(). Logarithmic.
    const_iterator find(std::string const& name) const;
    const_iterator begin() const noexcept;
    const_iterator end() const noexcept;

    /// The value of the member of that name; throws MissingMemberError when there is none. Logarithmic.
    Element const& operator[](std::string const& name) const;
    /// The value of the member of that name, which is inserted as an empty node when there is none.
    /// Throws std::bad_alloc, and nothing has changed then. Logarithmic.
    Element& operator[](std::string const& name);

    /// Number of members.
    unsigned int size() const noexcept;
    bool empty() const noexcept { return size() == 0; }
    /// Removes all members.
    void clear() noexcept;

    /// Equal names with equal values. Throws std::bad_alloc (comparing deep trees takes memory).
    friend ZELK_EXPORT bool operator==(Object const& a, Object const& b);
    friend bool operator!=(Object const& a, Object const& b) { return !(a == b); }

private:
    friend struct Detail::TreeAccess;
    Detail::ObjectStore* store_;
};

/// Nodes in a row, in chunks as a std::deque has them and stepped through by its iterators: growing at the
/// end leaves references to items valid, though not iterators. While one thread makes an array grow, another
/// may use items of it, except the last.
class ZELK_EXPORT Array {
public:
    using const_iterator = std::deque<Element>::const_iterator;
    using iterator = const_iterator;

    /// An empty array; allocates nothing.
    Array() noexcept : store_(nullptr) {}
    /// A deep copy. Throws std::bad_alloc. Linear.
    Array(Array const& other);
    Array(Array&& other) noexcept : store_(other.store_) { other.store_ = nullptr; }
    /// Replaces the items by a deep copy; the array is unchanged when memory runs out.
    Array& operator=(Array const& other);
    Array& operator=(Array&& other) noexcept
    {
        Array incoming(std::move(other));
        std::swap(store_, incoming.store_);
        return *this;
    }
    ~Array();

    /// Number of items.
    unsigned int size() const noexcept;
    bool empty() const noexcept { return size() == 0; }

    /// The item at the index; throws std::out_of_range at or past the end. Constant.
    Element const& operator[](unsigned int index) const;
    /// The item at the index; an index at or past the end first grows the array with empty nodes up to and
    /// including it. Throws std::bad_alloc or std::length_error, and nothing has changed then.
    Element& operator[](unsigned int index);

    const_iterator begin() const noexcept;
    const_iterator end() const noexcept;

    /// Removes all items.
    void clear() noexcept;

    /// Equal items in equal order. Throws std::bad_alloc (comparing deep trees takes memory).
    friend ZELK_EXPORT bool operator==(Array const& a, Array const& b);
    friend bool operator!=(Array const& a, Array const& b) { return !(a == b); }

private:
    friend struct Detail::TreeAccess;
    Detail::ArrayStore* store_;
};

/// One node of the tree.
///
/// Assigning a node from a part of itself (`node = node["a"]`), by copy or by move, gives what one expects.
/// The other way round only a copy does: a node that is moved into a part of itself is held by nothing else
/// any more.
class ZELK_EXPORT Element {
public:
    /// What a node is. The numbers are part of the platform's contract.
    enum Kind : unsigned int {
        real = 0,    ///< floating-point number
        integer = 1, ///< signed 64-bit integer
        boolean = 2, ///< true or false
        string = 3,  ///< UTF-8 text when it is to be printed, any bytes otherwise
        object = 4,  ///< Object
        array = 5,   ///< Array
        empty = 6,   ///< nothing; JSON null
    };

    /// An empty node; it becomes an object or an array when it is first used as one.
    Element() noexcept : integer_(0), kind_(empty) {}
    /// A deep copy. Throws std::bad_alloc. Linear.
    Element(Element const& other);
    Element(Element&& other) noexcept : integer_(0) { take(other); }
    Element(Trivial_T<bool> const& value) noexcept : integer_(value.value()), kind_(boolean) {}
    Element(Trivial_T<double> const& value) noexcept : real_(value.value()), kind_(real) {}
    Element(Trivial_T<long long> const& value) noexcept : integer_(value.value()), kind_(integer) {}
    Element(Trivial_T<std::string> const& value);
    Element(Trivial_T<std::string>&& value) noexcept : string_(std::move(value).value()), kind_(string) {}
    /// An object node holding a deep copy.
    Element(Object const& value);
    Element(Object&& value) noexcept : object_(std::move(value)), kind_(object) {}
    /// An array node holding a deep copy.
    Element(Array const& value);
    Element(Array&& value) noexcept : array_(std::move(value)), kind_(array) {}
    /// Replaces kind and content by a deep copy; the node is unchanged when memory runs out.
    Element& operator=(Element const& other);
    Element& operator=(Element&& other) noexcept
    {
        // `other` may be this node or a part of it, so it is taken out before this node lets go.
        if (other.ownsNothing()) {
            Kind const kind = settled(std::exchange(other.kind_, empty));
            long long bits;
            std::memcpy(&bits, &other.integer_, sizeof bits);
            if (!ownsNothing())
                Element former(std::move(*this));
            std::memcpy(&integer_, &bits, sizeof bits);
            kind_ = kind;
            return *this;
        }
        if (ownsNothing()) {
            take(other);
            return *this;
        }
        Element incoming(std::move(other));
        Element former(std::move(*this));
        take(incoming);
        return *this;
    }
    /// Frees the whole subtree, whatever its depth, without allocating.
    ~Element();

    /// The kind of the node, one of Kind.
    unsigned int GetElementType() const noexcept { return settled(kind_); }

    /// The value of a boolean node; TypeError on every other kind.
    bool asBoolean() const;
    /// The value of a floating-point node; TypeError on every other kind, integers included.
    double asDouble() const;
    /// The value of an integer node; TypeError on every other kind.
    long long asInt64() const;
    /// The value of a string node; TypeError on every other kind.
    std::string const& asString() const;

    /// The member of that name. An empty node first becomes an object, and a missing member is inserted as an
    /// empty node. TypeError on a node of any other kind.
    Element& operator[](std::string const& name);
    /// The member of that name: MissingMemberError when there is none, TypeError on a node that is not an
    /// object.
    Element const& operator[](std::string const& name) const;

    /// The node's object; TypeError on every other kind, the empty node included.
    operator Object const&() const;
    /// The node's object; an empty node first becomes an empty object. TypeError on every other kind.
    operator Object&();
    /// The node's array; TypeError on every other kind, the empty node included.
    operator Array const&() const;
    /// The node's array; an empty node first becomes an empty array. TypeError on every other kind.
    operator Array&();

    /// Equal kind and equal content; numbers of different kinds differ, floating-point nodes compare as
    /// doubles do. Throws std::bad_alloc (comparing deep trees takes memory).
    friend ZELK_EXPORT bool operator==(Element const& a, Element const& b);
    friend bool operator!=(Element const& a, Element const& b) { return !(a == b); }

private:
    friend struct Detail::TreeAccess;

    // An empty node that its array offers memory for the object it may become. The offer stands in the node's
    // content and never leaves its place: to everyone else the node is empty, and so is whatever it is moved
    // to.
    static constexpr Kind emptyWithOffer = static_cast<Kind>(empty + 1);
    static constexpr Kind settled(Kind kind) noexcept { return kind == emptyWithOffer ? empty : kind; }

    bool isEmpty() const noexcept { return kind_ >= empty; }
    bool ownsNothing() const noexcept { return kind_ <= boolean || isEmpty(); }

    /// Takes the content of `other` into this node, which must own nothing, and leaves `other` empty.
    void take(Element& other) noexcept
    {
        switch (other.kind_) {
        case string:
            new (&string_) std::string(std::move(other.string_));
            other.string_.~basic_string();
            break;
        case object:
            new (&object_) Object(std::move(other.object_));
            break;
        case array:
            new (&array_) Array(std::move(other.array_));
            break;
        default:
            std::memcpy(&integer_, &other.integer_, sizeof integer_);
        }
        kind_ = settled(other.kind_);
        other.kind_ = empty;
    }

    union {
        long long integer_; // booleans too, as 0 and 1
        double real_;
        std::string string_;
        Object object_;
        Array array_;
        Detail::Arena* offer_;
    };
    Kind kind_;
    bool takesLoan_ = false; // see framework/loan.h; never copied nor moved
};

/// One entry of an object: a name and a value.
class Object::Member {
public:
    std::string const& name() const noexcept { return name_; }
    Element const& element() const noexcept { return element_; }

private:
    friend struct Detail::ObjectStore;
    friend struct Detail::TreeAccess;
    explicit Member(Detail::Characters const& name);

    std::string name_;
    Element element_;
};

/// Reads the value of a node into `value`: bool, double, long long or std::string. TypeError, with `value`
/// unchanged, when the node is of another kind.
template <typename T>
void GetAs(Element const& element, T& value);

/// The value of a node; TypeError when the node is of another kind.
template <typename T>
T GetAs(Element const& element)
{
    T value{};
    GetAs(element, value);
    return value;
}

/// Makes `element` a node of the kind of T holding `value`, whatever it was before.
template <typename T>
void SetAs(T const& value, Element& element);

template <>
ZELK_EXPORT void GetAs<bool>(Element const& element, bool& value);
template <>
ZELK_EXPORT void GetAs<double>(Element const& element, double& value);
template <>
ZELK_EXPORT void GetAs<long long>(Element const& element, long long& value);
template <>
ZELK_EXPORT void GetAs<std::string>(Element const& element, std::string& value);

template <>
ZELK_EXPORT void SetAs<bool>(bool const& value, Element& element);
template <>
ZELK_EXPORT void SetAs<double>(double const& value, Element& element);
template <>
ZELK_EXPORT void SetAs<long long>(long long const& value, Element& element);
template <>
ZELK_EXPORT void SetAs<std::string>(std::string const& value, Element& element);

} // namespace Zelk::MetaData
