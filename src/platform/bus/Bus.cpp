#include "platform/bus/Bus.h"

#include <InkoraKit/platform/RunLoop.h>

#include "platform/bus/Guarded.h"

#include <poll.h>
#include <systemd/sd-bus.h>
#include <time.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace InkoraKit {
namespace {

constexpr const char* defaultAddress = "unix:path=/run/dbus/system_bus_socket";

// Messages handled in one turn of the run loop. Under a flood of signals the host's own timers and
// blocks get their turn in between; what is left is found again by the next turn.
constexpr int messagesPerTurn = 64;

struct MessageRelease {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, MessageRelease>;

int onAnswer(sd_bus_message* message, void* completion, sd_bus_error*) noexcept {
    guarded([&] {
        Answer answer{std::nullopt, MessageReader(message)};
        if (const sd_bus_error* error = sd_bus_message_get_error(message))
            answer.error = BusError{error->name, error->message ? error->message : ""};
        (*static_cast<Bus::Completion*>(completion))(answer);
    });
    return 0;
}

int onSignal(sd_bus_message* message, void* handler, sd_bus_error*) noexcept {
    guarded([&] {
        MessageReader reader(message);
        (*static_cast<Bus::SignalHandler*>(handler))(reader);
    });
    return 0;
}

double monotonicNow() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

int fill(sd_bus_message* message, const Arguments& arguments) {
    MessageWriter writer(message);
    if (arguments) arguments(writer);
    return writer.result();
}

int newMessage(sd_bus* bus, const MethodCall& call, Message& message) {
    sd_bus_message* made = nullptr;
    int result =
        sd_bus_message_new_method_call(bus, &made, call.destination.c_str(), call.path.c_str(),
                                       call.interface.c_str(), call.member.c_str());
    message.reset(made);
    if (result >= 0) result = sd_bus_message_set_auto_start(made, call.startsService);
    return result < 0 ? result : fill(made, call.arguments);
}

}  // namespace

void Bus::Closer::operator()(sd_bus* bus) const {
    // Only once logged in: flushing before would wait for the log-in.
    if (sd_bus_is_ready(bus) > 0) sd_bus_flush(bus);
    sd_bus_close_unref(bus);
}

Bus::Bus(LostHandler lost) : lost_(std::move(lost)) {
    const auto check = [](int result) {
        if (result < 0) throw std::system_error(-result, std::generic_category(), "D-Bus");
    };
    sd_bus* made = nullptr;
    check(sd_bus_new(&made));
    bus_.reset(made);
    const char* address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    check(sd_bus_set_address(made, address && *address ? address : defaultAddress));
    check(sd_bus_set_bus_client(made, true));
    check(sd_bus_start(made));
    descriptor_ = sd_bus_get_fd(made);
    check(descriptor_);
    RunLoop::main().addSource(*this);
}

Bus::~Bus() {
    if (descriptor_ >= 0) RunLoop::main().removeSource(*this);
}

// Gives the slot and its handler to the bus, which frees both: a call's when it was answered, a
// match's when the bus itself ends.
template <class Handler>
void Bus::keepForBus(sd_bus_slot* slot) {
    sd_bus_slot_set_destroy_callback(slot,
                                     [](void* handler) { delete static_cast<Handler*>(handler); });
    sd_bus_slot_set_floating(slot, true);
    sd_bus_slot_unref(slot);
    RunLoop::main().sourcesChanged();
}

void Bus::call(const MethodCall& call, Completion completion) {
    Message message;
    if (const int result = newMessage(bus_.get(), call, message); result < 0) return fail(-result);
    auto kept = std::make_unique<Completion>(std::move(completion));
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_call_async(bus_.get(), &slot, message.get(), onAnswer, kept.get(),
                                         static_cast<std::uint64_t>(call.timeout * 1e6));
    if (result < 0) return fail(-result);
    kept.release();
    keepForBus<Completion>(slot);
}

void Bus::send(const MethodCall& call) {
    Message message;
    int result = newMessage(bus_.get(), call, message);
    if (result >= 0) result = sd_bus_message_set_expect_reply(message.get(), false);
    send(message.get(), result);
}

void Bus::emit(const Signal& signal) {
    sd_bus_message* made = nullptr;
    int result = sd_bus_message_new_signal(bus_.get(), &made, signal.path.c_str(),
                                           signal.interface.c_str(), signal.member.c_str());
    const Message message(made);
    if (result >= 0) result = fill(made, signal.arguments);
    send(made, result);
}

void Bus::send(sd_bus_message* message, int madeWith) {
    const int result = madeWith < 0 ? madeWith : sd_bus_send(bus_.get(), message, nullptr);
    if (result < 0) return fail(-result);
    RunLoop::main().sourcesChanged();
}

void Bus::match(const std::string& rule, SignalHandler handler) {
    auto kept = std::make_unique<SignalHandler>(std::move(handler));
    sd_bus_slot* slot = nullptr;
    const int result =
        sd_bus_add_match_async(bus_.get(), &slot, rule.c_str(), onSignal, nullptr, kept.get());
    if (result < 0) return fail(-result);
    kept.release();
    keepForBus<SignalHandler>(slot);
}

void Bus::flush() {
    if (sd_bus_is_ready(bus_.get()) > 0) sd_bus_flush(bus_.get());
}

// A bus that takes no message any more is lost; the next turn of the run loop tells so.
void Bus::fail(int error) {
    if (failure_ == 0) failure_ = error;
    RunLoop::main().sourcesChanged();
}

int Bus::descriptor() const {
    return descriptor_;
}

RunLoopSource::Interest Bus::interest() const {
    const int events = lost_ ? sd_bus_get_events(bus_.get()) : 0;
    if (events < 0) return Interest::none;
    const bool reads = (events & POLLIN) != 0;
    const bool writes = (events & POLLOUT) != 0;
    if (reads && writes) return Interest::both;
    if (writes) return Interest::writable;
    return reads ? Interest::readable : Interest::none;
}

std::optional<double> Bus::deadline() const {
    if (!lost_) return std::nullopt;
    std::uint64_t when = 0;  // on CLOCK_MONOTONIC, whatever the run loop's clock is
    if (failure_ == 0) sd_bus_get_timeout(bus_.get(), &when);  // else: overdue
    if (when == UINT64_MAX) return std::nullopt;
    return RunLoop::main().now() + (static_cast<double>(when) * 1e-6 - monotonicNow());
}

void Bus::service() {
    const std::weak_ptr<char> life = life_;
    for (int handled = 0; handled < messagesPerTurn && failure_ == 0; ++handled) {
        const int result = sd_bus_process(bus_.get(), nullptr);
        if (life.expired()) return;  // a handler has destroyed the bus
        if (result == 0) return;
        if (result < 0) fail(-result);
    }
    if (failure_ == 0) return;
    if (const LostHandler lost = std::exchange(lost_, nullptr)) lost(failure_);
}

}  // namespace InkoraKit
