#pragma once

#include <InkoraKit/Export.h>

#include <algorithm>
#include <string>

namespace InkoraKit {

/// An immutable colour in the extended sRGB colour space: red, green and blue lie in 0...1 within
/// sRGB and may lie outside it.
class INKORA_EXPORT UIColor {
public:
    /// Red, green and blue, from 0, none of it, to 1 at the edge of sRGB; and the opacity, from 0
    /// to 1.
    struct Components {
        double red;    ///< extended sRGB
        double green;  ///< extended sRGB
        double blue;   ///< extended sRGB
        double alpha;  ///< opacity

        /// Whether all four are equal.
        friend constexpr bool operator==(const Components&, const Components&) = default;
    };

    /// @param alpha the opacity, from 0, clear, to 1, opaque; clamped to that range.
    constexpr UIColor(double red, double green, double blue, double alpha) noexcept
        : components_{red, green, blue, std::clamp(alpha, 0.0, 1.0)} {}

    /// One component: see `Components`.
    constexpr double red() const noexcept { return components_.red; }
    constexpr double green() const noexcept { return components_.green; }
    constexpr double blue() const noexcept { return components_.blue; }
    constexpr double alpha() const noexcept { return components_.alpha; }

    /// All four at once: `const auto [red, green, blue, alpha] = colour.components();`
    constexpr const Components& components() const noexcept { return components_; }

    /// The colour space and the components with up to six digits, for logs:
    /// `UIExtendedSRGBColorSpace 1 0.501961 0 1`.
    std::string description() const;

    /// Whether all components are equal.
    friend constexpr bool operator==(const UIColor&, const UIColor&) = default;

private:
    Components components_;
};

}  // namespace InkoraKit
