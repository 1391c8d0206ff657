#pragma once

#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/Data.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace InkoraKit {

/// What a virtual peripheral sends out to be found, and how often.
struct VirtualAdvertisement {
    std::optional<std::string> localName = {};  ///< the name by which the kit knows a pen
    std::vector<CBUUID> serviceUUIDs = {};      ///< what a scan for services looks at
    std::optional<Data> manufacturerData = {};  ///< the company's identifier first, as it is sent
    std::map<CBUUID, Data> serviceData = {};    ///< by service
    std::optional<int> txPowerLevel = {};       ///< dBm

    /// An attempt to connect to a peripheral that is not connectable stays pending.
    bool isConnectable = true;

    /// Seconds between two advertisements; a scan hears the first one interval after its start.
    double interval = 0.1;

    /// For a name that sits in the scan response: a scan learns it with the first advertisement at
    /// least this many seconds after the one it heard first.
    double nameDelay = 0;
};

}  // namespace InkoraKit
