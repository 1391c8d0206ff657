#pragma once

#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {

/// A host that writes down what it hears, a word or two for each call.
struct RecordingHost : InkoraProtocols {
    void didFailToConnectWithBlueTooth(const NSError& error) override { note("disabled", error); }
    void didDiscoverPeripheral() override { heard.emplace_back("discovered"); }
    void didConnectedToPeripheral() override { heard.emplace_back("connected"); }
    void didFailedToInterrogate(const NSError& error) override { note("failed", error); }
    void didDisconnectPeripheral() override { heard.emplace_back("disconnected"); }
    void didPeripheralCaptured(const UIColor& colour) override {
        colours.push_back(colour);
        heard.emplace_back("colour");
    }
    void didPeripheralIndicated(std::int64_t level) override {
        heard.push_back("battery " + std::to_string(level));
    }
    void didPeripheralSensored(std::int64_t strength) override {
        heard.push_back("proximity " + std::to_string(strength));
    }
    void didPeripheralProvided(const std::string& name, const std::string& udid) override {
        heard.push_back("name '" + name + "' '" + udid + "'");
    }

    /// What was heard since the last call of this.
    std::vector<std::string> take() { return std::exchange(heard, {}); }

    std::vector<std::string> heard;
    std::vector<UIColor> colours;

private:
    void note(const char* what, const NSError& error) {
        heard.push_back(what + (" " + error.domain()) + " " + std::to_string(error.code()));
    }
};

/// A handler of a test's own, whose fields it can look at.
struct OpenHandler : InkoraHandler {
    using InkoraHandler::batteryLevelValue;
    using InkoraHandler::capturedColorValue;
    using InkoraHandler::colorCaptureTimeout;
    using InkoraHandler::currentState;
    using InkoraHandler::deviceProximityValue;
    using InkoraHandler::isReScanNeeded;
    using InkoraHandler::manager;

    /// Every state that was recorded, in order.
    std::vector<ManagerState> states;

    void setCurrentState(ManagerState state) override {
        states.push_back(state);
        InkoraHandler::setCurrentState(state);
    }
};

inline const std::string disabled = "disabled Bluetooth setting is disabled. 17";
inline const std::string timedOut = "failed Device is timed out to connect. 19";
inline const std::string notConnected = "failed Device is failed to connect. 18";

using Heard = std::vector<std::string>;

/// A host, a handler and a pen in the virtual world, on a clock that nobody waits for.
class PenScenario : public testing::Test {
protected:
    PenScenario() {
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        radio = VirtualRadio::install();
        pen = std::make_shared<VirtualPen>();
        radio->add(pen);
    }

    ~PenScenario() override {
        handler->stopInkoraHandler();
        run(10);
    }

    static void run(double seconds) { RunLoop::main().runFor(seconds); }

    void start() {
        handler->publishHandler(host);
        handler->startInkoraHandler();
        run(1);
    }

    /// Started, connected and subscribed, with what was heard on the way forgotten.
    void connect() {
        start();
        ASSERT_EQ(host->heard.at(0), "connected");
        ASSERT_TRUE(pen->isSubscribed(*pen->colour()));
        host->take();
        handler->states.clear();
    }

    std::shared_ptr<VirtualRadio> radio;
    std::shared_ptr<VirtualPen> pen;
    std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();
    std::shared_ptr<OpenHandler> handler = std::make_shared<OpenHandler>();
};

}  // namespace InkoraKit
