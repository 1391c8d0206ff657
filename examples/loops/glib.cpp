// A host in a GLib loop.
#include <InkoraKit/loops/GLibAdapter.h>

#include "Swatches.h"

using namespace InkoraKit;

int main(int count, char** arguments) try {
    const auto swatches = std::make_shared<Swatches>();
    InkoraManager::registerInkoraManager(swatches);

    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    GLibAdapter kit([loop] { g_main_loop_quit(loop); });
    swatches->pair(count, arguments);
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
    kit.rethrow();
} catch (const std::exception& error) {
    return Swatches::giveUp(error);
}
