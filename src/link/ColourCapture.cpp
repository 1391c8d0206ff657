#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/platform/NumberFormatter.h>

#include "link/Telling.h"
#include "platform/foundation/process/Fatal.h"

#include <charconv>
#include <string_view>
#include <vector>

// The values that the pen sends, and of them the colours.
namespace InkoraKit {
namespace {

constexpr char separator = '#';

void appendComponent(std::string& text, std::uint16_t word) {
    char digits[5];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), word).ptr;
    text.append(digits, end);
    text += separator;
}

/// The pieces of a text between separators, one after the other. Asking for more than there are is
/// fatal.
class Components {
public:
    explicit Components(std::string_view text) : rest_(text) {}

    std::string_view next() {
        if (isExhausted_) fatalError("Index out of range");
        const std::size_t end = rest_.find(separator);
        const std::string_view piece = rest_.substr(0, end);
        isExhausted_ = end == std::string_view::npos;
        if (!isExhausted_) rest_.remove_prefix(end + 1);
        return piece;
    }

private:
    std::string_view rest_;
    bool isExhausted_ = false;
};

double channel(std::string_view component) {
    const auto number = NumberFormatter().numberFromString(component);
    return number ? number->doubleValue() / 255.0 : 0.0;
}

}  // namespace

void InkoraHandler::peripheralDidUpdateValueForCharacteristic(
    const std::shared_ptr<CBPeripheral>&, const std::shared_ptr<CBCharacteristic>& characteristic,
    const std::optional<NSError>&) {
    printThisLineToConsole("peripheral => didUpdateValueFor characteristic");
    const std::string uuid = characteristic->uuid().uuidString();
    if (uuid == InkoraConstants::PeripeheralCharactersticUuid) {
        colourReceived(*characteristic);
    } else if (uuid == InkoraConstants::PeripeheralCharactersticBatteryUuid) {
        batteryLevelReceived(characteristic);
    }
}

void InkoraHandler::colourReceived(const CBCharacteristic& characteristic) {
    const std::optional<Data>& bytes = characteristic.value();
    if (!bytes) {
        printThisLineToConsole("No Value");
        return;
    }
    std::string value;
    int index = -1;
    for (const std::uint16_t word : *bytes) {
        if (++index > 0) appendComponent(value, word);  // the first byte is not of the colour
        printThisLineToConsole([&] { return "rec " + std::to_string(word); });
    }
    printThisLineToConsole([&] {
        return "read characterstics - " + printed(std::vector(bytes->begin(), bytes->end())) + " " +
               value;
    });
    if (capturedColorValue() != value) setCapturedColorValue(std::move(value));
}

void InkoraHandler::capturedColorValueChanged() {
    printThisLineToConsole("captured new value");
    if (!hasHostAndPen()) return;
    setCurrentState(ManagerState::DeviceCapturedColor);
    Components components(*unwrap(capturedColorValue()));
    const double red = channel(components.next());
    const double green = channel(components.next());
    const double blue = channel(components.next());
    printThisLineToConsole(red);
    printThisLineToConsole(green);
    printThisLineToConsole(blue);
    tell(delegate(), &InkoraProtocols::didPeripheralCaptured, UIColor(red, green, blue, 1.0));
}

bool InkoraHandler::hasHostAndPen() const {
    return delegate() && !deviceName().empty();
}

void InkoraHandler::didUpdateValueForPeripheralCharacterstic() {
    printThisLineToConsole("didUpdateValueForPeripheralCharacterstic");
    setCurrentState(ManagerState::DeviceCapturedColor);
}

}  // namespace InkoraKit
