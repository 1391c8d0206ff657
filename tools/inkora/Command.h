#pragma once

#include "ExitStatus.h"

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace InkoraTool {

/// Takes the text of a value: keeps it and returns nothing, or says what is wrong with it.
using Take = std::function<std::string(const std::string& text)>;

/// One of the values that an option can have.
struct Choice {
    /// `system`; in `replay:FILE` what is behind the colon stands for the name of any file.
    std::string name;
    std::string help;

    bool endsWithFile() const { return name.find(':') != std::string::npos; }
    /// The name up to and with its colon, or all of it.
    std::string fixedPart() const {
        return endsWithFile() ? name.substr(0, name.find(':') + 1) : name;
    }
};

/// `--count 5`: what has a name and a value. It need not be given.
struct Option {
    std::string name;
    std::string placeholder;  ///< stands for the value in the help
    std::string help;
    Take take;
    std::string preset = {};           ///< shown in the help, if there is one
    std::vector<Choice> choices = {};  ///< all there are; none are no limit
    bool isFile = false;               ///< whether shells complete the value as a file's name
};

/// `--json`: what is there or not.
struct Flag {
    std::string name;
    std::string help;
    bool* isGiven;
};

/// What is meant by where it stands. One of many texts takes each as it is, `[1,2]` and `{}` too,
/// and leaves the last of them to an operand behind it.
struct Operand {
    std::string name;
    std::string help;
    std::variant<std::string*, std::vector<std::string>*> into;
    bool isRequired = true;
    bool isFile = false;  ///< whether shells complete it as a file's name
};

/// What a user can ask for: what it understands, and what it does once that is read. The help, the
/// man page and what shells complete are made of it. It keeps alive what its options are read into.
struct Command {
    std::string name;
    std::string help;
    std::vector<Operand> operands = {};
    std::vector<Option> options = {};
    std::vector<Flag> flags = {};
    std::string footer = {};             ///< of the help; none is that of the command above
    std::vector<Command> commands = {};  ///< of which one is to be named
    std::function<ExitStatus()> run = {};
};

// What the program consists of. A further one is a function like these, in a file of its own, and a
// word in main().
Command watchCommand();
Command infoCommand();
Command penCommand();
Command jsonCommand();
Command paletteCommand();
Command doctorCommand();

}  // namespace InkoraTool
