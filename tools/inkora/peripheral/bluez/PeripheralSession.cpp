#include "peripheral/bluez/PeripheralSession.h"

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>
#include <unistd.h>

#include "Failure.h"
#include "terminal/ReaderSource.h"
#include "terminal/SignalSource.h"

#include <cstdio>
#include <utility>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

using Characteristic = BluezPen::Characteristic;

// The byte before red, green and blue; a host skips it.
constexpr std::uint8_t colourPrefix = 0x01;

// Between two of which signals, the input and bluetoothd have their turn.
constexpr int stepsInOneTurn = 256;

Data valueOf(const Colour& colour) {
    return Data{colourPrefix, colour[0], colour[1], colour[2]};
}

std::string textOf(Characteristic characteristic) {
    return characteristic == Characteristic::colour ? "colour" : "battery";
}

}  // namespace

PeripheralSession::PeripheralSession(const PeripheralOptions& options)
    : options_(options),
      lines_(makeEventLines(options.json)),
      pen_(*this, options.name, options.adapter),
      random_(options.seed) {}

ExitStatus PeripheralSession::run() {
    const SignalSource signals([this] { finish(ExitStatus::success); });
    const ReaderSource reader([this] { finish(ExitStatus::success); });
    if (options_.readsInput) input_.emplace([this](const std::string& line) { takeLine(line); });
    RunLoop::main().post([self = shared_from_this()] { self->start(); });
    RunLoop::main().run();
    input_.reset();
    return status_;
}

void PeripheralSession::start() {
    pen_.setValue(Characteristic::colour, valueOf({0, 0, 0}));
    pen_.setValue(Characteristic::battery, Data{options_.battery});
    if (options_.duration) after(*options_.duration, [this] { finish(ExitStatus::success); });
    pen_.start();
}

// --- instructions -------------------------------------------------------------------------------

void PeripheralSession::takeLine(const std::string& line) {
    if (line.size() > LineSource::longestLine) return complain("a line of the input is too long");
    try {
        follow(instructionOf(line));
    } catch (const Failure& failure) {
        complain(failure.what());
    }
}

void PeripheralSession::follow(const Instruction& instruction) {
    instructions_.push_back(instruction);
    followInstructions();
}

// In their order, and no faster than bluetoothd takes what they lead to.
void PeripheralSession::followInstructions() {
    for (int steps = 0; pen_.hasRoom() && !isFinishing_; ++steps) {
        if (steps == stepsInOneTurn) {
            RunLoop::main().post([self = shared_from_this()] { self->followInstructions(); });
            break;
        }
        if (burst_) {
            const std::optional<Colour> colour = burst_->colour;
            if (--burst_->left == 0) burst_.reset();
            captureOne(colour);
        } else if (!instructions_.empty()) {
            const Instruction next = std::move(instructions_.front());
            instructions_.pop_front();
            next(*this);
        } else {
            break;
        }
    }
    if (input_) input_->setPaused(!pen_.hasRoom() || burst_);
}

void PeripheralSession::capture(const std::optional<Colour>& colour, std::int64_t count,
                                double interval) {
    if (interval <= 0) {
        burst_ = {colour, count};
        return;
    }
    captureOne(colour);
    if (count == 1) return;
    after(interval, [this, colour, count, interval] {
        follow([=](PenControls& pen) { pen.capture(colour, count - 1, interval); });
    });
}

void PeripheralSession::captureOne(const std::optional<Colour>& wanted) {
    const auto drawn = wanted ? 0 : random_();
    const Colour colour = wanted.value_or(Colour{static_cast<std::uint8_t>(drawn >> 16),
                                                 static_cast<std::uint8_t>(drawn >> 8),
                                                 static_cast<std::uint8_t>(drawn)});
    pen_.setValue(Characteristic::colour, valueOf(colour));
    print(lines_->captured(colour));
    if (++captured_ == options_.count) finish(ExitStatus::success);
}

