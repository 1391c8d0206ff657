#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/NSNumber.h>

#include <optional>
#include <string_view>

namespace InkoraKit {

/// Reads numbers written by people, with the settings a new formatter has: no number style, no
/// grouping, the point as decimal separator whatever the locale.
class INKORA_EXPORT NumberFormatter {
public:
    /// The number that the whole text denotes: an integer ("255", "-5", "1e3") when it fits into
    /// 64 bits and is written without a point, else a double ("12.5", ".5", "12.").
    /// Leading blanks are skipped.
    /// @return absent for anything else, such as "", "+5", "12 ", "1,000", "0x10", "NaN", or a
    /// number too large for a double.
    std::optional<NSNumber> numberFromString(std::string_view text) const;
};

}  // namespace InkoraKit
