#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Dictionary.h>
#include <InkoraKit/platform/NSObject.h>

#include <optional>
#include <string_view>

namespace InkoraKit {

/// Helpers for the data that hosts exchange.
class INKORA_EXPORT InkoraGlobalData : public NSObject {
public:
    /// The members of a JSON text whose outermost value is a dictionary. Absent for every other
    /// text; one that is not JSON at all leaves the reason on the console. May be called on any
    /// thread.
    static std::optional<Dictionary> convertToDictionary(std::string_view text);
};

}  // namespace InkoraKit
