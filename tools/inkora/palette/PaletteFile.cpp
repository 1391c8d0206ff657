#include "palette/PaletteFile.h"

#include "Failure.h"
#include "File.h"
#include "palette/WebColours.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

namespace InkoraTool {
namespace {

const PaletteFormat& formatOf(const std::string& file) {
    if (const PaletteFormat* const format = paletteFormatOf(file)) return *format;
    std::string endings;
    for (const PaletteFormat& format : paletteFormats()) {
        endings += endings.empty() ? "" : ", ";
        endings += format.ending;
    }
    throw Failure(ExitStatus::usage,
                  shownName(file) + ": a palette's name ends with one of " + endings);
}

std::string titleOf(const std::string& file) {
    return file == standardInput ? "palette" : std::filesystem::path(file).stem().string();
}

/// With milliseconds, in UTC (RFC 3339).
std::string timeNow() {
    using namespace std::chrono;
    const auto now = floor<milliseconds>(system_clock::now());
    const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(now));
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 32> text;
    const std::size_t size = std::strftime(text.data(), text.size(), "%FT%T.", &parts);
    const std::string digits = std::to_string(1000 + now.time_since_epoch().count() % 1000);
    return std::string(text.data(), size) + digits.substr(1) + 'Z';
}

}  // namespace

PaletteFile::PaletteFile(const std::string& file) : file_(file), format_(formatOf(file)) {
    requireReplaceable(file);
    const Palette palette = held();
    if (!palette.swatches.empty()) last_ = palette.swatches.back().colour;
}

void PaletteFile::replaceBy(const Palette& palette) const {
    replaceFile(file_, format_.write(palette));
}

void PaletteFile::add(const Colour& colour) {
    if (colour == last_) return;
    added_.push_back({colour, std::string(nearestWebColour(colour).name), timeNow()});
    last_ = colour;
}

void PaletteFile::save() {
    if (added_.empty()) return;
    Palette palette = held();
    for (Swatch& swatch : std::exchange(added_, {})) palette.swatches.push_back(std::move(swatch));
    replaceBy(palette);
}

Palette PaletteFile::held() const {
    std::error_code unknown;
    if (std::filesystem::exists(file_, unknown)) return readPalette(file_);
    return {titleOf(file_), {}};
}

Palette readPalette(const std::string& file) {
    const PaletteFormat& format = formatOf(file == standardInput ? ".json" : file);
    const std::string text = readFile(file);
    try {
        Palette palette = format.read(text);
        if (palette.title.empty()) palette.title = titleOf(file);
        return palette;
    } catch (const PaletteFault& fault) {
        throw Failure(ExitStatus::malformed, shownName(file) + fault.what());
    }
}

}  // namespace InkoraTool
