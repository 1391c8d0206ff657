#include "platform/bluetooth/radio.h"

#include <utility>

namespace InkoraKit {
namespace {

RadioFactory& installedFactory() {
    static RadioFactory factory;
    return factory;
}

}  // namespace

void installRadio(RadioFactory factory) {
    installedFactory() = std::move(factory);
}

std::unique_ptr<Radio> openRadio() {
    return installedFactory() ? installedFactory()() : openSystemRadio();
}

}  // namespace InkoraKit
