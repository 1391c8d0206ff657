#include "platform/foundation/text/PercentEncoding.h"

#include "platform/foundation/text/Characters.h"
#include "platform/foundation/text/Utf8.h"

namespace InkoraKit {

bool isAllowedInQuery(char character) noexcept {
    constexpr std::string_view punctuation = "!$&'()*+,-./:;=?@_~";
    return isLetter(character) || isDigit(character) ||
           punctuation.find(character) != std::string_view::npos;
}

bool startsWithPercentEscape(std::string_view text) noexcept {
    return text.size() >= 3 && text[0] == '%' && isHexDigit(text[1]) && isHexDigit(text[2]);
}

bool hasPercentEscape(std::string_view text) noexcept {
    for (auto i = text.find('%'); i != std::string_view::npos; i = text.find('%', i + 1))
        if (startsWithPercentEscape(text.substr(i))) return true;
    return false;
}

std::optional<std::string> addingPercentEncodingForQuery(std::string_view text) {
    if (!isUtf8(text)) return std::nullopt;
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(text.size());
    for (const char character : text) {
        if (isAllowedInQuery(character)) {
            encoded += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        encoded += '%';
        encoded += digits[byte >> 4];
        encoded += digits[byte & 0x0F];
    }
    return encoded;
}

}  // namespace InkoraKit
