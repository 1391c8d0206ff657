#pragma once

#include <InkoraKit/platform/Timer.h>
#include <InkoraKit/virtual/VirtualPeripheral.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace InkoraKit {

struct VirtualPeripheral::State {
    UUID identifier;
    VirtualAdvertisement advertisement;
    std::optional<std::string> gapName = {};
    std::vector<VirtualService> services = {};
    VirtualConnectAnswer connectAnswer = VirtualConnectAnswer::accept;
    std::optional<NSError> discoveryError = {};
    double connectDelay = 0;
    double answerDelay = 0;
    double supervisionTimeout = 4;
    int rssi = -60;
    bool inRange = true;
    bool advertising = true;
    bool gapNameKnown = false;

    VirtualRadio* radio = nullptr;  // null unless added
    std::shared_ptr<VirtualLink> link = {};
    std::shared_ptr<Timer> advertisingTimer = {};  // only while a scan could hear it
};

}  // namespace InkoraKit
