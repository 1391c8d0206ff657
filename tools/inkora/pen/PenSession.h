#pragma once

#include <InkoraKit/InkoraProtocols.h>
#include <InkoraKit/platform/Timer.h>

#include "ExitStatus.h"
#include "pen/Format.h"
#include "pen/SessionRadio.h"
#include "terminal/Output.h"
#include "terminal/SearchProgress.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace InkoraTool {

/// One run with a pen, from the search to the end: pairs, asks for battery and proximity on every
/// connection, looks for a pen that was lost until it is back, and lets go of it in the end. What
/// becomes of all that is told of the pen is a subclass's.
class PenSession : public InkoraKit::InkoraProtocols,
                   public std::enable_shared_from_this<PenSession> {
public:
    explicit PenSession(std::unique_ptr<Format> format);

    /// Keeps the radio until the session ends. A replay that is over ends the session, and where
    /// the kit parts from it is told; a recording ends with the last thing that is shown.
    void use(SessionRadio radio);

    /// Runs the main run loop until the session has ended.
    ExitStatus run();

    void didFailToConnectWithBlueTooth(const InkoraKit::NSError& error) override;
    void didConnectedToPeripheral() override;
    void didFailedToInterrogate(const InkoraKit::NSError& error) override;
    void didDisconnectPeripheral() override;
    void didPeripheralCaptured(const InkoraKit::UIColor& colour) override;
    void didPeripheralIndicated(std::int64_t batteryLevel) override;
    void didPeripheralSensored(std::int64_t strength) override;
    void didPeripheralProvided(const std::string& deviceName,
                               const std::string& deviceUdid) override;

protected:
    // What has happened. Nothing of it is told once the session is finishing.
    virtual void searching() {}
    virtual void connected(const std::string& name, const std::string& identifier) = 0;
    virtual void lost() {}
    virtual void unavailable(InkoraKit::CBManagerStateReason) {}
    virtual void captured(const InkoraKit::UIColor&) {}
    virtual void battery(std::int64_t percent) = 0;
    virtual void signalStrength(std::optional<std::int64_t> dBm) = 0;

    /// Somebody wants the process to end.
    virtual void interrupted() = 0;

    const Format& format() const { return *format_; }
    void print(const std::string& line);
    void printError(const std::string& text);

    /// Asks for the battery level and the proximity, unless the answer is still to come or the pen
    /// is being connected.
    void askForValues();

    /// Lets go of the pen, then ends `run`, which returns the first status given.
    void finish(ExitStatus status);
    bool wasConnected() const { return wasConnected_; }

    /// Runs an action after `seconds`, unless the session is finishing by then.
    void after(double seconds, std::function<void()> action);

private:
    void linkEnded();
    void fail(const std::string& text, ExitStatus status);
    void stopPairing();
    void replayIsOver();

    SessionRadio radio_;
    std::unique_ptr<Format> format_;
    SearchProgress progress_;
    Output output_;
    std::shared_ptr<InkoraKit::Timer> disconnecting_;
    ExitStatus status_ = ExitStatus::success;
    bool isFinishing_ = false;
    bool isConnected_ = false;
    bool wasConnected_ = false;
    bool isBatteryAwaited_ = false;
    bool isSignalStrengthAwaited_ = false;
};

}  // namespace InkoraTool
