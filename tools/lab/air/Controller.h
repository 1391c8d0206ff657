#pragma once

#include "Descriptor.h"
#include "Packet.h"

#include <functional>
#include <string>

/// A controller: the kernel on one side, which takes it for hardware (/dev/vhci), btvirt's
/// emulation on the other.
class Controller {
public:
    using Receiver = std::function<void(Packet)>;

    /// Not yet plugged. `fromKernel` and `fromEmulation` hear each whole packet.
    /// @throws std::system_error
    Controller(const std::string& emulations, Receiver fromKernel, Receiver fromEmulation);

    /// Gives the kernel this hardware, or takes it away.
    void plug();
    void unplug() { kernel_.reset(); }

    void toKernel(const Packet& packet);
    void toEmulation(const Packet& packet);

private:
    void readKernel();
    void readEmulation();

    Receiver fromKernel_, fromEmulation_;
    std::unique_ptr<Descriptor> emulation_, kernel_;
    Packet incoming_;  // from the emulation, not yet a whole packet
};
