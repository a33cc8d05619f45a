/// Where an object keeps its members and an array its items, and the only door to the inside of a node.
///
/// Each container is one piece of memory (framework/arena.h); what does not fit in comes in further pieces:
///
///     ObjectStore | head | root, first and last of the tree, size | last block | block
///     block       | next block, next free slot, end of the slots | slot | slot | ...
///     slot        | node of a std::set: color, parent, left, right | name | value
///
///     ArrayStore  | head | places of the chunks | place of the next item | arena offered | item | item | ...
///     chunk       | item | item | ... twelve, as in a std::deque
///
/// The containers are those of the standard library in all that their iterators touch, but not in where they
/// get their memory from, nor in how they insert:
///
/// Slots are taken in the order of insertion and never given back, so the members can be walked block by
/// block without touching the tree: small objects are searched that way, and whole trees are destroyed that
/// way. What is too deep to be destroyed on the stack waits in a list threaded through the heads of the
/// stores.
///
/// As long as an object is small its tree is not balanced: each node hangs where it was inserted. Members
/// that come in the order of their names, as in most texts, make it a row. When it outgrows that size it is
/// balanced, and from then on it is the red-black tree of the standard library.
///
/// Of the chunk that begins in the store of an array only its end need exist, as if items had been taken off
/// its front: once it is full the next item goes into a chunk of its own, and no item ever moves.
#pragma once

#include "framework/arena.h"
#include "framework/characters.h"
#include "framework/element.h"
#include "framework/names.h"

#include <cstdint>
#include <iterator>
#include <memory>
#include <string_view>

#ifndef __GLIBCXX__
#error "the nodes and chunks here are those that the iterators of libstdc++ step through"
#endif

namespace Zelk::MetaData {

[[gnu::always_inline]] inline Object::Member::Member(Detail::Characters const& name) : name_(name.string()) {}

namespace Detail {

struct StoreHead {
    explicit StoreHead(bool isObject) noexcept : object(isObject) {}

    StoreHead* nextToDestroy = nullptr;
    bool object;
};

using MemberNode = std::_Rb_tree_node<Object::Member>;

struct SlotBlock {
    explicit SlotBlock(std::size_t capacity) noexcept : free(slots()), end(free + capacity) {}

    bool isFull() const noexcept { return free == end; }
    std::size_t capacity() noexcept { return static_cast<std::size_t>(end - slots()); }
    MemberNode* slots() noexcept { return reinterpret_cast<MemberNode*>(this + 1); }

    SlotBlock* next = nullptr;
    MemberNode* free; // behind the slots in use
    MemberNode* end;
};

struct ObjectStore : StoreHead {
    /// Up to this many members, searching the slots one after the other is faster than descending a tree.
    static constexpr std::size_t smallSize = 12;
    static constexpr std::size_t firstBlockCapacity = 8;
    static constexpr std::size_t largestBlockCapacity = 128;

    /// An empty store with room for `capacity` members.
    static ObjectStore* create(Arena* arena, std::size_t capacity = firstBlockCapacity);

    std::size_t size() const noexcept { return tree._M_node_count; }
    Object::const_iterator begin() const noexcept { return Object::const_iterator(tree._M_header._M_left); }
    Object::const_iterator end() const noexcept { return Object::const_iterator(&tree._M_header); }

    /// The member behind another. Stepping needs no call where they hang in a row.
    static Object::const_iterator next(Object::const_iterator member) noexcept
    {
        auto const* const right = member._M_node->_M_right;
        return right != nullptr && right->_M_left == nullptr ? Object::const_iterator(right)
                                                             : std::next(member);
    }

    /// The member of that name, or null.
    MemberNode* find(std::string_view name) noexcept
    {
        return isSmall() ? findInSlots(name) : findInTree(name);
    }

    bool isSmall() const noexcept { return size() <= smallSize; }

    /// As find, in a small object.
    [[gnu::always_inline]] MemberNode* findInSlots(std::string_view name) noexcept
    {
        for (SlotBlock* block = firstBlock(); block != nullptr; block = block->next)
            for (MemberNode *slot = block->slots(), *end = block->free; slot != end; ++slot)
                if (areEqualNames(slot->_M_valptr()->name(), name))
                    return slot;
        return nullptr;
    }

    /// The member of that name, inserted as an empty node when there is none. Throws std::bad_alloc, and
    /// nothing has changed then. Costs one comparison when `name` comes after all others.
    Object::Member& insert(Characters const& name, Arena* arena);

    /// As insert, but only where that is simple: null when the name does not come after all others, or the
    /// object is not small, or its block is full.
    [[gnu::always_inline]] Object::Member* append(Characters const& name)
    {
        if (lastBlock->isFull() || size() >= smallSize)
            return nullptr;
        std::_Rb_tree_node_base* const last = tree._M_header._M_right;
        if (last != &tree._M_header &&
            compareNames(static_cast<MemberNode*>(last)->_M_valptr()->name(), name.view()) >= 0)
            return nullptr;
        MemberNode& node = fill(name, *last);
        hangLast(node);
        return node._M_valptr();
    }

    /// Gives slots that are not needed back to the arena they came from, if that is still possible.
    void trim(Arena& arena) noexcept;

    template <typename Visit>
    void forEachSlot(Visit visit)
    {
        for (SlotBlock* block = firstBlock(); block != nullptr; block = block->next)
            for (MemberNode *slot = block->slots(), *end = block->free; slot != end; ++slot)
                visit(*slot);
    }

    SlotBlock* firstBlock() noexcept { return reinterpret_cast<SlotBlock*>(this + 1); }

