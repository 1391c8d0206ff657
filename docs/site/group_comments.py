#!/usr/bin/env python3
"""A header as Doxygen is to see it; lines keep their numbers. In the kit a comment counts for all
declarations that follow it without a blank line, where Doxygen gives it to the first alone: each of
the others gets a copy. What needs no words of its own is left out: a destructor that does what every
one does, classes that are friends, and what specialises templates of the standard library."""
import re
import sys

DOC = re.compile(r"\s*///(?!<)")
NO_DECLARATION = re.compile(r"\s*($|//|#|\}|friend (class|struct)\b|(public|protected|private):)")
SCOPE = re.compile(r"(?!template <[^{]*\sstd::)\s*(template <[^{;]*>\s+)?(class|struct|union|enum|namespace|extern \"C\")\s[^;={]*\{")
SPECIALISATION = re.compile(r"template <[^{;]*?\s(struct|bool) (INKORA_EXPORT )?std::")
DESTRUCTOR = re.compile(r"\s*(virtual )?~\w+\(\)")
TEXT_OR_COMMENT = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\'|//.*')


def end_of_declaration(lines, begin):
    """The line on which the declaration ends that begins on this one."""
    depth = 0
    is_requirement = False  # after which the declaration goes on
    for number in range(begin, len(lines)):
        code = TEXT_OR_COMMENT.sub("", lines[number]).rstrip()
        if depth == 0:
            is_requirement = re.search(r"\brequires\s*(\([^()]*\))?\s*\{$", code)
        depth += sum(code.count(c) for c in "({") - sum(code.count(c) for c in ")}")
        if depth <= 0 and code.endswith(";" if is_requirement else (";", "}")):
            return number
    return len(lines) - 1


def shown(lines):
    result = list(lines)
    comment = []
    private_at = None  # the indentation of the private part that this is in
    number = 0
    while number < len(lines):
        line = lines[number]
        is_documented = number > 0 and DOC.match(lines[number - 1])
        indentation = len(line) - len(line.lstrip())
        end = number
        if re.match(r"\s*(public|protected|private):", line):
            private_at = indentation if "private" in line else None
        elif line.strip() == "};" and indentation == private_at:
            private_at = None
        if DOC.match(line):
            comment = [*(comment if is_documented else []), line.strip()[3:].strip()]
        elif NO_DECLARATION.match(line):
            comment = []
            if "friend" in line:
                result[number] = ""
        elif scope := SCOPE.match("\n".join(lines[number:number + 6])):
            comment = []
            end = number + scope[0].count("\n")
        else:
            end = end_of_declaration(lines, number)
            declaration = "\n".join(lines[number:end + 1])
            if SPECIALISATION.match(declaration) or DESTRUCTOR.match(line) and not is_documented:
                result[number:end + 1] = [""] * (end + 1 - number)
            elif comment and not is_documented and private_at is None and "///<" not in declaration:
                result[number] = f"/** {' '.join(comment)} */ {line.lstrip()}"
        number = end + 1
    return result


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as header:
        print("\n".join(shown(header.read().split("\n"))), end="")
