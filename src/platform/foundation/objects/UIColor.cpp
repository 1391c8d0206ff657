#include <InkoraKit/platform/UIColor.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <string_view>

namespace InkoraKit {

std::string UIColor::description() const {
    std::string text = "UIExtendedSRGBColorSpace";
    const std::string_view localPoint = std::localeconv()->decimal_point;
    for (const double component : {red(), green(), blue(), alpha()}) {
        std::array<char, 32> buffer;
        std::snprintf(buffer.data(), buffer.size(), " %g", component);
        const std::size_t start = text.size();
        text += buffer.data();
        const std::size_t point = text.find(localPoint, start);
        if (point != std::string::npos) text.replace(point, localPoint.size(), 1, '.');
    }
    return text;
}

}  // namespace InkoraKit
