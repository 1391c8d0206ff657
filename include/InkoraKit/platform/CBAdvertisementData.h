#pragma once

namespace InkoraKit {

/// Keys of the dictionary that describes an advertisement, any of which may be missing. This one:
/// the advertised name, a text.
inline constexpr const char* CBAdvertisementDataLocalNameKey = "kCBAdvDataLocalName";
/// The services that the device announces: `std::vector<CBUUID>`.
inline constexpr const char* CBAdvertisementDataServiceUUIDsKey = "kCBAdvDataServiceUUIDs";
/// What its maker adds, the company's identifier first: `Data`.
inline constexpr const char* CBAdvertisementDataManufacturerDataKey = "kCBAdvDataManufacturerData";
/// What it says for services: `std::map<CBUUID, Data>`.
inline constexpr const char* CBAdvertisementDataServiceDataKey = "kCBAdvDataServiceData";
/// The strength that it sends with: `NSNumber`, dBm.
inline constexpr const char* CBAdvertisementDataTxPowerLevelKey = "kCBAdvDataTxPowerLevel";
/// Whether it takes connections: `NSNumber`, 0 or 1.
inline constexpr const char* CBAdvertisementDataIsConnectable = "kCBAdvDataIsConnectable";

}  // namespace InkoraKit
