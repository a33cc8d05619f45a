#include "framework/arena.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

namespace Zelk::MetaData::Detail {

struct Chunk {
    std::atomic<std::size_t> pieces;
};

namespace {

// Most texts get by with one chunk. That is not only faster to fill: the usual heap gives back to the system
// what is freed in small chunks, and faults every page in again for the next text, but keeps what is freed in
// large ones.
constexpr std::size_t smallestChunk = std::size_t{4} << 10;
constexpr std::size_t largestChunk = std::size_t{16} << 20;
// A piece of this size is better off by itself than at the cost of the rest of a chunk.
constexpr std::size_t largestPiece = std::size_t{16} << 10;

struct PieceHead {
    Chunk* chunk;
};

constexpr std::size_t roundUp(std::size_t size)
{
    return (size + alignof(PieceHead) - 1) & ~(alignof(PieceHead) - 1);
}

constexpr std::size_t workingCount = ~std::size_t{0} / 2;

void release(Chunk* chunk, std::size_t pieces) noexcept
{
    // Whoever holds all that is left is alone with the chunk and needs no atomic subtraction.
    if (chunk->pieces.load(std::memory_order_acquire) == pieces ||
        chunk->pieces.fetch_sub(pieces, std::memory_order_acq_rel) == pieces) {
        chunk->~Chunk();
        ::operator delete(chunk);
    }
}

} // namespace

void* Arena::allocate(std::size_t size)
{
    size = roundUp(size) + sizeof(PieceHead);
    if (size > largestPiece)
        return allocatePiece(nullptr, size - sizeof(PieceHead));
    if (size > static_cast<std::size_t>(end_ - cursor_))
        startChunk(size);
    auto* piece = new (cursor_) PieceHead{chunk_};
    cursor_ += size;
    ++handedOut_;
    return piece + 1;
}

void Arena::startChunk(std::size_t needed)
{
    std::size_t const size =
        std::max(std::clamp(nextSize_, smallestChunk, largestChunk), sizeof(Chunk) + needed);
    auto* memory = static_cast<char*>(::operator new(size));
    if (chunk_ != nullptr)
        leaveChunk();
    chunk_ = new (memory) Chunk{{workingCount}};
    cursor_ = memory + sizeof(Chunk);
    end_ = memory + size;
    nextSize_ = 2 * size;
}

void Arena::leaveChunk() noexcept
{
    release(chunk_, workingCount - handedOut_);
    handedOut_ = 0;
}

void* allocatePiece(Arena* arena, std::size_t size)
{
    if (arena != nullptr)
        return arena->allocate(size);
    return new (::operator new(sizeof(PieceHead) + size)) PieceHead{nullptr} + 1;
}

void releasePiece(void* piece) noexcept
{
    PieceReleaser().release(piece);
}

void PieceReleaser::release(void* piece) noexcept
{
    PieceHead* const head = static_cast<PieceHead*>(piece) - 1;
    if (head->chunk == nullptr) {
        ::operator delete(head);
        return;
    }
    if (head->chunk != chunk_) {
        releaseCounted();
        chunk_ = head->chunk;
    }
    ++counted_;
}

void PieceReleaser::releaseCounted() noexcept
{
    if (counted_ != 0)
        Detail::release(chunk_, std::exchange(counted_, 0));
}

} // namespace Zelk::MetaData::Detail
