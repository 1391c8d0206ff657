#include "pen/PenSession.h"

#include <InkoraKit/InkoraErrorCodes.h>
#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/InkoraManager.h>
#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>

#include "terminal/ReaderSource.h"
#include "terminal/SignalSource.h"

#include <cstdio>
#include <utility>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

// Seconds. BlueZ takes two to three to close a link.
constexpr double longestDisconnection = 5.0;
constexpr double pauseAfterFailedConnection = 1.0;

bool hasLink() {
    const auto pen = InkoraHandler::getInstance()->connectedPeripheral();
    return pen && pen->state() != CBPeripheralState::disconnected;
}

// When the adapter goes, its links go without a word, and the kit keeps the pen it had. Without it,
// a request waits for the next connection.
void forgetPen() {
    InkoraHandler::getInstance()->setConnectedPeripheral(nullptr);
    InkoraHandler::getInstance()->setBatterLifeCharacterstic(nullptr);
}

}  // namespace

PenSession::PenSession(std::unique_ptr<Format> format)
    : format_(std::move(format)),
      progress_([this](std::int64_t seconds) { return format_->progress(seconds); }) {}

void PenSession::use(SessionRadio radio) {
    radio_ = std::move(radio);
    if (!radio_.replayed) return;
    radio_.replayed->setWhenOver([this] { replayIsOver(); });
    radio_.replayed->setWhenDeparted([this](const ReplayDeparture& departure) {
        if (!isFinishing_)
            printError("the replay parts from its trace: " + departure.description());
    });
}

ExitStatus PenSession::run() {
    const SignalSource signals([this] { interrupted(); });
    const ReaderSource reader([this] { finish(ExitStatus::success); });
    InkoraManager::registerInkoraManager(shared_from_this());
    RunLoop::main().post([session = shared_from_this()] {
        session->searching();
        session->askForValues();
        session->progress_.start();
        InkoraManager::startDevicePairing();
    });
    RunLoop::main().run();
    if (disconnecting_) disconnecting_->invalidate();
    InkoraManager::unRegisterInkoraManager();
    const auto fault = radio_.trace ? radio_.trace->error() : std::nullopt;
    if (!fault) return status_;
    printError(fault->localizedDescription());
    return ExitStatus::failure;
}

// --- the kit's reports --------------------------------------------------------------------------

void PenSession::didFailToConnectWithBlueTooth(const NSError& error) {
    if (isFinishing_) return RunLoop::main().stop();
    const auto reason = InkoraHandler::getInstance()->bluetoothStateReason();
    const std::string why(description(reason));
    fail(error.domain() + (why.empty() ? "" : ' ' + why), ExitStatus::noBluetooth);
    unavailable(reason);
    forgetPen();
    if (isConnected_) linkEnded();
    progress_.stop();
}

void PenSession::didFailedToInterrogate(const NSError& error) {
    const bool isScanOver = error.code() == InkoraErrorCodes::deviceConnectionTimeout;
    if (!wasConnected_)
        return fail(error.domain(), isScanOver ? ExitStatus::noPen : ExitStatus::notConnected);
    if (!isScanOver) printError(error.domain());
    if (!isFinishing_) progress_.start();
    after(isScanOver ? 0 : pauseAfterFailedConnection, [] { InkoraManager::startDevicePairing(); });
}

void PenSession::didConnectedToPeripheral() {
    wasConnected_ = true;
    isConnected_ = true;
    progress_.stop();
    InkoraManager::requestInkoraDeviceGeneralInfo();
}

void PenSession::didDisconnectPeripheral() {
    if (isFinishing_) return RunLoop::main().stop();
    linkEnded();
}

void PenSession::didPeripheralCaptured(const UIColor& colour) {
    if (!isFinishing_) captured(colour);
}

void PenSession::didPeripheralIndicated(std::int64_t batteryLevel) {
    isBatteryAwaited_ = false;
    if (!isFinishing_) battery(batteryLevel);
}

void PenSession::didPeripheralSensored(std::int64_t strength) {
    isSignalStrengthAwaited_ = false;
    if (!isFinishing_) signalStrength(signalStrengthFrom(strength));
}

void PenSession::didPeripheralProvided(const std::string& deviceName,
                                       const std::string& deviceUdid) {
    if (!isFinishing_) connected(deviceName, deviceUdid);
}

// --- for the subclasses -------------------------------------------------------------------------

void PenSession::print(const std::string& line) {
    progress_.hide();
    switch (output_.line(line)) {
        case Output::Outcome::written:
            break;
        case Output::Outcome::closed:
            finish(ExitStatus::success);
            break;
        case Output::Outcome::failed:
            if (!isFinishing_) printError("standard output: " + output_.failure());
            finish(ExitStatus::failure);
            break;
    }
}

void PenSession::printError(const std::string& text) {
    progress_.hide();
    std::fprintf(stderr, "inkora: %s\n", text.c_str());
}

// The kit keeps what was asked for, also beyond a lost link: the next connection's first reading
// answers it. What it does not take is a request from the moment a pen is found until its first
// battery level.
void PenSession::askForValues() {
    const auto handler = InkoraHandler::getInstance();
    if (handler->connectedPeripheral() && !handler->batterLifeCharacterstic()) return;
    if (!std::exchange(isBatteryAwaited_, true)) InkoraManager::requestInkoraDeviceBatteryInfo();
    if (!std::exchange(isSignalStrengthAwaited_, true))
        InkoraManager::requestInkoraDeviceProximityInfo();
}

void PenSession::finish(ExitStatus status) {
    if (std::exchange(isFinishing_, true)) return;
    progress_.stop();
    status_ = status;
    // How the pen is let go of is not recorded: a replay would wait for somebody to end it so.
    if (radio_.trace) radio_.trace->end();
    // From the loop: the kit may be in the middle of a step, of which this is a report.
    RunLoop::main().post([session = shared_from_this()] { session->stopPairing(); });
}

void PenSession::after(double seconds, std::function<void()> action) {
    Timer::scheduledTimer(seconds, [weak = weak_from_this(), action = std::move(action)] {
        const auto session = weak.lock();
        if (session && !session->isFinishing_) action();
    });
}

// --- ends ---------------------------------------------------------------------------------------

void PenSession::linkEnded() {
    isConnected_ = false;
    lost();
    progress_.start();
    askForValues();
}

void PenSession::fail(const std::string& text, ExitStatus status) {
    printError(text);
    if (!wasConnected_) finish(status);
}

void PenSession::replayIsOver() {
    finish(radio_.replayed->departures().empty() ? ExitStatus::success : ExitStatus::failure);
}

void PenSession::stopPairing() {
    if (!hasLink()) return RunLoop::main().stop();
    InkoraManager::stopPairingDevice();
    disconnecting_ = Timer::scheduledTimer(longestDisconnection, [] { RunLoop::main().stop(); });
}

}  // namespace InkoraTool
