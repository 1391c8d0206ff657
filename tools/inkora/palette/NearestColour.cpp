#include "palette/NearestColour.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace InkoraTool {

NearestColour::NearestColour(const std::vector<Colour>& colours) {
    for (const Colour& colour : colours) labs_.push_back(labOf(colour));
}

std::size_t NearestColour::operator()(const Colour& colour) const {
    const auto distance = [wanted = labOf(colour)](const Lab& lab) {
        return std::hypot(lab.lightness - wanted.lightness, lab.a - wanted.a, lab.b - wanted.b);
    };
    const auto nearest = std::min_element(
        labs_.begin(), labs_.end(),
        [distance](const Lab& one, const Lab& other) { return distance(one) < distance(other); });
    return static_cast<std::size_t>(std::distance(labs_.begin(), nearest));
}

// From linear sRGB, as CSS Color Module Level 4 has it.
NearestColour::Lab NearestColour::labOf(const Colour& colour) {
    const double red = linear(colour[0]), green = linear(colour[1]), blue = linear(colour[2]);
    const double l = std::cbrt(0.4122214708 * red + 0.5363325363 * green + 0.0514459929 * blue);
    const double m = std::cbrt(0.2119034982 * red + 0.6806995451 * green + 0.1073969566 * blue);
    const double s = std::cbrt(0.0883024619 * red + 0.2817188376 * green + 0.6299787005 * blue);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

}  // namespace InkoraTool
