#include <InkoraKit/platform/Data.h>

namespace InkoraKit {

Data::Data(std::span<const std::uint8_t> bytes) : bytes_(bytes.begin(), bytes.end()) {}

Data Data::fromText(std::string_view text) {
    Data data;
    data.bytes_ = text;
    return data;
}

std::string Data::description() const {
    return std::to_string(size()) + " bytes";
}

}  // namespace InkoraKit
