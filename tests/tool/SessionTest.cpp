#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "pen/InfoSession.h"
#include "pen/JsonFormat.h"
#include "pen/TextFormat.h"
#include "pen/WatchSession.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

using enum ExitStatus;

/// A session with a pen in the virtual world, on a clock that nobody waits for.
class SessionTest : public testing::Test {
protected:
    SessionTest() {
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        pen->setBattery(80);
        pen->capture(255, 0, 0);
        radio().add(pen);
    }

    ~SessionTest() override {
        radio().remove(pen);
        radio().setState(CBManagerState::poweredOn);
        RunLoop::main().runFor(10);
    }

    // The kit's manager is made once in a process and stays with the radio it found.
    static VirtualRadio& radio() {
        static const std::shared_ptr<VirtualRadio> installed = VirtualRadio::install();
        return *installed;
    }

    static void at(double seconds, std::function<void()> action) {
        Timer::scheduledTimer(seconds, std::move(action));
    }

    ExitStatus run(PenSession& session) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const ExitStatus status = session.run();
        out = testing::internal::GetCapturedStdout();
        err = testing::internal::GetCapturedStderr();
        return status;
    }

    static auto watching(const WatchOptions& options) {
        return std::make_shared<WatchSession>(options, std::make_unique<TextFormat>());
    }

    ExitStatus watch(const WatchOptions& options) { return run(*watching(options)); }

    ExitStatus info() {
        return run(*std::make_shared<InfoSession>(std::make_unique<JsonFormat>()));
    }

    /// How many lines that begin so were printed.
    int lines(const std::string& beginning) const {
        int count = 0;
        std::istringstream printed(out);
        for (std::string line; std::getline(printed, line);) count += line.starts_with(beginning);
        return count;
    }

    std::shared_ptr<VirtualPen> pen = std::make_shared<VirtualPen>();
    std::string out;
    std::string err;
};

TEST_F(SessionTest, WatchAsksAgainOnEachConnection) {
    at(2, [this] { pen->dropLink(); });
    at(4, [this] { pen->capture(0, 255, 0); });
    EXPECT_EQ(watch({.duration = 6}), success);
    for (const char* twice :
         {"connected", "battery     80 %", "proximity   -60 dBm", "colour      #FF0000"})
        EXPECT_EQ(lines(twice), 2);
    for (const char* once : {"disconnected", "colour      #00FF00"}) EXPECT_EQ(lines(once), 1);
    EXPECT_FALSE(pen->isConnected());
    EXPECT_EQ(err, "");
}

TEST_F(SessionTest, WatchKeepsLookingForAPenThatWasConnected) {
    at(2, [this] { pen->setProximity(VirtualProximity::outOfRange); });
    at(60, [this] { pen->setProximity(VirtualProximity::near); });
    EXPECT_EQ(watch({.count = 2}), success);
    EXPECT_EQ(lines("connected"), 2);
    EXPECT_GE(RunLoop::main().now(), 60);
    EXPECT_EQ(err, "");
}

TEST_F(SessionTest, WatchTriesAgainWhenAPenThatWasConnectedRefuses) {
    at(2, [this] {
        pen->setConnectAnswer(VirtualConnectAnswer::refuse);
        pen->dropLink();
    });
    at(5, [this] { pen->setConnectAnswer(VirtualConnectAnswer::accept); });
    EXPECT_EQ(watch({.duration = 10}), success);
    EXPECT_TRUE(lines("connected") == 2 && lines("battery") == 2) << out;
    EXPECT_NE(err.find("Device is failed to connect."), std::string::npos);
}

TEST_F(SessionTest, WatchWaitsForAnAdapterThatWasSwitchedOff) {
    at(2, [] { radio().setState(CBManagerState::poweredOff); });
    at(30, [] { radio().setState(CBManagerState::poweredOn); });
    EXPECT_EQ(watch({.duration = 40}), success);
    EXPECT_TRUE(lines("connected") == 2 && lines("disconnected") == 1) << out;
    EXPECT_EQ(lines("bluetooth   not available. The adapter is switched off."), 1) << out;
    EXPECT_EQ(err, "inkora: Bluetooth setting is disabled. The adapter is switched off.\n");
}

