#pragma once

namespace InkoraKit {

/// How far from the adapter a virtual peripheral is.
enum class VirtualProximity {
    immediate,   ///< -40 dBm
    near,        ///< -70 dBm
    far,         ///< -100 dBm
    outOfRange,  ///< not heard at all
};

}  // namespace InkoraKit
