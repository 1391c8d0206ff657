#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>

#include "FakeBluez.h"
#include "PrivateBus.h"
#include "peripheral/bluez/PeripheralSession.h"
#include "platform/radios/bluez/ObjectTree.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace InkoraKit;
using namespace std::string_literals;

namespace InkoraTool {
namespace {

constexpr const char* manager = "org.bluez.LEAdvertisingManager1";
constexpr const char* gattManager = "org.bluez.GattManager1";
constexpr const char* host = "/org/bluez/hci0/dev_00_11_22_33_44_55";
constexpr const char* colourPath = "/inkora/pen/service/colour";

/// Stands in for standard input.
class Input {
public:
    Input() {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) std::abort();
        ::dup2(ends[0], STDIN_FILENO);
        ::close(ends[0]);
        end_ = ends[1];
    }
    ~Input() {
        end();
        ::dup2(before_, STDIN_FILENO);
        ::close(before_);
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    void write(const std::string& text) const {
        EXPECT_EQ(::write(end_, text.data(), text.size()), std::ssize(text));
    }
    void end() {
        if (end_ >= 0) ::close(std::exchange(end_, -1));
    }

private:
    const int before_ = ::dup(STDIN_FILENO);
    int end_ = -1;
};

/// A pen on a bluetoothd of ours. Time passes while nothing is on its way.
class PeripheralTest : public testing::Test {
protected:
    void SetUp() override {
        if (!PrivateBus::isAvailable()) GTEST_SKIP() << "there is no dbus-daemon here";
        bus = std::make_unique<PrivateBus>();
        startBluez();
    }

    void startBluez() {
        fake = std::make_unique<FakeBluez>(bus->address());
        fake->addSilently(FakeBluez::hci0, manager, {});
        fake->addSilently(FakeBluez::hci0, gattManager, {});
        fake->addAdapter();
        fake->change(FakeBluez::hci0, ObjectTree::adapter,
                     {{"Name", "desk"s}, {"Alias", "My desk"s}});
    }

    static void at(double seconds, std::function<void()> action) {
        Timer::scheduledTimer(seconds, std::move(action));
    }

    void hostComes() {
        fake->add(host, ObjectTree::device, FakeBluez::penProperties({{"Connected", true}}));
    }
    void read(std::uint16_t offset = 0) {
        fake->ask(colourPath, ObjectTree::characteristic, "ReadValue",
                  arguments(Properties{{"device", ObjectPath{host}}, {"offset", offset}}));
    }
    std::string alias() {
        return *find<std::string>(fake->objects().at(FakeBluez::hci0).at(ObjectTree::adapter),
                                  "Alias");
    }

    /// With a script of "SECONDS INSTRUCTION".
    ExitStatus run(const std::vector<std::pair<double, std::string>>& script, bool json = false) {
        options.json = json;
        for (const auto& [time, line] : script)
            options.script.push_back({time, instructionOf(line)});
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const ExitStatus status = std::make_shared<PeripheralSession>(options)->run();
        out = testing::internal::GetCapturedStdout();
        err = testing::internal::GetCapturedStderr();
        return status;
    }

    std::size_t count(const std::string& word) const {
        std::size_t found = 0;
        for (auto at = out.find(word); at != std::string::npos; at = out.find(word, at + 1))
            ++found;
        return found;
    }

