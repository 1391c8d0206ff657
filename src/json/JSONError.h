#pragma once

#include <InkoraKit/JSONErrors.h>
#include <InkoraKit/platform/NSError.h>

#include <cstdint>
#include <string_view>

namespace InkoraKit {

/// An error of `JSON`'s own domain.
inline NSError jsonError(std::int64_t code, std::string_view description) {
    return NSError(ErrorDomain, code, {{NSLocalizedDescriptionKey, description}});
}

}  // namespace InkoraKit
