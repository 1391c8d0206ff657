#include "pen/TextFormat.h"

#include "Utf8.h"
#include "pen/HexColour.h"
#include "terminal/ColourPatch.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace InkoraTool {
namespace {

std::string orNotAvailable(const std::optional<std::string>& text) {
    return text ? printableText(*text) : "not available";
}

std::string orNotAvailable(std::optional<std::int64_t> value, const std::string& unit) {
    return value ? std::to_string(*value) + ' ' + unit : "not available";
}

std::string componentText(double component) {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), component,
                                   std::chars_format::fixed, 3)
                         .ptr;
    return {digits.data(), end};
}

}  // namespace

std::string labelled(std::string_view label, const std::string& value) {
    constexpr std::size_t width = 12;
    std::string line(label);
    line.resize(std::max(width, line.size() + 1), ' ');
    return line + value;
}

std::string TextFormat::searching() const {
    return "looking for a pen";
}

std::string TextFormat::connected(const std::string& name, const std::string& identifier) const {
    return labelled("connected", printableText(name) + ' ' + identifier);
}

std::string TextFormat::lost() const {
    return "disconnected; looking for the pen again";
}

std::string TextFormat::unavailable(InkoraKit::CBManagerStateReason reason) const {
    return labelled("bluetooth", "not available. " + std::string(description(reason)));
}

std::string TextFormat::colour(const InkoraKit::UIColor& colour) const {
    const std::string patch = colourPatch(bytesOf(colour), colours_);
    std::string value = patch + (patch.empty() ? "" : " ") + hexText(colour);
    for (const double component : {colour.red(), colour.green(), colour.blue()})
        value += "  " + componentText(component);
    return labelled("colour", value);
}

std::string TextFormat::battery(std::int64_t percent) const {
    return labelled("battery", std::to_string(percent) + " %");
}

std::string TextFormat::signalStrength(std::optional<std::int64_t> dBm) const {
    return labelled("proximity", orNotAvailable(dBm, "dBm"));
}

std::string TextFormat::info(const PenInfo& info) const {
    return labelled("name", orNotAvailable(info.name)) + '\n' +
           labelled("identifier", orNotAvailable(info.identifier)) + '\n' +
           labelled("battery", orNotAvailable(info.battery, "%")) + '\n' +
           signalStrength(info.signalStrength);
}

std::string TextFormat::progress(std::int64_t seconds) const {
    return "searching for " + std::to_string(seconds) + " s";
}

}  // namespace InkoraTool
