#pragma once

#include <InkoraKit/platform/NSError.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace InkoraTool {

/// Why the JSON reader or writer failed, in its own words.
std::string reasonOf(const InkoraKit::NSError& error);

/// Where in a file a text starts.
struct TextStart {
    std::ptrdiff_t line = 1;
    std::size_t byte = 0;
};

/// What is wrong with a text and where, for people: with the line in question, or what of it is
/// near, and a caret below the place. Characters that a terminal would obey and bytes that are no
/// UTF-8 are shown as one character each.
std::string jsonTextFault(std::string_view name, std::string_view text,
                          const InkoraKit::NSError& error, const TextStart& start = {});

}  // namespace InkoraTool
