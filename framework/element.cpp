#include "framework/element.h"

#include "framework/containers.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace Zelk::MetaData {

namespace Detail {

namespace {

/// Steps through what a container holds, which is not empty.
class Cursor {
public:
    explicit Cursor(Object const& object) noexcept
        : store_(TreeAccess::store(object)), member_(object.begin())
    {}
    explicit Cursor(Array const& array) noexcept : store_(TreeAccess::store(array)) {}

    /// The next node and its name (empty in an array); null at the end.
    Element const* next(std::string_view& name) noexcept
    {
        if (!store_->object) {
            auto* const array = static_cast<ArrayStore*>(store_);
            return index_ == array->size() ? nullptr : &array->at(index_++);
        }
        if (member_ == static_cast<ObjectStore*>(store_)->end())
            return nullptr;
        Object::Member const& member = *member_++;
        name = member.name();
        return &member.element();
    }

private:
    StoreHead* store_;
    Object::const_iterator member_;
    std::size_t index_ = 0;
};

/// Copies a tree: each container is begun when it is met and filled when its turn comes.
class Copier {
public:
    static void copy(Element const& source, Element& target)
    {
        Copier copier;
        copier.begin(source, target);
        copier.fill();
    }
    static void copy(Object const& source, Object& target)
    {
        Copier copier;
        copier.begin(source, target);
        copier.fill();
    }
    static void copy(Array const& source, Array& target)
    {
        Copier copier;
        copier.begin(source, target);
        copier.fill();
    }

private:
    struct Open {
        Cursor source;
        StoreHead* target;
    };

    void begin(Object const& source, Object& target)
    {
        if (source.empty())
            return;
        ObjectStore* const store = ObjectStore::create(nullptr, source.size());
        TreeAccess::store(target) = store;
        open_.push_back({Cursor(source), store});
    }

    void begin(Array const& source, Array& target)
    {
        if (source.empty())
            return;
        auto const capacity = std::min<std::size_t>(source.size(), ArrayStore::chunkItems);
        ArrayStore* const store = ArrayStore::create(nullptr, capacity);
        TreeAccess::store(target) = store;
        open_.push_back({Cursor(source), store});
    }

    void begin(Element const& source, Element& target)
    {
        switch (source.GetElementType()) {
        case Element::real:
            return TreeAccess::setReal(target, TreeAccess::real(source));
        case Element::integer:
            return TreeAccess::setInteger(target, TreeAccess::integer(source));
        case Element::boolean:
            return TreeAccess::setBoolean(target, TreeAccess::integer(source) != 0);
        case Element::string:
            return TreeAccess::setString(target, TreeAccess::string(source));
        case Element::object:
            return begin(TreeAccess::object(source), TreeAccess::setObject(target));
        case Element::array:
            return begin(TreeAccess::array(source), TreeAccess::setArray(target));
        default:
            return;
        }
    }

    void fill()
    {
        while (!open_.empty()) {
            // Beginning an inner container may move the stack, so nothing is kept of it over that call.
            std::string_view name;
            StoreHead* const target = open_.back().target;
            Element const* const source = open_.back().source.next(name);
            if (source == nullptr)
                open_.pop_back();
            else if (target->object)
                begin(*source, TreeAccess::element(static_cast<ObjectStore*>(target)->insert(name, nullptr)));
            else
                begin(*source, static_cast<ArrayStore*>(target)->append(nullptr));
        }
    }

    std::vector<Open> open_;
};

/// Compares two trees in step.
class Comparer {
public:
    template <typename Node>
    static bool equal(Node const& a, Node const& b)
    {
        Comparer comparer;
        return comparer.begin(a, b) && comparer.walk();
    }

private:
    bool begin(Object const& a, Object const& b) { return beginContainers(a, b); }
    bool begin(Array const& a, Array const& b) { return beginContainers(a, b); }

    template <typename Container>
    bool beginContainers(Container const& a, Container const& b)
    {
        if (a.size() != b.size())
            return false;
        if (!a.empty())
            open_.emplace_back(Cursor(a), Cursor(b));
        return true;
    }

    bool begin(Element const& a, Element const& b)
    {
        if (a.GetElementType() != b.GetElementType())
            return false;
        switch (a.GetElementType()) {
        case Element::real:
            return TreeAccess::real(a) == TreeAccess::real(b);
        case Element::integer:
        case Element::boolean:
            return TreeAccess::integer(a) == TreeAccess::integer(b);
        case Element::string:
            return TreeAccess::string(a) == TreeAccess::string(b);
        case Element::object:
            return begin(TreeAccess::object(a), TreeAccess::object(b));
        case Element::array:
            return begin(TreeAccess::array(a), TreeAccess::array(b));
        default:
            return true;
        }
    }

