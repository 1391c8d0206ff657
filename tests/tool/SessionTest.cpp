#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "InfoSession.h"
#include "JsonFormat.h"
#include "TextFormat.h"
#include "WatchSession.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <string>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

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

    void run(PenSession& session) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        status = session.run();
        out = testing::internal::GetCapturedStdout();
        err = testing::internal::GetCapturedStderr();
    }

    void watch(const WatchOptions& options) {
        run(*std::make_shared<WatchSession>(options, std::make_unique<TextFormat>(false)));
    }

    void info() { run(*std::make_shared<InfoSession>(std::make_unique<JsonFormat>())); }

    /// How often a line that begins so was printed.
    int lines(const std::string& beginning) const {
        int count = 0;
        for (auto at = out.find(beginning); at != std::string::npos;
             at = out.find(beginning, at + 1))
            if (at == 0 || out[at - 1] == '\n') ++count;
        return count;
    }

    std::shared_ptr<VirtualPen> pen = std::make_shared<VirtualPen>();
    ExitStatus status = ExitStatus::failure;
    std::string out;
    std::string err;
};

TEST_F(SessionTest, WatchAsksAgainOnEachConnection) {
    at(2, [this] { pen->dropLink(); });
    at(4, [this] { pen->capture(0, 255, 0); });
    watch({.duration = 6});
    EXPECT_EQ(status, ExitStatus::success);
    EXPECT_EQ(lines("connected"), 2);
    EXPECT_EQ(lines("disconnected"), 1);
    EXPECT_EQ(lines("battery     80 %"), 2);
    EXPECT_EQ(lines("proximity   -60 dBm"), 2);
    EXPECT_EQ(lines("colour      #FF0000"), 2);  // of each connection's first reading
    EXPECT_EQ(lines("colour      #00FF00"), 1);
    EXPECT_FALSE(pen->isConnected());
    EXPECT_EQ(err, "");
}

TEST_F(SessionTest, WatchKeepsLookingForAPenThatWasConnected) {
    at(2, [this] { pen->setProximity(VirtualProximity::outOfRange); });
    at(60, [this] { pen->setProximity(VirtualProximity::near); });
    watch({.count = 2});
    EXPECT_EQ(status, ExitStatus::success);
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
    watch({.duration = 10});
    EXPECT_EQ(status, ExitStatus::success);
    EXPECT_EQ(lines("connected"), 2);
    EXPECT_EQ(lines("battery"), 2);
    EXPECT_NE(err.find("Device is failed to connect."), std::string::npos);
}

TEST_F(SessionTest, WatchWaitsForAnAdapterThatWasSwitchedOff) {
    at(2, [] { radio().setState(CBManagerState::poweredOff); });
    at(30, [] { radio().setState(CBManagerState::poweredOn); });
    watch({.duration = 40});
    EXPECT_EQ(status, ExitStatus::success);
    EXPECT_EQ(lines("connected"), 2);
    EXPECT_EQ(lines("disconnected"), 1);
    EXPECT_EQ(lines("battery"), 2);
    EXPECT_EQ(err, "inkora: Bluetooth setting is disabled.\n");
}

TEST_F(SessionTest, WatchAsksEverySoOftenWhateverTheLinkIsDoing) {
    pen->setAnswerDelay(0.1);  // so that there is a while without a battery characteristic
    pen->setConnectDelay(0.1);
    at(3, [this] { pen->dropLink(); });
    watch({.duration = 6, .askEvery = 0.05});
    EXPECT_EQ(status, ExitStatus::success);
    EXPECT_EQ(lines("connected"), 2);
    EXPECT_GT(lines("battery     80 %"), 5);
}

TEST_F(SessionTest, WithoutAPenTheStatusIsThatOfATimeOut) {
    pen->setAdvertising(false);
    watch({});
    EXPECT_EQ(status, ExitStatus::noPen);
    EXPECT_EQ(err, "inkora: Device is timed out to connect.\n");
    info();
    EXPECT_EQ(status, ExitStatus::noPen);
}

TEST_F(SessionTest, APenThatRefusesTheFirstConnectionEndsIt) {
    pen->setConnectAnswer(VirtualConnectAnswer::refuse);
    watch({});
    EXPECT_EQ(status, ExitStatus::notConnected);
    EXPECT_EQ(err, "inkora: Device is failed to connect.\n");
}

TEST_F(SessionTest, WithoutBluetoothItEndsAtOnce) {
    for (const auto state :
         {CBManagerState::poweredOff, CBManagerState::unsupported, CBManagerState::unauthorized}) {
        radio().setState(state);
        watch({});
        EXPECT_EQ(status, ExitStatus::noBluetooth);
        EXPECT_EQ(err, "inkora: Bluetooth setting is disabled.\n");
    }
    EXPECT_LT(RunLoop::main().now(), 1);
}

TEST_F(SessionTest, ASignalEndsWatchingAndTheLink) {
    at(2, [] { std::raise(SIGINT); });
    watch({});
    EXPECT_EQ(status, ExitStatus::success);
    EXPECT_EQ(lines("disconnected"), 0);
    EXPECT_FALSE(pen->isConnected());
}

TEST_F(SessionTest, ASignalWhileConnectingGivesTheAttemptUp) {
    pen->setConnectAnswer(VirtualConnectAnswer::none);
    at(2, [] { std::raise(SIGTERM); });
    watch({});
    EXPECT_EQ(status, ExitStatus::success);
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
    const auto session = std::make_shared<WatchSession>(WatchOptions{.duration = 100},
                                                        std::make_unique<TextFormat>(false));
    status = session->run();
    ::dup2(standardOutput, STDOUT_FILENO);
    for (const int descriptor : {pipe[1], standardOutput}) ::close(descriptor);
    EXPECT_EQ(status, ExitStatus::success);
    EXPECT_FALSE(pen->isConnected());
    EXPECT_LT(RunLoop::main().now(), 50);
}

TEST_F(SessionTest, InfoShowsWhatThePenAnswered) {
    info();
    EXPECT_EQ(status, ExitStatus::success);
    EXPECT_EQ(out, "{\"name\":\"InkoraPen\",\"identifier\":\"" + pen->identifier().uuidString() +
                       "\",\"batteryPercent\":80,\"proximityDBm\":-60}\n");
}

TEST_F(SessionTest, InfoIsHonestAboutWhatIsNotAnswered) {
    pen->battery()->setReadDelay(1000);
    pen->setRSSI(127);
    info();
    EXPECT_EQ(status, ExitStatus::success);
    EXPECT_NE(out.find("\"batteryPercent\":null,\"proximityDBm\":null"), std::string::npos) << out;
    EXPECT_LT(RunLoop::main().now(), 10);
}

TEST_F(SessionTest, InfoGivesUpAPenThatNeverConnects) {
    pen->setConnectAnswer(VirtualConnectAnswer::none);
    info();
    EXPECT_EQ(status, ExitStatus::notConnected);
    EXPECT_EQ(out, "");
}

TEST_F(SessionTest, InfoThatIsInterruptedSaysSoByItsStatus) {
    pen->setConnectAnswer(VirtualConnectAnswer::none);
    at(1, [] { std::raise(SIGINT); });
    info();
    EXPECT_EQ(status, ExitStatus::interrupted);
}

}  // namespace
}  // namespace InkoraTool
