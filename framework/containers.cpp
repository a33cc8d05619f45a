#include "framework/containers.h"

#include <algorithm>

namespace Zelk::MetaData::Detail {

namespace {

std::string const& nameOf(std::_Rb_tree_node_base* node) noexcept
{
    return static_cast<MemberNode*>(node)->_M_valptr()->name();
}

/// Links `count` nodes, given in the order of their names, into a balanced tree; gives its root. Below
/// `blackLevels` levels its nodes are red, which must be those of the last one.
std::_Rb_tree_node_base* linkEvenly(std::_Rb_tree_node_base* const* nodes, std::size_t count,
                                    std::_Rb_tree_node_base* parent, unsigned int blackLevels) noexcept
{
    if (count == 0)
        return nullptr;
    std::size_t const before = count / 2;
    std::_Rb_tree_node_base* const root = nodes[before];
    unsigned int const below = blackLevels == 0 ? 0 : blackLevels - 1;
    root->_M_color = blackLevels == 0 ? std::_S_red : std::_S_black;
    root->_M_parent = parent;
    root->_M_left = linkEvenly(nodes, before, root, below);
    root->_M_right = linkEvenly(nodes + before + 1, count - before - 1, root, below);
    return root;
}

} // namespace

// ---- members

ObjectStore::ObjectStore(std::size_t capacity) noexcept
    : StoreHead(true), lastBlock(new (firstBlock()) SlotBlock(capacity))
{}

ObjectStore* ObjectStore::create(Arena* arena, std::size_t capacity)
{
    capacity = std::min(capacity, largestBlockCapacity);
    std::size_t const size = sizeof(ObjectStore) + sizeof(SlotBlock) + capacity * sizeof(MemberNode);
    return new (allocatePiece(arena, size)) ObjectStore(capacity);
}

MemberNode* ObjectStore::findInTree(std::string_view name) noexcept
{
    std::_Rb_tree_node_base* node = tree._M_header._M_parent;
    while (node != nullptr) {
        int const order = compareNames(name, nameOf(node));
        if (order == 0)
            break;
        node = order < 0 ? node->_M_left : node->_M_right;
    }
    return static_cast<MemberNode*>(node);
}

Object::Member& ObjectStore::insert(Characters const& name, Arena* arena)
{
    if (size() == smallSize)
        balance();
    std::_Rb_tree_node_base& header = tree._M_header;
    std::_Rb_tree_node_base* parent = header._M_right; // the header itself, of an empty object
    int order = 1;
    if (size() != 0) {
        order = compareNames(name.view(), nameOf(parent));
        for (auto* node = order < 0 ? header._M_parent : nullptr; node != nullptr && order != 0;) {
            parent = node;
            order = compareNames(name.view(), nameOf(node));
            node = order < 0 ? node->_M_left : node->_M_right;
        }
        if (order == 0)
            return *static_cast<MemberNode*>(parent)->_M_valptr();
    }
    if (lastBlock->isFull()) {
        std::size_t const capacity =
            std::clamp(lastBlock->capacity() * 2, firstBlockCapacity, largestBlockCapacity);
        void* memory = allocatePiece(arena, sizeof(SlotBlock) + capacity * sizeof(MemberNode));
        lastBlock = lastBlock->next = new (memory) SlotBlock(capacity);
    }
    bool const staysSmall = size() < smallSize;
    MemberNode& node = fill(name, *parent);
    if (!staysSmall)
        std::_Rb_tree_insert_and_rebalance(order < 0, &node, parent, header);
    else if (parent == header._M_right && order > 0)
        hangLast(node);
    else
        hang(node, order < 0);
    return *node._M_valptr();
}

void ObjectStore::hang(MemberNode& node, bool left) noexcept
{
    std::_Rb_tree_node_base& parent = *node._M_parent;
    if (!left) {
        parent._M_right = &node;
        return;
    }
    parent._M_left = &node;
    if (&parent == tree._M_header._M_left)
        tree._M_header._M_left = &node;
}

void ObjectStore::balance() noexcept
{
    std::_Rb_tree_node_base* nodes[smallSize];
    std::_Rb_tree_node_base* next = tree._M_header._M_left;
    for (auto*& node : nodes) {
        node = next;
        next = std::_Rb_tree_increment(next);
    }
    constexpr unsigned int fullLevels = 3;
    static_assert((1U << fullLevels) - 1 <= smallSize && smallSize < (2U << fullLevels) - 1);
    tree._M_header._M_parent = linkEvenly(nodes, smallSize, &tree._M_header, fullLevels);
}

void ObjectStore::trim(Arena& arena) noexcept
{
    if (arena.trim(lastBlock->end, lastBlock->free))
        lastBlock->end = lastBlock->free;
}

// ---- items

ArrayStore::ArrayStore(std::size_t capacity) noexcept
    : StoreHead(false), missing(static_cast<std::uint8_t>(chunkItems - capacity)), next(firstItem()),
      chunkEnd(next + capacity)
{
    places[0] = chunkEnd - chunkItems;
    places[1] = chunkEnd;
}

ArrayStore* ArrayStore::create(Arena* arena, std::size_t capacity)
{
    return new (allocatePiece(arena, sizeof(ArrayStore) + capacity * sizeof(Element))) ArrayStore(capacity);
}

void ArrayStore::addChunk(Arena* arena)
{
    if (std::uint32_t const used = chunks + 1; (used & chunks) == 0) {
        // It is pointers that are stored. NOLINTNEXTLINE(bugprone-sizeof-expression)
        auto* const larger = static_cast<Element**>(allocatePiece(arena, 2 * used * sizeof *places));
        std::copy_n(places, used, larger);
        if (places != firstPlaces)
            releasePiece(places);
        places = larger;
    }
    next = static_cast<Element*>(allocatePiece(arena, chunkItems * sizeof(Element)));
    chunkEnd = next + chunkItems;
    places[chunks++] = next;
    places[chunks] = chunkEnd;
}

Element& ArrayStore::grow()
{
    if (chunks < offeringChunks)
        return append(nullptr);
    Element& last = next[-1]; // a chunk is added together with its first item
    Element& item = append(nullptr);
    TreeAccess::withdrawOffer(last);
    if (last.GetElementType() == Element::object) {
        if (offered == nullptr)
            offered = std::make_unique<Arena>(chunkItems * sizeof(Element));
        TreeAccess::setOffer(item, *offered);
    }
    return item;
}

void ArrayStore::growTo(std::size_t count)
{
    std::uint32_t const formerChunks = chunks;
    Element* const formerNext = next;
    Element* const formerEnd = chunkEnd;
    if (size() != 0)
        TreeAccess::withdrawOffer(next[-1]);
    try {
        for (std::size_t i = size(); i < count; ++i)
            append(nullptr);
    } catch (...) {
        while (chunks != formerChunks)
            releasePiece(places[--chunks]);
        next = formerNext;
        places[chunks] = chunkEnd = formerEnd;
        throw;
    }
}

void ArrayStore::releaseChunks(PieceReleaser& pieces) noexcept
{
    while (chunks != 1)
        pieces.release(places[--chunks]);
    if (places != firstPlaces)
        pieces.release(places);
}

// ---- whole trees

namespace {

/// Destroys a container with all below it, in the order in which a text has them: so they mostly lie in
/// memory.
class Destroyer {
public:
    void destroy(StoreHead* store) noexcept
    {
        destroyOne(store, 0);
        while (pending_ != nullptr) {
            StoreHead* const next = pending_;
            pending_ = next->nextToDestroy;
            destroyOne(next, 0);
        }
    }

private:
    // What is deeper waits in a list, so that a small stack will do for a tree of any depth.
    static constexpr int deepest = 16;

