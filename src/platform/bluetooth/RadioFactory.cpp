#include "platform/bluetooth/radio.h"

#include <utility>

namespace InkoraKit {
namespace {

struct Installed {
    RadioFactory factory;
    const void* owner = nullptr;
    RadioWrapper wrapper;
};

Installed& installed() {
    static Installed radio;
    return radio;
}

}  // namespace

void installRadio(RadioFactory factory, const void* owner) {
    installed().factory = std::move(factory);
    installed().owner = owner;
}

void uninstallRadio(const void* owner) {
    if (installed().owner == owner) installed().factory = {};
}

void wrapRadios(RadioWrapper wrapper) {
    installed().wrapper = std::move(wrapper);
}

std::unique_ptr<Radio> openRadio() {
    auto radio = installed().factory ? installed().factory() : openSystemRadio();
    return installed().wrapper ? installed().wrapper(std::move(radio)) : std::move(radio);
}

}  // namespace InkoraKit
