#include <InkoraKit/virtual/VirtualCharacteristic.h>

#include "platform/radios/virtual/VirtualCharacteristicState.h"
#include "platform/radios/virtual/VirtualErrors.h"

#include <utility>

namespace InkoraKit {

VirtualCharacteristic::VirtualCharacteristic(const CBUUID& uuid, std::optional<Data> value,
                                             std::uint32_t properties)
    : state_(new State{.uuid = uuid, .properties = properties, .value = std::move(value)}) {}

VirtualCharacteristic::~VirtualCharacteristic() = default;

const CBUUID& VirtualCharacteristic::uuid() const noexcept {
    return state_->uuid;
}

std::uint32_t VirtualCharacteristic::properties() const noexcept {
    return state_->properties;
}

const std::optional<Data>& VirtualCharacteristic::value() const noexcept {
    return state_->value;
}

void VirtualCharacteristic::setValue(std::optional<Data> value) {
    state_->value = std::move(value);
}

void VirtualCharacteristic::answerNextRead(std::optional<Data> value) {
    state_->script.push_back({std::move(value), std::nullopt});
}

void VirtualCharacteristic::failNextRead(const NSError& error) {
    state_->script.push_back({std::nullopt, error});
}

VirtualCharacteristic::State::ReadAnswer VirtualCharacteristic::State::nextReadAnswer() {
    if (!(properties & readable)) return {std::nullopt, virtualErrors::readNotPermitted()};
    if (script.empty()) return {value, std::nullopt};
    ReadAnswer answer = std::move(script.front());
    script.pop_front();
    return answer;
}

double VirtualCharacteristic::readDelay() const noexcept {
    return state_->readDelay;
}

void VirtualCharacteristic::setReadDelay(double seconds) {
    state_->readDelay = seconds;
}

}  // namespace InkoraKit
