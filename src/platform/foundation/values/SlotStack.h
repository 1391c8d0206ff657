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
        end_ = begin_ + firstCount;
    }
    SlotStack(const SlotStack&) = delete;
    SlotStack& operator=(const SlotStack&) = delete;

    AnySlot* begin() const noexcept { return begin_; }

    /// The top, moved along where there had to be more room for two more slots.
    AnySlot* withRoomForTwo(AnySlot* top) {
        return end_ - top >= 2 ? top : grown(static_cast<std::size_t>(top - begin_));
    }

private:
    static constexpr std::size_t firstCount = 256;
    static_assert(std::is_trivially_copyable_v<AnySlot>);

    AnySlot* grown(std::size_t size) {
        const std::size_t capacity = static_cast<std::size_t>(end_ - begin_) * 2;
        auto larger = std::make_unique_for_overwrite<std::byte[]>(capacity * sizeof(AnySlot));
        std::memcpy(larger.get(), begin_, size * sizeof(AnySlot));
        heap_ = std::move(larger);
        begin_ = reinterpret_cast<AnySlot*>(heap_.get());
        end_ = begin_ + capacity;
        return begin_ + size;
    }

    AnySlot* begin_;
    AnySlot* end_;
    std::unique_ptr<std::byte[]> heap_;
    alignas(16) std::array<std::byte, firstCount * sizeof(AnySlot)> first_;  // below the top
};

}  // namespace InkoraKit