    bool walk()
    {
        while (!open_.empty()) {
            std::string_view nameA;
            std::string_view nameB;
            Element const* const a = open_.back().first.next(nameA);
            Element const* const b = open_.back().second.next(nameB);
            if (a == nullptr)
                open_.pop_back();
            else if (nameA != nameB || !begin(*a, *b))
                return false;
        }
        return true;
    }

    std::vector<std::pair<Cursor, Cursor>> open_;
};

std::string kindName(unsigned int kind)
{
    switch (kind) {
    case Element::real:
        return "floating-point number";
    case Element::integer:
        return "integer";
    case Element::boolean:
        return "boolean";
    case Element::string:
        return "string";
    case Element::object:
        return "object";
    case Element::array:
        return "array";
    default:
        return "empty";
    }
}

[[noreturn]] void throwTypeError(Element::Kind expected, Element const& found)
{
    throw TypeError("expected " + kindName(expected) + ", found " + kindName(found.GetElementType()));
}

} // namespace

} // namespace Detail

using Detail::ArrayStore;
using Detail::ObjectStore;
using Detail::throwTypeError;
using Detail::TreeAccess;

namespace {

/// The member of that name of any node but a small object that has it: that one is found without a call.
[[gnu::noinline]] Element& memberOf(Element& node, std::string const& name)
{
    if (node.GetElementType() == Element::object) {
        ObjectStore*& store = TreeAccess::store(TreeAccess::object(node));
        if (store == nullptr)
            store = ObjectStore::create(nullptr);
        return TreeAccess::element(store->insert(name, nullptr));
    }
    if (node.GetElementType() != Element::empty)
        throwTypeError(Element::object, node);
    // The node becomes an object only when the member is there; moving the object leaves the member in place.
    Object fresh;
    ObjectStore* const store = TreeAccess::store(fresh) = ObjectStore::create(TreeAccess::offer(node));
    Element& member = TreeAccess::element(store->insert(name, nullptr));
    TreeAccess::setObject(node) = std::move(fresh);
    return member;
}

} // namespace

// ---- Object

Object::Object(Object const& other) : Object()
{
    Detail::Copier::copy(other, *this); // the destructor runs when it throws, since Object() is done
}

Object& Object::operator=(Object const& other)
{
    if (this != &other)
        *this = Object(other);
    return *this;
}

Object::~Object()
{
    Detail::destroy(store_);
}

Object::const_iterator Object::find(std::string const& name) const
{
    if (store_ == nullptr)
        return end();
    Detail::MemberNode* const member = store_->find(name);
    return member == nullptr ? end() : const_iterator(member);
}

Object::const_iterator Object::begin() const noexcept
{
    return store_ == nullptr ? const_iterator() : store_->begin();
}

Object::const_iterator Object::end() const noexcept
{
    return store_ == nullptr ? const_iterator() : store_->end();
}

Element const& Object::operator[](std::string const& name) const
{
    if (store_ != nullptr)
        if (Detail::MemberNode* const member = store_->find(name))
            return member->_M_valptr()->element();
    throw MissingMemberError("no member named \"" + name + "\"");
}

Element& Object::operator[](std::string const& name)
{
    if (store_ == nullptr)
        store_ = ObjectStore::create(nullptr);
    Detail::MemberNode* const member = store_->find(name);
    return TreeAccess::element(member == nullptr ? store_->insert(name, nullptr) : *member->_M_valptr());
}

unsigned int Object::size() const noexcept
{
    return store_ == nullptr ? 0 : static_cast<unsigned int>(store_->size());
}

void Object::clear() noexcept
{
    Detail::destroy(std::exchange(store_, nullptr));
}

bool operator==(Object const& a, Object const& b)
{
    return Detail::Comparer::equal(a, b);
}

// ---- Array

Array::Array(Array const& other) : Array()
{
    Detail::Copier::copy(other, *this); // the destructor runs when it throws, since Array() is done
}

Array& Array::operator=(Array const& other)
{
    if (this != &other)
        *this = Array(other);
    return *this;
}

Array::~Array()
{
    Detail::destroy(store_);
}

unsigned int Array::size() const noexcept
{
    return store_ == nullptr ? 0 : static_cast<unsigned int>(store_->size());
}

