#include "JSONChanges.h"

#include "PlainJSON.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <sstream>

namespace InkoraKit {
namespace {

using Steps = std::span<const JSONKey>;

/// Does something to the place at the end of the steps, of which there is one at least, taken one
/// by one.
template <class Place, class Action>
void atPlace(Place&& place, Steps steps, const Action& action) {
    const auto next = [&](JSONPlace&& inner) {
        if (steps.size() == 1) {
            action(std::move(inner));
        } else {
            atPlace(std::move(inner), steps.subspan(1), action);
        }
    };
    if (const auto index = steps.front().index()) {
        next(std::forward<Place>(place)[*index]);
    } else {
        next(std::forward<Place>(place)[*steps.front().key()]);
    }
}

PlainJSON* find(PlainJSON& plain, Steps steps) {
    if (steps.empty()) return &plain;
    const auto index = steps.front().index();
    if (plain.is_array() && index && *index >= 0 && static_cast<std::size_t>(*index) < plain.size())
        return find(plain[static_cast<std::size_t>(*index)], steps.subspan(1));
    if (!plain.is_object() || index || !plain.contains(*steps.front().key())) return nullptr;
    return find(plain[*steps.front().key()], steps.subspan(1));
}

PlainJSON takenPlainly(PlainJSON& plain, Steps steps) {
    const PlainJSON* const found = find(plain, steps);
    return found ? *found : PlainJSON();
}

/// What is before the last step, if that is there.
PlainJSON* parentOf(PlainJSON& plain, Steps steps) {
    return steps.empty() ? nullptr : find(plain, steps.first(steps.size() - 1));
}

void write(PlainJSON& plain, Steps steps, PlainJSON value) {
    PlainJSON* const parent = parentOf(plain, steps);
    if (PlainJSON* const known = find(plain, steps)) {
        *known = std::move(value);
    } else if (parent && parent->is_object() && steps.back().key()) {
        (*parent)[*steps.back().key()] = std::move(value);
    }
}

/// Whether the types allow it.
bool merge(PlainJSON& plain, const PlainJSON& other) {
    if (typeOf(plain) != typeOf(other)) return false;
    if (plain.is_array()) {
        plain.insert(plain.end(), other.begin(), other.end());
    } else if (plain.is_object()) {
        for (const auto& [key, value] : other.items()) {
            PlainJSON& member = plain[key];
            if (!value.is_structured() || !merge(member, value)) member = value;
        }
    } else {
        plain = other;
    }
    return true;
}

/// A value that is equal to another one's where the kit finds both equal within arrays and
/// dictionaries: true is 1, and the order of members does not count.
nlohmann::json comparable(nlohmann::json plain) {
    if (plain.is_boolean()) return plain.get<bool>() ? 1 : 0;
    if (!plain.is_structured()) return plain;
    for (nlohmann::json& part : plain) part = comparable(std::move(part));
    return plain;
}

/// Keys may hold bytes that are no UTF-8.
std::string textOf(const PlainJSON& plain) {
    return plain.dump(-1, ' ', false, PlainJSON::error_handler_t::replace);
}

struct Variable {
    JSON json;
    PlainJSON plain;
};

using Path = std::vector<JSONKey>;

class Player {
public:
    void play(std::string_view script) {
        std::istringstream lines{std::string(script)};
        for (std::string line; std::getline(lines, line);) {
            step(std::istringstream(line));
            check();
        }
    }

private:
    void step(std::istringstream words) {
        std::string action;
        words >> action;
        Variable& to = variable(words);
        if (action == "parse") {
            std::string text;
            std::getline(words >> std::ws, text);
            parse(to, text);
            return;
        }
        const Path path = readPath(words);
        Variable& from = variable(words);
        const Path fromPath = readPath(words);
        // A negative position in an array would end the process.
        const PlainJSON* const parent = parentOf(to.plain, path);
        if (parent && parent->is_array() && path.back().index().value_or(0) < 0) return;
        if (action == "put") put(to, path, from, fromPath);
        if (action == "merge") mergeAt(to, path, from);
        if (action == "detach") to.json = to.json.detached();
        if (action == "erase") erase(to, path);
        if (action == "loop") loop(to, from);
    }