    std::_Rb_tree_header tree;
    SlotBlock* lastBlock;

private:
    explicit ObjectStore(std::size_t capacity) noexcept;

    /// Makes a member in the next slot; its node has a parent, but not the parent it.
    [[gnu::always_inline]] MemberNode& fill(Characters const& name, std::_Rb_tree_node_base& parent)
    {
        SlotBlock& block = *lastBlock;
        auto* const node = new (block.free) MemberNode;
        new (node->_M_valptr()) Object::Member(name);
        block.free = node + 1;
        ++tree._M_node_count;
        node->_M_color = std::_S_black;
        node->_M_parent = &parent;
        node->_M_left = nullptr;
        node->_M_right = nullptr;
        return *node;
    }

    /// Links the node of a small object behind all others; its parent is that of the last one, or the header.
    [[gnu::always_inline]] void hangLast(MemberNode& node) noexcept
    {
        std::_Rb_tree_node_base& header = tree._M_header;
        if (node._M_parent == &header)
            header._M_parent = header._M_left = &node;
        else
            node._M_parent->_M_right = &node;
        header._M_right = &node;
    }

    /// Links the node of a small object below its parent, which is not the header.
    void hang(MemberNode& node, bool left) noexcept;

    /// Balances the tree of an object that has just as many members as a small one may have.
    void balance() noexcept;
    MemberNode* findInTree(std::string_view name) noexcept;
};

struct ArrayStore : StoreHead {
    static constexpr std::size_t chunkItems = std::__deque_buf_size(sizeof(Element));

    /// An empty store with room for `capacity` items, 1 to `chunkItems`.
    static ArrayStore* create(Arena* arena, std::size_t capacity = chunkItems);

    std::size_t size() const noexcept
    {
        return chunkItems * chunks - static_cast<std::size_t>(chunkEnd - next) - missing;
    }
    Element& at(std::size_t index) noexcept
    {
        index += missing;
        return places[index / chunkItems][index % chunkItems];
    }
    Array::const_iterator begin() const noexcept { return {places[0] + missing, places}; }
    Array::const_iterator end() const noexcept
    {
        // Behind a full chunk the end is the beginning of the next one, though there is none.
        return next == chunkEnd ? Array::const_iterator(places[chunks], places + chunks)
                                : Array::const_iterator(next, places + chunks - 1);
    }

    /// Adds an empty item. Throws std::bad_alloc, and nothing has changed then.
    Element& append(Arena* arena)
    {
        if (next == chunkEnd)
            addChunk(arena);
        return *new (next++) Element;
    }

    /// Adds an item for a writer. In a long array it offers an arena to an item that follows an object, since
    /// it is likely to become one as well.
    Element& grow();
    static constexpr std::uint32_t offeringChunks = 2;

    /// Grows to `count` items. Throws std::bad_alloc, and nothing has changed then.
    void growTo(std::size_t count);

    /// Gives places of items that are not needed back to the arena they came from, if that is still possible.
    void trim(Arena& arena) noexcept
    {
        if (chunks != 1 || !arena.trim(chunkEnd, next))
            return;
        missing = static_cast<std::uint8_t>(missing + (chunkEnd - next));
        chunkEnd = next;
        places[0] = chunkEnd - chunkItems;
        places[1] = chunkEnd;
    }

    /// Frees what stands outside the store.
    void releaseChunks(PieceReleaser& pieces) noexcept;

    template <typename Visit>
    void forEachItem(Visit visit)
    {
        for (std::uint32_t chunk = 0; chunk != chunks; ++chunk) {
            Element* const end = chunk + 1 == chunks ? next : places[chunk] + chunkItems;
            for (Element* item = places[chunk] + (chunk == 0 ? missing : 0); item != end; ++item)
                visit(*item);
        }
    }

    std::uint8_t missing; // items at the front of the first chunk that do not exist
    std::uint32_t chunks = 1;
    // Of each chunk, and one place behind them. Room for a power of two: as many as the last chunk needed.
    Element** places = firstPlaces;
    Element* next; // place of the next item, in the last chunk
    Element* chunkEnd;
    std::unique_ptr<Arena> offered;
    Element* firstPlaces[2];

private:
    explicit ArrayStore(std::size_t capacity) noexcept;
    Element* firstItem() noexcept { return reinterpret_cast<Element*>(this + 1); }
    void addChunk(Arena* arena);
};

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

    static Element& element(Object::Member& member) noexcept { return member.element_; }
    static void destroyName(Object::Member& member) noexcept { member.name_.~basic_string(); }

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
    static void setString(Element& node, Characters const& text)
    {
        new (&node.string_) std::string(text.string());
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

    /// Ends what a node holds, which is none of its business afterwards; hands its container, if it has one,
    /// to the caller for destruction.
    static StoreHead* release(Element& node) noexcept;

    /// Makes a node empty; hands its container, if it has one, to the caller for destruction.
    static StoreHead* clear(Element& node) noexcept
    {
        StoreHead* const store = release(node);
        node.kind_ = Element::empty;
        return store;
    }

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

inline StoreHead* TreeAccess::release(Element& node) noexcept
{
    if (node.ownsNothing())
        return nullptr;
    switch (node.kind_) {
    case Element::string:
        node.string_.~basic_string();
        return nullptr;
    case Element::object:
        return node.object_.store_;
    default:
        return node.array_.store_;
    }
}

/// Destroys a container with all below it. Does not allocate, and recurses by a few levels at most.
void destroy(StoreHead* store) noexcept;

} // namespace Detail

} // namespace Zelk::MetaData
