#include <InkoraKit/platform/CBCharacteristic.h>

#include "platform/bluetooth/Description.h"

namespace InkoraKit {

std::string CBCharacteristic::description() const {
    char bits[16];
    std::snprintf(bits, sizeof bits, "0x%x", static_cast<unsigned>(properties_));
    return describedObject("CBCharacteristic", this) + ", UUID = " + uuid_.uuidString() +
           ", properties = " + bits +
           ", value = " + (value_ ? "0x" + value_->hexEncodedString() : "(null)") +
           ", notifying = " + (isNotifying_ ? "YES" : "NO") + ">";
}

}  // namespace InkoraKit
