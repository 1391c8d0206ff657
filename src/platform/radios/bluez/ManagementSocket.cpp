#include "platform/radios/bluez/ManagementSocket.h"

#include <InkoraKit/platform/RunLoop.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/bluetooth/radio.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

// From the kernel's Bluetooth interface (BlueZ's doc/mgmt-api.txt). All numbers are little-endian.
constexpr sa_family_t bluetoothFamily = 31;
constexpr int hciProtocol = 1;
constexpr std::uint16_t noDevice = 0xffff;
constexpr std::uint16_t controlChannel = 3;

struct HciAddress {
    sa_family_t family;
    std::uint16_t device;
    std::uint16_t channel;
};

constexpr std::uint16_t getConnectionInformation = 0x0031;
constexpr std::uint16_t commandComplete = 0x0001;
constexpr std::uint16_t commandStatus = 0x0002;
constexpr std::uint8_t permissionDenied = 0x14;

constexpr std::size_t headerSize = 6;
constexpr std::size_t statusPosition = headerSize + 2;
constexpr std::size_t addressPosition = statusPosition + 1;
constexpr std::size_t rssiPosition = addressPosition + 7;

constexpr double kernelTime = 5;
constexpr std::size_t packetsPerTurn = 32;

using Packet = std::vector<std::uint8_t>;
using Buffer = std::array<std::uint8_t, 1024>;

void append(Packet& packet, std::uint16_t number) {
    packet.push_back(static_cast<std::uint8_t>(number & 0xff));
    packet.push_back(static_cast<std::uint8_t>(number >> 8));
}

std::uint16_t numberAt(std::span<const std::uint8_t> packet, std::size_t position) {
    return static_cast<std::uint16_t>(packet[position] | packet[position + 1] << 8);
}

Packet addressField(const DeviceAddress& address) {
    Packet field(address.bytes.rbegin(), address.bytes.rend());
    field.push_back(static_cast<std::uint8_t>(address.type));
    return field;
}

Packet request(std::uint16_t controller, const DeviceAddress& address) {
    const Packet parameters = addressField(address);
    Packet packet;
    append(packet, getConnectionInformation);
    append(packet, controller);
    append(packet, static_cast<std::uint16_t>(parameters.size()));
    packet.insert(packet.end(), parameters.begin(), parameters.end());
    return packet;
}

bool isAnswer(std::span<const std::uint8_t> packet) {
    if (packet.size() <= statusPosition) return false;
    const std::uint16_t event = numberAt(packet, 0);
    if (event != commandComplete && event != commandStatus) return false;
    return numberAt(packet, headerSize) == getConnectionInformation;
}

// Empty when nothing is there, or not now.
std::span<const std::uint8_t> receiveInto(Buffer& buffer, int descriptor) {
    const auto size = ::recv(descriptor, buffer.data(), buffer.size(), 0);
    return {buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
}

constexpr const char* notAsked = "The adapter could not be asked for the signal strength.";

std::string statusText(std::uint8_t status) {
    switch (status) {
        case 0x02:
            return "The device is not connected.";
        case 0x0f:
            return "The adapter is switched off.";
        case 0x11:
            return "There is no such adapter.";
        case permissionDenied:
            return "Not permitted without the capability CAP_NET_ADMIN.";
        default:
            return "The adapter did not tell the signal strength.";
    }
}

}  // namespace

int ManagementSocket::openChannel() {
    const int descriptor =
        ::socket(bluetoothFamily, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, hciProtocol);
    if (descriptor < 0) return -1;
    const HciAddress address{bluetoothFamily, noDevice, controlChannel};
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return descriptor;
    ::close(descriptor);
    return -1;
}

ManagementSocket::~ManagementSocket() {
    close();
}

// The kernel says at once whom it does not trust, before it looks at what was asked: no adapter has
// the number asked about.
bool ManagementSocket::isPermitted(Opener opener) {
    const int descriptor = opener();
    if (descriptor < 0) return false;
    const Packet question = request(noController, {{}, DeviceAddress::Type::lePublic});
    bool isPermitted = false;
    if (::send(descriptor, question.data(), question.size(), 0) >= 0) {
        Buffer buffer;
        for (std::size_t i = 0; i < packetsPerTurn; ++i) {
            const auto packet = receiveInto(buffer, descriptor);
            if (packet.empty()) break;
            if (!isAnswer(packet)) continue;
            isPermitted = packet[statusPosition] != permissionDenied;
            break;
        }
    }
    ::close(descriptor);
    return isPermitted;
}

void ManagementSocket::readRSSI(std::uint16_t controller, const DeviceAddress& address,
                                Completion completion) {
    questions_.push_back({controller, address, std::move(completion)});
    if (questions_.size() == 1) ask();
}

void ManagementSocket::ask() {
    const Packet packet = request(questions_.front().controller, questions_.front().address);
    if (!open() || ::send(descriptor_, packet.data(), packet.size(), 0) < 0)
        return answer(std::nullopt, notAsked);
    limit_.set(kernelTime, [this] { answer(std::nullopt, notAsked); });
}

bool ManagementSocket::open() {
    if (descriptor_ >= 0) return true;
    descriptor_ = opener_();
    if (descriptor_ < 0) return false;
    RunLoop::main().addSource(*this);
    return true;
}

void ManagementSocket::close() {
    if (descriptor_ < 0) return;
    RunLoop::main().removeSource(*this);
    ::close(std::exchange(descriptor_, -1));
}

void ManagementSocket::service() {
    Buffer buffer;
    for (std::size_t i = 0; i < packetsPerTurn && descriptor_ >= 0; ++i) {
        const auto packet = receiveInto(buffer, descriptor_);
        if (packet.empty()) break;
        receive(packet);
    }
}

void ManagementSocket::receive(std::span<const std::uint8_t> packet) {
    if (!isAnswer(packet) || questions_.empty()) return;
    const std::uint8_t status = packet[statusPosition];
    if (status != 0) return answer(std::nullopt, statusText(status));
    const Packet asked = addressField(questions_.front().address);
    if (packet.size() <= rssiPosition ||
        !std::equal(asked.begin(), asked.end(), packet.begin() + addressPosition))
        return;
    const auto rssi = static_cast<std::int8_t>(packet[rssiPosition]);
    if (rssi == unknownRSSI) return answer(std::nullopt, statusText(status));
    answer(rssi, {});
}

void ManagementSocket::answer(std::optional<int> rssi, const std::string& error) {
    limit_.cancel();
    const Completion completion = std::move(questions_.front().completion);
    questions_.pop_front();
    if (questions_.empty()) {
        close();
    } else {
        ask();
    }
    completion(rssi, error);
}

}  // namespace InkoraKit
