#include "platform/radios/bluez/ValueSieve.h"

#include <utility>

namespace InkoraKit {

std::optional<Data> ValueSieve::heard(Serial serial) {
    const bool hasGap = serial_ != 0 && serial != serial_ + 1;
    const Serial former = std::exchange(serial_, serial);
    // Somebody was told something: who may have subscribed.
    if (hasGap && copies_ == 1) copies_ = unknown;
    std::optional<Data> result;
    if (const auto held = std::exchange(held_, std::nullopt); held && !hasGap)
        result = notified(*held, former);
    if (count_ > 0 && serial == end_ + 1) isFollowed_ = true;
    return result;
}

std::optional<Data> ValueSieve::signalled(const Data& value) {
    if (last_ != value) return notified(value, serial_);
    held_ = value;
    return std::nullopt;
}

std::optional<Data> ValueSieve::notified(const Data& value, Serial serial) {
    last_ = value;
    if (count_ == 0 || run_ != value || serial != end_ + 1) {
        closeRun();
        run_ = value;
    }
    end_ = serial;
    isFollowed_ = false;
    const bool isFirst = copies_ == unknown ? count_ == 0 : count_ % copies_ == 0;
    ++count_;
    return isFirst ? std::optional(value) : std::nullopt;
}

std::optional<Data> ValueSieve::decide() {
    closeRun();
    return std::exchange(held_, std::nullopt);
}

void ValueSieve::closeRun() {
    if (isFollowed_ && (copies_ == unknown || count_ % copies_ != 0)) copies_ = count_;
    count_ = 0;
    isFollowed_ = false;
}

}  // namespace InkoraKit
