#include <InkoraKit/platform/NumberFormatter.h>

#include "platform/foundation/numbers/NumberText.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace InkoraKit {

namespace {

std::string_view withoutLeadingBlanks(std::string_view text) noexcept {
    constexpr std::string_view noBreakSpace = "\u00a0";
    while (true) {
        if (text.starts_with(' ') || text.starts_with('\t')) {
            text.remove_prefix(1);
        } else if (text.starts_with(noBreakSpace)) {
            text.remove_prefix(noBreakSpace.size());
        } else {
            return text;
        }
    }
}

}  // namespace

std::optional<NSNumber> NumberFormatter::numberFromString(std::string_view text) const {
    text = withoutLeadingBlanks(text);

    std::int64_t integer = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, integer);
    if (result.ptr == end && result.ec == std::errc()) return integer;

    const double real = realFromText(text);
    if (!std::isfinite(real)) return std::nullopt;
    if (text.find('.') != std::string_view::npos) return real;

    // Without a point, an exponent makes an integer as good as digits do ("1e3").
    const NSDecimalNumber exact(text);
    const std::int64_t wrapped = exact.integerValue();
    if (exact == wrapped) return wrapped;
    return real;
}

}  // namespace InkoraKit
