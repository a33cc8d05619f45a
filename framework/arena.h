/// Memory for the containers of a tree: one piece for each, out of the heap or out of an arena.
///
/// A text of more than a few lines would cost one heap block an object. An arena hands out pieces of large
/// chunks instead. Every piece is headed by its chunk, and a chunk counts the pieces in use, so a piece may
/// go its own way, to another tree or to another thread, and the chunk is freed with its last piece:
///
///     piece   | chunk, or null when it is from the heap   8 | what the container keeps ... |
///     chunk   | pieces in use   8 | piece | piece | piece | ... free ... |
///
/// The count is atomic since two pieces of one chunk may be released by two threads. An arena itself belongs
/// to the one reader or writer that fills a tree. While it works on a chunk the count stands far too high, so
/// that pieces can be handed out without touching it; what was not handed out is taken off at the end.
#pragma once

#include <cstddef>

namespace Zelk::MetaData::Detail {

struct Chunk;

class Arena {
public:
    /// An arena for about `expected` bytes in all; further chunks are larger. Nothing is allocated before the
    /// first piece.
    explicit Arena(std::size_t expected) noexcept : nextSize_(expected) {}
    Arena(Arena const&) = delete;
    Arena& operator=(Arena const&) = delete;
    ~Arena()
    {
        if (chunk_ != nullptr)
            leaveChunk();
    }

    /// A piece of `size` bytes, aligned for pointers. Throws std::bad_alloc.
    void* allocate(std::size_t size);

    /// Takes back the unused end of a piece, from `unused` to `end`, if nothing was allocated after it; tells
    /// whether it could.
    bool trim(void* end, void* unused) noexcept
    {
        if (end != cursor_)
            return false;
        cursor_ = static_cast<char*>(unused);
        return true;
    }

private:
    void startChunk(std::size_t needed);
    void leaveChunk() noexcept;

    Chunk* chunk_ = nullptr;
    std::size_t handedOut_ = 0;
    char* cursor_ = nullptr;
    char* end_ = nullptr;
    std::size_t nextSize_; // of a chunk, before it is limited
};

/// A piece out of `arena`, or out of the heap when there is none. Throws std::bad_alloc.
void* allocatePiece(Arena* arena, std::size_t size);

/// Gives a piece back to where it came from.
void releasePiece(void* piece) noexcept;

/// Gives many pieces back; those of one chunk that come one after the other at once.
class PieceReleaser {
public:
    PieceReleaser() = default;
    PieceReleaser(PieceReleaser const&) = delete;
    PieceReleaser& operator=(PieceReleaser const&) = delete;
    ~PieceReleaser() { releaseCounted(); }

    void release(void* piece) noexcept;

private:
    void releaseCounted() noexcept;

    Chunk* chunk_ = nullptr;
    std::size_t counted_ = 0; // pieces of the chunk
};

} // namespace Zelk::MetaData::Detail
