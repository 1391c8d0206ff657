#include "platform/radios/bluez/ManagementSocket.h"

#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

/// The kernel's end of the channel. Packets are in hexadecimal, two digits a byte.
class Kernel {
public:
    static int open() {
        if (end >= 0) ::close(end);
        std::array<int, 2> ends{};
        ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data());
        end = ends[0];
        for (const char* packet : prepared) tell(packet);
        return ends[1];
    }
    static void tell(const std::string& hex) {
        std::string bytes;
        for (std::size_t i = 0; i < hex.size(); i += 2)
            bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
        ::send(end, bytes.data(), bytes.size(), 0);
    }
    /// The question that came, or "closed".
    static std::string asked() {
        std::array<std::uint8_t, 64> bytes;
        const auto size = ::recv(end, bytes.data(), bytes.size(), 0);
        if (size <= 0) return size == 0 ? "closed" : "nothing";
        return Data(std::span(bytes).first(static_cast<std::size_t>(size))).hexEncodedString();
    }

    static inline int end = -1;
    static inline std::vector<const char*> prepared;
};

const DeviceAddress pen = *DeviceAddress::fromText("C6:11:22:33:44:5F", "random");
constexpr const char* question = "3100010007005f44332211c602";

struct Asking {
    Asking() { ask(); }
    ~Asking() { RunLoop::main().setClock(std::make_shared<SystemClock>()); }
    void ask() {
        socket.readRSSI(1, pen, [this](std::optional<int> rssi, const std::string& error) {
            heard += (rssi ? std::to_string(*rssi) : error) + ";";
        });
    }
    std::string heard;
    ManagementSocket socket{&Kernel::open};
};

TEST(ManagementSocket, TheKernelAnswers) {
    const std::string whose = "5f44332211c602", told = "010001000d00310000";
    const std::pair<std::string, std::string> answers[] = {
        {told + whose + "c60000", "-58;"},
        {told + whose + "7f0000", "The adapter did not tell the signal strength.;"},
        {"010001000d00310002" + whose + "000000", "The device is not connected.;"},
        {"02000100030031000f", "The adapter is switched off.;"},
        // another event, another command's answer, another device's, and two cut short
        {"030001000d00310000" + whose + "c60000", ""},
        {"010001000d00300000" + whose + "c60000", ""},
        {told + "6044332211c602c60000", ""},
        {told + whose, ""},
        {"0100010002003100", ""}};
    for (const auto& [answer, heard] : answers) {
        Asking asking;
        EXPECT_EQ(Kernel::asked(), question);
        Kernel::tell(answer);
        RunLoop::main().runOnce();
        EXPECT_EQ(asking.heard, heard) << answer;
        EXPECT_EQ(Kernel::asked(), !heard.empty() ? "closed" : "nothing") << answer;
    }
}

TEST(ManagementSocket, QuestionsAreAskedOneAfterTheOtherAndEndInTime) {
    Asking asking;
    RunLoop::main().setClock(std::make_shared<VirtualClock>());
    asking.ask();
    EXPECT_EQ(Kernel::asked(), question);
    EXPECT_EQ(Kernel::asked(), "nothing");
    Kernel::tell("020001000300310014");
    RunLoop::main().runOnce();
    EXPECT_EQ(asking.heard, "Not permitted without the capability CAP_NET_ADMIN.;");
    EXPECT_EQ(Kernel::asked(), question);
    RunLoop::main().runFor(4.9);
    EXPECT_EQ(Kernel::asked(), "nothing");
    RunLoop::main().runFor(10);
    EXPECT_TRUE(
        asking.heard.ends_with(";The adapter could not be asked for the signal strength.;"));
    EXPECT_EQ(Kernel::asked(), "closed");
}

TEST(ManagementSocket, ThePermissionIsAskedFor) {
    const auto isPermitted = [](std::vector<const char*> packets) {
        Kernel::prepared = std::move(packets);
        const bool result = ManagementSocket::isPermitted(&Kernel::open);
        Kernel::prepared.clear();
        return result;
    };
    EXPECT_FALSE(isPermitted({}) || ManagementSocket::isPermitted([] { return -1; }));
    EXPECT_FALSE(isPermitted({"0600ffff0000", "0200feff0300310014"}));
    EXPECT_TRUE(isPermitted({"0600ffff0000", "0200feff0300310011"}));
}

}  // namespace
}  // namespace InkoraKit
