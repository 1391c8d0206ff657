#pragma once

#include "Command.h"

#include <string>
#include <string_view>

namespace InkoraTool {

/// The program's man page, in roff with the macros of man(7): a text in it, but for the lines that
/// ask for what the commands say of themselves:
/// - `@header 2026-12-24`, with the date of the text
/// - `@synopsis`
/// - `@command json get`; what else there is to be said of it can follow
/// - `@commands`: all that are nowhere asked for by name
/// - `@footer Examples:`: what follows such a line in the program's help
/// @throws Failure when a line asks for anything else
std::string manPage(const Command& program, const std::string& version, std::string_view text);

}  // namespace InkoraTool
