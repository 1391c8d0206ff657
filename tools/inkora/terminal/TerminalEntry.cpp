#include "terminal/TerminalEntry.h"

#ifdef INKORA_TERMINFO
// This one has macros for many an ordinary word, and is included here alone.
#define NCURSES_NOMACROS
#include <curses.h>
#include <term.h>
#endif

#include <cstdint>
#include <string_view>

namespace InkoraTool {
#ifdef INKORA_TERMINFO
namespace {

// The functions promise not to change the names, but old headers do not say so.
char* nameOf(const char* capability) {
    return const_cast<char*>(capability);
}

/// Null where there is none; -1 stands for what is no text.
const char* textOf(const char* capability) {
    const char* const text = tigetstr(nameOf(capability));
    return reinterpret_cast<std::intptr_t>(text) == -1 ? nullptr : text;
}

/// An extension, which entries have as a flag, a number or a text.
bool has(const char* capability) {
    return tigetflag(nameOf(capability)) > 0 || tigetnum(nameOf(capability)) > 0 ||
           textOf(capability);
}

/// Whether a background is set as ECMA-48 says.
bool setsBackgroundsByEcma48() {
    const char* const text = textOf("setab");
    return text && std::string_view(text).starts_with("\x1b[");
}

}  // namespace

std::optional<TerminalEntry> terminalEntry(const std::string& name) {
    int result = 0;
    if (setupterm(name.c_str(), 1, &result) != OK) return std::nullopt;
    TerminalEntry entry;
    if (setsBackgroundsByEcma48())
        entry = {.count = tigetnum(nameOf("colors")), .isDirect = has("RGB") || has("Tc")};
    del_curterm(cur_term);
    return entry;
}
#else
std::optional<TerminalEntry> terminalEntry(const std::string&) {
    return std::nullopt;
}
#endif
}  // namespace InkoraTool
