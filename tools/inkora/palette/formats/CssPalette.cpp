#include "Utf8.h"
#include "palette/Lines.h"
#include "palette/WebColours.h"
#include "palette/formats/Formats.h"

#include <algorithm>
#include <map>
#include <set>

namespace InkoraTool {
namespace {

constexpr std::string_view cssBlanks = " \t\r\n\f";

/// What may stand in a name unescaped (CSS Syntax Module Level 3).
bool isNameByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' || (c & 0x80);
}

/// Lower case, with a hyphen for each run of other characters.
std::string propertyName(const std::string& name) {
    std::string property;
    for (const char c : printableText(name)) {
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        if (isNameByte(lower)) {
            property += lower;
        } else if (!property.empty() && property.back() != '-') {
            property += '-';
        }
    }
    if (property.ends_with('-')) property.pop_back();
    return property.empty() ? "colour" : property;
}

/// Gives every name once.
class UniqueNames {
public:
    /// The name, or if it is taken that with a number.
    std::string take(const std::string& name) {
        std::string unique = name;
        int& number = numbers_.try_emplace(name, 1).first->second;
        while (!taken_.insert(unique).second) unique = name + '-' + std::to_string(++number);
        return unique;
    }

private:
    std::set<std::string> taken_;
    std::map<std::string, int> numbers_;  // the last one tried
};

std::string commentText(const std::string& text) {
    std::string safe = printableText(text);
    std::replace(safe.begin(), safe.end(), '*', '-');  // or else it might end the comment
    return safe;
}

/// The text with blanks for comments, and lines where they were.
std::string withoutComments(std::string_view text) {
    std::string code(text);
    for (std::size_t start = 0; (start = code.find("/*", start)) != std::string::npos;) {
        const std::size_t end = code.find("*/", start + 2);
        if (end == std::string::npos) throw PaletteFault(": a comment has no end");
        std::replace_if(
            code.begin() + static_cast<std::ptrdiff_t>(start),
            code.begin() + static_cast<std::ptrdiff_t>(end + 2), [](char c) { return c != '\n'; },
            ' ');
    }
    return code;
}

/// Takes rules, and in them declarations.
class CssReader {
public:
    explicit CssReader(std::string_view code) : code_(code) {}

    Palette palette() {
        Palette palette;
        skipBlanks();
        if (rest().empty()) throw PaletteFault(": there is no rule of :root");
        for (; !rest().empty(); skipBlanks()) {
            if (taken("{") != ":root") throw fault("only rules of :root are read");
            while (skipBlanks(), !rest().starts_with('}')) palette.swatches.push_back(swatch());
            ++place_;
        }
        return palette;
    }

private:
    Swatch swatch() {
        const std::string_view property = taken(":");
        if (!property.starts_with("--") || property.size() < 3)
            throw fault("only custom properties, as --name, are read");
        skipBlanks();
        const std::string_view value = takenUntil(";}");
        const auto colour = colourOfHex(value);
        if (!colour) throw fault("the value is no colour like #FF8000");
        if (rest().starts_with(';')) ++place_;
        return {*colour, std::string(property.substr(2))};
    }

    std::string_view rest() const { return code_.substr(std::min(place_, code_.size())); }

    void skipBlanks() {
        place_ = std::min(code_.find_first_not_of(cssBlanks, place_), code_.size());
    }

    std::string_view takenUntil(std::string_view ends) {
        start_ = place_;
        place_ = code_.find_first_of(ends, place_);
        if (place_ == std::string_view::npos) throw fault("its end is missing");
        return trimmed(code_.substr(start_, place_ - start_), cssBlanks);
    }

    std::string_view taken(std::string_view end) {
        const std::string_view text = takenUntil(end);
        ++place_;
        return text;
    }

    PaletteFault fault(const std::string& reason) const {
        const std::string_view before = code_.substr(0, start_);
        const auto lines = std::count(before.begin(), before.end(), '\n');
        return faultInLine(static_cast<std::size_t>(lines) + 1, reason);
    }

    std::string_view code_;
    std::size_t place_ = 0;
    std::size_t start_ = 0;  // of what was taken last
};

}  // namespace

std::string writeCssPalette(const Palette& palette) {
    std::string text = "/* " + commentText(palette.title) + " */\n:root {\n";
    UniqueNames names;
    for (const Swatch& swatch : palette.swatches)
        text += "    --" + names.take(propertyName(swatch.name)) + ": " + hexText(swatch.colour) +
                ";\n";
    return text + "}\n";
}

Palette readCssPalette(std::string_view text) {
    return CssReader(withoutComments(text)).palette();
}

}  // namespace InkoraTool