Element const& Array::operator[](unsigned int index) const
{
    if (index >= size())
        throw std::out_of_range("array index " + std::to_string(index) + " is not below the size, " +
                                std::to_string(size()));
    return store_->at(index);
}

Element& Array::operator[](unsigned int index)
{
    if (store_ == nullptr)
        store_ = ArrayStore::create(nullptr);
    std::size_t const size = store_->size();
    if (index == size)
        return store_->grow();
    if (index > size)
        store_->growTo(std::size_t{index} + 1);
    return store_->at(index);
}

Array::const_iterator Array::begin() const noexcept
{
    return store_ == nullptr ? const_iterator() : store_->begin();
}

Array::const_iterator Array::end() const noexcept
{
    return store_ == nullptr ? const_iterator() : store_->end();
}

void Array::clear() noexcept
{
    Detail::destroy(std::exchange(store_, nullptr));
}

bool operator==(Array const& a, Array const& b)
{
    return Detail::Comparer::equal(a, b);
}

// ---- Element

Element::Element(Element const& other) : Element()
{
    Detail::Copier::copy(other, *this); // the destructor runs when it throws, since Element() is done
}

Element::Element(Trivial_T<std::string> const& value) : string_(value.value()), kind_(string) {}

Element::Element(Object const& value) : object_(value), kind_(object) {}

Element::Element(Array const& value) : array_(value), kind_(array) {}

Element& Element::operator=(Element const& other)
{
    if (this != &other)
        *this = Element(other);
    return *this;
}

Element::~Element()
{
    if (!ownsNothing())
        Detail::destroy(TreeAccess::clear(*this));
}

bool Element::asBoolean() const
{
    if (kind_ != boolean)
        throwTypeError(boolean, *this);
    return integer_ != 0;
}

double Element::asDouble() const
{
    if (kind_ != real)
        throwTypeError(real, *this);
    return real_;
}

long long Element::asInt64() const
{
    if (kind_ != integer)
        throwTypeError(integer, *this);
    return integer_;
}

std::string const& Element::asString() const
{
    if (kind_ != string)
        throwTypeError(string, *this);
    return string_;
}

Element& Element::operator[](std::string const& name)
{
    if (kind_ == object) {
        ObjectStore* const store = TreeAccess::store(object_);
        if (store != nullptr && store->isSmall())
            if (Detail::MemberNode* const member = store->findInSlots(name))
                return TreeAccess::element(*member->_M_valptr());
    }
    return memberOf(*this, name);
}

Element const& Element::operator[](std::string const& name) const
{
    if (kind_ != object)
        throwTypeError(object, *this);
    return object_[name];
}

Element::operator Object const&() const
{
    if (kind_ != object)
        throwTypeError(object, *this);
    return object_;
}

Element::operator Object&()
{
    if (isEmpty())
        return TreeAccess::setObject(*this);
    if (kind_ != object)
        throwTypeError(object, *this);
    return object_;
}

Element::operator Array const&() const
{
    if (kind_ != array)
        throwTypeError(array, *this);
    return array_;
}

Element::operator Array&()
{
    if (isEmpty())
        return TreeAccess::setArray(*this);
    if (kind_ != array)
        throwTypeError(array, *this);
    return array_;
}

bool operator==(Element const& a, Element const& b)
{
    return Detail::Comparer::equal(a, b);
}

// ---- values in and out

template <>
void GetAs<bool>(Element const& element, bool& value)
{
    value = element.asBoolean();
}

template <>
void GetAs<double>(Element const& element, double& value)
{
    value = element.asDouble();
}

template <>
void GetAs<long long>(Element const& element, long long& value)
{
    value = element.asInt64();
}

template <>
void GetAs<std::string>(Element const& element, std::string& value)
{
    value = element.asString();
}

template <>
void SetAs<bool>(bool const& value, Element& element)
{
    element = Element(Trivial_T<bool>(value));
}

template <>
void SetAs<double>(double const& value, Element& element)
{
    element = Element(Trivial_T<double>(value));
}

template <>
void SetAs<long long>(long long const& value, Element& element)
{
    element = Element(Trivial_T<long long>(value));
}

template <>
void SetAs<std::string>(std::string const& value, Element& element)
{
    switch (element.GetElementType()) {
    case Element::string: // keeps the memory that the string has
        TreeAccess::string(element) = value;
        break;
    case Element::empty:
        TreeAccess::withdrawOffer(element);
        TreeAccess::setString(element, value);
        break;
    default:
        element = Element(Trivial_T<std::string>(value));
    }
}

} // namespace Zelk::MetaData
