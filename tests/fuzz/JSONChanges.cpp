#include "JSONChanges.h"

#include "PlainJSON.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <span>
#include <sstream>

namespace InkoraKit {
namespace {

using Steps = std::vector<JSONKey>;

/// What the kit reads at the end of the steps, taken one by one.
JSON taken(const JSON& json, std::span<const JSONKey> steps) {
    if (steps.empty()) return json;
    const JSONKey& step = steps.front();
    return taken(step.index() ? json[*step.index()] : json[*step.key()], steps.subspan(1));
}

/// Does something to the place at the end of the steps, taken one by one.
template <class Action>
void atPlace(JSONPlace&& place, std::span<const JSONKey> steps, const Action& action) {
    if (steps.empty()) {
        action(std::move(place));
    } else if (const auto index = steps.front().index()) {
        atPlace(std::move(place)[*index], steps.subspan(1), action);
    } else {
        atPlace(std::move(place)[*steps.front().key()], steps.subspan(1), action);
    }
}
template <class Action>
void atPlace(JSON& json, std::span<const JSONKey> steps, const Action& action) {
    if (const auto index = steps.front().index()) {
        atPlace(json[*index], steps.subspan(1), action);
    } else {
        atPlace(json[*steps.front().key()], steps.subspan(1), action);
    }
}

PlainJSON taken(const PlainJSON& plain, std::span<const JSONKey> steps) {
    const PlainJSON* place = &plain;
    for (const JSONKey& step : steps)
        if (place) place = place->child(step);
    return place ? *place : PlainJSON();
}

/// What is before the last step, if that is there.
PlainJSON* parentOf(PlainJSON& plain, const Steps& steps) {
    PlainJSON* place = &plain;
    for (const JSONKey& step : std::span(steps).first(steps.size() - 1))
        if (place) place = place->child(step);
    return place;
}

void write(PlainJSON& plain, const Steps& steps, PlainJSON value) {
    PlainJSON* const parent = parentOf(plain, steps);
    if (!parent) return;
    if (PlainJSON* const known = parent->child(steps.back())) {
        *known = std::move(value);
    } else if (parent->type == Type::dictionary && steps.back().key()) {
        parent->set(*steps.back().key(), std::move(value));
    }
}

/// Whether the types allow it.
bool merge(PlainJSON& plain, const PlainJSON& other) {
    if (plain.type != other.type) return false;
    if (plain.type == Type::array) {
        plain.members.insert(plain.members.end(), other.members.begin(), other.members.end());
    } else if (plain.type == Type::dictionary) {
        for (const auto& [key, value] : other.members) {
            PlainJSON* const known = plain.child(key);
            const bool isContainer = value.type == Type::array || value.type == Type::dictionary;
            if (!known || !isContainer || !merge(*known, value)) plain.set(key, value);
        }
    } else {
        plain = other;
    }
    return true;
}

class Player {
public:
    void play(std::string_view script) {
        std::istringstream lines{std::string(script)};
        for (std::string line; std::getline(lines, line);) {
            arguments = std::istringstream(line);
            const auto action = actions.find(word());
            if (action == actions.end()) continue;
            (this->*action->second)();
            check();
        }
    }

private:
    struct Variable {
        JSON json;
        PlainJSON plain;
    };

    void check() {
        for (Variable& variable : variables) {
            require(variable.plain.matches(variable.json), "a value is what it should be");
            if (variable.plain.size() > largestSize) variable = {};
        }
        for (const auto& [json, plain] : variables) {
            for (const auto& [otherJson, otherPlain] : variables) {
                require((json == otherJson) == (plain == otherPlain), "what is equal");
                require(!(json == otherJson) || json.hash() == otherJson.hash(), "equal hashes");
                const bool isBefore =
                    plain.type == otherPlain.type &&
                    ((plain.type == Type::number && plain.number < otherPlain.number) ||
                     (plain.type == Type::string && plain.text < otherPlain.text));
                require((json < otherJson) == isBefore, "what is before");
            }
        }
    }

    std::string word() {
        std::string text;
        arguments >> text;
        return text;
    }
    Variable& variable() {
        unsigned number = 0;
        arguments >> number;
        return variables[number % variables.size()];
    }
    Steps steps() {
        Steps steps;
        std::istringstream parts(word());
        std::string part;
        std::getline(parts, part, '/');
        while (std::getline(parts, part, '/')) {
            std::int64_t index = 0;
            const char* const end = part.data() + part.size();
            const bool isIndex = std::from_chars(part.data(), end, index).ptr == end;
            steps.push_back(isIndex && !part.empty() ? JSONKey(index) : JSONKey(part));
        }
        return steps;
    }
    /// Whether one may try to write: a negative position in an array ends the process.
    static bool isWritable(PlainJSON& plain, const Steps& steps) {
        if (steps.empty()) return false;
        const PlainJSON* const parent = parentOf(plain, steps);
        return !parent || parent->type != Type::array || steps.back().index().value_or(0) >= 0;
    }

