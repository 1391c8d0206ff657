#include <InkoraKit/platform/Data.h>

namespace InkoraKit {

std::string Data::hexEncodedString() const {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * size());
    for (const std::uint8_t byte : *this) {
        text += digits[byte >> 4];
        text += digits[byte & 0x0f];
    }
    return text;
}

}  // namespace InkoraKit
