#pragma once

#include <InkoraKit/platform/Owner.h>

#include <cstddef>

namespace InkoraKit {

/// The memory that all contents of one document share: reading it takes a few large pieces instead
/// of one small piece for each value, and letting go of it frees as many. Nothing in it changes
/// once the document has been read. It counts as one owner, however many values look into it.
class alignas(8) Region final : public Owner {
public:
    /// @param firstSize the room to start with
    static Region* create(std::size_t firstSize);
    void destroy() noexcept;

    bool hasRoom(std::size_t size) const noexcept {
        return size + 7 < static_cast<std::size_t>(end_ - next_);
    }
    /// @param toCome how much more will be asked for, as a multiple of what has been
    void addPiece(std::size_t size, double toCome);

    /// Room, for which there is room, that starts at a multiple of eight and is followed by at
    /// least `slack` bytes. Lives as long as the region.
    std::byte* take(std::size_t size) noexcept {
        std::byte* const room = next_;
        next_ += (size + 7) & ~std::size_t{7};
        return room;
    }
    /// Where the next room will be, and where it ends.
    std::byte* next() const noexcept { return next_; }
    std::byte* end() const noexcept { return end_; }
    /// Texts may be looked at sixteen bytes at a time, beyond their end.
    static constexpr std::size_t slack = 16;

private:
    struct alignas(8) Piece {
        Piece* next;
    };

    Region(std::byte* next, std::byte* end) noexcept
        : Owner(Kind::region),
          size_(static_cast<std::size_t>(end - next)),
          next_(next),
          end_(end) {}

    std::size_t size_;  // of all pieces
    std::byte* next_;
    std::byte* end_;
    Piece* pieces_ = nullptr;
};

}  // namespace InkoraKit
