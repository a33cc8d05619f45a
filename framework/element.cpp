#include "framework/element.h"

#include "framework/containers.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace Zelk::MetaData {

namespace Detail {

// ---- where containers keep their content
// --------------------------------------------------------------------

ObjectStore::ObjectStore(Arena* from, std::uint32_t capacity) noexcept
    : StoreHead(true, from), tree(SlotAllocator<Object::Member>(this)),
      lastBlock(new (firstBlock()) SlotBlock{nullptr, capacity, 0, nullptr})
{}

ObjectStore* ObjectStore::create(Arena* arena, std::uint32_t capacity)
{
    capacity = std::min(capacity, largestBlockCapacity);
    std::size_t const size = sizeof(ObjectStore) + sizeof(SlotBlock) + capacity * slotSize;
    return new (allocatePiece(arena, size)) ObjectStore(arena, capacity);
}

void ObjectStore::addBlock()
{
    std::uint32_t const capacity =
        std::clamp(lastBlock->capacity * 2, firstBlockCapacity, largestBlockCapacity);
    void* memory = allocatePiece(arena, sizeof(SlotBlock) + capacity * slotSize);
    lastBlock = lastBlock->next = new (memory) SlotBlock{nullptr, capacity, 0, nullptr};
}

void* ObjectStore::takeSlot() noexcept
{
    assert(lastBlock->used < lastBlock->capacity);
    return lastBlock->slots() + lastBlock->used++ * slotSize;
}

void ObjectStore::returnSlot([[maybe_unused]] void* slot) noexcept
{
    // Only the slot of a member that was not inserted after all comes back.
    --lastBlock->used;
    assert(slot == lastBlock->slots() + lastBlock->used * slotSize);
}

namespace {

/// Whether two names are equal; most that are not differ in size or in the first byte.
bool isName(std::string const& a, std::string_view b) noexcept
{
    return a.size() == b.size() &&
           (b.empty() || (a.front() == b.front() && std::memcmp(a.data(), b.data(), b.size()) == 0));
}

} // namespace

Object::Member const* ObjectStore::find(std::string_view name) const noexcept
{
    if (tree.size() > linearSearchLimit) {
        auto const found = tree.find(name);
        return found == tree.end() ? nullptr : &*found;
    }
    for (SlotBlock* block = firstBlock(); block != nullptr; block = block->next) {
        char* slot = block->firstMember;
        for (std::uint32_t i = 0; i < block->used; ++i, slot += slotSize) {
            auto const* member = reinterpret_cast<Object::Member const*>(slot);
            if (isName(member->name(), name))
                return member;
        }
    }
    return nullptr;
}

Object::Member const& ObjectStore::insert(std::string_view name)
{
    if (lastBlock->used == lastBlock->capacity)
        addBlock();
    std::size_t const before = tree.size();
    Object::Member const& member = *tree.emplace_hint(tree.end(), name);
    if (tree.size() != before && lastBlock->used == 1)
        lastBlock->firstMember = reinterpret_cast<char*>(const_cast<Object::Member*>(&member));
    return member;
}

void ObjectStore::close() noexcept
{
    if (arena == nullptr)
        return;
    char* const slots = lastBlock->slots();
    if (arena->trim(slots + lastBlock->capacity * slotSize, slots + lastBlock->used * slotSize))
        lastBlock->capacity = lastBlock->used;
    arena = nullptr;
}

ArrayStore::ArrayStore(Arena* from) : StoreHead(false, from), items(ItemAllocator<Element>(this)) {}

ArrayStore* ArrayStore::create(Arena* arena)
{
    return new (allocatePiece(arena, sizeof(ArrayStore))) ArrayStore(arena);
}

Element& ArrayStore::grow()
{
    if (items.size() < offerThreshold)
        return items.emplace_back();
    if (offered == nullptr)
        offered = std::make_unique<Arena>(firstChunkSize);
    Element& last = items.back();
    Element& item = items.emplace_back();
    // Only the newest item may draw on the arena, so that items can be filled by several threads.
    TreeAccess::withdrawOffer(last);
    TreeAccess::setOffer(item, *offered);
    return item;
}

void* ArrayStore::allocate(std::size_t size)
{
    if (!chunkTaken && size == firstChunkSize) {
        chunkTaken = true;
        return firstChunk;
    }
    if (!mapTaken && size <= firstMapSize) {
        mapTaken = true;
        return firstMap;
    }
    return allocatePiece(arena, size);
}

void ArrayStore::deallocate(void* memory) noexcept
{
    if (memory == firstChunk)
        chunkTaken = false;
    else if (memory == firstMap)
        mapTaken = false;
    else
        releasePiece(memory);
}

// ---- destroying, copying and comparing whole trees
// ----------------------------------------------------------

void destroy(StoreHead* pending) noexcept
{
    while (pending != nullptr) {
        StoreHead* const store = pending;
        pending = store->nextToDestroy;
        auto const empty = [&pending](Element& node) {
            if (StoreHead* const inner = TreeAccess::clear(node)) {
                inner->nextToDestroy = pending;
                pending = inner;
            }
        };
        if (store->object) {
            auto* const object = static_cast<ObjectStore*>(store);
            object->forEachSlot([&empty](Object::Member& member) {
                empty(TreeAccess::element(member));
                member.~Member();
            });
            // The tree is left as it is: its nodes are gone, and destroying it would only look for them.
            for (SlotBlock* block = TreeAccess::blocksBehindFirst(*object); block != nullptr;) {
                SlotBlock* const next = block->next;
                releasePiece(block);
                block = next;
            }
        } else {
            auto* const array = static_cast<ArrayStore*>(store);
            for (Element& item : array->items)
                empty(item);
            array->~ArrayStore();
        }
        releasePiece(store);
    }
}

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
            auto const& items = static_cast<ArrayStore const*>(store_)->items;
            return index_ == items.size() ? nullptr : &items[index_++];
        }
        if (member_ == static_cast<ObjectStore const*>(store_)->tree.end())
            return nullptr;
        Object::Member const& member = *member_++;
        name = member.name();
        return &member.element();
    }

