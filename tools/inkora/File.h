#pragma once

#include <string>
#include <string_view>

namespace InkoraTool {

/// The name of the operand that stands for standard input.
inline constexpr const char* standardInput = "-";

/// A file's name for people.
std::string shownName(const std::string& file);

/// What is in a file, or in standard input.
/// @throws Failure when it cannot be read
std::string readFile(const std::string& file);

/// Gives a regular file new contents, all at once, or makes one: whatever happens, there is what
/// was there before or what is new. Links to the file by name are followed; its permissions are
/// kept.
/// @throws Failure when that cannot be; the file is then as it was
void replaceFile(const std::string& file, std::string_view contents);

/// Whether `replaceFile` has a chance, before there is anything to be written.
/// @throws Failure when it has none
void requireReplaceable(const std::string& file);

}  // namespace InkoraTool
