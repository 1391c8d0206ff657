#include "commandline/CommandPlace.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace InkoraTool {
namespace {

template <class Named>
const Named* named(const std::vector<Named>& all, std::string_view name) {
    const auto found = std::ranges::find(all, name, &Named::name);
    return found == all.end() ? nullptr : &*found;
}

Next valuesOf(const Option& option, std::string before, std::string_view beginning) {
    for (const Choice& choice : option.choices)
        if (choice.endsWithFile() && beginning.starts_with(choice.fixedPart()))
            return {.isFile = true, .before = before + choice.fixedPart()};
    Next next = {.isFile = option.isFile, .before = std::move(before)};
    for (const Choice& choice : option.choices)
        next.words.push_back({choice.fixedPart(), choice.help});
    return next;
}

}  // namespace

Next CommandPlace::next(std::string_view beginning) const {
    if (awaitingValue_) return valuesOf(*awaitingValue_, "", beginning);
    if (beginning.starts_with('-') && !areOptionsOver_) {
        const std::string_view name = beginning.substr(0, beginning.find('='));
        const Option* const option = name == beginning ? nullptr : optionNamed(name);
        if (!option) return {.words = options()};
        return valuesOf(*option, std::string(name) + '=', beginning.substr(name.size() + 1));
    }
    if (const Operand* const wanted = operand()) return {.isFile = wanted->isFile};
    Next next;
    for (const Command& part : command_->commands) next.words.push_back({part.name, part.help});
    if (next.words.empty() && beginning.empty() && !areOptionsOver_) next.words = options();
    return next;
}

void CommandPlace::pass(const std::string& word) {
    const bool isOption = word.starts_with('-') && !areOptionsOver_;
    if (std::exchange(awaitingValue_, nullptr)) return;
    if (isOption) {
        areOptionsOver_ = word == "--";
        awaitingValue_ = optionNamed(word);
    } else if (const Command* const part = named(command_->commands, word)) {
        command_ = part;
    } else {
        ++operandsPassed_;
    }
}

std::vector<Word> CommandPlace::options() const {
    std::vector<Word> words;
    for (const Option& option : command_->options) words.push_back({option.name, option.help});
    for (const Flag& flag : command_->flags) words.push_back({flag.name, flag.help});
    words.push_back({"--help", helpHelp});
    if (command_ == program_) words.push_back({"--version", versionHelp});
    return words;
}

const Option* CommandPlace::optionNamed(std::string_view name) const {
    return named(command_->options, name);
}

/// Null behind the last one. One of many texts is the last that a place can tell.
const Operand* CommandPlace::operand() const {
    std::size_t passed = 0;
    for (const Operand& operand : command_->operands)
        if (passed++ == operandsPassed_ || !std::holds_alternative<std::string*>(operand.into))
            return &operand;
    return nullptr;
}

}  // namespace InkoraTool
