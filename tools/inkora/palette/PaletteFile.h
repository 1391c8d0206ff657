#pragma once

#include "palette/PaletteFormat.h"

#include <string>

namespace InkoraTool {

/// A palette in a file, in the format of its ending. What the file holds already stays ahead of
/// what is added; a file that holds no palette is never written to.
class PaletteFile {
public:
    /// Reads the file, if it is there.
    /// @throws Failure when it is no palette, or could not be written
    explicit PaletteFile(const std::string& file);

    /// Adds a colour as captured now, unless it is the last one: a pen tells that again when it is
    /// connected.
    void add(const Colour& colour);

    /// The palette instead of what the file held.
    void replaceBy(Palette palette);

    /// Writes what has changed since the last time.
    /// @throws Failure when that cannot be; the file is then as it was
    void save();

private:
    std::string file_;
    const PaletteFormat& format_;
    Palette palette_;
    bool isChanged_ = false;
};

/// The palette in a file, or in standard input (`-`, as JSON).
/// @throws Failure when it cannot be read, or is none
Palette readPalette(const std::string& file);

}  // namespace InkoraTool
