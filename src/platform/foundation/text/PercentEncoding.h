#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace InkoraKit {

/// Whether the character may stand in the query of a URL as it is (RFC 3986, 3.4).
bool isAllowedInQuery(char character) noexcept;

/// Whether the text starts with "%" and two hexadecimal digits.
bool startsWithPercentEscape(std::string_view text) noexcept;

/// Whether "%" and two hexadecimal digits stand anywhere in the text.
bool hasPercentEscape(std::string_view text) noexcept;

/// The text with every byte that may not stand in a query written as "%" and two upper-case
/// hexadecimal digits; absent when the text is not well-formed UTF-8.
std::optional<std::string> addingPercentEncodingForQuery(std::string_view text);

}  // namespace InkoraKit
