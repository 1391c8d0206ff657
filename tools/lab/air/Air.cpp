#include "Air.h"

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>

#include <cstdio>
#include <utility>

using InkoraKit::RunLoop;
using InkoraKit::Timer;

namespace {

constexpr double advertisingInterval = 0.1;
constexpr double supervisionTimeout = 0.42;  // as the kernel asks for it
constexpr double scanStart = 0.05;           // the kernel drops what it hears of a scan before
constexpr double shortLink = 0.05;           // six intervals without an answer of the pen

constexpr std::uint8_t connectionTimeout = 0x08;
constexpr std::uint8_t unknownConnection = 0x02;
constexpr std::uint8_t establishmentFailed = 0x3e;

/// Volume 4, part E, 7 of Bluetooth Core has these commands and events.
namespace Command {
constexpr std::uint16_t disconnect = 0x0406;
constexpr std::uint16_t reset = 0x0c03;
constexpr std::uint16_t readTransmitPower = 0x0c2d;
constexpr std::uint16_t readRSSI = 0x1405;
constexpr std::uint16_t setAdvertisingEnable = 0x200a;
constexpr std::uint16_t setScanEnable = 0x200c;
constexpr std::uint16_t createConnection = 0x200d;
constexpr std::uint16_t createConnectionCancel = 0x200e;
}  // namespace Command

namespace Event {
constexpr std::uint16_t disconnectionComplete = 0x05;
constexpr std::uint16_t commandComplete = 0x0e;
constexpr std::uint16_t commandStatus = 0x0f;
constexpr std::uint16_t lowEnergy = 0x3e;
constexpr std::uint16_t connectionComplete =
    0x3e01;  // these two: with the low-energy event's own code
constexpr std::uint16_t advertisingReport = 0x3e02;
}  // namespace Event

/// The command's code, 0 of any other packet.
std::uint16_t commandIn(const Packet& packet) {
    return kindOf(packet) == PacketKind::command ? numberAt(packet, 1) : std::uint16_t{0};
}

/// The event's code, 0 of any other packet.
std::uint16_t eventIn(const Packet& packet) {
    if (kindOf(packet) != PacketKind::event) return 0;
    const std::uint16_t code = byteAt(packet, 1);
    return code == Event::lowEnergy ? static_cast<std::uint16_t>(code << 8 | byteAt(packet, 3))
                                    : code;
}

std::uint8_t low(std::uint16_t number) {
    return static_cast<std::uint8_t>(number & 0xff);
}
std::uint8_t high(std::uint16_t number) {
    return static_cast<std::uint8_t>(number >> 8);
}

void tell(const char* event, const char* state) {
    std::printf("{\"at\":%.3f,\"event\":\"%s\",\"is\":\"%s\"}\n", RunLoop::main().now(), event,
                state);
}

void tell(const char* event, bool isOn) {
    tell(event, isOn ? "on" : "off");
}

}  // namespace

Air::Air(const std::string& socket)
    : host_(
          socket, [this](const Packet& packet) { fromHostsKernel(packet); },
          [this](const Packet& packet) { fromHostsEmulation(packet); }),
      pen_(
          socket, [this](const Packet& packet) { fromPensKernel(packet); },
          [this](const Packet& packet) { fromPensEmulation(packet); }) {
    setStrength(-55);
    host_.plug();
    pen_.plug();
    advertise();
}

// --- what is told to do -------------------------------------------------------------------------

void Air::setInRange(bool inRange) {
    isInRange_ = inRange;
    if (inRange) return;
    Timer::scheduledTimer(supervisionTimeout, [this] { drop(connectionTimeout); });
}

void Air::stall(bool stalled) {
    isStalled_ = stalled;
    if (stalled) return;
    for (const Packet& packet : std::exchange(stalledPackets_, {})) pen_.toEmulation(packet);
}

void Air::drop(std::uint8_t reason) {
    if (!link_) return;
    own_.insert(Command::disconnect);
    pen_.toEmulation({1, low(Command::disconnect), high(Command::disconnect), 3, low(*link_),
                      high(*link_), reason});
}

void Air::unplug() {
    drop(connectionTimeout);
    host_.unplug();
    forgetHost();
}

// --- what goes by -------------------------------------------------------------------------------

void Air::fromHostsKernel(const Packet& packet) {
    switch (commandIn(packet)) {
        case Command::reset:
            forgetHost();
            break;
        case Command::setScanEnable:
            setScan(byteAt(packet, 4) != 0, byteAt(packet, 5) != 0);
            break;
        case Command::createConnection:
            return holdRequest(packet);
        case Command::createConnectionCancel:
            if (cancelRequest()) return;
            break;
        case Command::readRSSI:
            return answerPower(packet, strength_);
        case Command::readTransmitPower:
            return answerPower(packet, 4);
        default:
            break;
    }
    host_.toEmulation(packet);
}

