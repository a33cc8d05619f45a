/// Where an object keeps its members and an array its items, and the only door to the inside of a node.
///
/// Each container is one piece of memory (framework/arena.h) that holds the container of the standard
/// library, what that needs first, and what is common to both:
///
///     ObjectStore | head | std::set  | block: next, capacity, used, first member | slot | slot | ... |
///     ArrayStore  | head | first map of the deque | first chunk of the deque | arena offered | std::deque |
///     head        | next store to be destroyed, kind, arena while the container is being read        |
///
/// A slot is a node of the set; further slots come in blocks of their own, linked behind the first. Slots are
/// taken in the order of insertion and never given back singly, so the members can be walked block by block
/// without touching the tree: small objects are searched that way, and whole trees are destroyed that way,
/// with the stores still to be destroyed in a list threaded through their heads instead of on the stack.
#pragma once

#include "framework/arena.h"
#include "framework/element.h"

#include <cassert>
#include <cstdint>
#include <memory>

namespace Zelk::MetaData::Detail {

struct StoreHead {
    explicit StoreHead(bool isObject, Arena* from) noexcept : arena(from), object(isObject) {}

    StoreHead* nextToDestroy = nullptr;
    Arena* arena; // null once the container is complete
    bool object;
};

struct SlotBlock {
    SlotBlock* next;
    std::uint32_t capacity;
    std::uint32_t used;
    char* firstMember; // the member in the first slot; the others follow at the distance of a slot
    char* slots() noexcept { return reinterpret_cast<char*>(this + 1); }
};

/// Size of a node of a std::set: four words for the tree, then the member. SlotAllocator checks it.
constexpr std::size_t slotSize = 4 * sizeof(void*) + sizeof(Object::Member);

struct ObjectStore : StoreHead {
    /// Searching the slots one after the other is faster than descending the tree up to this many members.
    static constexpr unsigned int linearSearchLimit = 12;
    static constexpr std::uint32_t firstBlockCapacity = 8;
    static constexpr std::uint32_t largestBlockCapacity = 128;

    /// An empty store with room for `capacity` members.
    static ObjectStore* create(Arena* arena, std::uint32_t capacity = firstBlockCapacity);

    Object::Member const* find(std::string_view name) const noexcept;

    /// The member of that name, inserted as an empty node when there is none. Throws std::bad_alloc, and
    /// nothing has changed then. Costs one comparison when `name` comes after all others.
    Object::Member const& insert(std::string_view name);

    /// Ends the reading of the object: gives back slots that were not needed.
    void close() noexcept;

    template <typename Visit>
    void forEachSlot(Visit visit) const
    {
        for (SlotBlock* block = firstBlock(); block != nullptr; block = block->next) {
            char* member = block->firstMember;
            for (std::uint32_t i = 0; i < block->used; ++i, member += slotSize)
                visit(*reinterpret_cast<Object::Member*>(member));
        }
    }

    void* takeSlot() noexcept;
    void returnSlot(void* slot) noexcept;

    Object::Tree tree;
    SlotBlock* lastBlock;

private:
    friend struct TreeAccess;
    ObjectStore(Arena* arena, std::uint32_t capacity) noexcept;
    SlotBlock* firstBlock() const noexcept
    {
        return reinterpret_cast<SlotBlock*>(const_cast<ObjectStore*>(this) + 1);
    }
    void addBlock();
};

struct ArrayStore : StoreHead {
    static ArrayStore* create(Arena* arena);

    /// Ends the reading of the array.
    void close() noexcept { arena = nullptr; }

    /// Adds an item for a writer. To the items of a long array it offers an arena, since they are likely to
    /// become objects, one after the other.
    Element& grow();
    static constexpr std::size_t offerThreshold = 16;

    /// Memory for the deque: the first map and the first chunk are those of the store itself.
    void* allocate(std::size_t size);
    void deallocate(void* memory) noexcept;

    static constexpr std::size_t firstMapSize = 8 * sizeof(void*);
    static constexpr std::size_t firstChunkSize = 512 / sizeof(Element) * sizeof(Element);

