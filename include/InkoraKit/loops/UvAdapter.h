#pragma once

#include <InkoraKit/loops/LoopAdapter.h>
#include <uv.h>

#include <memory>
#include <stdexcept>

namespace InkoraKit {

/// Lets a libuv loop run the kit. From its construction to its end the kit's callbacks come inside
/// that loop, and uv_run does not return for want of handles.
///
///     UvAdapter kit(uv_default_loop());
///     uv_run(uv_default_loop(), UV_RUN_DEFAULT);
///     kit.rethrow();
///
/// After an exception, which does not enter libuv's frames (see LoopAdapter), the loop is ended by
/// uv_stop. As with every handle the loop is needed a little longer: it has to run once more after
/// the adapter's end before uv_loop_close. libuv knows no loop inside a callback.
class UvAdapter final : public LoopAdapter {
public:
    /// @throws std::runtime_error with libuv's words where it cannot watch the descriptor.
    explicit UvAdapter(uv_loop_t* loop) : LoopAdapter([loop] { uv_stop(loop); }) {
        auto handle = std::make_unique<uv_poll_t>();
        if (const int status = uv_poll_init(loop, handle.get(), RunLoop::main().descriptor()))
            throw std::runtime_error(uv_strerror(status));
        handle_ = handle.release();
        handle_->data = this;
        watch();
    }

    ~UvAdapter() override {
        uv_close(reinterpret_cast<uv_handle_t*>(handle_),
                 [](uv_handle_t* handle) { delete reinterpret_cast<uv_poll_t*>(handle); });
    }

private:
    void watch() override {
        uv_poll_start(handle_, UV_READABLE, [](uv_poll_t* handle, int, int) {
            static_cast<UvAdapter*>(handle->data)->serve();
        });
    }
    void unwatch() override { uv_poll_stop(handle_); }

    uv_poll_t* handle_;  // its own until it is closed, then the loop's
};

}  // namespace InkoraKit
