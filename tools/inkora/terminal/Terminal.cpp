#include "terminal/Terminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace InkoraTool {
namespace {

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

bool outputShowsTrueColour() {
    if (::isatty(STDOUT_FILENO) == 0 || !environment("NO_COLOR").empty()) return false;
    const std::string_view colours = environment("COLORTERM");
    return colours == "truecolor" || colours == "24bit";
}

}  // namespace InkoraTool
