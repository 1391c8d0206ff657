#include "doctor/bluez/Machine.h"

#include "Utf8.h"

#include <algorithm>

using namespace InkoraKit;

namespace InkoraTool {

std::optional<BusError> Machine::ask(const char* destination, const char* path,
                                     const char* interface, const char* member,
                                     const std::function<void(MessageReader&)>& read) {
    const BusError gone{"org.freedesktop.DBus.Error.Disconnected", "The bus has gone."};
    if (!bus) return gone;
    // Kept by the completion: an answer may come after the wait has ended.
    struct State {
        bool isAnswered = false;
        std::optional<BusError> error;
        std::function<void(MessageReader&)> read;
    };
    const auto state = std::make_shared<State>();
    state->read = read;
    bus->call({destination, path, interface, member, {}, patience}, [state](Answer& answer) {
        state->isAnswered = true;
        state->error = answer.error;
        if (!answer.error && state->read) state->read(answer.body);
    });
    // The bus ends the call itself; what is more than that is for the run loop.
    constexpr double grace = 0.5;
    waiting.until([&] { return state->isAnswered || !bus; }, patience + grace);
    state->read = nullptr;
    if (state->isAnswered) return state->error;
    return gone;
}

std::optional<BusError> Machine::askForObjects() {
    return ask("org.bluez", "/", "org.freedesktop.DBus.ObjectManager", "GetManagedObjects",
               [this](MessageReader& body) { objects.replace(body.readObjects()); });
}

bool Machine::isOnBus(std::string_view name) const {
    return std::ranges::find(namesOnBus, name) != namesOnBus.end();
}

std::string shown(std::string_view name) {
    constexpr std::size_t longest = 24;
    const std::string text = printableText(name);
    const std::string_view start = firstCodePoints(text, longest);
    return start.size() < text.size() ? std::string(start) + "…" : text;
}

}  // namespace InkoraTool
