#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace InkoraKit {

/// What keeps shared contents alive: it counts its users, and the last one takes it down.
class Owner {
public:
    enum class Kind : std::uint8_t { region, array, dictionary, block, object };

    explicit constexpr Owner(Kind kind) noexcept : kind_(kind) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    Kind kind() const noexcept { return kind_; }

    void retain() noexcept {
        if (isSingleThreaded()) {
            users_.store(users_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        } else {
            users_.fetch_add(1, std::memory_order_relaxed);
        }
    }

    /// @return whether that was the last user, who is to take it down.
    bool release() noexcept {
        if (isSingleThreaded()) {
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
    /// Before a process has started its first thread, counting needs no locked instructions.
    static bool isSingleThreaded() noexcept {
#if __has_include(<sys/single_threaded.h>)
        return __libc_single_threaded != 0;
#else
        return false;
#endif
    }

    std::atomic<std::size_t> users_{1};
    Kind kind_;
};

}  // namespace InkoraKit
