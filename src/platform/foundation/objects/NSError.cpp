#include <InkoraKit/platform/NSError.h>

#include "platform/foundation/objects/CocoaErrorCodes.h"

#include <optional>
#include <utility>

namespace InkoraKit {
namespace {

std::optional<std::string> textFor(const Dictionary& userInfo, const char* key) {
    const auto entry = userInfo.find(key);
    if (entry == userInfo.end()) return std::nullopt;
    return entry->second.as<std::string>();
}

// What the error says of itself beyond its domain and code.
std::optional<std::string> ownDescription(const std::string& domain, std::int64_t code,
                                          const Dictionary& userInfo) {
    if (auto text = textFor(userInfo, NSLocalizedDescriptionKey)) return text;
    if (const auto reason = textFor(userInfo, NSLocalizedFailureReasonErrorKey))
        return "The operation couldn’t be completed. " + *reason;
    if (domain == NSCocoaErrorDomain && code == propertyListReadCorruptError)
        return "The data couldn’t be read because it isn’t in the correct format.";
    return std::nullopt;
}

std::string describeByCode(const std::string& domain, std::int64_t code) {
    const std::string shown = domain == NSCocoaErrorDomain ? "Cocoa" : domain;
    return "The operation couldn’t be completed. (" + shown + " error " + std::to_string(code) +
           ".)";
}

}  // namespace

struct NSError::Contents {
    Contents(std::string domainText, std::int64_t number, Dictionary information)
        : domain(std::move(domainText)),
          code(number),
          userInfo(std::move(information)),
          own(ownDescription(domain, code, userInfo)),
          localizedDescription(own ? *own : describeByCode(domain, code)) {}

    std::string domain;
    std::int64_t code;
    Dictionary userInfo;
    std::optional<std::string> own;
    std::string localizedDescription;
};

NSError::NSError(std::string domain, std::int64_t code, Dictionary userInfo)
    : contents_(std::make_shared<Contents>(std::move(domain), code, std::move(userInfo))) {}

const std::string& NSError::domain() const noexcept {
    return contents_->domain;
}
std::int64_t NSError::code() const noexcept {
    return contents_->code;
}
const Dictionary& NSError::userInfo() const noexcept {
    return contents_->userInfo;
}

const std::string& NSError::localizedDescription() const noexcept {
    return contents_->localizedDescription;
}

const char* NSError::what() const noexcept {
    return contents_->localizedDescription.c_str();
}

std::string NSError::description() const {
    std::string text = "Error Domain=" + domain() + " Code=" + std::to_string(code()) + " \"" +
                       contents_->own.value_or("(null)") + "\"";
    if (userInfo().empty()) return text;
    const char* separator = " UserInfo={";
    for (const auto& [key, value] : userInfo()) {
        text += separator + std::string(key) + "=" + value.description();
        separator = ", ";
    }
    return text + "}";
}

bool operator==(const NSError& left, const NSError& right) {
    return left.domain() == right.domain() && left.code() == right.code() &&
           left.userInfo() == right.userInfo();
}

}  // namespace InkoraKit

std::size_t std::hash<InkoraKit::NSError>::operator()(
    const InkoraKit::NSError& error) const noexcept {
    return std::hash<std::string>{}(error.domain()) ^
           (std::hash<std::int64_t>{}(error.code()) << 1);
}
