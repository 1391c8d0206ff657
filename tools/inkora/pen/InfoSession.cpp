#include "pen/InfoSession.h"

#include <InkoraKit/InkoraErrorDomain.h>

#include <utility>

using namespace InkoraKit;

namespace InkoraTool {

InfoSession::InfoSession(std::unique_ptr<Format> format) : PenSession(std::move(format)) {}

void InfoSession::searching() {
    after(longestConnection, [this] {
        if (wasConnected()) return;
        printError(std::string(InkoraErrorDomain::DeviceFailedToConnect));
        finish(ExitStatus::notConnected);
    });
}

void InfoSession::connected(const std::string& name, const std::string& identifier) {
    const bool isFirst = !info_.name;
    info_.name = name;
    info_.identifier = identifier;
    if (isFirst) after(longestAnswer, [this] { show(); });
    showWhenComplete();
}

void InfoSession::battery(std::int64_t percent) {
    info_.battery = percent;
    showWhenComplete();
}

void InfoSession::signalStrength(std::optional<std::int64_t> dBm) {
    info_.signalStrength = dBm;
    showWhenComplete();
}

void InfoSession::interrupted() {
    finish(ExitStatus::interrupted);
}

void InfoSession::showWhenComplete() {
    if (info_.isComplete()) show();
}

void InfoSession::show() {
    print(format().info(info_));
    finish(ExitStatus::success);
}

}  // namespace InkoraTool
