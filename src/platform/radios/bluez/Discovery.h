#pragma once

#include "platform/foundation/loop/Alarm.h"
#include "platform/radios/bluez/BluezDaemon.h"

#include <functional>
#include <optional>
#include <string>

namespace InkoraKit {

/// Our share in an adapter's discovery. Keeps what is wanted apart from what BlueZ was asked for:
/// one request is under way at a time, and each answer leads to the next step towards what is
/// wanted by then.
class Discovery {
public:
    /// `moved` runs whenever `isIdle` or `isRunning` may have changed.
    Discovery(BluezDaemon& daemon, std::function<void()> moved);

    /// Begins anew on an adapter on which nothing of ours is under way, since it came or was
    /// switched on just now; empty for none. The former one is let go.
    void use(const std::string& adapter);

    void setWanted(bool wanted);

    /// No discovery of ours, and no request for one: now a connection may be asked for. While a
    /// discovery goes on, BlueZ 5.66 lets a connection wait for up to 10 s.
    bool isIdle() const { return stage_ == Stage::idle; }
    bool isRunning() const { return stage_ == Stage::running; }

    /// The bus does not let this process discover.
    bool isDenied() const { return isDenied_; }

private:
    enum class Stage { idle, filtering, starting, running, stopping };

    void step();
    void ask(Stage stage, const char* method, Arguments arguments = {});
    void answered(const std::optional<BusError>& error);
    void refused(const BusError& error);
    void move(Stage stage);

    BluezDaemon& daemon_;
    std::function<void()> moved_;
    std::string adapter_;
    Stage stage_ = Stage::idle;
    bool isWanted_ = false;
    bool isDenied_ = false;
    unsigned use_ = 0;  // counts calls of `use`, to tell answers to requests made before the last
    Alarm retry_;
};

}  // namespace InkoraKit
