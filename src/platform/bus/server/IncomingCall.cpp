#include "platform/bus/server/IncomingCall.h"

#include <InkoraKit/platform/RunLoop.h>

#include <systemd/sd-bus.h>

namespace InkoraKit {

IncomingCall::IncomingCall(sd_bus_message* message)
    : message_(sd_bus_message_ref(message), sd_bus_message_unref) {}

std::string IncomingCall::interface() const {
    const char* interface = sd_bus_message_get_interface(message_.get());
    return interface ? interface : "";
}

// Who has left the bus meanwhile gets no answer, and misses none.
void IncomingCall::answer(const Arguments& arguments) const {
    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_method_return(message_.get(), &made) < 0) return;
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> answer(
        made, sd_bus_message_unref);
    MessageWriter writer(made);
    if (arguments) arguments(writer);
    if (writer.result() >= 0) sd_bus_send(nullptr, made, nullptr);
    RunLoop::main().sourcesChanged();
}

void IncomingCall::refuse(const char* errorName, const std::string& text) const {
    sd_bus_reply_method_errorf(message_.get(), errorName, "%s", text.c_str());
    RunLoop::main().sourcesChanged();
}

}  // namespace InkoraKit
