#include "pen/HexColour.h"

#include <algorithm>
#include <cmath>

namespace InkoraTool {

Colour bytesOf(const InkoraKit::UIColor& colour) {
    const auto byteOf = [](double component) {
        return static_cast<std::uint8_t>(std::lround(std::clamp(component, 0.0, 1.0) * 255.0));
    };
    return {byteOf(colour.red()), byteOf(colour.green()), byteOf(colour.blue())};
}

std::string hexText(const InkoraKit::UIColor& colour) {
    return hexText(bytesOf(colour));
}

}  // namespace InkoraTool
