#include "commandline/Completion.h"

#include "commandline/CommandPlace.h"

namespace InkoraTool {

std::string completions(const Command& program, std::vector<std::string> words) {
    const std::string last = words.empty() ? "" : words.back();
    if (!words.empty()) words.pop_back();
    CommandPlace place(program);
    for (const std::string& word : words) place.pass(word);
    const Next next = place.next(last);
    std::string lines;
    for (const Word& word : next.words) lines += next.before + word.text + '\t' + word.help + '\n';
    if (next.isFile) lines += '\t' + next.before + '\n';
    return lines;
}

}  // namespace InkoraTool
