#include "pen/HexColour.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace InkoraTool {

std::array<std::uint8_t, 3> bytesOf(const InkoraKit::UIColor& colour) {
    const auto byteOf = [](double component) {
        return static_cast<std::uint8_t>(std::lround(std::clamp(component, 0.0, 1.0) * 255.0));
    };
    return {byteOf(colour.red()), byteOf(colour.green()), byteOf(colour.blue())};
}

std::string hexText(const InkoraKit::UIColor& colour) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "#";
    for (const std::uint8_t byte : bytesOf(colour)) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

}  // namespace InkoraTool
