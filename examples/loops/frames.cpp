// A host that draws frames, sixty a second, as games do. It needs no descriptor.
#include <chrono>
#include <thread>

#include "Swatches.h"

using namespace InkoraKit;

int main(int count, char** arguments) try {
    const auto swatches = std::make_shared<Swatches>();
    InkoraManager::registerInkoraManager(swatches);
    swatches->pair(count, arguments);

    for (auto next = std::chrono::steady_clock::now();; std::this_thread::sleep_until(next)) {
        RunLoop::main().runPending(0.002);  // seconds of the frame's 0.017
        // Here the host draws.
        next += std::chrono::microseconds(16'667);
    }
} catch (const std::exception& error) {
    return Swatches::giveUp(error);
}
