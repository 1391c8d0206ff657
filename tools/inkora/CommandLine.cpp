#include "CommandLine.h"

#include "File.h"
#include "commandline/CommandPlace.h"
#include "commandline/Completion.h"
#include "commandline/ManPage.h"
#include "commandline/Suggestion.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <utility>

// CLI11 takes longer to compile than the rest of the tool, and is included here alone.

namespace InkoraTool {
namespace {

void add(CLI::App& app, const Flag& flag) {
    app.add_flag(flag.name, *flag.isGiven, flag.help);
}

CLI::Validator isChoice(const std::vector<Choice>& choices) {
    std::vector<std::string> names;
    for (const Choice& choice : choices) names.push_back(choice.name);
    const CLI::IsMember member(names);
    const auto check = [member, choices](std::string& text) {
        const bool hasFileBehind = std::ranges::any_of(choices, [&](const Choice& choice) {
            return choice.endsWithFile() && text.starts_with(choice.fixedPart());
        });
        return hasFileBehind ? std::string() : member(text);
    };
    return {check, member.get_description()};
}

std::string helpOf(const Option& option) {
    std::string help = option.help;
    for (const Choice& choice : option.choices)
        help +=
            (&choice == &option.choices.front() ? ". " : "; ") + choice.name + ": " + choice.help;
    return help;
}

void add(CLI::App& app, const Option& option) {
    const auto take = [option](const std::string& text) {
        const std::string fault = option.take(text);
        if (!fault.empty()) throw CLI::ValidationError(option.name, fault);
    };
    CLI::Option* const added =
        app.add_option_function<std::string>(option.name, take, helpOf(option))
            ->type_name(option.placeholder)
            ->default_str(option.preset);
    if (!option.choices.empty()) added->check(isChoice(option.choices));
}

CLI::Option* addOne(CLI::App& app, const Operand& operand, std::string& text) {
    return app.add_option(operand.name, text, operand.help)->option_text(" ");
}

// CLI11 (2.1) splits operands in brackets at their commas, and looks for options behind "--", once
// an operand has got as many as it needs. So this one needs more than there can be, and to get
// fewer is no mistake. An operand behind it gets nothing by itself. 2.4 hands a "{}" on with a mark
// of its own behind it; among the results it is as it was given.
CLI::Option* addMany(CLI::App& app, const Operand& operand, std::vector<std::string>& texts,
                     const Operand* last) {
    constexpr int any = CLI::detail::expected_max_vector_size;
    const auto take = [&app, &operand, &texts, last](const std::vector<std::string>&) {
        std::vector<std::string> given = app.get_option(operand.name)->results();
        if (last) {
            if (given.size() < 2) return true;
            app.get_option(last->name)->add_result(given.back());
            given.pop_back();
        }
        texts = std::move(given);
        return true;
    };
    return app.add_option(operand.name, take, operand.help)
        ->expected(any, any)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->option_text("...");
}

void add(CLI::App& app, const std::vector<Operand>& operands) {
    for (const Operand& operand : operands) {
        const Operand* const next = &operand == &operands.back() ? nullptr : &operand + 1;
        std::string* const* const one = std::get_if<std::string*>(&operand.into);
        CLI::Option* const added =
            one ? addOne(app, operand, **one)
                : addMany(app, operand, *std::get<std::vector<std::string>*>(operand.into), next);
        added->required(operand.isRequired);
    }
}

void describe(CLI::App& app, const Command& command) {
    add(app, command.operands);
    for (const Option& option : command.options) add(app, option);
    for (const Flag& flag : command.flags) add(app, flag);
    if (!command.footer.empty()) app.footer(command.footer);
    for (const Command& part : command.commands) {
        CLI::App& partApp = *app.add_subcommand(part.name, part.help);
        if (!part.commands.empty()) partApp.require_subcommand(1);
        describe(partApp, part);
    }
}

const Command& commandNamed(const CLI::App& app, const Command& command) {
    for (const Command& part : command.commands)
        if (app.got_subcommand(part.name))
            return commandNamed(*app.get_subcommand(part.name), part);
    return command;
}

/// What is not in the help: how completions and the man page come from the same commands.
/// @return whether that was asked for
bool isAnsweredBesides(const Command& program, const std::string& version,
                       std::vector<std::string> words) {
    if (words.empty()) return false;
    const std::string asked = words.front();
    words.erase(words.begin());
    std::string text;
    if (asked == "--complete") {
        text = completions(program, std::move(words));
    } else if (asked == "--man-page" && words.size() == 1) {
        text = manPage(program, version, readFile(words.front()));
    } else {
        return false;
    }
    std::fputs(text.c_str(), stdout);
    return true;
}

std::string complaint(const Command& program, const std::vector<std::string>& words,
                      const CLI::Error& error) {
    const auto near = suggestion(program, words);
    return "inkora: " +
           (near ? near->typed + " is not known; did you mean " + near->meant + '?'
                 : std::string(error.what())) +
           "\nSee inkora --help.\n";
}

}  // namespace

ExitStatus runCommandLine(const Command& program, const std::string& version, int argc,
                          const char* const* argv) {
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (isAnsweredBesides(program, version, words)) return ExitStatus::success;
    CLI::App app(program.help, program.name);
    app.set_help_flag("-h,--help", helpHelp);
    app.set_version_flag("--version", version, versionHelp);
    app.require_subcommand(0, 1);
    app.failure_message(
        [&](const CLI::App*, const CLI::Error& error) { return complaint(program, words, error); });
    describe(app, program);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? ExitStatus::success : ExitStatus::usage;
    }
    const Command& named = commandNamed(app, program);
    if (named.run) return named.run();
    std::fputs(app.help().c_str(), stderr);
    return ExitStatus::usage;
}

}  // namespace InkoraTool
