#pragma once

#include "platform/bluetooth/radio.h"
#include "platform/bus/Properties.h"

#include <map>
#include <optional>
#include <string>

namespace InkoraKit {

/// Tells what a device advertised from what BlueZ read from it over a link.
///
/// Both go into the same properties: after a connection, Name is the device's own name until the
/// next discovery puts the advertised one back, and UUIDs has all its services (5.66). So what a
/// link changed is remembered as it was before.
class AdvertisedProperties {
public:
    /// A Device1 has changed: `before` has what it was, `now` what it is. One that is there for the
    /// first time, or again, was nothing before.
    void deviceChanged(const std::string& path, const Properties& before, const Properties& now);

    Advertisement advertisement(const std::string& path, const Properties& now) const;

    /// The device's own name, where it is known to be that and not an advertised one.
    std::optional<std::string> ownName(const std::string& path, const Properties& now) const;

private:
    // By device: the properties that show something else than was advertised, as they were. Kept
    // for good, since a link may outlive the device's object and bluetoothd: a device that is
    // linked when it comes back has not advertised since.
    std::map<std::string, Properties> advertised_;
};

}  // namespace InkoraKit