    void check() {
        std::vector<nlohmann::json> compared;
        for (Variable& variable : variables) {
            require(matches(variable.plain, variable.json), "a value is what it should be");
            if (textOf(variable.plain).size() > longestText) variable = {};
            compared.push_back(comparable(variable.plain));
        }
        for (std::size_t i = 0; i < variables.size(); ++i) {
            for (std::size_t k = 0; k < variables.size(); ++k) {
                const auto& [json, plain] = variables[i];
                const auto& [otherJson, otherPlain] = variables[k];
                const bool isSameType = typeOf(plain) == typeOf(otherPlain);
                const bool areEqual = isSameType && compared[i] == compared[k];
                const bool hasOrder = isSameType && (plain.is_number() || plain.is_string());
                require((json == otherJson) == areEqual, "what is equal");
                require(!areEqual || json.hash() == otherJson.hash(), "equal hashes");
                require((json < otherJson) == (hasOrder && plain < otherPlain), "what is before");
            }
        }
    }

    Variable& variable(std::istringstream& words) {
        unsigned number = 0;
        words >> number;
        return variables[number % variables.size()];
    }
    static Path readPath(std::istringstream& words) {
        Path path;
        std::string word;
        words >> word;
        std::istringstream parts(word);
        std::string part;
        std::getline(parts, part, '/');
        while (std::getline(parts, part, '/')) {
            std::int64_t index = 0;
            const char* const end = part.data() + part.size();
            const bool isIndex = std::from_chars(part.data(), end, index).ptr == end;
            path.push_back(isIndex && !part.empty() ? JSONKey(index) : JSONKey(part));
        }
        return path;
    }

    static void parse(Variable& to, const std::string& text) {
        // Both readers make numbers that compare alike only of what fits into a double.
        const auto isOfNumeral = [](char c, int) { return c == '.' || (c >= '0' && c <= '9'); };
        if (std::search_n(text.begin(), text.end(), 16, 0, isOfNumeral) != text.end()) return;
        auto plain = parsePlainly(text);
        to = {plain ? JSON::parse(text) : JSON(), std::move(plain).value_or(PlainJSON())};
    }
    static void put(Variable& to, const Path& path, Variable& from, const Path& fromPath) {
        PlainJSON plain = takenPlainly(from.plain, fromPath);
        const JSON part = from.json[JSONPath(fromPath)];
        require(matches(plain, part), "a path leads where its steps lead");
        if (path.empty()) {
            to = {part, std::move(plain)};
            return;
        }
        Variable byPath = to;
        byPath.json[JSONPath(path)] = part;
        write(byPath.plain, path, plain);
        require(matches(byPath.plain, byPath.json), "a path writes where its steps would");
        byPath = {};  // so that what changes now is not always shared
        atPlace(to.json, path, [&](JSONPlace&& place) {
            if (fromPath.empty()) {
                std::move(place) = from.json;
            } else {
                atPlace(from.json, fromPath, [&](auto&& other) { std::move(place) = other; });
            }
        });
        write(to.plain, path, std::move(plain));
    }
    static void mergeAt(Variable& to, Steps path, const Variable& from) {
        PlainJSON merged = takenPlainly(to.plain, path);
        const bool isPossible = merge(merged, PlainJSON(from.plain));
        try {
            if (path.empty()) {
                to.json.merge(from.json);
            } else {
                atPlace(to.json, path, [&](auto&& at) { std::move(at).merge(from.json); });
            }
            require(isPossible, "what cannot be merged is refused");
            write(to.plain, path, std::move(merged));
        } catch (const NSError& error) {
            require(!isPossible && error.code() == ErrorWrongType, "why merging is refused");
        }
    }
    static void erase(Variable& to, Steps path) {
        auto members = to.json.dictionaryObject();
        if (!members || path.empty() || !path[0].key()) return;
        const bool isErased = members->erase(*path[0].key());
        require(isErased == (to.plain.erase(*path[0].key()) > 0), "which members can be erased");
        to.json.setDictionaryObject(members);
    }
    static void loop(Variable& to, const Variable& from) {
        const Variable replacement = from;
        const PlainJSON start = to.plain;
        auto expected = start.begin();
        for (const auto& [key, value] : to.json) {
            if (expected == start.begin()) to = replacement;
            to.json[key] = value;
            write(to.plain, std::array{JSONKey(key)}, *expected);
            require(matches(*expected++, value), "a loop shows its start");
        }
    }

    static constexpr std::size_t longestText = 3000;  // beyond which a value is dropped
    std::array<Variable, 4> variables;
};

}  // namespace

void runJSONChanges(std::string_view script) {
    Player().play(script);
}

}  // namespace InkoraKit
