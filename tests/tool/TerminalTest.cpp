#include "terminal/ColourPatch.h"
#include "terminal/Terminal.h"
#include "terminal/TerminalEntry.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace InkoraTool {
namespace {

using enum TerminalColours;

TEST(TerminalColours, AreThoseThatTheEnvironmentTellsOf) {
    const struct {
        std::map<std::string, std::string> environment;
        TerminalColours colours;
    } cases[] = {
        {{}, none},
        {{{"TERM", "nobody-knows"}}, none},
        {{{"TERM", "nobody-knows-256color"}}, palette},
        {{{"TERM", "nobody-knows-direct"}}, direct},
        {{{"TERM", "nobody-knows"}, {"COLORTERM", "24bit"}}, direct},
        {{{"COLORTERM", "truecolor"}}, direct},
        {{{"COLORTERM", "truecolor"}, {"NO_COLOR", ""}}, direct},
        {{{"COLORTERM", "truecolor"}, {"NO_COLOR", "1"}}, none},
        {{{"COLORTERM", "truecolor"}, {"TERM", "dumb"}}, none},
        {{{"COLORTERM", "yes"}, {"TERM", "nobody-knows"}}, none},
        // In entries of every system that has any.
        {{{"TERM", "vt100"}}, none},
        {{{"TERM", "linux"}}, eight},
        {{{"TERM", "xterm"}}, eight},
        {{{"TERM", "xterm-256color"}}, palette},
        {{{"TERM", "xterm-256color"}, {"COLORTERM", "truecolor"}}, direct},
        {{{"TERM", "tmux-256color"}, {"TMUX", "/tmp/tmux"}}, palette},
        // The COLORTERM is the outer terminal's: tmux converts, screen does not.
        {{{"TERM", "tmux-256color"}, {"STY", "1"}, {"COLORTERM", "truecolor"}}, direct},
        {{{"TERM", "screen"}, {"TMUX", "/tmp/tmux"}, {"COLORTERM", "truecolor"}}, direct},
        {{{"TERM", "screen.xterm-256color"}, {"COLORTERM", "truecolor"}}, palette},
        {{{"TERM", "screen"}, {"STY", "1"}, {"COLORTERM", "truecolor"}}, eight},
        {{{"TERM", "screen"}, {"STY", "1"}, {"TMUX", "/tmp/tmux"}, {"COLORTERM", "truecolor"}},
         eight},
        {{{"TERM", "xterm-256color"}, {"STY", "1"}, {"COLORTERM", "truecolor"}}, palette}};
    for (const auto& [environment, colours] : cases) {
        std::string shown;
        for (const auto& [name, value] : environment) shown += name + '=' + value + ' ';
        const auto valueOf = [&variables = environment](const char* name) {
            const auto found = variables.find(name);
            return found == variables.end() ? "" : found->second;
        };
        if (colours == eight && !terminalEntry("xterm")) continue;  // built without terminfo
        EXPECT_EQ(terminalColours(valueOf), colours) << shown;
    }
}

TEST(ColourPatch, IsOfTheNearestColourThereIs) {
    const struct {
        Colour colour;
        TerminalColours colours;
        const char* background;
    } cases[] = {{{255, 128, 0}, direct, "48;2;255;128;0"},
                 {{255, 128, 0}, palette, "48;5;208"},
                 {{0, 0, 0}, palette, "48;5;16"},
                 {{255, 255, 255}, palette, "48;5;231"},
                 {{11, 9, 10}, palette, "48;5;232"},
                 {{128, 128, 128}, palette, "48;5;244"},
                 {{0, 0, 95}, palette, "48;5;17"},
                 {{255, 255, 255}, sixteen, "107"},
                 {{130, 128, 125}, sixteen, "100"},
                 {{190, 10, 0}, sixteen, "41"},
                 {{255, 0, 0}, sixteen, "101"},
                 {{255, 0, 0}, eight, "41"},
                 {{255, 255, 255}, eight, "47"}};
    for (const auto& [colour, colours, background] : cases)
        EXPECT_EQ(colourPatch(colour, colours),
                  std::string("\x1b[") + background + "m      \x1b[0m");
    EXPECT_EQ(colourPatch({255, 0, 0}, none), "");
}

}  // namespace
}  // namespace InkoraTool
