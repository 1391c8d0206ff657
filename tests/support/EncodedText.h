#pragma once

#include <iconv.h>

#include <string>

namespace InkoraKit {

/// The text, which is in UTF-8, in an encoding by its usual name, such as UTF-16LE.
inline std::string encodedText(std::string text, const std::string& encoding) {
    std::string bytes(4 * text.size(), '\0');
    char* from = text.data();
    char* to = bytes.data();
    std::size_t fromSize = text.size();
    std::size_t room = bytes.size();
    const iconv_t converter = iconv_open(encoding.c_str(), "UTF-8");
    iconv(converter, &from, &fromSize, &to, &room);
    iconv_close(converter);
    return bytes.substr(0, bytes.size() - room);
}

}  // namespace InkoraKit
