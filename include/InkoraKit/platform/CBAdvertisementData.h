#pragma once

namespace InkoraKit {

/// The keys of the dictionary that describes an advertisement. Any of them may be missing.
inline constexpr const char* CBAdvertisementDataLocalNameKey = "kCBAdvDataLocalName";  ///< text
/// `std::vector<CBUUID>`
inline constexpr const char* CBAdvertisementDataServiceUUIDsKey = "kCBAdvDataServiceUUIDs";
/// `Data`
inline constexpr const char* CBAdvertisementDataManufacturerDataKey = "kCBAdvDataManufacturerData";
/// `std::map<CBUUID, Data>`
inline constexpr const char* CBAdvertisementDataServiceDataKey = "kCBAdvDataServiceData";
/// `NSNumber`, dBm
inline constexpr const char* CBAdvertisementDataTxPowerLevelKey = "kCBAdvDataTxPowerLevel";
/// `NSNumber`, 0 or 1
inline constexpr const char* CBAdvertisementDataIsConnectable = "kCBAdvDataIsConnectable";

}  // namespace InkoraKit
