#include <InkoraKit/platform/Data.h>

#include <utility>

namespace InkoraKit {

Data::Data(std::span<const std::uint8_t> bytes) : bytes_(bytes.begin(), bytes.end()) {}

Data Data::fromText(std::string text) {
    Data data;
    data.bytes_ = std::move(text);
    return data;
}

std::string Data::description() const {
    return std::to_string(size()) + " bytes";
}

}  // namespace InkoraKit
