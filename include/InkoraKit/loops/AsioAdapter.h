#pragma once

#include <InkoraKit/platform/RunLoop.h>

#include <memory>
#include <utility>

namespace InkoraKit {

/// Lets an asio context run the kit, Boost's or the standalone one, whichever the descriptor is of.
/// From its construction to its end the kit's callbacks come inside that context, and its `run`
/// does not return for want of work.
///
///     asio::io_context context;
///     AsioAdapter<asio::posix::stream_descriptor> kit(context);
///     context.run();
///
/// What a receiver or a block throws leaves through the context's `run`, which may then be called
/// again; nothing else is lost by it. Belongs to the one thread that runs the context, and ends
/// before it, though not inside a callback of the kit. A loop that a callback runs inside itself
/// does not serve the kit.
template <class StreamDescriptor>
class AsioAdapter {
public:
    /// @param context an execution context, or an executor of one.
    /// @throws asio's system_error where it cannot watch the descriptor, as on systems on which the
    /// run loop has none.
    template <class Context>
    explicit AsioAdapter(Context&& context)
        : descriptor_(std::forward<Context>(context), RunLoop::main().descriptor()) {
        watch();
    }

    /// The descriptor stays open: it is the run loop's, and was lent to asio.
    ~AsioAdapter() { descriptor_.release(); }

    /// Neither copied nor moved: what asio waits for refers to it.
    AsioAdapter(const AsioAdapter&) = delete;
    AsioAdapter& operator=(const AsioAdapter&) = delete;

private:
    void watch() {
        descriptor_.async_wait(StreamDescriptor::wait_read,
                               [this, life = std::weak_ptr(life_)](const auto& error) {
                                   // It may be told of what came before its adapter's end.
                                   if (!error && !life.expired()) serve();
                               });
    }

    void serve() {
        try {
            RunLoop::main().runPending();
        } catch (...) {
            watch();
            throw;
        }
        watch();
    }

    StreamDescriptor descriptor_;
    std::shared_ptr<const bool> life_ = std::make_shared<const bool>(true);
};

}  // namespace InkoraKit
