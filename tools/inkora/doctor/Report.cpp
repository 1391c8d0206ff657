#include "doctor/Report.h"

#include "JsonLine.h"
#include "Utf8.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace InkoraTool {
namespace {

constexpr std::size_t screenWidth = 80;
constexpr std::size_t stateWidth = 9;
constexpr std::size_t textColumn = 26;

std::string_view wordOf(Finding::State state) {
    switch (state) {
        case Finding::State::ok:
            return "ok";
        case Finding::State::warning:
            return "warning";
        case Finding::State::fault:
            return "fault";
        case Finding::State::notLookedAt:
            break;
    }
    return "-";
}

// Appends words to a line that has reached a column, and goes on below that where they do not fit.
void appendWrapped(std::string& line, const std::size_t begin, std::string_view words) {
    std::size_t column = begin;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        const std::string_view word = words.substr(0, end);
        words.remove_prefix(std::min(end + 1, words.size()));
        const std::size_t width = codePointCount(word);
        if (column > begin && column + 1 + width > screenWidth) {
            line += '\n' + std::string(begin, ' ');
            column = begin;
        } else if (column > begin) {
            line += ' ';
            ++column;
        }
        line += word;
        column += width;
    }
}

std::optional<std::string> orNull(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

std::string_view jsonWordOf(Finding::State state) {
    return state == Finding::State::notLookedAt ? "not looked at" : wordOf(state);
}

std::ptrdiff_t count(const Findings& findings, Finding::State state) {
    return std::ranges::count(findings, state, &Finding::state);
}

std::string notLookedAt(const Findings& findings) {
    std::string names;
    for (const Finding& finding : findings)
        if (finding.state == Finding::State::notLookedAt)
            names += (names.empty() ? " Not looked at: " : ", ") + finding.name;
    return names.empty() ? names : names + '.';
}

}  // namespace

std::string textOf(const Finding& finding) {
    std::string line(wordOf(finding.state));
    line.resize(stateWidth, ' ');
    line += finding.name;
    line.resize(textColumn, ' ');
    std::string words = finding.text;
    if (!finding.advice.empty()) words += (words.ends_with('.') ? " " : ". ") + finding.advice;
    appendWrapped(line, textColumn, words);
    if (!finding.remedy.empty())
        line += '\n' + std::string(stateWidth, ' ') + "$ " + finding.remedy;
    return line;
}

std::string summaryOf(const Findings& findings) {
    if (!isUsable(findings)) {
        std::string text;
        const bool isInterrupted = count(findings, Finding::State::fault) == 0;
        const std::string verdict = isInterrupted ? "Interrupted." : "No pen can be used yet.";
        appendWrapped(text, 0, verdict + notLookedAt(findings));
        return text;
    }
    const auto warnings = count(findings, Finding::State::warning);
    if (warnings == 0) return "A pen can be used.";
    return "A pen can be used, with " + std::to_string(warnings) +
           (warnings == 1 ? " warning." : " warnings.");
}

std::string jsonOf(const Findings& findings) {
    std::string text = std::string("{\"usable\":") + (isUsable(findings) ? "true" : "false");
    std::string_view separator = ",\"checks\":[";
    for (const Finding& finding : findings) {
        text += separator;
        text += JsonLine()
                    .add("name", finding.name)
                    .add("state", jsonWordOf(finding.state))
                    .add("text", finding.text)
                    .add("remedy", orNull(finding.remedy))
                    .add("advice", orNull(finding.advice))
                    .text();
        separator = ",";
    }
    return text + "]}";
}

bool isUsable(const Findings& findings) {
    return count(findings, Finding::State::fault) == 0 &&
           count(findings, Finding::State::notLookedAt) == 0;
}

}  // namespace InkoraTool
