// A host in a libuv loop.
#include <InkoraKit/loops/UvAdapter.h>

#include "Swatches.h"

using namespace InkoraKit;

namespace {

void run(uv_loop_t* loop, int count, char** arguments) {
    const auto swatches = std::make_shared<Swatches>();
    InkoraManager::registerInkoraManager(swatches);
    UvAdapter kit(loop);
    swatches->pair(count, arguments);
    uv_run(loop, UV_RUN_DEFAULT);
    kit.rethrow();
}

}  // namespace

int main(int count, char** arguments) {
    uv_loop_t* const loop = uv_default_loop();
    int status = 0;
    try {
        run(loop, count, arguments);
    } catch (const std::exception& error) {
        status = Swatches::giveUp(error);
    }
    uv_run(loop, UV_RUN_DEFAULT);  // in which the adapter's handle is closed
    return uv_loop_close(loop) == 0 ? status : 2;
}
