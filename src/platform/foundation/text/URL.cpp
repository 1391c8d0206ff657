#include <InkoraKit/platform/URL.h>

#include "platform/foundation/text/PercentEncoding.h"

namespace InkoraKit {
namespace {

bool isLegal(std::string_view text) {
    bool hasFragment = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (isAllowedInQuery(character) || character == '[' || character == ']') continue;
        if (startsWithPercentEscape(text.substr(i))) continue;
        if (character != '#' || hasFragment) return false;
        hasFragment = true;
    }
    return true;
}

}  // namespace

std::optional<URL> URL::fromString(std::string_view text) {
    if (text.empty() || !isLegal(text)) return std::nullopt;
    return URL(std::string(text));
}

}  // namespace InkoraKit

std::size_t std::hash<InkoraKit::URL>::operator()(const InkoraKit::URL& url) const noexcept {
    return std::hash<std::string>{}(url.absoluteString());
}
