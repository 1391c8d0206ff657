#include "palette/PaletteFile.h"

#include "Failure.h"
#include "File.h"
#include "palette/WebColours.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
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

Palette read(const std::string& file, const PaletteFormat& format) {
    const std::string text = readFile(file);
    try {
        return format.read(text);
    } catch (const PaletteFault& fault) {
        throw Failure(ExitStatus::malformed, shownName(file) + fault.what());
    }
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
    std::error_code unknown;
    if (std::filesystem::exists(file, unknown)) palette_ = read(file, format_);
    requireReplaceable(file);
    if (palette_.title.empty()) palette_.title = titleOf(file);
}

void PaletteFile::add(const Colour& colour) {
    auto& swatches = palette_.swatches;
    if (!swatches.empty() && swatches.back().colour == colour) return;
    swatches.push_back({colour, std::string(nearestWebColour(colour).name), timeNow()});
    isChanged_ = true;
}

void PaletteFile::replaceBy(Palette palette) {
    palette_ = std::move(palette);
    isChanged_ = true;
}

void PaletteFile::save() {
    if (std::exchange(isChanged_, false)) replaceFile(file_, format_.write(palette_));
}

Palette readPalette(const std::string& file) {
    Palette palette = read(file, formatOf(file == standardInput ? ".json" : file));
    if (palette.title.empty()) palette.title = titleOf(file);
    return palette;
}

}  // namespace InkoraTool
