#pragma once

#include "Command.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraTool {

/// A word of a command line that is known beforehand: an option, a command or a choice.
struct Word {
    std::string text;
    std::string help;
};

// What is understood without being defined: by every command, and by the program.
inline constexpr const char* helpHelp = "Prints this help and ends";
inline constexpr const char* versionHelp = "Prints the version and ends";

/// What can stand next in a command line: one of the words, or the name of a file, or else anything
/// that nobody knows beforehand.
struct Next {
    std::vector<Word> words = {};
    bool isFile = false;
    std::string before = {};  ///< stands in front of both: `--radio=`
};

/// How far a command line is understood.
class CommandPlace {
public:
    explicit CommandPlace(const Command& program) : program_(&program), command_(&program) {}

    /// What a word that begins so can be.
    Next next(std::string_view beginning) const;

    /// Goes on behind a word, whether it is a right one or not.
    void pass(const std::string& word);

private:
    std::vector<Word> options() const;
    const Option* optionNamed(std::string_view name) const;
    const Operand* operand() const;

    const Command* program_;
    const Command* command_;
    const Option* awaitingValue_ = nullptr;
    std::size_t operandsPassed_ = 0;
    bool areOptionsOver_ = false;
};

}  // namespace InkoraTool
