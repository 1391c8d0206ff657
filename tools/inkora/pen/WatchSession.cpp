#include "pen/WatchSession.h"

#include <InkoraKit/InkoraErrorDomain.h>

#include "Failure.h"
#include "pen/HexColour.h"

#include <utility>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr double pauseBeforeSaving = 1.0;  // seconds

}  // namespace

WatchSession::WatchSession(const WatchOptions& options, std::unique_ptr<Format> format)
    : PenSession(std::move(format)), options_(options) {
    if (!options.palette.empty()) palette_.emplace(options.palette);
}

void WatchSession::savePalette() {
    if (palette_) palette_->save();
}

void WatchSession::searching() {
    print(format().searching());
    if (options_.duration) after(*options_.duration, [this] { timeIsUp(); });
    if (options_.askEvery) askAgainLater();
}

void WatchSession::connected(const std::string& name, const std::string& identifier) {
    print(format().connected(name, identifier));
}

void WatchSession::lost() {
    print(format().lost());
}

void WatchSession::unavailable(CBManagerStateReason reason) {
    print(format().unavailable(reason));
}

void WatchSession::captured(const UIColor& colour) {
    print(format().colour(colour));
    if (palette_) keep(colour);
    if (++coloursShown_ == options_.count) finish(ExitStatus::success);
}

void WatchSession::battery(std::int64_t percent) {
    print(format().battery(percent));
}

void WatchSession::signalStrength(std::optional<std::int64_t> dBm) {
    print(format().signalStrength(dBm));
}

void WatchSession::interrupted() {
    finish(ExitStatus::success);
}

void WatchSession::timeIsUp() {
    if (wasConnected()) return finish(ExitStatus::success);
    printError(std::string(InkoraErrorDomain::DeviceConnectionTimeout));
    finish(ExitStatus::noPen);
}

void WatchSession::askAgainLater() {
    after(*options_.askEvery, [this] {
        askForValues();
        askAgainLater();
    });
}

// A burst of colours is written once.
void WatchSession::keep(const UIColor& colour) {
    palette_->add(bytesOf(colour));
    if (std::exchange(isPaletteToBeSaved_, true)) return;
    after(pauseBeforeSaving, [this] {
        isPaletteToBeSaved_ = false;
        try {
            savePalette();
        } catch (const Failure& failure) {
            printError(failure.what());
            finish(failure.status);
        }
    });
}

}  // namespace InkoraTool
