#include "pen/JsonFormat.h"

#include "JsonLine.h"
#include "pen/HexColour.h"

namespace InkoraTool {
namespace {

JsonLine event(std::string_view name) {
    return JsonLine().add("event", name);
}

}  // namespace

std::string JsonFormat::searching() const {
    return event("searching").text();
}

std::string JsonFormat::connected(const std::string& name, const std::string& identifier) const {
    return event("connected").add("name", name).add("identifier", identifier).text();
}

std::string JsonFormat::lost() const {
    return event("disconnected").text();
}

std::string JsonFormat::unavailable(InkoraKit::CBManagerStateReason reason) const {
    return event("unavailable").add("reason", printed(reason)).text();
}

std::string JsonFormat::colour(const InkoraKit::UIColor& colour) const {
    return event("colour")
        .add("hex", hexText(colour))
        .add("red", colour.red())
        .add("green", colour.green())
        .add("blue", colour.blue())
        .add("alpha", colour.alpha())
        .text();
}

std::string JsonFormat::battery(std::int64_t percent) const {
    return event("battery").add("percent", percent).text();
}

std::string JsonFormat::signalStrength(std::optional<std::int64_t> dBm) const {
    return event("proximity").add("dBm", dBm).text();
}

std::string JsonFormat::info(const PenInfo& info) const {
    return JsonLine()
        .add("name", info.name)
        .add("identifier", info.identifier)
        .add("batteryPercent", info.battery)
        .add("proximityDBm", info.signalStrength)
        .text();
}

std::string JsonFormat::progress(std::int64_t) const {
    return "";
}

}  // namespace InkoraTool
