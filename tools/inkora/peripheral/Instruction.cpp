#include "peripheral/Instruction.h"

#include "Failure.h"
#include "File.h"
#include "Text.h"
#include "Utf8.h"
#include "Values.h"
#include "palette/WebColours.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

using InkoraKit::Data;

namespace InkoraTool {
namespace {

constexpr std::int64_t mostColours = 1'000'000'000;
// The most that an attribute's value may have (Bluetooth Core Specification, Vol 3, Part F, 3.2.9).
constexpr std::size_t mostBytes = 512;

[[noreturn]] void refuse(const std::string& fault) {
    throw Failure(ExitStatus::malformed, fault);
}

std::string inQuotes(std::string_view text) {
    return '\'' + printableText(text) + '\'';
}

constexpr std::string_view blanks = " \t\r";

// The first word; what is left has no blanks around it.
std::string_view takeWord(std::string_view& rest) {
    const std::string_view word = rest.substr(0, rest.find_first_of(" \t"));
    rest = trimmed(rest.substr(word.size()), blanks);
    return word;
}

std::int64_t wholeNumber(std::string_view text, std::int64_t least, std::int64_t most) {
    std::int64_t number = 0;
    const Take take = aNumber(least, most, [&](std::int64_t given) { number = given; });
    if (const std::string fault = take(printableText(text)); !fault.empty()) refuse(fault);
    return number;
}

double secondsIn(std::string_view text) {
    const auto time = numberFrom<double>(text);
    if (!time || !std::isfinite(*time) || *time < 0)
        refuse(inQuotes(text) + " is not a number of seconds");
    return *time;
}

Data bytesOfHex(std::string_view digits) {
    std::vector<std::uint8_t> bytes;
    for (; !digits.empty(); digits.remove_prefix(std::min<std::size_t>(2, digits.size()))) {
        const auto byte = numberFrom<std::uint8_t>(digits.substr(0, 2), 16);
        if (!byte || digits.size() == 1) refuse("'raw' takes two hexadecimal digits a byte");
        bytes.push_back(*byte);
    }
    if (bytes.size() > mostBytes)
        refuse("'raw' takes no more than " + std::to_string(mostBytes) + " bytes");
    return Data(bytes);
}

// Nothing for a random one.
std::optional<Colour> colourOf(std::string_view word) {
    if (word == "random") return std::nullopt;
    if (const auto colour = colourOfHex(word)) return colour;
    if (const WebColour* const named = webColourNamed(word)) return named->colour;
    refuse(inQuotes(word) + " is neither a colour nor anything else that a pen can do");
}

Instruction capturing(std::string_view word, std::string_view rest) {
    const auto colour = colourOf(word);
    const std::string_view count = takeWord(rest);
    const std::string_view interval = takeWord(rest);
    if (!rest.empty()) refuse(inQuotes(rest) + " is too much: a colour takes COUNT and SECONDS");
    return [colour, count = count.empty() ? 1 : wholeNumber(count, 1, mostColours),
            interval = interval.empty() ? 0 : secondsIn(interval)](PenControls& pen) {
        pen.capture(colour, count, interval);
    };
}

// What a word stands for that has nothing behind it.
const Instruction* plainInstruction(std::string_view word) {
    static const std::map<std::string_view, Instruction> instructions = {
        {"drop", [](PenControls& pen) { pen.drop(); }},
        {"silent", [](PenControls& pen) { pen.setAnswering(false); }},
        {"answer", [](PenControls& pen) { pen.setAnswering(true); }},
        {"hide", [](PenControls& pen) { pen.setVisible(false); }},
        {"show", [](PenControls& pen) { pen.setVisible(true); }},
        {"quit", [](PenControls& pen) { pen.quit(); }},
    };
    const auto found = instructions.find(word);
    return found == instructions.end() ? nullptr : &found->second;
}

}  // namespace

std::string faultOfPenName(const std::string& name) {
    if (name.empty()) return "a pen needs a name";
    if (printableText(name) != name) return inQuotes(name) + " is no name: it is not plain UTF-8";
    if (name.size() > longestPenName)
        return inQuotes(name) + " is too long for an advertisement, which has room for " +
               std::to_string(longestPenName) + " bytes";
    return {};
}

Instruction instructionOf(std::string_view line) {
    std::string_view rest = trimmed(line, blanks);
    const std::string_view word = takeWord(rest);
    if (word.empty() || word == "#") return [](PenControls&) {};
    if (const Instruction* const plain = plainInstruction(word)) {
        if (!rest.empty()) refuse("'" + std::string(word) + "' takes nothing behind it");
        return *plain;
    }
    if (word == "battery")
        return [percent = static_cast<std::uint8_t>(wholeNumber(rest, 0, 100))](PenControls& pen) {
            pen.setBattery(percent);
        };
    if (word == "name") {
        const std::string name(rest);
        if (const std::string fault = faultOfPenName(name); !fault.empty()) refuse(fault);
        return [name](PenControls& pen) { pen.setName(name); };
    }
    if (word == "raw") return [value = bytesOfHex(rest)](PenControls& pen) { pen.tell(value); };
    return capturing(word, rest);
}

std::vector<TimedInstruction> readPenScript(const std::string& file) {
    const std::string text = readFile(file);
    std::vector<TimedInstruction> script;
    std::string_view lines = text;
    for (int number = 1; !lines.empty(); ++number) {
        std::string_view rest = trimmed(takeLine(lines), blanks);
        const std::string_view time = takeWord(rest);
        if (time.empty() || time == "#") continue;
        try {
            script.push_back({secondsIn(time), instructionOf(rest)});
        } catch (const Failure& failure) {
            throw Failure(failure.status, shownName(file) + ": line " + std::to_string(number) +
                                              ": " + failure.what());
        }
    }
    return script;
}

}  // namespace InkoraTool
