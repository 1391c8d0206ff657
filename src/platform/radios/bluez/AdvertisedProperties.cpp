#include "platform/radios/bluez/AdvertisedProperties.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace InkoraKit {
namespace {

constexpr const char* sharedProperties[] = {"Name", "UUIDs"};

bool isTrue(const Properties& properties, const char* name) {
    const bool* value = find<bool>(properties, name);
    return value && *value;
}

std::vector<CBUUID> uuidsOf(const std::vector<std::string>& texts) {
    std::vector<CBUUID> uuids;
    for (const std::string& text : texts)
        if (const auto uuid = UUID::fromString(text)) uuids.emplace_back(*uuid);
    return uuids;
}

// The company's identifier in two bytes, least significant first, and what follows it: as
// advertised (Supplement to the Bluetooth Core Specification, Part A, 1.4).
Data manufacturerData(std::uint16_t company, const Data& data) {
    std::vector<std::uint8_t> bytes = {static_cast<std::uint8_t>(company & 0xff),
                                       static_cast<std::uint8_t>(company >> 8)};
    bytes.insert(bytes.end(), data.begin(), data.end());
    return Data(bytes);
}

}  // namespace

void AdvertisedProperties::deviceChanged(const std::string& path, const Properties& before,
                                         const Properties& now) {
    // What an advertisement changes comes together with its strength; the rest needs a link, which
    // may have ended in the same moment.
    const bool isHeard = now.contains("RSSI");
    if (before.empty() && isHeard) advertised_.erase(path);
    const bool isAdvertised = before.contains("RSSI") && isHeard;
    const bool isLinked = isTrue(before, "Connected") || isTrue(now, "Connected");
    for (const char* name : sharedProperties) {
        const auto old = before.find(name);
        if (old == before.end()) continue;
        if (isAdvertised || !isLinked) {
            const auto kept = advertised_.find(path);
            if (kept != advertised_.end()) kept->second.erase(name);
        } else {
            advertised_[path].try_emplace(name, old->second);
        }
    }
}

Advertisement AdvertisedProperties::advertisement(const std::string& path,
                                                  const Properties& now) const {
    const auto kept = advertised_.find(path);
    const auto source = [&](const char* name) -> const Properties& {
        return kept != advertised_.end() && kept->second.contains(name) ? kept->second : now;
    };
    Advertisement result;
    // Not Alias: where there is no name, that is the address.
    if (const auto* name = find<std::string>(source("Name"), "Name")) result.localName = *name;
    if (const auto* uuids = find<std::vector<std::string>>(source("UUIDs"), "UUIDs"))
        result.serviceUUIDs = uuidsOf(*uuids);
    using ByCompany = std::map<std::uint16_t, Data>;
    if (const auto* data = find<ByCompany>(now, "ManufacturerData"); data && !data->empty())
        result.manufacturerData = manufacturerData(data->begin()->first, data->begin()->second);
    if (const auto* data = find<std::map<std::string, Data>>(now, "ServiceData"))
        for (const auto& [text, bytes] : *data)
            if (const auto uuid = UUID::fromString(text))
                result.serviceData.insert_or_assign(CBUUID(*uuid), bytes);
    if (const auto* power = find<std::int16_t>(now, "TxPower")) result.txPowerLevel = *power;
    return result;
}

std::optional<std::string> AdvertisedProperties::ownName(const std::string& path,
                                                         const Properties& now) const {
    const auto kept = advertised_.find(path);
    if (kept == advertised_.end() || !kept->second.contains("Name")) return std::nullopt;
    const auto* name = find<std::string>(now, "Name");
    return name ? std::optional(*name) : std::nullopt;
}

}  // namespace InkoraKit
