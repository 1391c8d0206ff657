// A host with a loop of its own: the kit's run loop is one more descriptor. It echoes the lines
// typed between the colours, and ends with the input.
#include <InkoraKit/InkoraKit.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>

using namespace InkoraKit;

struct Swatches : InkoraProtocols {
    void didPeripheralCaptured(const UIColor& colour) override {
        std::puts(colour.description().c_str());
    }
    void didFailedToInterrogate(const NSError& error) override {
        std::puts(error.domain().c_str());
    }
    void didFailToConnectWithBlueTooth(const NSError& error) override {
        std::puts(error.domain().c_str());
    }
};

bool echoInput() {
    std::array<char, 512> bytes;
    const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count <= 0) return false;
    std::fwrite(bytes.data(), 1, static_cast<std::size_t>(count), stdout);
    return true;
}

int main() {
    const auto swatches = std::make_shared<Swatches>();
    InkoraManager::registerInkoraManager(swatches);
    InkoraManager::startDevicePairing();

    RunLoop& loop = RunLoop::main();
    std::array<pollfd, 2> watched = {{{STDIN_FILENO, POLLIN, 0}, {loop.descriptor(), POLLIN, 0}}};
    bool isOpen = true;
    while (isOpen) {
        ::poll(watched.data(), watched.size(), -1);
        loop.runPending();
        if (watched[0].revents != 0) isOpen = echoInput();
    }
}
