#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace InkoraTool {

/// The name of the operand that stands for standard input.
inline constexpr const char* standardInput = "-";

/// A file's name for people.
std::string shownName(const std::string& file);

/// A file, or standard input, that is read as far as it is asked for.
class InputFile {
public:
    /// @throws Failure when it cannot be read, as the other members do
    explicit InputFile(const std::string& file);

    /// The next line as soon as it is there, with its line feed; nothing at the end.
    std::optional<std::string> line();

    /// Adds all that is left.
    void appendRest(std::string& text);

private:
    struct Close {
        void operator()(std::FILE* stream) const;
    };

    [[noreturn]] void fail() const;

    std::string file_;
    std::unique_ptr<std::FILE, Close> stream_;
};

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