    void destroyOne(StoreHead* store, int depth) noexcept
    {
        auto const release = [this, depth](Element& node) {
            StoreHead* const inner = TreeAccess::release(node);
            if (inner == nullptr)
                return;
            if (depth != deepest) {
                destroyOne(inner, depth + 1);
            } else {
                inner->nextToDestroy = pending_;
                pending_ = inner;
            }
        };
        if (store->object) {
            auto* const object = static_cast<ObjectStore*>(store);
            object->forEachSlot([&release](MemberNode& slot) {
                Object::Member& member = *slot._M_valptr();
                release(TreeAccess::element(member));
                TreeAccess::destroyName(member);
            });
            for (SlotBlock* block = object->firstBlock()->next; block != nullptr;) {
                SlotBlock* const next = block->next;
                pieces_.release(block);
                block = next;
            }
        } else {
            auto* const array = static_cast<ArrayStore*>(store);
            array->forEachItem(release);
            array->releaseChunks(pieces_);
            array->~ArrayStore();
        }
        pieces_.release(store);
    }

    StoreHead* pending_ = nullptr;
    PieceReleaser pieces_;
};

} // namespace

void destroy(StoreHead* store) noexcept
{
    if (store != nullptr)
        Destroyer().destroy(store);
}

} // namespace Zelk::MetaData::Detail
