#pragma once

#include <InkoraKit/platform/RunLoopSource.h>

#include "platform/bus/MessageReader.h"
#include "platform/bus/MessageWriter.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

struct sd_bus;
struct sd_bus_message;
struct sd_bus_slot;

namespace InkoraKit {

struct BusError {
    std::string name;  // org.bluez.Error.Failed
    std::string text;  // in the service's own words
};

/// What came back for a method call: an error, or a body to be read.
struct Answer {
    std::optional<BusError> error;
    MessageReader body;
};

struct MethodCall {
    std::string destination;
    std::string path;
    std::string interface;
    std::string member;
    Arguments arguments = {};
    double timeout = 25;  // seconds
    bool startsService = false;
};

struct Signal {
    std::string path;  // of the object that tells
    std::string interface;
    std::string member;
    Arguments arguments = {};
};

/// A connection to the D-Bus system bus, served by the main run loop. Nothing here ever waits: what
/// cannot be sent yet is queued, and answers come back through the run loop.
///
/// An exception out of a handler leaves through the run loop, like that of a block.
class Bus final : public RunLoopSource {
public:
    using Completion = std::function<void(Answer&)>;
    using SignalHandler = std::function<void(MessageReader&)>;
    using LostHandler = std::function<void(int error)>;

    /// Begins to connect; the log-in goes on in the run loop. `lost` is called once, when the
    /// connection has failed or ended, with the (positive) error number, and may destroy the bus.
    /// @throws std::system_error when there is nothing to connect to.
    explicit Bus(LostHandler lost);
    ~Bus() override;
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    /// Calls a method. The completion runs exactly once, never inside this call, unless the bus is
    /// lost or destroyed before.
    void call(const MethodCall& call, Completion completion);
    /// Calls a method whose answer nobody waits for.
    void send(const MethodCall& call);

    /// Tells whoever listens.
    void emit(const Signal& signal);

    /// Calls the handler for each signal that matches the rule, from now on. The bus takes the rule
    /// in the order of the calls, so that a call made afterwards sees the rule in force.
    void match(const std::string& rule, SignalHandler handler);

    /// Writes out what is still queued. Waits for the socket to take it, so it is only for the end
    /// of the process or of the bus.
    void flush();

    int descriptor() const override;
    Interest interest() const override;
    std::optional<double> deadline() const override;
    void service() override;

private:
    friend class ExportedObjects;

    struct Closer {
        void operator()(sd_bus* bus) const;
    };

    void send(sd_bus_message* message, int madeWith);
    void fail(int error);
    template <class Handler>
    void keepForBus(sd_bus_slot* slot);

    LostHandler lost_;
    std::unique_ptr<sd_bus, Closer> bus_;
    int descriptor_ = -1;
    int failure_ = 0;
    std::shared_ptr<char> life_ = std::make_shared<char>();
};

}  // namespace InkoraKit
