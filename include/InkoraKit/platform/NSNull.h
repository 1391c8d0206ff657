#pragma once

#include <string>

namespace InkoraKit {

/// The null object: stands for "no value" where a value is required, as in an array. All are equal.
struct NSNull {
    std::string description() const { return "<null>"; }

    friend constexpr bool operator==(const NSNull&, const NSNull&) = default;
};

}  // namespace InkoraKit
