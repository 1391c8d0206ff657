#pragma once

#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/virtual/VirtualCharacteristic.h>

#include <memory>
#include <vector>

namespace InkoraKit {

/// A service of a virtual peripheral. Its characteristics are shared with whoever scripts them.
struct VirtualService {
    CBUUID uuid;  ///< the type, by which hosts look for it
    /// In the order in which they are discovered.
    std::vector<std::shared_ptr<VirtualCharacteristic>> characteristics = {};
    bool isPrimary = true;  ///< or else a secondary service, which only others refer to
};

}  // namespace InkoraKit
