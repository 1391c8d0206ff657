#include "commandline/Suggestion.h"

#include "Text.h"
#include "commandline/CommandPlace.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

namespace InkoraTool {
namespace {

/// How many letters have to be changed, added, removed, or swapped with the next one: the optimal
/// string alignment distance. A row of its table is a letter of `typed`.
std::size_t distance(std::string_view typed, std::string_view meant) {
    std::vector<std::size_t> beforeLast, last, row(meant.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < typed.size(); ++i) {
        beforeLast = std::exchange(last, row);
        row[0] = i + 1;
        for (std::size_t j = 0; j < meant.size(); ++j) {
            const std::size_t change = typed[i] == meant[j] ? 0 : 1;
            row[j + 1] = std::min({last[j] + change, last[j + 1] + 1, row[j] + 1});
            if (i > 0 && j > 0 && typed[i] == meant[j - 1] && typed[i - 1] == meant[j])
                row[j + 1] = std::min(row[j + 1], beforeLast[j - 1] + 1);
        }
    }
    return row.back();
}

std::optional<std::string> nearest(const std::string& typed, const std::vector<Word>& words) {
    const std::size_t mostFaults = std::max<std::size_t>(typed.size() / 3, 1);
    std::size_t least = mostFaults + 1;
    std::optional<std::string> found;
    for (const Word& word : words) {
        if (typed.size() > word.text.size() + mostFaults) continue;
        const bool isStart = typed.size() > 2 && word.text.starts_with(typed);
        const std::size_t faults = isStart ? 1 : distance(typed, word.text);
        if (faults < least) found = word.text;
        least = std::min(least, faults);
    }
    return found;
}

/// What of a word is to be one of the known ones.
std::string knownPart(const std::string& word, const Next& next) {
    if (!next.before.empty()) return word.substr(next.before.size());
    return word.starts_with('-') ? word.substr(0, word.find('=')) : word;
}

}  // namespace

std::optional<Suggestion> suggestion(const Command& program,
                                     const std::vector<std::string>& words) {
    CommandPlace place(program);
    for (const std::string& word : words) {
        const Next next = place.next(word);
        const std::string typed = knownPart(word, next);
        const bool isKnown = std::ranges::find(next.words, typed, &Word::text) != next.words.end();
        const auto meant = isKnown ? std::nullopt : nearest(lowered(typed), next.words);
        if (meant) return Suggestion{typed, *meant};
        place.pass(word);
    }
    return std::nullopt;
}

}  // namespace InkoraTool
