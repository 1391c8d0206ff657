#pragma once

#include <InkoraKit/InkoraConstants.h>

#include <string_view>

namespace InkoraKit {

/// Whether an advertiser of that name is taken for a pen.
inline bool isPenName(std::string_view name) {
    return name.find(InkoraConstants::PeripheralName) != std::string_view::npos ||
           name.find(InkoraConstants::PeripheralName2) != std::string_view::npos;
}

}  // namespace InkoraKit