void PeripheralSession::tell(const Data& value) {
    pen_.setValue(Characteristic::colour, value);
    show("raw", {{"bytes", value.hexEncodedString()}});
}

void PeripheralSession::setBattery(std::uint8_t percent) {
    pen_.setValue(Characteristic::battery, Data{percent});
    show("battery", {{"percent", percent}});
}

void PeripheralSession::setName(const std::string& name) {
    show("name", {{"name", name}});
    pen_.setName(name);
}

void PeripheralSession::drop() {
    if (!pen_.drop()) complain("there is no link to be dropped");
}

void PeripheralSession::setAnswering(bool isAnswering) {
    show(isAnswering ? "answering" : "silent");
    pen_.setAnswering(isAnswering);
}

void PeripheralSession::setVisible(bool isVisible) {
    pen_.setVisible(isVisible);
}

void PeripheralSession::quit() {
    finish(ExitStatus::success);
}

// --- what becomes of the pen --------------------------------------------------------------------

void PeripheralSession::advertising(const std::string& name, const std::string& adapter,
                                    const std::string& address) {
    show("advertising", {{"name", name}, {"adapter", adapter}, {"address", address}});
    if (std::exchange(isAdvertised_, true)) return;
    if (input_ && !options_.json && ::isatty(STDIN_FILENO) != 0)
        std::fputs(
            "Type orange, #FF8000 or random, and quit to end; inkora pen --help has the rest.\n",
            stderr);
    for (const TimedInstruction& each : options_.script)
        after(each.time, [this, instruction = each.instruction] { follow(instruction); });
}

void PeripheralSession::hidden() {
    show("hidden");
}

void PeripheralSession::connected(const std::string& address) {
    show("connected", {{"address", address}});
}

void PeripheralSession::disconnected(const std::string& address) {
    show("disconnected", {{"address", address}});
}

void PeripheralSession::subscribed(Characteristic characteristic, bool isSubscribed) {
    show(isSubscribed ? "subscribed" : "unsubscribed",
         {{"characteristic", textOf(characteristic)}});
}

void PeripheralSession::wasRead(Characteristic characteristic) {
    show("read", {{"characteristic", textOf(characteristic)}});
}

void PeripheralSession::unavailable(const std::string& why) {
    if (isAdvertised_) return show("unavailable", {{"text", why}});
    if (!isFinishing_) std::fprintf(stderr, "inkora: %s\n", why.c_str());
    finish(ExitStatus::noBluetooth);
}

// --- output and end -----------------------------------------------------------------------------

void PeripheralSession::show(std::string_view event, const EventFields& fields) {
    print(lines_->event(event, fields));
}

void PeripheralSession::print(const std::string& line) {
    if (isFinishing_) return;
    switch (output_.line(line)) {
        case Output::Outcome::written:
            return;
        case Output::Outcome::closed:
            return finish(ExitStatus::success);
        case Output::Outcome::failed:
            std::fprintf(stderr, "inkora: standard output: %s\n", output_.failure().c_str());
            return finish(ExitStatus::failure);
    }
}

void PeripheralSession::complain(const std::string& text) {
    if (options_.json) return show("error", {{"text", text}});
    if (!isFinishing_) std::fprintf(stderr, "inkora: %s\n", text.c_str());
}

void PeripheralSession::after(double seconds, std::function<void()> action) {
    Timer::scheduledTimer(seconds, [weak = weak_from_this(), action = std::move(action)] {
        const auto session = weak.lock();
        if (session && !session->isFinishing_) action();
    });
}

void PeripheralSession::finish(ExitStatus status) {
    if (std::exchange(isFinishing_, true)) return;
    status_ = status;
    // From the loop: the pen may be in the middle of a step.
    RunLoop::main().post(
        [self = shared_from_this()] { self->pen_.end([] { RunLoop::main().stop(); }); });
}

}  // namespace InkoraTool
