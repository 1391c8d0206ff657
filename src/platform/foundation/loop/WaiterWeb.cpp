#include <InkoraKit/platform/RunLoop.h>

#include "platform/foundation/loop/Waiter.h"

#include <chrono>
#include <stdexcept>
#include <thread>

// For a page: its own loop is the one that runs, and can neither be run from here nor be waited in.
// Where another system would make a descriptor readable, the page's loop is asked for a turn
// (WaiterWeb.js), in which it runs this one.
extern "C" {
void inkora_loop_wake();
void inkora_loop_set_alarm(double seconds);  // none when negative

[[gnu::used]] void inkora_loop_turn() {
    InkoraKit::RunLoop::main().runPending();
}
}

namespace InkoraKit {

struct Waiter::State {};

Waiter::Waiter() = default;
Waiter::~Waiter() = default;

void Waiter::add(RunLoopSource&) {
    throw std::logic_error("the run loop cannot watch descriptors in a page");
}

void Waiter::remove(RunLoopSource&) {}
void Waiter::refresh() {}

void Waiter::setAlarm(std::optional<double> seconds) {
    inkora_loop_set_alarm(seconds.value_or(-1));
}

// The page stands still meanwhile, and nothing that it would bring can come. So a wait without end
// would have none.
void Waiter::wait(std::optional<double> seconds) {
    if (!seconds) throw std::logic_error("a page runs the run loop itself: there is no need to");
    if (*seconds > 0) std::this_thread::sleep_for(std::chrono::duration<double>(*seconds));
}

RunLoopSource* Waiter::takeReady() {
    return nullptr;
}

void Waiter::wake() {
    inkora_loop_wake();
}

int Waiter::descriptor() const {
    return -1;
}

}  // namespace InkoraKit
