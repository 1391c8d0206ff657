#include "Command.h"
#include "palette/PaletteFile.h"

#include <memory>
#include <string>

namespace InkoraTool {
namespace {

constexpr const char* paletteFooter =
    R"(What a file is follows from its name: .json, .gpl (GIMP), .ase (Adobe Swatch Exchange), .css
(custom properties), .svg and .html (one page by itself). Each can be FROM and TO; of .svg and .html
those that inkora has written can be read, and of .css rules of :root with values like #FF8000.
.json, .svg and .html keep the times of capture, all but .ase and .css the title.

Exit status:
   0  done
   1  TO cannot be written
   2  the command line is wrong
   3  a file cannot be read
   4  FROM is no palette; or TO is there and is none, and stays as it is
)";

struct PaletteOptions {
    std::string from;
    std::string to;
};

ExitStatus convert(const PaletteOptions& options) {
    const Palette palette = readPalette(options.from);
    PaletteFile(options.to).replaceBy(palette);
    return ExitStatus::success;
}

}  // namespace

Command paletteCommand() {
    const auto options = std::make_shared<PaletteOptions>();
    return {
        .name = "palette",
        .help = "Converts a palette, such as watch --palette keeps",
        .operands = {{.name = "FROM",
                      .help = "The palette; - is JSON from standard input",
                      .into = &options->from,
                      .isFile = true},
                     {.name = "TO",
                      .help = "What becomes of it: another palette is replaced",
                      .into = &options->to,
                      .isFile = true}},
        .footer = paletteFooter,
        .run = [options] { return convert(*options); },
    };
}

}  // namespace InkoraTool
