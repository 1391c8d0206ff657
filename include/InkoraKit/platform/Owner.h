#pragma once

#include <InkoraKit/Export.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace InkoraKit {

/// What keeps the shared contents of `Any` alive: it counts its users, and the last one takes it
/// down. An implementation detail of `Any`; hosts have no use for it.
class Owner {
public:
    enum class Kind : std::uint8_t { region, array, dictionary, block, object };

    explicit constexpr Owner(Kind kind) noexcept : kind_(kind) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    Kind kind() const noexcept { return kind_; }

    void retain() noexcept {
        if (*isSingleThreaded_ != 0) {
            users_.store(users_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        } else {
            users_.fetch_add(1, std::memory_order_relaxed);
        }
    }

    /// @return whether that was the last user, who is to take it down.
    bool release() noexcept {
        if (*isSingleThreaded_ != 0) {
            const std::size_t left = users_.load(std::memory_order_relaxed) - 1;
            users_.store(left, std::memory_order_relaxed);
            return left == 0;
        }
        return users_.fetch_sub(1, std::memory_order_acq_rel) == 1;
    }

    /// Whether nobody but the caller, who is one of its users, can see the contents.
    bool hasOneUser() const noexcept { return users_.load(std::memory_order_acquire) == 1; }

    /// A list of owners that are to be taken down, linked through the counts that they no longer
    /// need.
    Owner* next() const noexcept {
        const std::size_t address = users_.load(std::memory_order_relaxed);
        return reinterpret_cast<Owner*>(address);  // NOLINT(performance-no-int-to-ptr)
    }
    void setNext(Owner* next) noexcept {
        users_.store(reinterpret_cast<std::size_t>(next), std::memory_order_relaxed);
    }

private:
    /// Not zero before the process has started its first thread, where that can be told: until
    /// then, counting needs no locked instructions.
    INKORA_EXPORT static const char* const isSingleThreaded_;

    std::atomic<std::size_t> users_{1};
    Kind kind_;
};

}  // namespace InkoraKit
