#include "commandline/ManPage.h"

#include "Failure.h"
#include "Text.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <iterator>
#include <utility>
#include <variant>
#include <vector>

namespace InkoraTool {
namespace {

bool isWordCharacter(char c) {
    return c == '-' || std::isalnum(static_cast<unsigned char>(c)) != 0;
}

/// Characters that roff would take for something else, and hyphens that are to stay so.
std::string escaped(std::string_view text) {
    std::string roff = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char c : text) {
        if (c == '\\') {
            roff += "\\e";
        } else {
            roff += c == '-' ? "\\-" : std::string(1, c);
        }
    }
    return roff;
}

std::string bold(std::string_view text) {
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(std::string_view text) {
    return "\\fI" + escaped(text) + "\\fR";
}

/// A line of text, in which options are bold.
std::string line(std::string_view text) {
    std::string roff;
    while (!text.empty()) {
        const std::size_t start = std::min(text.find("--"), text.size());
        if (start > 0 || roff.empty()) roff += escaped(text.substr(0, start));
        text.remove_prefix(start);
        const auto size = static_cast<std::size_t>(std::ranges::find_if_not(text, isWordCharacter) -
                                                   text.begin());
        if (size > 0) roff += bold(text.substr(0, size));
        text.remove_prefix(size);
    }
    return roff + '\n';
}

std::string sentence(const std::string& text) {
    return line(text + '.');
}

/// A part of the help. Lines that begin with a blank stay as they are.
std::string paragraphs(std::string_view text) {
    enum class Kind { blank, prose, example };
    std::string roff;
    Kind last = Kind::blank;
    const auto goOnWith = [&](Kind kind) {
        if (last == Kind::example && kind != last) roff += ".EE\n";
        if (kind != Kind::blank && kind != last)
            roff += kind == Kind::prose ? ".PP\n" : ".PP\n.EX\n";
        last = kind;
    };
    while (!text.empty()) {
        const std::string_view next = takeLine(text);
        goOnWith(next.empty() ? Kind::blank : next.starts_with(' ') ? Kind::example : Kind::prose);
        if (!next.empty()) roff += line(next);
    }
    goOnWith(Kind::blank);
    return roff;
}

std::string item(const std::string& head, const std::string& body) {
    return ".TP\n" + head + '\n' + body;
}

std::string optionItem(const Option& option) {
    std::string body = sentence(option.help);
    if (!option.preset.empty()) body += sentence("The default is " + option.preset);
    if (option.choices.empty())
        return item(bold(option.name) + ' ' + italic(option.placeholder), body);
    body += ".RS\n";
    for (const Choice& choice : option.choices)
        body += item(bold(choice.name), sentence(choice.help));
    return item(bold(option.name) + ' ' + italic(option.placeholder), body + ".RE\n");
}

/// What follows such a line in the help, up to the next blank one.
std::string exampleBehind(std::string_view head, std::string_view help) {
    const std::size_t start = help.find(std::string(head) + '\n');
    if (start == std::string_view::npos) return "";
    help.remove_prefix(start + head.size() + 1);
    std::string roff = ".EX\n";
    while (!help.empty() && help.front() != '\n') roff += line(takeLine(help));
    return roff + ".EE\n";
}

/// A command with its whole name, `inkora json get`.
struct NamedCommand {
    std::string name;
    const Command* command;
};

std::vector<NamedCommand> commandsBelow(const NamedCommand& above) {
    std::vector<NamedCommand> all;
    for (const Command& part : above.command->commands) {
        all.push_back({above.name + ' ' + part.name, &part});
        std::ranges::move(commandsBelow(all.back()), std::back_inserter(all));
    }
    return all;
}

std::string section(const NamedCommand& named) {
    const Command& command = *named.command;
    std::string roff = ".SS " + named.name + '\n' + sentence(command.help);
    for (const Operand& operand : command.operands)
        roff += item(italic(operand.name), sentence(operand.help));
    for (const Option& option : command.options) roff += optionItem(option);
    for (const Flag& flag : command.flags) roff += item(bold(flag.name), sentence(flag.help));
    return roff + paragraphs(command.footer);
}

std::string synopsis(const NamedCommand& named) {
    std::string roff = ".SY \"" + named.name + "\"\n";
    for (const Option& option : named.command->options)
        roff += ".OP " + escaped(option.name) + ' ' + escaped(option.placeholder) + '\n';
    for (const Flag& flag : named.command->flags) roff += ".OP " + escaped(flag.name) + '\n';
    for (const Operand& operand : named.command->operands) {
        const bool isMany = !std::holds_alternative<std::string*>(operand.into);
        const std::string text = italic(operand.name) + (isMany ? R"(\~.\|.\|.\&)" : "");
        roff += (operand.isRequired ? text : '[' + text + ']') + '\n';
    }
    return roff + ".YS\n";
}

/// Of what can be run by itself.
std::string synopses(const std::vector<NamedCommand>& all) {
    std::string roff;
    for (const NamedCommand& named : all)
        if (named.command->run) roff += synopsis(named);
    return roff;
}

std::string headerOf(std::string name, const std::string& version, std::string_view date) {
    for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return ".TH \"" + name + "\" 1 " + std::string(date) + " \"" + version +
           "\" \"User Commands\"\n";
}

}  // namespace

std::string manPage(const Command& program, const std::string& version, std::string_view text) {
    const std::vector<NamedCommand> all = commandsBelow({program.name, &program});
    const auto request = [](const NamedCommand& named) {
        return "@command " + named.name.substr(named.name.find(' ') + 1);
    };
    const auto sections = [&](const auto& isWanted) {
        std::string roff;
        for (const NamedCommand& named : all)
            if (isWanted(named)) roff += section(named);
        return roff;
    };
    const auto isAskedFor = [&, whole = text](const NamedCommand& named) {
        return whole.find('\n' + request(named) + '\n') != std::string_view::npos;
    };
    const auto answer = [&](std::string_view asked) -> std::string {
        constexpr std::string_view header = "@header ", footer = "@footer ";
        if (asked.starts_with(header))
            return headerOf(program.name, version, asked.substr(header.size()));
        if (asked == "@synopsis") return synopses(all);
        if (asked == "@commands") return sections(std::not_fn(isAskedFor));
        if (asked.starts_with(footer))
            return exampleBehind(asked.substr(footer.size()), program.footer);
        return sections([&](const NamedCommand& named) { return request(named) == asked; });
    };

    std::string roff;
    while (!text.empty()) {
        const std::string_view next = takeLine(text);
        if (!next.starts_with('@')) {
            roff.append(next) += '\n';
            continue;
        }
        const std::string part = answer(next);
        if (part.empty())
            throw Failure(ExitStatus::malformed, "there is nothing for " + std::string(next));
        roff += part;
    }
    return roff;
}

}  // namespace InkoraTool
