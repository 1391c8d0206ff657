#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSError.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace InkoraKit {

/// Key of a reading error's user information: the byte offset of the fault, an `NSNumber`.
inline constexpr const char* NSJSONSerializationErrorIndexKey = "NSJSONSerializationErrorIndex";

/// Reads and writes JSON text (RFC 8259).
///
/// Reading gives an `Array`, a `Dictionary`, or, where fragments are allowed, any other value:
/// numbers as `NSNumber`, null as `NSNull`. Integers of 64 bits, signed or unsigned, are exact, as
/// are decimals of up to 38 digits that a double would not hold; of two members with one key the
/// last one counts. Texts are UTF-8, UTF-16 or UTF-32, with or without a mark. At most 512 arrays
/// and dictionaries may be nested.
///
/// Every failure is an `NSError` of the domain `NSCocoaErrorDomain` with the code 3840. Under
/// `NSDebugDescriptionErrorKey` it holds the reason with line (from 1) and column (in bytes, from
/// 0), under `NSJSONSerializationErrorIndexKey` the byte offset of the fault.
///
/// Threads: any; no state is kept between calls.
class INKORA_EXPORT JSONSerialization {
public:
    /// Combine with `|`. The values are those that hosts store; unknown bits are ignored.
    enum class ReadingOptions : std::uint32_t {
        none = 0,               ///< A text holds an array or a dictionary.
        mutableContainers = 1,  ///< Without effect: every value can be changed.
        mutableLeaves = 2,      ///< Without effect: every value can be changed.
        allowFragments = 4      ///< A text may hold a single number, text, truth value or null.
    };
    /// Combine with `|`; unknown bits are ignored.
    enum class WritingOptions : std::uint32_t {
        none = 0,            ///< On one line, members in their order, "/" escaped.
        prettyPrinted = 1,   ///< One element or member a line, indented by two blanks a level.
        sortedKeys = 2,      ///< Members by key: letters of either case alike, numbers by value.
        allowFragments = 4,  ///< A single number, text, truth value or null may be written.
        withoutEscapingSlashes = 8  ///< "/" as it is instead of "\/".
    };

    /// @throws NSError when the bytes are no such text; nothing of them is then kept.
    static Any jsonObject(const Data& data, ReadingOptions options = ReadingOptions::none);
    /// The same for a text that is in memory as UTF-8, without copying it into a `Data` first.
    static Any jsonObject(std::string_view text, ReadingOptions options = ReadingOptions::none);

    /// Whether the value can be written: an array or a dictionary, in it only texts, null or absent
    /// values and finite numbers, at most 512 levels deep, elements counted as a level.
    static bool isValidJSONObject(const Any& object);

    /// The value as UTF-8 text, without a line break at the end.
    /// @throws NSError when it cannot be written.
    static Data data(const Any& object, WritingOptions options = WritingOptions::none);
    /// The same as a string.
    static std::string text(const Any& object, WritingOptions options = WritingOptions::none);
};

/// What either asks for.
constexpr JSONSerialization::ReadingOptions operator|(JSONSerialization::ReadingOptions left,
                                                      JSONSerialization::ReadingOptions right) {
    return static_cast<JSONSerialization::ReadingOptions>(static_cast<std::uint32_t>(left) |
                                                          static_cast<std::uint32_t>(right));
}
constexpr JSONSerialization::WritingOptions operator|(JSONSerialization::WritingOptions left,
                                                      JSONSerialization::WritingOptions right) {
    return static_cast<JSONSerialization::WritingOptions>(static_cast<std::uint32_t>(left) |
                                                          static_cast<std::uint32_t>(right));
}

}  // namespace InkoraKit
