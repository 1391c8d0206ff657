#include "Controller.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <thread>

namespace {

constexpr int socketPatience = 100;  // tries, one in 50 ms, until btvirt has its sockets

int connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int number = ::socket(AF_UNIX, SOCK_STREAM, 0);
    for (int i = 0; i < socketPatience; ++i) {
        if (::connect(number, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0)
            return number;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return -1;
}

/// The length of the packet that the bytes begin with, 0 while that cannot be told.
std::size_t lengthOf(const Packet& bytes) {
    if (bytes.size() < 5) return 0;
    switch (kindOf(bytes)) {
        case PacketKind::event:
            return 3u + bytes[2];
        case PacketKind::data:
            return 5u + numberAt(bytes, 3);
        default:
            throw std::runtime_error("btvirt: a packet of no known kind");
    }
}

}  // namespace

Controller::Controller(const std::string& emulations, Receiver fromKernel, Receiver fromEmulation)
    : fromKernel_(std::move(fromKernel)), fromEmulation_(std::move(fromEmulation)) {
    emulation_ = std::make_unique<Descriptor>(connectTo(emulations), emulations.c_str(),
                                              [this] { readEmulation(); });
    // The kernel gives up a controller that takes two seconds to answer, as this one may when it is
    // read from a busy disk for the first time: so it has answered before.
    toEmulation({1, 0x03, 0x0c, 0});
    Packet answer(7);
    if (::recv(emulation_->descriptor(), answer.data(), answer.size(), MSG_WAITALL) != 7)
        throw std::runtime_error("btvirt does not answer");
}

void Controller::plug() {
    kernel_ = std::make_unique<Descriptor>(::open("/dev/vhci", O_RDWR), "/dev/vhci",
                                           [this] { readKernel(); });
    toKernel({0xff, 0x00});  // makes a primary controller; the kernel answers with its index
}

// What the kernel does not take any more, as it has switched the controller off, is lost.
void Controller::toKernel(const Packet& packet) {
    if (kernel_) (void)!::write(kernel_->descriptor(), packet.data(), packet.size());
}

void Controller::toEmulation(const Packet& packet) {
    if (::write(emulation_->descriptor(), packet.data(), packet.size()) < 0)
        throw std::system_error(errno, std::generic_category(), "btvirt");
}

// The kernel gives a packet at a time.
void Controller::readKernel() {
    std::array<std::uint8_t, 2048> bytes;
    const auto count = ::read(kernel_->descriptor(), bytes.data(), bytes.size());
    if (count > 0 && bytes[0] != 0xff) fromKernel_(Packet(bytes.begin(), bytes.begin() + count));
}

void Controller::readEmulation() {
    std::array<std::uint8_t, 4096> bytes;
    const auto count = ::read(emulation_->descriptor(), bytes.data(), bytes.size());
    if (count <= 0) throw std::runtime_error("btvirt has ended");
    incoming_.insert(incoming_.end(), bytes.begin(), bytes.begin() + count);
    for (auto length = lengthOf(incoming_); length > 0 && length <= incoming_.size();
         length = lengthOf(incoming_)) {
        const auto end = incoming_.begin() + static_cast<std::ptrdiff_t>(length);
        Packet packet(incoming_.begin(), end);
        incoming_.erase(incoming_.begin(), end);
        fromEmulation_(std::move(packet));
    }
}