void Air::fromHostsEmulation(const Packet& packet) {
    switch (eventIn(packet)) {
        case Event::commandStatus:
            if (takeOwnStatus(packet)) return;
            break;
        case Event::advertisingReport:
            return hear(packet);
        case Event::connectionComplete:
            if (byteAt(packet, 4) == 0) linkOpened();
            break;
        case Event::disconnectionComplete:
            linkClosed(byteAt(packet, 6));
            break;
        default:
            break;
    }
    host_.toKernel(packet);
}

void Air::fromPensKernel(const Packet& packet) {
    if (kindOf(packet) == PacketKind::data && isStalled_) return stalledPackets_.push_back(packet);
    switch (commandIn(packet)) {
        case Command::reset:
            setAdvertising(false);
            break;
        case Command::setAdvertisingEnable:
            setAdvertising(byteAt(packet, 4) != 0);
            break;
        default:
            break;
    }
    pen_.toEmulation(packet);
}

void Air::fromPensEmulation(const Packet& packet) {
    switch (eventIn(packet)) {
        case Event::commandStatus:
            if (takeOwnStatus(packet)) return;
            break;
        case Event::connectionComplete:
            if (byteAt(packet, 4) != 0) break;
            link_ = numberAt(packet, 5);
            setAdvertising(false);  // which ends with a connection
            break;
        default:
            break;
    }
    pen_.toKernel(packet);
}

// --- what becomes of it -------------------------------------------------------------------------

void Air::setScan(bool enabled, bool filtersDuplicates) {
    if (enabled != scan_.has_value()) tell("scan", enabled);
    scan_.reset();
    if (!enabled) return;
    scan_ = Scan{RunLoop::main().now(), filtersDuplicates};
    for (auto& [kind, advertisement] : heard_) advertisement.isTold = false;
}

void Air::setAdvertising(bool enabled) {
    if (enabled != isAdvertising_) tell("advertising", enabled);
    isAdvertising_ = enabled;
}

void Air::setRequest(std::optional<Packet> request) {
    if (request.has_value() != request_.has_value()) tell("request", request.has_value());
    request_ = std::move(request);
}

void Air::forgetHost() {
    setScan(false, false);
    setRequest(std::nullopt);
}

void Air::holdRequest(const Packet& request) {
    setRequest(request);
    host_.toKernel({4, Event::commandStatus, 4, 0, 1, low(Command::createConnection),
                    high(Command::createConnection)});
}

bool Air::cancelRequest() {
    if (!request_) return false;
    host_.toKernel({4, Event::commandComplete, 4, 1, low(Command::createConnectionCancel),
                    high(Command::createConnectionCancel), 0});
    Packet failed = {4, Event::lowEnergy, 19, 1, unknownConnection, 0, 0, 0};
    for (std::size_t i = 0; i < 7; ++i)
        failed.push_back(byteAt(*request_, 9 + i));  // the pen's address
    failed.resize(22);
    setRequest(std::nullopt);
    host_.toKernel(failed);
    return true;
}

// btvirt knows of no power.
void Air::answerPower(const Packet& command, std::uint8_t power) {
    const std::uint8_t status = link_ ? std::uint8_t{0} : unknownConnection;
    host_.toKernel({4, Event::commandComplete, 7, 1, byteAt(command, 1), byteAt(command, 2), status,
                    byteAt(command, 4), byteAt(command, 5), power});
}

bool Air::takeOwnStatus(const Packet& event) {
    const auto own = own_.find(numberAt(event, 5));
    if (own == own_.end()) return false;
    own_.erase(own);
    return true;
}

// btvirt reports an advertisement once, when scanning or advertising begins.
void Air::hear(const Packet& report) {
    Advertisement& heard = heard_[byteAt(report, 5)];
    if (heard.report != report) heard = {report, false};
}

void Air::linkOpened() {
    tell("link", "open");
    if (!std::exchange(isNextLinkDropped_, false)) return;
    Timer::scheduledTimer(shortLink, [this] { drop(establishmentFailed); });
}

void Air::linkClosed(std::uint8_t reason) {
    char text[3];
    std::snprintf(text, sizeof text, "%02x", static_cast<unsigned>(reason));
    tell("link", text);
    link_.reset();
    stalledPackets_.clear();
}

// --- time ---------------------------------------------------------------------------------------

void Air::advertise() {
    Timer::scheduledTimer(advertisingInterval, [this] { advertise(); });
    if (!isAdvertising_ || !isInRange_) return;
    if (request_ && !areRequestsHeld_) {
        own_.insert(Command::createConnection);
        host_.toEmulation(*request_);
        setRequest(std::nullopt);
    }
    if (scan_ && RunLoop::main().now() - scan_->began >= scanStart) tellAdvertisements();
}

void Air::tellAdvertisements() {
    for (auto& [kind, advertisement] : heard_) {
        if (scan_->filtersDuplicates && std::exchange(advertisement.isTold, true)) continue;
        Packet report = advertisement.report;
        report.back() = strength_;
        host_.toKernel(report);
    }
}
