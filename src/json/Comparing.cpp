#include <InkoraKit/JSON.h>

#include "platform/foundation/Storage.h"

namespace InkoraKit {

bool operator==(const JSON& left, const JSON& right) {
    if (left.type() != right.type()) return false;
    switch (left.type()) {
        case Type::null:
            return true;
        case Type::unknown:
            return false;
        default:
            return left.value_ == right.value_;
    }
}

bool operator<(const JSON& left, const JSON& right) {
    if (left.type() != right.type()) return false;
    switch (left.type()) {
        case Type::number:
            return Storage::number(left.value_) < Storage::number(right.value_);
        case Type::string:
            return Storage::text(left.value_) < Storage::text(right.value_);
        default:
            return false;
    }
}

bool operator<=(const JSON& left, const JSON& right) {
    return left < right || left == right;
}

std::size_t JSON::hash() const {
    return type() == Type::null ? Any(NSNull()).hash() : value_.hash();
}

}  // namespace InkoraKit
