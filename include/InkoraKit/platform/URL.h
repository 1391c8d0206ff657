#pragma once

#include <InkoraKit/Export.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace InkoraKit {

/// A uniform resource locator: a text of legal characters, kept exactly as it was written.
class INKORA_EXPORT URL {
public:
    /// Takes a text as it stands: nothing is escaped, folded or added. Absent when the text is
    /// empty or holds a character that RFC 2396 and RFC 2732 allow in no URL (a blank, a control,
    /// one of `<>\^{|}`, a quotation mark or a backtick, anything outside ASCII), a "%" that no two
    /// hexadecimal digits follow, or a second "#". No structure is asked for: "a" and "?q=1" are
    /// relative references.
    static std::optional<URL> fromString(std::string_view text);

    /// The text.
    const std::string& absoluteString() const noexcept { return text_; }
    const std::string& description() const noexcept { return text_; }

    /// Whether the texts are equal, byte by byte.
    friend bool operator==(const URL&, const URL&) = default;

private:
    explicit URL(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

}  // namespace InkoraKit

template <>
struct INKORA_EXPORT std::hash<InkoraKit::URL> {
    std::size_t operator()(const InkoraKit::URL& url) const noexcept;
};
