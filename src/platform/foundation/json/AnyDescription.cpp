#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/JSONSerialization.h>

#include "platform/foundation/values/Storage.h"

// A container's text is its JSON, so it is made here, above the values themselves.
namespace InkoraKit {

std::string Any::description() const {
    if (const auto number = as<NSNumber>()) return number->description();
    if (hasText()) return std::string(slot_.text());
    if (slot_.tag() == AnySlot::object) return object()->description();
    if (!slot_.isContainer()) return hasValue() ? NSNull().description() : "(null)";
    try {
        return JSONSerialization::text(*this);
    } catch (const NSError&) {  // it holds what is no JSON
        return slot_.tag() == AnySlot::array ? "[…]" : "{…}";
    }
}

}  // namespace InkoraKit
