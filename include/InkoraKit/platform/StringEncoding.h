#pragma once

#include <cstdint>

namespace InkoraKit {

/// The encodings of text, by the numbers under which hosts may have stored them.
///
/// Where the name leaves the byte order open (`utf16`, `utf32`), a byte order mark tells it.
enum class StringEncoding : std::uint32_t {
    ascii = 1,             ///< ASCII: seven bits.
    utf8 = 4,              ///< UTF-8.
    isoLatin1 = 5,         ///< ISO 8859-1: every byte is the code point of its value.
    utf16 = 10,            ///< UTF-16, in the order of its mark.
    windowsCP1252 = 12,    ///< Windows code page 1252.
    utf16BE = 0x90000100,  ///< UTF-16, big-endian, no mark.
    utf16LE = 0x94000100,  ///< UTF-16, little-endian, no mark.
    utf32 = 0x8C000100,    ///< UTF-32, in the order of its mark.
    utf32BE = 0x98000100,  ///< UTF-32, big-endian, no mark.
    utf32LE = 0x9C000100,  ///< UTF-32, little-endian, no mark.
};

}  // namespace InkoraKit
