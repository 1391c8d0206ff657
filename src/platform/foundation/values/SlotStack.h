#pragma once

#include <InkoraKit/platform/AnySlot.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>

namespace InkoraKit {

/// Room for a stack of slots, which starts within itself and grows onto the heap. Where the top is
/// only its user knows, who keeps it at hand. Slots are plain bytes here: nobody counts.
class SlotStack {
public:
    SlotStack() noexcept {
        begin_ = reinterpret_cast<AnySlot*>(first_.data());
        last_ = begin_ + firstCount - 2;
    }
    SlotStack(const SlotStack&) = delete;
    SlotStack& operator=(const SlotStack&) = delete;

    AnySlot* begin() const noexcept { return begin_; }

    bool hasRoomForTwo(const AnySlot* top) const noexcept { return top <= last_; }

    /// Twice the room.
    /// @return the top, which has moved
    AnySlot* grow(AnySlot* top) {
        const auto size = static_cast<std::size_t>(top - begin_);
        const std::size_t capacity = static_cast<std::size_t>(last_ - begin_ + 2) * 2;
        std::unique_ptr<std::byte[]> larger(
            new std::byte[capacity * sizeof(AnySlot)]);  // not cleared
        std::memcpy(larger.get(), begin_, size * sizeof(AnySlot));
        heap_ = std::move(larger);
        begin_ = reinterpret_cast<AnySlot*>(heap_.get());
        last_ = begin_ + capacity - 2;
        return begin_ + size;
    }

private:
    static constexpr std::size_t firstCount = 256;
    static_assert(std::is_trivially_copyable_v<AnySlot>);

    AnySlot* begin_;
    AnySlot* last_;  // top with room for two
    std::unique_ptr<std::byte[]> heap_;
    alignas(16) std::array<std::byte, firstCount * sizeof(AnySlot)> first_;  // below the top
};

}  // namespace InkoraKit
