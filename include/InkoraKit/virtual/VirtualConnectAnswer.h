#pragma once

namespace InkoraKit {

/// What a virtual peripheral makes of an attempt to connect.
enum class VirtualConnectAnswer {
    accept,  ///< there is a link
    refuse,  ///< the attempt fails
    none,    ///< the attempt stays pending until the answer is set to another
};

}  // namespace InkoraKit
