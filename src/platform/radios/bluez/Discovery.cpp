#include "platform/radios/bluez/Discovery.h"

#include <InkoraKit/platform/NSObject.h>

#include "platform/radios/bluez/BluezErrors.h"

#include <utility>

namespace InkoraKit {
namespace {

// After bluetoothd was killed while discovering, its successor refuses (InProgress, 5.66) until the
// kernel's old scan has run out, 10 s later.
constexpr double discoveryPause = 2;

}  // namespace

Discovery::Discovery(BluezDaemon& daemon, std::function<void()> moved)
    : daemon_(daemon), moved_(std::move(moved)) {}

void Discovery::use(const std::string& adapter) {
    ++use_;
    if (stage_ != Stage::idle && adapter != adapter_)
        daemon_.send(adapter_, ObjectTree::adapter, "StopDiscovery");
    adapter_ = adapter;
    isDenied_ = false;
    retry_.cancel();
    move(Stage::idle);
    step();
}

void Discovery::setWanted(bool wanted) {
    if (isWanted_ == wanted) return;
    isWanted_ = wanted;
    retry_.cancel();
    step();
}

void Discovery::step() {
    if (adapter_.empty() || retry_.isSet()) return;
    // A filter, always: without one BlueZ leaves out devices that are not in discoverable mode, and
    // rests between scans.
    if (stage_ == Stage::idle && isWanted_)
        return ask(Stage::filtering, "SetDiscoveryFilter",
                   arguments(Properties{{"Transport", std::string("le")}}));
    if (stage_ == Stage::running && !isWanted_) ask(Stage::stopping, "StopDiscovery");
}

void Discovery::ask(Stage stage, const char* method, Arguments arguments) {
    move(stage);
    daemon_.call(
        adapter_, ObjectTree::adapter, method,
        [this, use = use_](Answer& answer) {
            if (use == use_) answered(answer.error);
        },
        std::move(arguments));
}

void Discovery::answered(const std::optional<BusError>& error) {
    switch (stage_) {
        case Stage::filtering:
            if (error) return refused(*error);
            if (isWanted_) return ask(Stage::starting, "StartDiscovery");
            move(Stage::idle);
            break;
        case Stage::starting:
            if (error) return refused(*error);
            move(Stage::running);
            break;
        case Stage::stopping:
            // Refused or not, nothing of ours goes on: BlueZ only refuses to stop what is not
            // there. The strengths it withdraws after its answer.
            daemon_.forgetSignalStrengths();
            move(Stage::idle);
            break;
        case Stage::idle:
        case Stage::running:
            break;
    }
    step();
}

void Discovery::refused(const BusError& error) {
    NSObject::printThisLineToConsole(
        [&] { return "BlueZ: no discovery: " + bluezErrors::textOf(error); });
    isDenied_ = bluezErrors::isAccessDenied(error);
    if (!isDenied_) retry_.set(discoveryPause, [this] { step(); });
    move(Stage::idle);
}

void Discovery::move(Stage stage) {
    if (stage_ == stage) return;
    stage_ = stage;
    moved_();
}

}  // namespace InkoraKit
