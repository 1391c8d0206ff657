#include <InkoraKit/JSON.h>

#include "platform/foundation/values/Storage.h"

namespace InkoraKit {

bool operator==(const JSON& left, const JSON& right) {
    if (left.type() != right.type()) return false;
    switch (left.type()) {
        case Type::null:
            return true;
        case Type::unknown:
            return false;
        default:
            return left.contents() == right.contents();
    }
}

bool operator<(const JSON& left, const JSON& right) {
    if (left.type() != right.type()) return false;
    switch (left.type()) {
        case Type::number:
            return Storage::number(left.contents()) < Storage::number(right.contents());
        case Type::string:
            return Storage::text(left.contents()) < Storage::text(right.contents());
        default:
            return false;
    }
}

bool operator<=(const JSON& left, const JSON& right) {
    return left < right || left == right;
}

std::size_t JSON::hash() const {
    return type() == Type::null ? Any(NSNull()).hash() : contents().hash();
}

}  // namespace InkoraKit
