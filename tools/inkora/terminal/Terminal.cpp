#include "terminal/Terminal.h"

#include "terminal/TerminalEntry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace InkoraTool {
namespace {

std::string valueOfVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// Whether it is GNU screen that draws the terminal. It shows no direct colours, and leaves a
/// COLORTERM that was meant for the terminal around it. So does tmux, which shows them as well as
/// they can be, and may say "screen" in its TERM too.
bool isScreen(const Environment& environment) {
    const std::string term = environment("TERM");
    if (term.starts_with("tmux")) return false;
    return !environment("STY").empty() ||
           (term.starts_with("screen") && environment("TMUX").empty());
}

TerminalColours coloursOf(const TerminalEntry& entry) {
    using enum TerminalColours;
    if (entry.isDirect) return direct;
    return entry.count >= 256  ? palette
           : entry.count >= 16 ? sixteen
           : entry.count >= 8  ? eight
                               : none;
}

/// Where nothing is known of a terminal.
TerminalColours coloursByName(const std::string& term) {
    return term.ends_with("-direct")     ? TerminalColours::direct
           : term.ends_with("-256color") ? TerminalColours::palette
                                         : TerminalColours::none;
}

}  // namespace

TerminalColours terminalColours(const Environment& environment) {
    const std::string term = environment("TERM"), direct = environment("COLORTERM");
    if (term == "dumb" || !environment("NO_COLOR").empty()) return TerminalColours::none;
    if ((direct == "truecolor" || direct == "24bit") && !isScreen(environment))
        return TerminalColours::direct;
    const auto entry = terminalEntry(term);
    return entry ? coloursOf(*entry) : coloursByName(term);
}

TerminalColours coloursOfOutput() {
    if (::isatty(STDOUT_FILENO) == 0) return TerminalColours::none;
    return terminalColours(valueOfVariable);
}

bool canTakeLinesBack() {
    const std::string term = valueOfVariable("TERM");
    struct stat output {};
    const bool isPiped = ::fstat(STDOUT_FILENO, &output) != 0 || S_ISFIFO(output.st_mode);
    return !term.empty() && term != "dumb" && !isPiped && ::tcgetpgrp(STDERR_FILENO) == ::getpgrp();
}

}  // namespace InkoraTool
