#include <InkoraKit/platform/UIColor.h>

#include <array>
#include <charconv>

namespace InkoraKit {

std::string UIColor::description() const {
    std::string text = "UIExtendedSRGBColorSpace";
    for (const double component : {red(), green(), blue(), alpha()}) {
        std::array<char, 32> buffer;
        const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), component,
                                          std::chars_format::general, 6);
        text += ' ';
        text.append(buffer.data(), result.ptr);
    }
    return text;
}

}  // namespace InkoraKit