TEST_F(SessionTest, WatchAsksEverySoOftenWhateverTheLinkIsDoing) {
    pen->setAnswerDelay(0.1);  // so that there is a while without a battery characteristic
    pen->setConnectDelay(0.1);
    at(3, [this] { pen->dropLink(); });
    EXPECT_EQ(watch({.duration = 6, .askEvery = 0.05}), success);
    EXPECT_EQ(lines("connected"), 2);
    EXPECT_GT(lines("battery     80 %"), 5);
}

TEST_F(SessionTest, WithoutAFirstConnectionTheStatusSaysWhy) {
    pen->setConnectAnswer(VirtualConnectAnswer::refuse);
    EXPECT_EQ(watch({}), notConnected);
    EXPECT_EQ(err, "inkora: Device is failed to connect.\n");
    pen->setAdvertising(false);
    EXPECT_EQ(info(), noPen);
    EXPECT_EQ(watch({}), noPen);
    EXPECT_EQ(err, "inkora: Device is timed out to connect.\n");

    using enum CBManagerState;
    const double start = RunLoop::main().now();
    const std::pair<CBManagerState, const char*> states[] = {
        {poweredOff, "The adapter is switched off."},
        {unsupported, "There is no Bluetooth LE adapter."},
        {unauthorized, "The system does not permit the use of Bluetooth."}};
    for (const auto& [state, reason] : states) {
        radio().setState(state);
        EXPECT_EQ(watch({}), noBluetooth);
        EXPECT_EQ(err, std::string("inkora: Bluetooth setting is disabled. ") + reason + '\n');
    }
    EXPECT_LT(RunLoop::main().now(), start + 1);
}

TEST_F(SessionTest, ASignalEndsWatchingAndTheLinkOrTheAttempt) {
    for (const auto answer : {VirtualConnectAnswer::accept, VirtualConnectAnswer::none}) {
        pen->setConnectAnswer(answer);
        at(2, [] { std::raise(SIGINT); });
        EXPECT_EQ(watch({}), success);
        EXPECT_EQ(lines("disconnected"), 0);
        EXPECT_FALSE(pen->isConnected());
    }
    pen->setConnectAnswer(VirtualConnectAnswer::accept);
    RunLoop::main().runFor(10);
    EXPECT_FALSE(pen->isConnected());
}

TEST_F(SessionTest, NobodyReadsAnyMoreWhileNothingIsWritten) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const int standardOutput = ::dup(STDOUT_FILENO);
    ::dup2(pipe[1], STDOUT_FILENO);
    at(2, [&] { ::close(pipe[0]); });
    EXPECT_EQ(watching({.duration = 100})->run(), success);
    ::dup2(standardOutput, STDOUT_FILENO);
    for (const int descriptor : {pipe[1], standardOutput}) ::close(descriptor);
    EXPECT_FALSE(pen->isConnected());
    EXPECT_LT(RunLoop::main().now(), 50);
}

TEST_F(SessionTest, InfoIsHonestAboutWhatIsNotAnswered) {
    pen->battery()->setReadDelay(1000);
    pen->setRSSI(127);
    EXPECT_EQ(info(), success);
    EXPECT_NE(out.find("\"batteryPercent\":null,\"proximityDBm\":null"), std::string::npos) << out;
    EXPECT_LT(RunLoop::main().now(), 10);
}

TEST_F(SessionTest, InfoGivesUpAPenThatNeverConnectsAndSaysWhenItWasInterrupted) {
    pen->setConnectAnswer(VirtualConnectAnswer::none);
    EXPECT_EQ(info(), notConnected);
    EXPECT_EQ(out, "");
    at(1, [] { std::raise(SIGINT); });
    EXPECT_EQ(info(), interrupted);
}

}  // namespace
}  // namespace InkoraTool
