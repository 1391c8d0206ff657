#pragma once

#include <concepts>
#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace InkoraKit {

/// A piece of work to be run once or more: a callable without arguments or result. It is moved,
/// never copied, and keeps captures of up to `inlineSize` bytes inside itself, so that queueing a
/// radio event needs no heap.
class Block {
public:
    /// Bytes of captures that need no heap.
    static constexpr std::size_t inlineSize = 112;

    /// Keeps the callable. Implicit: lambdas are blocks.
    template <class Callable>
    requires(!std::same_as<std::decay_t<Callable>, Block> &&
             std::invocable<std::decay_t<Callable>&>)
        Block(Callable&& callable) {  // NOLINT(google-explicit-constructor): lambdas are blocks
        using Kept = std::decay_t<Callable>;
        if constexpr (fitsInside<Kept>) {
            ::new (storage_) Kept(std::forward<Callable>(callable));
            operations_ = &insideOperations<Kept>;
        } else {
            ::new (storage_) Kept*(new Kept(std::forward<Callable>(callable)));
            operations_ = &heapOperations<Kept>;
        }
    }

    /// Takes over the other one's work, of which that has none afterwards.
    Block(Block&& other) noexcept : operations_(std::exchange(other.operations_, nullptr)) {
        if (operations_) operations_->move(other.storage_, storage_);
    }

    /// Takes over the other one's work and drops its own.
    Block& operator=(Block&& other) noexcept {
        if (this == &other) return *this;
        clear();
        operations_ = std::exchange(other.operations_, nullptr);
        if (operations_) operations_->move(other.storage_, storage_);
        return *this;
    }

    ~Block() { clear(); }

    /// Runs the work, if there is any. What it throws leaves through here.
    void operator()() {
        if (operations_) operations_->call(storage_);
    }

private:
    struct Operations {
        void (*call)(std::byte*);
        void (*move)(std::byte* from, std::byte* to) noexcept;
        void (*destroy)(std::byte*) noexcept;
    };

    template <class Kept>
    static constexpr bool fitsInside =
        sizeof(Kept) <= inlineSize &&
        alignof(Kept) <= alignof(std::max_align_t) && std::is_nothrow_move_constructible_v<Kept>;

    template <class Kept>
    static Kept& keptIn(std::byte* storage) noexcept {
        return *std::launder(reinterpret_cast<Kept*>(storage));
    }

    template <class Kept>
    static constexpr Operations insideOperations = {
        [](std::byte* storage) { keptIn<Kept>(storage)(); },
        [](std::byte* from, std::byte* to) noexcept {
            ::new (to) Kept(std::move(keptIn<Kept>(from)));
            keptIn<Kept>(from).~Kept();
        },
        [](std::byte* storage) noexcept { keptIn<Kept>(storage).~Kept(); },
    };

    template <class Kept>
    static constexpr Operations heapOperations = {
        [](std::byte* storage) { (*keptIn<Kept*>(storage))(); },
        [](std::byte* from, std::byte* to) noexcept { ::new (to) Kept*(keptIn<Kept*>(from)); },
        [](std::byte* storage) noexcept { delete keptIn<Kept*>(storage); },
    };

    void clear() noexcept {
        if (operations_) std::exchange(operations_, nullptr)->destroy(storage_);
    }

    alignas(std::max_align_t) std::byte storage_[inlineSize];
    const Operations* operations_ = nullptr;
};

}  // namespace InkoraKit