    PeripheralOptions options{.readsInput = false};
    std::string out;
    std::string err;
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<FakeBluez> fake;
};

TEST_F(PeripheralTest, ServesAHost) {
    fake->on("Disconnect", [&](const std::string&) {
        fake->reply("Disconnect");
        fake->endLink();
    });
    at(0.5, [&] { hostComes(); });
    at(1, [&] { read(); });
    at(1.5, [&] {
        for (const char* member : {"StartNotify", "StopNotify", "Destroy"})
            fake->ask(colourPath, ObjectTree::characteristic, member, {});
    });
    at(3.5, [&] { read(1), read(9); });
    at(4.5, [&] { read(); });
    EXPECT_EQ(run({{2, "orange"},
                   {3, "battery 42"},
                   {4, "silent"},
                   {5, "raw 0102"},
                   {5, "answer"},
                   {6, "drop"},
                   {7, "name InkoraPen 2"},
                   {8, "hide"},
                   {9, "show"},
                   {10, "quit"}}),
              ExitStatus::success);
    EXPECT_EQ(out,
              "advertising InkoraPen hci0 00:AA:01:00:00:42\n"
              "connected   00:11:22:33:44:55\n"
              "read        colour\n"
              "subscribed  colour\n"
              "unsubscribed colour\n"
              "colour      #FFA500  1.000  0.647  0.000\n"
              "battery     42 %\n"
              "read        colour\n"
              "read        colour\n"
              "silent\n"
              "read        colour\n"
              "raw         0102\n"
              "answering\n"
              "disconnected 00:11:22:33:44:55\n"
              "advertising InkoraPen hci0 00:AA:01:00:00:42\n"
              "name        InkoraPen 2\n"
              "advertising InkoraPen 2 hci0 00:AA:01:00:00:42\n"
              "hidden\n"
              "advertising InkoraPen 2 hci0 00:AA:01:00:00:42\n");
    EXPECT_EQ(fake->answers,
              (std::vector{"01000000"s, ""s, ""s, "org.freedesktop.DBus.Error.UnknownMethod"s,
                           "ffa500"s, "org.bluez.Error.InvalidOffset"s, "0102"s}));
    EXPECT_EQ(fake->told, (std::vector{colourPath + " 01ffa500"s, "/inkora/pen/service/battery 2a"s,
                                       colourPath + " 0102"s}));
    EXPECT_EQ(fake->count("RegisterAdvertisement"), fake->count("UnregisterAdvertisement"));
    EXPECT_EQ(fake->count("UnregisterApplication"), 1u);
    EXPECT_EQ(alias(), "My desk");
}

TEST_F(PeripheralTest, EveryColourOfABurstIsToldInItsOrder) {
    EXPECT_EQ(run({{1, "random 500"}, {1, "red 3 0.5"}, {3, "quit"}}, true), ExitStatus::success);
    ASSERT_EQ(fake->told.size(), 503u);
    std::string hex;
    for (const std::string& each : fake->told) {
        hex = each.substr(each.size() - 6);
        std::ranges::transform(hex, hex.begin(), [](char c) { return std::toupper(c); });
        EXPECT_EQ(count("\"captured\",\"hex\":\"#" + hex), hex == "FF0000" ? 3u : 1u);
    }
    EXPECT_EQ(hex, "FF0000");
}

TEST_F(PeripheralTest, ComesBackWithBluetoothdAndTheAdapter) {
    at(1, [&] { hostComes(); });
    at(2, [&] { fake.reset(); });
    at(3, [&] { startBluez(); });
    at(10, [&] { fake->switchAdapter(false); });
    at(11, [&] { fake->switchAdapter(true); });
    at(20, [&] {
        fake->ask("/inkora/pen/advertisement", "org.bluez.LEAdvertisement1", "Release", {});
    });
    at(30, [&] { fake->remove(FakeBluez::hci0, ObjectTree::adapter); });
    at(40, [&] { fake->addAdapter(); });
    EXPECT_EQ(run({{50, "quit"}}), ExitStatus::success);
    EXPECT_EQ(count("\nunavailable "), 3u) << out;
    EXPECT_EQ(count("\ndisconnected "), 1u) << out;
    EXPECT_EQ(count("advertising "), 5u) << out;
}

TEST_F(PeripheralTest, WhatKeepsAMachineFromBeingAPen) {
    const auto refuses = [this](const char* method, const char* name, const char* text) {
        fake->on(method, [=, this](const std::string&) { fake->replyError(method, name, text); });
    };
    const auto changes = [this](const Properties& changed) {
        fake->change(FakeBluez::hci0, ObjectTree::adapter, changed);
    };
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"The adapter is switched off.", [&] { fake->switchAdapter(false); }},
        {"The adapter hci0 cannot be a peripheral of Bluetooth LE.",
         [&] {
             changes({{"Roles", std::vector{"central"s}}});
         }},
        {"The adapter hci0 cannot be a peripheral of Bluetooth LE.",
         [&] { fake->remove(FakeBluez::hci0, manager); }},
        {"There is no adapter hci5.", [&] { options.adapter = "hci5"; }},
        {"The system does not permit the use of Bluetooth.",
         [&] { refuses("RegisterApplication", "org.freedesktop.DBus.Error.AccessDenied", ""); }},
        {"The adapter hci0 does not become a pen: Maximum advertisements reached",
         [&] {
             refuses("RegisterAdvertisement", "org.bluez.Error.NotPermitted",
                     "Maximum advertisements reached");
         }},
        {"There is no Bluetooth service, or it does not answer.", [&] { fake.reset(); }},
    };
    for (const auto& [text, arrange] : cases) {
        fake.reset();
        startBluez();
        options = {.readsInput = false};
        arrange();
        EXPECT_EQ(run({}), ExitStatus::noBluetooth) << text;
        EXPECT_EQ(err, "inkora: "s + text + '\n');
        EXPECT_EQ(out, "");
    }
}

TEST_F(PeripheralTest, LosesNothingByWrongLinesOfItsInput) {
    Input input;
    input.write("bogus\n\n" + std::string(9000, 'x') + "\nred\r\nraw 0\nblue");
    input.end();
    options.readsInput = true;
    options.duration = 5;
    EXPECT_EQ(run({}, true), ExitStatus::success);
    EXPECT_EQ(count("\"error\""), 3u) << out;
    EXPECT_EQ(count("\"captured\""), 2u) << out;
}

TEST_F(PeripheralTest, EndsWhenAskedToInAnEndlessBurstOfItsInput) {
    Input input;
    options.readsInput = true;
    input.write("random 1000000000\n");
    const std::function<void(int)> interruptIn = [&](int turns) {
        RunLoop::main().post(
            [&, turns] { turns == 0 ? void(::raise(SIGINT)) : interruptIn(turns - 1); });
    };
    interruptIn(10);
    EXPECT_EQ(run({}, true), ExitStatus::success);
    EXPECT_GT(count("\"captured\""), 0u);
}

}  // namespace
}  // namespace InkoraTool
