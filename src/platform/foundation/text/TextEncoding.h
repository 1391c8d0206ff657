#pragma once

#include <InkoraKit/platform/StringEncoding.h>

#include "platform/foundation/text/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace InkoraKit {

/// The text in UTF-8; absent when the bytes are not valid in the encoding, or the encoding is none
/// of ascii, utf8, isoLatin1, utf16, utf16BE and utf16LE. A mark chooses the order of utf16 and is
/// taken off; without one the order is little-endian. Everywhere else a mark is a character.
std::optional<std::string> decoded(std::span<const std::uint8_t> bytes, StringEncoding encoding);

/// How a JSON text is encoded: utf8, or utf16 or utf32 of either order.
struct DetectedText {
    StringEncoding encoding = StringEncoding::utf8;
    std::size_t markSize = 0;  ///< Bytes of the byte order mark before the text.
};

/// Tells the encoding from the mark, else from where the zero bytes of the first characters stand
/// (the first two of a JSON text are ASCII, or the first alone where there is no second).
DetectedText detectEncoding(std::span<const std::uint8_t> bytes) noexcept;

/// The text behind the mark in UTF-8; absent when the bytes end amid a character or hold a lone
/// surrogate or a number above U+10FFFF. For utf8 this is a checked copy: a reader does better on
/// the bytes themselves.
std::optional<std::string> utf8FromDetected(std::span<const std::uint8_t> bytes,
                                            DetectedText detected);

/// Where in the original bytes, mark included, the character stands that starts at an offset of the
/// text that `utf8FromDetected` made of them.
std::size_t originalOffset(std::string_view text, std::size_t offset,
                           DetectedText detected) noexcept;

}  // namespace InkoraKit
