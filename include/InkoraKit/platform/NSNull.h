#pragma once

#include <string>

namespace InkoraKit {

/// The null object: stands for "no value" where a value is required, as in an array. All are equal.
struct NSNull {
    /// As the console shows it.
    std::string description() const { return "<null>"; }

    /// Always true.
    friend constexpr bool operator==(const NSNull&, const NSNull&) = default;
};

}  // namespace InkoraKit
