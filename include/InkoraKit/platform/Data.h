#pragma once

#include <InkoraKit/Export.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace InkoraKit {

/// A byte buffer, held by value. Short values (a colour, a battery level) need no heap.
class INKORA_EXPORT Data {
public:
    /// A copy of the bytes, or none.
    Data() = default;
    Data(std::initializer_list<std::uint8_t> bytes)
        : Data(std::span<const std::uint8_t>(bytes.begin(), bytes.size())) {}
    explicit Data(std::span<const std::uint8_t> bytes);

    /// The bytes of a text, as they stand.
    static Data fromText(std::string text);

    /// The bytes as a range, which lives until the buffer changes or ends. A position is one below
    /// `size()`.
    std::size_t size() const noexcept { return bytes_.size(); }
    bool empty() const noexcept { return bytes_.empty(); }
    const std::uint8_t* data() const noexcept {
        return reinterpret_cast<const std::uint8_t*>(bytes_.data());
    }
    const std::uint8_t* begin() const noexcept { return data(); }
    const std::uint8_t* end() const noexcept { return data() + size(); }
    std::uint8_t operator[](std::size_t index) const noexcept { return data()[index]; }

    /// Two lower-case hexadecimal digits a byte, nothing between them.
    std::string hexEncodedString() const;

    /// "4 bytes", as the console shows a buffer.
    std::string description() const;

    /// Whether both hold the same bytes.
    friend bool operator==(const Data&, const Data&) = default;

private:
    // A string, for the room it keeps inside itself for short values.
    std::string bytes_;
};

}  // namespace InkoraKit