    bool mapTaken = false;
    bool chunkTaken = false;
    alignas(void*) char firstMap[firstMapSize];
    alignas(void*) char firstChunk[firstChunkSize];
    std::unique_ptr<Arena> offered;
    Array::Items items; // last, so that it is constructed when the memory above is ready

private:
    explicit ArrayStore(Arena* arena);
};

template <typename T>
T* SlotAllocator<T>::allocate(std::size_t)
{
    static_assert(sizeof(T) <= slotSize, "a slot holds a node of the set");
    return static_cast<T*>(store_->takeSlot());
}

template <typename T>
void SlotAllocator<T>::deallocate(T* slot, std::size_t) noexcept
{
    store_->returnSlot(slot);
}

template <typename T>
T* ItemAllocator<T>::allocate(std::size_t count)
{
    // NOLINTNEXTLINE(bugprone-sizeof-expression): for the map of the deque T is a pointer
    return static_cast<T*>(store_->allocate(count * sizeof(T)));
}

template <typename T>
void ItemAllocator<T>::deallocate(T* items, std::size_t) noexcept
{
    store_->deallocate(items);
}

/// The inside of nodes, for the code that builds, walks and destroys trees.
struct TreeAccess {
    static ObjectStore*& store(Object& object) noexcept { return object.store_; }
    static ObjectStore* store(Object const& object) noexcept { return object.store_; }
    static ArrayStore*& store(Array& array) noexcept { return array.store_; }
    static ArrayStore* store(Array const& array) noexcept { return array.store_; }

    static Object& object(Element& node) noexcept { return node.object_; }
    static Object const& object(Element const& node) noexcept { return node.object_; }
    static Array& array(Element& node) noexcept { return node.array_; }
    static Array const& array(Element const& node) noexcept { return node.array_; }
    static std::string const& string(Element const& node) noexcept { return node.string_; }
    static std::string& string(Element& node) noexcept { return node.string_; }
    static long long integer(Element const& node) noexcept { return node.integer_; }
    static double real(Element const& node) noexcept { return node.real_; }

    static Element& element(Object::Member const& member) noexcept { return member.element_; }

    // For a node that owns nothing.
    static void setInteger(Element& node, long long value) noexcept
    {
        node.integer_ = value;
        node.kind_ = Element::integer;
    }
    static void setBoolean(Element& node, bool value) noexcept
    {
        node.integer_ = value;
        node.kind_ = Element::boolean;
    }
    static void setReal(Element& node, double value) noexcept
    {
        node.real_ = value;
        node.kind_ = Element::real;
    }
    static void setString(Element& node, char const* text, std::size_t size)
    {
        new (&node.string_) std::string(text, size);
        node.kind_ = Element::string;
    }
    static void setString(Element& node, std::string&& text) noexcept
    {
        new (&node.string_) std::string(std::move(text));
        node.kind_ = Element::string;
    }
    static Object& setObject(Element& node) noexcept
    {
        new (&node.object_) Object;
        node.kind_ = Element::object;
        return node.object_;
    }
    static Array& setArray(Element& node) noexcept
    {
        new (&node.array_) Array;
        node.kind_ = Element::array;
        return node.array_;
    }

    static SlotBlock* blocksBehindFirst(ObjectStore const& store) noexcept
    {
        return store.firstBlock()->next;
    }

    /// Makes a node empty; hands its container, if it has one, to the caller for destruction.
    static StoreHead* clear(Element& node) noexcept;

    static Arena* offer(Element const& node) noexcept
    {
        return node.kind_ == Element::emptyWithOffer ? node.offer_ : nullptr;
    }
    static void setOffer(Element& node, Arena& arena) noexcept
    {
        node.offer_ = &arena;
        node.kind_ = Element::emptyWithOffer;
    }
    static void withdrawOffer(Element& node) noexcept { node.kind_ = Element::settled(node.kind_); }

    static bool takesLoan(Element const& node) noexcept { return node.takesLoan_; }
    static void setTakesLoan(Element& node) noexcept { node.takesLoan_ = true; }
};

inline StoreHead* TreeAccess::clear(Element& node) noexcept
{
    StoreHead* store = nullptr;
    switch (node.kind_) {
    case Element::string:
        node.string_.~basic_string();
        break;
    case Element::object:
        store = node.object_.store_;
        break;
    case Element::array:
        store = node.array_.store_;
        break;
    default:
        break;
    }
    node.kind_ = Element::empty;
    return store;
}

/// Destroys a container with all below it. Neither allocates nor recurses.
void destroy(StoreHead* store) noexcept;

/// Adds an item to an array store and gives it, for a reader.
inline Element& append(ArrayStore& store)
{
    return store.items.emplace_back();
}

} // namespace Zelk::MetaData::Detail
