#include <InkoraKit/platform/CBService.h>

#include "platform/bluetooth/Description.h"

namespace InkoraKit {

std::string CBService::description() const {
    return describedObject("CBService", this) + ", isPrimary = " + (isPrimary_ ? "YES" : "NO") +
           ", UUID = " + uuid_.uuidString() + ">";
}

}  // namespace InkoraKit
