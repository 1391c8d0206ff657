#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Any.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <string>

namespace InkoraKit {

/// Keys of an error's user information: what has happened, and why, for people; what has happened,
/// for developers; and the `NSError` behind it.
inline constexpr const char* NSLocalizedDescriptionKey = "NSLocalizedDescription";
inline constexpr const char* NSLocalizedFailureReasonErrorKey = "NSLocalizedFailureReason";
inline constexpr const char* NSDebugDescriptionErrorKey = "NSDebugDescription";
inline constexpr const char* NSUnderlyingErrorKey = "NSUnderlyingError";

/// The domain of the platform layer's own errors.
inline constexpr const char* NSCocoaErrorDomain = "NSCocoaErrorDomain";

/// An immutable error value: a domain, a code within it, and further information by key. Also what
/// an operation that fails to its caller throws.
class INKORA_EXPORT NSError : public std::exception {
public:
    /// @param userInfo further information, by the keys above or any others
    NSError(std::string domain, std::int64_t code, Dictionary userInfo = {});

    /// What it was made of. A reference is valid for as long as a copy of the error lives.
    const std::string& domain() const noexcept;
    std::int64_t code() const noexcept;
    const Dictionary& userInfo() const noexcept;

    /// The user information's description if it has one, else a sentence made from its failure
    /// reason, or from the domain and the code.
    const std::string& localizedDescription() const noexcept;

    /// `Error Domain=D Code=C "T" UserInfo={k=v}`, for logs.
    std::string description() const;

    /// `localizedDescription()`.
    const char* what() const noexcept override;

    /// Whether domain, code and user information are equal.
    friend INKORA_EXPORT bool operator==(const NSError& left, const NSError& right);

private:
    struct Contents;
    std::shared_ptr<const Contents> contents_;
};

}  // namespace InkoraKit

template <>
struct INKORA_EXPORT std::hash<InkoraKit::NSError> {
    std::size_t operator()(const InkoraKit::NSError& error) const noexcept;
};
