#pragma once

#include "palette/PaletteFormat.h"

#include <optional>
#include <string>
#include <vector>

namespace InkoraTool {

/// A file that holds a palette, or will, in the format of its ending. A file that holds anything
/// else is never written to.
class PaletteFile {
public:
    /// Looks at the file, if it is there.
    /// @throws Failure when it is no palette, or could not be written
    explicit PaletteFile(const std::string& file);

    /// Writes the palette in place of what the file holds.
    /// @throws Failure when that cannot be; the file is then as it was
    void replaceBy(const Palette& palette) const;

    /// Takes a colour as captured now, unless it is the last one: a pen tells that again when it is
    /// connected.
    void add(const Colour& colour);

    /// Writes what was added behind what the file holds by now.
    /// @throws Failure when that cannot be; the file is then as it was
    void save();

private:
    Palette held() const;

    std::string file_;
    const PaletteFormat& format_;
    std::vector<Swatch> added_;
    std::optional<Colour> last_;
};

/// The palette in a file, or in standard input (`-`, as JSON).
/// @throws Failure when it cannot be read, or is none
Palette readPalette(const std::string& file);

}  // namespace InkoraTool
