#pragma once

#include <InkoraKit/platform/Block.h>
#include <InkoraKit/platform/RunLoop.h>

#include <exception>
#include <stdexcept>
#include <utility>

namespace InkoraKit {

/// What the adapters to loops have in common that no exception may cross. What a receiver or a
/// block throws is kept, the host's loop is told to stop, and the kit rests. When the loop has
/// ended, the host asks for the exception where it can be caught:
///
///     g_main_loop_run(loop);
///     kit.rethrow();
///
/// Belongs to the run loop's thread, which is the one that runs the host's loop. It may end at any
/// time but inside a callback of the kit, and what is due then waits for whoever runs the run loop
/// next.
class LoopAdapter {
public:
    /// Neither copied nor moved: the host's loop refers to it.
    LoopAdapter(const LoopAdapter&) = delete;
    LoopAdapter& operator=(const LoopAdapter&) = delete;
    virtual ~LoopAdapter() = default;

    /// Throws what was thrown inside the host's loop, if anything was, and lets the kit go on when
    /// that loop runs again. Of several the first; each of the others stops the loop once more.
    /// What nobody has asked for when the adapter ends is dropped.
    void rethrow() {
        if (!thrown_) return;
        watch();
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    }

protected:
    /// @param stop ends the host's loop, and throws nothing itself.
    /// @throws std::logic_error on systems where the run loop has no descriptor. There a host calls
    /// RunLoop::runPending from a timer of its loop.
    explicit LoopAdapter(Block stop) : stop_(std::move(stop)) {
        if (RunLoop::main().descriptor() < 0)
            throw std::logic_error("the run loop has no descriptor on this system");
    }

    /// Does what is due. For the host's loop to call when the descriptor is readable.
    void serve() noexcept {
        try {
            RunLoop::main().runPending();
        } catch (...) {
            keep(std::current_exception());
        }
    }

private:
    virtual void watch() = 0;
    virtual void unwatch() = 0;

    void keep(std::exception_ptr thrown) {
        if (thrown_) {  // by a loop inside the callback that has thrown now
            RunLoop::main().post([thrown] { std::rethrow_exception(thrown); });
            return;
        }
        thrown_ = std::move(thrown);
        unwatch();
        stop_();
    }

    Block stop_;
    std::exception_ptr thrown_;
};

}  // namespace InkoraKit
