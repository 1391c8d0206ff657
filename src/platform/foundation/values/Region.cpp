#include "platform/foundation/values/Region.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

namespace InkoraKit {

static_assert(sizeof(Region) % 8 == 0);

namespace {

std::byte* allocated(std::size_t size) {
    void* const memory = std::malloc(size);
    if (!memory) throw std::bad_alloc();
    return static_cast<std::byte*>(memory);
}

}  // namespace

Region* Region::create(std::size_t firstSize) {
    const std::size_t size = sizeof(Region) + ((firstSize + 7) & ~std::size_t{7});
    std::byte* const memory = allocated(size + slack);
    return new (memory) Region(memory + sizeof(Region), memory + size);
}

void Region::destroy() noexcept {
    while (pieces_) std::free(std::exchange(pieces_, pieces_->next));
    std::free(this);  // the first piece; there is nothing in a region that wants destruction
}

void Region::addPiece(std::size_t size, double toCome) {
    constexpr double margin = 1.03;  // so that an even document does not just miss it
    const double used = static_cast<double>(size_) - static_cast<double>(end_ - next_);
    constexpr auto most = static_cast<double>(std::numeric_limits<std::ptrdiff_t>::max()) / 2;
    const double wanted = std::min({used * toCome * margin, 4 * static_cast<double>(size_), most});
    // Never so little that many pieces would be needed if more comes than was thought.
    const std::size_t least = std::max<std::size_t>(size_ / 16, 256);
    const std::size_t room =
        std::max({size + 8, static_cast<std::size_t>(wanted), least}) & ~std::size_t{7};
    std::byte* const memory = allocated(sizeof(Piece) + room + slack);
    pieces_ = new (memory) Piece{pieces_};
    next_ = memory + sizeof(Piece);
    end_ = next_ + room;
    size_ += room;
}

}  // namespace InkoraKit