private:
    StoreHead const* store_;
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
        ArrayStore* const store = ArrayStore::create(nullptr);
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
        case Element::string: {
            std::string const& text = TreeAccess::string(source);
            return TreeAccess::setString(target, text.data(), text.size());
        }
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
                begin(*source, TreeAccess::element(static_cast<ObjectStore*>(target)->insert(name)));
            else
                begin(*source, append(*static_cast<ArrayStore*>(target)));
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

// ---- Object
// -------------------------------------------------------------------------------------------------

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
    // Most objects are small and most searches through find() are for optional members, often absent.
    if (store_->tree.size() <= ObjectStore::linearSearchLimit && store_->find(name) == nullptr)
        return end();
    return store_->tree.find(std::string_view(name));
}

Object::const_iterator Object::begin() const noexcept
{
    return store_ == nullptr ? const_iterator() : store_->tree.begin();
}

Object::const_iterator Object::end() const noexcept
{
    return store_ == nullptr ? const_iterator() : store_->tree.end();
}

Element const& Object::operator[](std::string const& name) const
{
    if (store_ != nullptr)
        if (Member const* const member = store_->find(name))
            return member->element();
    throw MissingMemberError("no member named \"" + name + "\"");
}

Element& Object::operator[](std::string const& name)
{
    if (store_ == nullptr)
        store_ = ObjectStore::create(nullptr);
    else if (Member const* const member = store_->find(name))
        return TreeAccess::element(*member);
    return TreeAccess::element(store_->insert(name));
}

unsigned int Object::size() const noexcept
{
    return store_ == nullptr ? 0 : static_cast<unsigned int>(store_->tree.size());
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
// --------------------------------------------------------------------------------------------------

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
    return store_ == nullptr ? 0 : static_cast<unsigned int>(store_->items.size());
}

Element const& Array::operator[](unsigned int index) const
{
    if (index >= size())
        throw std::out_of_range("array index " + std::to_string(index) + " is not below the size, " +
                                std::to_string(size()));
    return store_->items[index];
}

Element& Array::operator[](unsigned int index)
{
    if (store_ == nullptr)
        store_ = ArrayStore::create(nullptr);
    auto& items = store_->items;
    if (index == items.size())
        return store_->grow();
    if (index > items.size())
        items.resize(std::size_t{index} + 1);
    return items[index];
}

Array::const_iterator Array::begin() const noexcept
{
    return store_ == nullptr ? const_iterator() : store_->items.cbegin();
}

Array::const_iterator Array::end() const noexcept
{
    return store_ == nullptr ? const_iterator() : store_->items.cend();
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
// ------------------------------------------------------------------------------------------------

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
    if (kind_ == object)
        return object_[name];
    if (!isEmpty())
        throwTypeError(object, *this);
    // The node becomes an object only when the member is there; moving the object leaves the member in place.
    Object fresh;
    ObjectStore* const store = TreeAccess::store(fresh) = ObjectStore::create(TreeAccess::offer(*this));
    store->arena = nullptr;
    Element& member = TreeAccess::element(store->insert(name));
    TreeAccess::setObject(*this) = std::move(fresh);
    return member;
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
// --------------------------------------------------------------------------------------

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
    if (element.GetElementType() == Element::string) // keeps the memory that the string has
        TreeAccess::string(element) = value;
    else
        element = Element(Trivial_T<std::string>(value));
}

} // namespace Zelk::MetaData