    void parse() {
        Variable& to = variable();
        std::string text;
        std::getline(arguments >> std::ws, text);
        auto plain = PlainJSON::parse(text);
        to = {plain ? JSON::parse(text) : JSON(), std::move(plain).value_or(PlainJSON())};
    }
    void many() {
        Variable& to = variable();
        unsigned count = 0;
        arguments >> count;
        std::string text;
        for (unsigned i = 0; i < count % 100; ++i)
            text += (i > 0 ? ",\"" : "\"") + std::string(i % 20, 'k') + std::to_string(i) +
                    "\":" + std::to_string(i);
        text = "{" + text + "}";
        to = {JSON::parse(text), *PlainJSON::parse(text)};
    }
    void copy() {
        Variable& to = variable();
        to = variable();
    }
    void take() {
        Variable& to = variable();
        const Variable& from = variable();
        const Steps path = steps();
        PlainJSON plain = taken(from.plain, path);
        require(plain.matches(from.json[JSONPath(path)]), "a path leads where its steps lead");
        to = {taken(from.json, path), std::move(plain)};
    }
    void put() {
        Variable& to = variable();
        const Steps path = steps();
        const Variable& from = variable();
        if (!isWritable(to.plain, path)) return;
        atPlace(to.json, path, [&](JSONPlace&& place) { std::move(place) = from.json; });
        write(to.plain, path, from.plain);
    }
    void path() {
        Variable& to = variable();
        const Steps path = steps();
        const Variable& from = variable();
        if (!path.empty() && !isWritable(to.plain, path)) return;
        to.json[JSONPath(path)] = from.json;
        if (!path.empty()) write(to.plain, path, from.plain);
    }
    void part() {
        Variable& to = variable();
        const Steps path = steps();
        Variable& from = variable();
        const Steps fromPath = steps();
        if (!isWritable(to.plain, path) || fromPath.empty()) return;
        atPlace(to.json, path, [&](JSONPlace&& place) {
            atPlace(from.json, fromPath, [&](JSONPlace&& other) { std::move(place) = other; });
        });
        write(to.plain, path, taken(from.plain, fromPath));
    }
    /// Whether the operation is refused for the types of what it is to merge.
    template <class Operation>
    static bool isRefused(const Operation& operation) {
        try {
            operation();
            return false;
        } catch (const NSError& error) {
            require(error.code() == ErrorWrongType, "the error of a merge");
            return true;
        }
    }
    void mergeAll() {
        Variable& to = variable();
        const Variable& from = variable();
        const bool isPossible = merge(to.plain, PlainJSON(from.plain));
        require(isRefused([&] { to.json.merge(from.json); }) != isPossible, "what can be merged");
    }
    void join() {
        Variable& to = variable();
        const Steps path = steps();
        const Variable& from = variable();
        if (!isWritable(to.plain, path)) return;
        PlainJSON merged = taken(to.plain, path);
        const bool isPossible = merge(merged, from.plain);
        const bool isRefusedHere = isRefused([&] {
            atPlace(to.json, path, [&](JSONPlace&& place) { std::move(place).merge(from.json); });
        });
        require(isRefusedHere != isPossible, "what can be merged at a place");
        if (isPossible) write(to.plain, path, std::move(merged));
    }
    void detach() {
        JSON& json = variable().json;
        json = json.detached();
    }
    void list() {
        Variable& to = variable();
        const Variable& first = variable();
        const Variable& second = variable();
        PlainJSON plain{Type::array, 0, {}, {{"", first.plain}, {"", second.plain}}};
        to = {JSON::arrayOf(first.json, second.json), std::move(plain)};
    }
    void append() {
        Variable& to = variable();
        const Variable& from = variable();
        auto elements = to.json.arrayObject();
        require(elements.has_value() == (to.plain.type == Type::array), "which are arrays");
        if (!elements) return;
        elements->append(from.json.object());
        to.json.setArrayObject(elements);
        to.plain.members.push_back({"", PlainJSON(from.plain)});
    }
    void erase() {
        Variable& to = variable();
        const std::string key = word();
        auto members = to.json.dictionaryObject();
        if (!members) return;
        const bool isThere = to.plain.child(key) != nullptr;
        require(members->erase(key) == isThere, "which members can be erased");
        to.json.setDictionaryObject(members);
        std::erase_if(to.plain.members, [&](const auto& member) { return member.key == key; });
    }
    void loop() {
        Variable& to = variable();
        const PlainJSON start = to.plain;
        const Variable replacement = variable();
        std::size_t position = 0;
        for (const auto& [key, value] : to.json) {
            if (position == 0) {
                to = replacement;
            } else {
                to.json[key] = value;
                write(to.plain, {JSONKey(key)}, start.members[position].value);
            }
            require(start.members[position++].value.matches(value), "a loop shows its start");
        }
        require(position == start.members.size(), "a loop goes to its end");
    }

    using Action = void (Player::*)();
    // clang-format off
    inline static const std::map<std::string, Action> actions = {
        {"parse", &Player::parse},    {"many", &Player::many},     {"copy", &Player::copy},
        {"take", &Player::take},      {"put", &Player::put},       {"path", &Player::path},
        {"part", &Player::part},      {"merge", &Player::mergeAll}, {"join", &Player::join},
        {"detach", &Player::detach},  {"list", &Player::list},     {"append", &Player::append},
        {"erase", &Player::erase},    {"loop", &Player::loop}};
    // clang-format on

    static constexpr std::size_t largestSize = 300;  // beyond which a value is dropped
    std::array<Variable, 4> variables;
    std::istringstream arguments;
};

}  // namespace

void runJSONChanges(std::string_view script) {
    Player().play(script);
}

}  // namespace InkoraKit
