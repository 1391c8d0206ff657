#include <InkoraKit/JSON.h>

#include <charconv>
#include <iterator>
#include <ostream>

namespace InkoraKit {

namespace {

Index<Any> positionIn(Type type, std::int64_t position) noexcept {
    switch (type) {
        case Type::array:
            return Index<Any>::array(position);
        case Type::dictionary:
            return Index<Any>::dictionary(position);
        default:
            return Index<Any>::null();
    }
}

}  // namespace

JSON::Index JSON::startIndex() const noexcept {
    return positionIn(type(), 0);
}

JSON::Index JSON::endIndex() const noexcept {
    return positionIn(type(), static_cast<std::int64_t>(count()));
}

JSON::Index JSON::indexAfter(const Index& position) const noexcept {
    if (const auto index = position.arrayPosition()) return Index::array(*index + 1);
    if (const auto index = position.dictionaryPosition()) return Index::dictionary(*index + 1);
    return Index::null();
}

std::pair<std::string, JSON> JSON::operator[](const Index& position) const {
    const auto isWithin = [this](const std::optional<std::int64_t>& index, Type container) {
        return index && type() == container && static_cast<std::uint64_t>(*index) < count();
    };
    if (const auto index = position.arrayPosition(); isWithin(index, Type::array))
        return {std::to_string(*index), elements()[static_cast<std::size_t>(*index)]};
    if (const auto index = position.dictionaryPosition(); isWithin(index, Type::dictionary)) {
        const auto [key, value] =
            *std::next(members().begin(), static_cast<std::ptrdiff_t>(*index));
        return {std::string(key), value};
    }
    return {};
}

std::string_view JSONMemberKey::positionText() const noexcept {
    if (digitCount_ == 0) {
        const char* const end =
            std::to_chars(digits_.data(), digits_.data() + digits_.size(), position_).ptr;
        digitCount_ = static_cast<std::uint8_t>(end - digits_.data());
    }
    return {digits_.data(), digitCount_};
}

std::ostream& operator<<(std::ostream& stream, const JSONMemberKey& key) {
    return stream << key.view();
}

}  // namespace InkoraKit
