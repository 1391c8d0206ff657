#pragma once

#include <InkoraKit/loops/LoopAdapter.h>
#include <glib-unix.h>

#include <utility>

namespace InkoraKit {

/// Lets a GLib loop run the kit, and with it every toolkit that is built on one. From its
/// construction to its end the kit's callbacks come inside that loop.
///
///     GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
///     GLibAdapter kit([loop] { g_main_loop_quit(loop); });
///     g_main_loop_run(loop);
///     kit.rethrow();
///
/// An exception does not enter GLib's frames; see LoopAdapter. A loop that a callback runs inside
/// itself, such as a modal dialog, serves the kit too, as far as RunLoop says. Needs GLib 2.58.
class GLibAdapter final : public LoopAdapter {
public:
    /// @param stop ends the loop after an exception, as with g_main_loop_quit or
    /// g_application_quit.
    /// @param context whose loop it is, the default one if null; shared.
    explicit GLibAdapter(Block stop, GMainContext* context = nullptr)
        : LoopAdapter(std::move(stop)),
          context_(g_main_context_ref(context ? context : g_main_context_default())) {
        watch();
    }

    ~GLibAdapter() override {
        unwatch();
        g_main_context_unref(context_);
    }

private:
    void watch() override {
        source_ = g_unix_fd_source_new(RunLoop::main().descriptor(), G_IO_IN);
        const GUnixFDSourceFunc callback = [](gint, GIOCondition, gpointer adapter) -> gboolean {
            static_cast<GLibAdapter*>(adapter)->serve();
            return G_SOURCE_CONTINUE;
        };
        g_source_set_callback(source_, G_SOURCE_FUNC(callback), this, nullptr);
        g_source_set_can_recurse(source_, TRUE);
        g_source_attach(source_, context_);
    }

    void unwatch() override {
        if (!source_) return;
        g_source_destroy(source_);
        g_source_unref(std::exchange(source_, nullptr));
    }

    GMainContext* context_;
    GSource* source_ = nullptr;
};

}  // namespace InkoraKit
