#include <InkoraKit/virtual/VirtualCharacteristic.h>

#include "platform/radios/virtual/VirtualErrors.h"

namespace InkoraKit {

VirtualCharacteristic::VirtualCharacteristic(const CBUUID& uuid, std::optional<Data> value,
                                             std::uint32_t properties)
    : uuid_(uuid), properties_(properties), value_(std::move(value)) {}

void VirtualCharacteristic::answerNextRead(std::optional<Data> value) {
    script_.push_back({std::move(value), std::nullopt});
}

void VirtualCharacteristic::failNextRead(const NSError& error) {
    script_.push_back({std::nullopt, error});
}

VirtualCharacteristic::ReadAnswer VirtualCharacteristic::nextReadAnswer() {
    if (!(properties_ & readable)) return {std::nullopt, virtualErrors::readNotPermitted()};
    if (script_.empty()) return {value_, std::nullopt};
    ReadAnswer answer = std::move(script_.front());
    script_.pop_front();
    return answer;
}

}  // namespace InkoraKit
